// The application's own memory, in a preference domain of its own.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "BrellCore/Preferences/NeverTouch.h"
#include "BrellCore/Preferences/PrefKey.h"
#include "BrellCore/Review/PrivacyChecklist.h"
#include "CorvaneBrell/Model/Screen.h"
#include "CorvaneBrell/Model/SeenItems.h"
#include "CorvaneBrell/Platform/OperatingSystem.h"

namespace brell {

class PreferenceStore;

// How the window was left: its size in points, and the page it showed.
struct WindowPlace {
    int width;
    int height;
    Screen screen;
    bool operator==(const WindowPlace&) const = default;
};

// A reading never raises: what can't be read counts as not there. A change raises StoreError.
class OwnPreferences final : public KeyedNumbers {
public:
    static constexpr std::string_view domain = NeverTouch::ownLabel;
    static const DomainSet& domains();  // just that one, for the store

    // The store must allow the domain and outlive this.
    explicit OwnPreferences(PreferenceStore& store) : store_(store) {}

    std::optional<double> number(const std::string& key) const override;
    void setNumber(const std::string& key, double value) override;

    // Removes every key, also those that the system keeps there; from then on nothing is kept any more. By
    // way of the store, whose file would come back. Gives a sentence that says why something is left.
    std::optional<std::string> removeAll();

    // True when macOS gave its list of background items after the user had allowed to ask for it. A value
    // that can't be kept is asked for again.
    bool readsTaskList() const;
    void keepReadingTaskList(bool reads);

    // The login items of the last visit. A list that is too long to be kept counts as never seen; one that
    // was not seen this time is left as it is kept.
    SeenItems seenItems() const;
    void keepSeenItems(const SeenItems& seen);

    // The macOS under which Brell was last closed; nothing when it never was.
    std::optional<OperatingSystemVersion> lastMacOS() const;
    void keepMacOS(const OperatingSystemVersion& version);  // one that can't be kept is asked for again

    // Nothing when the window never was open.
    std::optional<WindowPlace> windowPlace() const;
    void keepWindowPlace(const WindowPlace& place);  // one that can't be kept is no reason to stay open

private:
    std::optional<NameSet> names(const char* key) const;
    void keepNames(const char* key, const NameSet& names);

    PreferenceStore& store_;
    bool isClosed_ = false;
};

}  // namespace brell
