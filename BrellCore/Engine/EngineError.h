// Why a change was not made or not undone.
#pragma once

#include <string>
#include <variant>

#include "BrellCore/Journal/JournalError.h"
#include "BrellCore/Preferences/PrefValue.h"
#include "BrellCore/Preferences/StoreError.h"
#include "BrellCore/Support/Uuid.h"

namespace brell {

struct Refused {
    std::string text;  // whole sentences
    bool operator==(const Refused&) const = default;
};
struct VerifyFailed {
    PrefKey key;
    StoredValue written;
    StoredValue read;  // what the store reports instead
    bool operator==(const VerifyFailed&) const = default;
};
struct Drift {
    Uuid entry;
    bool operator==(const Drift&) const = default;
};
struct NotActive {
    Uuid entry;
    bool operator==(const NotActive&) const = default;
};
struct NoAgentRestorer {
    bool operator==(const NoAgentRestorer&) const = default;
};

using EngineFailure =
    std::variant<Refused, StoreFailure, JournalFailure, VerifyFailed, Drift, NotActive, NoAgentRestorer>;
std::string describe(const EngineFailure& failure);
// Without the sentence that says what became of the change, for when that is not so.
std::string describeAlone(const EngineFailure& failure);

class EngineError final : public FailureError<EngineFailure> {
public:
    using FailureError::FailureError;
    // what() says in whole sentences what became of the change instead of what the failure says about it.
    EngineError(const EngineFailure& failure, const std::string& outcome)
        : FailureError(describeAlone(failure) + " " + outcome, failure) {}
    ~EngineError() override;
};

// Gives what the action gives, with the errors of the layers below as the engine's own.
template <class Action>
auto asEngineErrors(Action&& action) {
    try {
        return action();
    } catch (const StoreError& error) {
        throw EngineError(error.failure());
    } catch (const JournalError& error) {
        throw EngineError(error.failure());
    }
}

}  // namespace brell
