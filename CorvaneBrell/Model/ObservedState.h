// The state of the screens, and who is told when it changes. Main thread only.
#pragma once

#include <functional>
#include <optional>
#include <type_traits>
#include <utility>

#include "CorvaneBrell/Model/AppState.h"

namespace brell {

class ObservedState {
public:
    const AppState& state() const { return state_; }
    // The observer is called when the state has changed. It may call the one who changed it.
    void setObserver(std::function<void(Topic)> observer) { observer_ = std::move(observer); }

protected:
    void announce(Topic topic) const {
        if (observer_) observer_(topic);
    }
    // True when the field had another value.
    template <class Value>
    bool put(Value AppState::*field, std::type_identity_t<Value> value) {
        if (state_.*field == value) return false;
        state_.*field = std::move(value);
        return true;
    }
    template <class Value>
    void set(Value AppState::*field, std::type_identity_t<Value> value, Topic topic) {
        if (put(field, std::move(value))) announce(topic);
    }
    // For a lane, to show there what it does.
    std::function<void(std::optional<Activity>)> shownIn(std::optional<Activity> AppState::*field) {
        return [this, field](std::optional<Activity> activity) {
            set(field, std::move(activity), Topic::activity);
        };
    }

    AppState state_;

private:
    std::function<void(Topic)> observer_;
};

}  // namespace brell
