#include "CorvaneBrell/Model/SeenItems.h"

#include <filesystem>

#include "BrellCore/Support/Text.h"

namespace brell {

namespace {

// Another file with a label that was seen is another job. What a file says may be of any length.
std::string nameOf(const LaunchAgentRecord& job) {
    return std::string(rawValue(job.scope)) + "/" +
           excerpt(std::filesystem::path(job.plist.path).filename().string()) + " " +
           excerpt(job.label().value_or(""));
}

std::string nameOf(const BTMItem& item) {
    return excerpt(item.strippedIdentifier());
}

bool isUnknown(const std::optional<NameSet>& seen, const std::string& name) {
    return seen && !seen->contains(name);
}

}  // namespace

bool SeenItems::isNew(const LoginItemRow& row) const {
    if (row.record) return isUnknown(jobs, nameOf(*row.record));
    return row.btm && isUnknown(tasks, nameOf(*row.btm));
}

void SeenItems::beginWith(const SeenItems& now) {
    if (!jobs) jobs = now.jobs;
    if (!tasks) tasks = now.tasks;
}

SeenItems SeenItems::in(const std::vector<LoginItemRow>& rows, bool withTasks) {
    SeenItems seen{NameSet(), withTasks ? std::optional(NameSet()) : std::nullopt};
    for (const LoginItemRow& row : rows) {
        if (row.record) seen.jobs->insert(nameOf(*row.record));
        if (row.btm && withTasks) seen.tasks->insert(nameOf(*row.btm));
    }
    return seen;
}

}  // namespace brell
