#include "CorvaneBrell/Model/RebuildRequest.h"

#include <fmt/format.h>

#include <algorithm>

#include "BrellCore/Engine/KeysHold.h"
#include "BrellCore/Support/Text.h"
#include "CorvaneBrell/Model/EntryWords.h"

namespace brell {

namespace {

std::string_view stateOf(std::optional<KeysHold> keys) {
    if (!keys) return "A login item: launchd knows how it stands.";
    switch (*keys) {
        case KeysHold::written: return "It holds what Brell wrote.";
        case KeysHold::original: return "It is as it was before Brell.";
        case KeysHold::both: return "A part of it is as Brell wrote it, a part as it was before.";
        case KeysHold::somethingElse: return "Something else changed it since.";
        case KeysHold::unreadable: break;
    }
    return "What it holds now can't be read.";
}

std::vector<std::string> factsOf(const RebuildPlan& plan, std::size_t active) {
    std::vector<std::string> facts{
        fmt::format("{} of {}{}. Of these {} still active.",
                    plan.known > 0 ? "The journal and its history tell" : "The history tells",
                    counted(plan.entries.size(), "change", "changes"),
                    plan.from && plan.to
                        ? fmt::format(" from {} to {}", localDayWords(*plan.from), localDayWords(*plan.to))
                        : "",
                    counted(active, "is", "are"))};
    facts.push_back("What happened last may be missing from it.");
    if (!plan.overtaken.empty())
        facts.push_back(counted(plan.overtaken.size(), "change counts", "changes count") +
                        " as restored, because a later one of the same setting followed" +
                        (plan.handedOn > 0
                             ? ", which puts back what was before both wherever the earlier one was in force."
                             : "."));
    if (const std::size_t lines = plan.torn + plan.foreign)
        facts.push_back(counted(lines, "line", "lines") +
                        " that can't be read or are not Brell's are left out.");
    facts.insert(facts.end(), plan.unread.begin(), plan.unread.end());
    return facts;
}

}  // namespace

RebuildRequest rebuildRequest(RebuildPlan plan, RebuiltFor use, const ChangeTitles& titles,
                              PreferenceReader& preferences) {
    RebuildRequest request{Uuid::random(), std::move(plan), {}, {}};
    for (const JournalEntry& entry : request.plan.active())
        request.active.push_back({titles.of(entry), std::string(stateOf(keysHold(entry, preferences)))});
    std::reverse(request.active.begin(), request.active.end());  // the latest first, as in the journal
    request.facts = factsOf(request.plan, request.active.size());
    request.facts.emplace_back(use == RebuiltFor::thisRun
                                   ? "Brell goes on with the rebuilt journal at once."
                                   : "Brell uses the rebuilt journal when it is opened again.");
    return request;
}

RebuildReport rebuildReport(const Rebuilt& rebuilt, RebuiltFor use) {
    RebuildReport report{{}, use};
    if (rebuilt.before)
        report.lines.push_back("The journal as it was is kept as " + rebuilt.before->string() + ".");
    if (rebuilt.scriptBefore)
        report.lines.push_back("The restore script as it was is kept as " + rebuilt.scriptBefore->string() +
                               ".");
    if (rebuilt.isLacking)
        report.lines.emplace_back("It undoes changes that the rebuilt journal does not know either.");
    if (rebuilt.scriptFailure) report.lines.push_back(*rebuilt.scriptFailure);
    report.lines.emplace_back(use == RebuiltFor::thisRun
                                  ? "Brell goes on with the rebuilt journal."
                                  : "Open Brell again to go on with the rebuilt journal.");
    return report;
}

}  // namespace brell
