#include "CorvaneBrell/SampleMac/LaunchdState.h"

#include <string_view>
#include <utility>

#include "BrellCore/Support/DurableFile.h"
#include "BrellCore/Support/FileContents.h"
#include "BrellCore/Support/PropertyList.h"

namespace brell {

namespace {

constexpr std::size_t mostBytes = 64 << 20;

PlistValue written(std::int64_t number) {
    return {number};
}

PlistValue written(const SimulatedJob& job) {
    PlistArray arguments;
    for (const std::string& argument : job.arguments) arguments.push_back({argument});
    PlistDictionary fields{{{"Arguments", {std::move(arguments)}},
                            {"AsksLeft", written(job.asksLeft)},
                            {"File", {job.file}},
                            {"Runs", written(job.runs)},
                            {"State", {job.state}}}};
    if (job.lastExitCode) fields.set("LastExitCode", written(*job.lastExitCode));
    if (job.pid) fields.set("Pid", written(*job.pid));
    return {std::move(fields)};
}

PlistValue written(bool flag) {
    return {flag};
}

PlistValue written(const JobBehaviour& behaviour) {
    PlistDictionary fields{{{"AsksToLeave", written(behaviour.asksToLeave)},
                            {"BootoutAnswer", written(behaviour.bootoutAnswer)},
                            {"BootstrapAnswer", written(behaviour.bootstrapAnswer)},
                            {"ExitTimeout", written(behaviour.exitTimeout)}}};
    if (behaviour.failsWith) fields.set("FailsWith", written(*behaviour.failsWith));
    return {std::move(fields)};
}

template <class T>
PlistValue written(const std::map<std::string, T>& byLabel) {
    PlistDictionary entries;
    for (const auto& [label, value] : byLabel) entries.entries.emplace_back(label, written(value));
    return {std::move(entries)};
}

template <class T>
const T& typed(const PlistValue& value, std::string_view what) {
    const T* found = value.as<T>();
    if (!found) throw PlistError({std::string(what) + " has another type than launchd's state takes"});
    return *found;
}

template <class T>
const T& field(const PlistDictionary& fields, std::string_view key) {
    const PlistValue* value = fields.find(key);
    if (!value) throw PlistError({std::string(key) + " is missing in launchd's state"});
    return typed<T>(*value, key);
}

std::optional<std::int64_t> optionalNumber(const PlistDictionary& fields, std::string_view key) {
    return fields.find(key) ? std::optional(field<std::int64_t>(fields, key)) : std::nullopt;
}

SimulatedJob jobFrom(const PlistValue& value) {
    const auto& fields = typed<PlistDictionary>(value, "A job");
    std::vector<std::string> arguments;
    for (const PlistValue& argument : field<PlistArray>(fields, "Arguments"))
        arguments.push_back(typed<std::string>(argument, "An argument"));
    return {field<std::string>(fields, "File"),     std::move(arguments),
            field<std::string>(fields, "State"),    field<std::int64_t>(fields, "Runs"),
            optionalNumber(fields, "LastExitCode"), optionalNumber(fields, "Pid"),
            field<std::int64_t>(fields, "AsksLeft")};
}

JobBehaviour behaviourFrom(const PlistValue& value) {
    const auto& fields = typed<PlistDictionary>(value, "A behaviour");
    return {field<std::int64_t>(fields, "AsksToLeave"), field<std::int64_t>(fields, "BootoutAnswer"),
            field<std::int64_t>(fields, "BootstrapAnswer"), optionalNumber(fields, "FailsWith"),
            field<std::int64_t>(fields, "ExitTimeout")};
}

bool overrideFrom(const PlistValue& value) {
    return typed<bool>(value, "An override");
}

template <class Make>
auto byLabel(const PlistDictionary& root, std::string_view key, Make&& make) {
    std::map<std::string, decltype(make(PlistValue{}))> values;
    for (const PlistEntry& entry : field<PlistDictionary>(root, key).entries)
        values.emplace(entry.key, make(entry.value));
    return values;
}

}  // namespace

LaunchdState readLaunchdState(const std::filesystem::path& file) {
    const auto contents = readFile(file, mostBytes);
    if (!contents) return {};
    const PlistValue value = readPropertyList(contents->bytes);
    const auto& root = typed<PlistDictionary>(value, "The whole");
    return {byLabel(root, "Jobs", jobFrom), byLabel(root, "Overrides", overrideFrom),
            byLabel(root, "Manners", behaviourFrom), field<std::int64_t>(root, "NextPid")};
}

void writeLaunchdState(const std::filesystem::path& file, const LaunchdState& state) {
    const PlistDictionary root{{{"Jobs", written(state.jobs)},
                                {"Manners", written(state.behaviours)},
                                {"NextPid", written(state.nextPid)},
                                {"Overrides", written(state.overrides)}}};
    replaceFile(file, writeXmlPropertyList({root}), Durability::readersOnly);
}

}  // namespace brell
