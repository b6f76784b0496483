#include "CorvaneBrell/Model/OwnPreferences.h"

#include "BrellCore/Preferences/PreferenceStore.h"

namespace brell {

namespace {

constexpr const char* taskListKey = "readsBackgroundItems";
constexpr const char* macOSKey = "lastMacOS";
constexpr const char* jobsKey = "seenLoginItems";
constexpr const char* tasksKey = "seenBackgroundItems";
constexpr std::size_t mostNameBytes = 256 * 1024;  // a long list has some ten thousand

PrefKey ownKey(std::string name) {
    return {std::string(OwnPreferences::domain), std::move(name)};
}

}  // namespace

const DomainSet& OwnPreferences::domains() {
    static const DomainSet own{std::string(domain)};
    return own;
}

std::optional<double> OwnPreferences::number(const std::string& key) const try {
    const StoredValue stored = store_.exactValue(ownKey(key));
    if (!stored.value) return std::nullopt;
    if (const auto* real = stored.value->as<double>()) return *real;
    if (const auto* integer = stored.value->as<std::int64_t>()) return static_cast<double>(*integer);
    return std::nullopt;
} catch (const StoreError&) {
    return std::nullopt;
}

void OwnPreferences::setNumber(const std::string& key, double value) {
    if (isClosed_) return;
    store_.write(value, ownKey(key));
    store_.synchronize(std::string(domain));
}

std::optional<std::string> OwnPreferences::removeAll() try {
    isClosed_ = true;
    const std::string own(domain);
    for (const std::string& key : store_.keys(own)) store_.remove(ownKey(key));
    store_.synchronize(own);
    const std::vector<std::string> left = store_.keys(own);
    return left.empty() ? std::nullopt : std::optional(ownKey(left.front()).rendered() + " is still stored.");
} catch (const StoreError& error) {
    return error.what();
}

bool OwnPreferences::readsTaskList() const {
    return number(taskListKey) == 1;
}

void OwnPreferences::keepReadingTaskList(bool reads) try {
    if (readsTaskList() != reads) setNumber(taskListKey, reads ? 1 : 0);
} catch (const StoreError&) {
}

SeenItems OwnPreferences::seenItems() const {
    return {names(jobsKey), names(tasksKey)};
}

void OwnPreferences::keepSeenItems(const SeenItems& seen) try {
    if (seen.jobs) keepNames(jobsKey, *seen.jobs);
    if (seen.tasks) keepNames(tasksKey, *seen.tasks);
} catch (const StoreError&) {
}

std::optional<NameSet> OwnPreferences::names(const char* key) const try {
    const StoredValue stored = store_.exactValue(ownKey(key));
    const auto* kept = stored.value ? stored.value->as<PrefValue::StringArray>() : nullptr;
    return kept ? std::optional(NameSet(kept->begin(), kept->end())) : std::nullopt;
} catch (const StoreError&) {
    return std::nullopt;
}

void OwnPreferences::keepNames(const char* key, const NameSet& wanted) {
    if (isClosed_ || names(key) == wanted) return;
    std::size_t bytes = 0;
    for (const std::string& name : wanted) bytes += name.size();
    if (bytes > mostNameBytes)
        store_.remove(ownKey(key));
    else
        store_.write(PrefValue::StringArray(wanted.begin(), wanted.end()), ownKey(key));
    store_.synchronize(std::string(domain));
}

std::optional<OperatingSystemVersion> OwnPreferences::lastMacOS() const {
    const auto stored = number(macOSKey);
    if (!stored || !(*stored > 0 && *stored < 1e9)) return std::nullopt;
    const int whole = static_cast<int>(*stored);
    return OperatingSystemVersion{whole / 1'000'000, whole / 1000 % 1000, whole % 1000};
}

void OwnPreferences::keepMacOS(const OperatingSystemVersion& version) try {
    const bool isKnown = version.major > 0;
    if (isKnown && lastMacOS() != version)
        setNumber(macOSKey, version.major * 1e6 + version.minor * 1e3 + version.patch);
} catch (const StoreError&) {
}

std::optional<WindowPlace> OwnPreferences::windowPlace() const {
    const auto width = number("windowWidth"), height = number("windowHeight"),
               screen = number("windowScreen");
    const auto isWithin = [](std::optional<double> number, double most) {
        return number && *number >= 0 && *number <= most;
    };
    if (!isWithin(width, 32767) || !isWithin(height, 32767) ||
        !isWithin(screen, static_cast<double>(enumTexts<Screen>.size() - 1)))
        return std::nullopt;
    return WindowPlace{static_cast<int>(*width), static_cast<int>(*height),
                       static_cast<Screen>(static_cast<int>(*screen))};
}

void OwnPreferences::keepWindowPlace(const WindowPlace& place) try {
    if (windowPlace() == place) return;
    setNumber("windowWidth", place.width);
    setNumber("windowHeight", place.height);
    setNumber("windowScreen", static_cast<double>(place.screen));
} catch (const StoreError&) {
}

}  // namespace brell
