#include "CorvaneBrell/Model/LoginItemWords.h"

#include <fmt/format.h>

#include <array>

#include "BrellCore/Support/Text.h"

namespace brell {

std::string intervalWords(std::int64_t seconds) {
    struct Unit {
        std::int64_t seconds;
        const char *one, *several;
    };
    constexpr std::array<Unit, 5> units{{{604800, "once a week", "weeks"},
                                         {86400, "once a day", "days"},
                                         {3600, "every hour", "hours"},
                                         {60, "every minute", "minutes"},
                                         {1, "every second", "seconds"}}};
    for (const Unit& unit : units) {
        if (seconds <= 0 || seconds % unit.seconds != 0) continue;
        const std::int64_t count = seconds / unit.seconds;
        return count == 1 ? unit.one : fmt::format("every {} {}", count, unit.several);
    }
    return fmt::format("every {} seconds", seconds);
}

std::string startWords(const LaunchAgentPlist& plist) {
    std::string words = plist.trigger();
    if (!plist.startInterval) return words;
    const std::string exact = fmt::format("every {} s", *plist.startInterval);
    if (const std::size_t at = words.find(exact); at != std::string::npos)
        words.replace(at, exact.size(), intervalWords(*plist.startInterval));
    return words;
}

std::vector<std::string> conditionWords(const LoginItemRow& row, const JobFacts& facts) {
    std::vector<std::string> words;
    if (row.isCrashLooping) words.emplace_back("It keeps crashing and restarting.");
    if (row.allowedInSystemSettings == false) words.emplace_back("It is not allowed in System Settings.");
    if (facts.missingProgram)
        words.push_back("Its program is missing: " + excerpt(*facts.missingProgram, mostOfASentence) + ".");
    if (facts.otherOwner)
        words.emplace_back(*facts.otherOwner == 0 ? "Its file belongs to the system's administrator, root."
                                                  : "Its file belongs to another account of this Mac.");
    return words;
}

std::string subtitleWords(const LoginItemRow& row) {
    const std::string trigger = row.record ? row.record->plist.trigger() : std::string();
    if (!row.subtitle.ends_with(trigger)) return row.subtitle;
    const std::string name = row.subtitle.substr(0, row.subtitle.size() - trigger.size());
    return row.record ? name + startWords(row.record->plist) : name;
}

}  // namespace brell
