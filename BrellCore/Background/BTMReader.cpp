#include "BrellCore/Background/BTMReader.h"

#include <grp.h>
#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <exception>

namespace brell {

namespace {

constexpr gid_t adminGroupID = 80;  // on every macOS
constexpr std::size_t firstBuffer = 4096;
constexpr std::size_t largestBuffer = 4 << 20;  // a group may have thousands of members

// Asks a database that answers into a buffer of ours, with more room until the answer fits; nullptr when
// there is none. The record points into the buffer.
template <class Record, class Ask>
const Record* lookedUp(Record& record, std::vector<char>& buffer, Ask&& ask) {
    for (std::size_t size = firstBuffer; size <= largestBuffer; size *= 4) {
        buffer.resize(size);
        Record* found = nullptr;
        int error;
        do error = ask(&record, buffer.data(), buffer.size(), &found);
        while (error == EINTR);
        if (error != ERANGE) return found;
    }
    return nullptr;
}

std::optional<AdminGroup> adminGroup() {
    struct group record;
    std::vector<char> buffer;
    const auto* found =
        lookedUp(record, buffer, [](struct group* into, char* bytes, std::size_t size, auto** out) {
            return ::getgrnam_r("admin", into, bytes, size, out);
        });
    if (!found) return std::nullopt;
    AdminGroup group{found->gr_gid, {}};
    for (char** member = found->gr_mem; member && *member; ++member) group.members.emplace_back(*member);
    return group;
}

std::string accountName() {
    struct passwd record;
    std::vector<char> buffer;
    const auto* found =
        lookedUp(record, buffer, [](struct passwd* into, char* bytes, std::size_t size, auto** out) {
            return ::getpwuid_r(::getuid(), into, bytes, size, out);
        });
    return found ? found->pw_name : std::string();
}

}  // namespace

bool isAdministrator(gid_t primaryGroup, const std::optional<AdminGroup>& group, std::string_view account) {
    if (primaryGroup == adminGroupID) return true;
    if (!group) return false;
    return group->id == primaryGroup ||
           std::find(group->members.begin(), group->members.end(), account) != group->members.end();
}

bool BTMReader::currentUserIsAdmin() {
    return isAdministrator(::getgid(), adminGroup(), accountName());
}

std::optional<BTMDump> BTMReader::dump(const std::optional<CommandPatience>& patience) const {
    try {
        if (!isAdmin()) return std::nullopt;
        const AllowedCommand command = AllowedCommand::sfltoolDumpBTM();
        const CommandResult result = patience ? runner.runPatiently(command, *patience) : runner.run(command);
        return result.succeeded() ? BTMDumpParser::parse(result.stdoutText) : std::nullopt;
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

}  // namespace brell
