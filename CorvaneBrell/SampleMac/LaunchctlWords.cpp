#include "CorvaneBrell/SampleMac/LaunchctlWords.h"

#include <fmt/format.h>

#include <array>
#include <utility>

namespace brell {

namespace {

using CodeAndWords = std::pair<std::int64_t, std::string_view>;

constexpr std::array<CodeAndWords, 6> failureWords{{
    {3, "No such process"},
    {5, "Input/output error"},
    {17, "File exists"},
    {36, "Operation now in progress"},
    {37, "Operation already in progress"},
    {125, "Domain does not support specified action"},
}};

// The names that launchctl prints behind an exit code, as sysexits(3) gives them.
constexpr std::array<CodeAndWords, 4> exitNames{
    {{64, "EX_USAGE"}, {69, "EX_UNAVAILABLE"}, {70, "EX_SOFTWARE"}, {78, "EX_CONFIG"}}};

template <std::size_t count>
std::string_view wordsFor(const std::array<CodeAndWords, count>& table, std::int64_t code) {
    for (const auto& [known, words] : table)
        if (known == code) return words;
    return {};
}

std::string lastExit(const std::optional<std::int64_t>& code) {
    if (!code) return "(never exited)";
    const std::string_view name = wordsFor(exitNames, *code);
    return std::to_string(*code) + (name.empty() ? "" : ": " + std::string(name));
}

// As raw as they are: a line feed in an argument is one in the output.
std::string argumentLines(const SimulatedJob& job) {
    std::string lines;
    for (const std::string& argument : job.arguments) lines += "\t\t" + argument + "\n";
    return lines;
}

constexpr std::string_view serviceLayout = R"({domain}/{label} = {{
	active count = {active}
	path = {file}
	type = LaunchAgent
	state = {state}

	program = {program}
	arguments = {{
{arguments}	}}

	inherited environment = {{
		SSH_AUTH_SOCK => /private/tmp/com.apple.launchd.sample/Listeners
	}}

	default environment = {{
		PATH => /usr/bin:/bin:/usr/sbin:/sbin
	}}

	environment = {{
		MallocSpaceEfficient => 1
		XPC_SERVICE_NAME => {label}
	}}

	domain = {domain} [100019]
	asid = 100019
	minimum runtime = 10
	exit timeout = {exitTimeout}
	runs = {runs}
{pid}	immediate reason = speculative
	forks = 0
	execs = {active}
	initialized = {active}
	trampolined = {active}
	started suspended = 0
	proxy started suspended = 0
	last exit code = {lastExit}

	resource coalition = {{
		ID = 1203
		type = resource
		state = active
		active count = 1
		name = {label}
	}}

	event channels = {{
		"com.apple.launchd.helper" = {{
			state = waiting
			pid = 1
			runs = 12
			last exit code = 9
		}}
	}}

	spawn type = daemon (3)
	jetsam priority = 40
	jetsam memory limit (active) = (unlimited)
	jetsam memory limit (inactive) = (unlimited)
	jetsamproperties category = daemon
	jetsam thread limit = 32
	cpumon = default
	properties = inferred program
}}
)";

}  // namespace

std::string LaunchctlWords::service(std::string_view domain, std::string_view label, const SimulatedJob& job,
                                    const JobBehaviour& behaviour, const std::filesystem::path& file) {
    return fmt::format(fmt::runtime(serviceLayout), fmt::arg("domain", domain), fmt::arg("label", label),
                       fmt::arg("active", job.pid ? 1 : 0), fmt::arg("exitTimeout", behaviour.exitTimeout),
                       fmt::arg("file", file.string()), fmt::arg("state", job.state),
                       fmt::arg("program", job.arguments.empty() ? "(unknown)" : job.arguments.front()),
                       fmt::arg("arguments", argumentLines(job)), fmt::arg("runs", job.runs),
                       fmt::arg("pid", job.pid ? fmt::format("\tpid = {}\n", *job.pid) : ""),
                       fmt::arg("lastExit", lastExit(job.lastExitCode)));
}

std::string LaunchctlWords::services(std::string_view domain, const LaunchdState& state) {
    std::string text = fmt::format("{} = {{\n\ttype = gui\n\thandle = 100019\n\n\tservices = {{\n", domain);
    for (const auto& [label, job] : state.jobs)
        text += fmt::format("\t\t{:>8} {:>6} \t{}\n", job.pid.value_or(0),
                            job.lastExitCode ? std::to_string(*job.lastExitCode) : "-", label);
    return text + "\t}\n}\n";
}

std::string LaunchctlWords::overrides(const LaunchdState& state) {
    std::string text;
    if (state.overrides.empty()) {
        text = "\tno disabled services\n";
    } else {
        text = "\tdisabled services = {\n";
        for (const auto& [label, disabled] : state.overrides)
            text += fmt::format("\t\t\"{}\" => {}\n", label, disabled ? "disabled" : "enabled");
        text += "\t}\n";
    }
    return text +
           "\tlogin item associations = {\n\t\t\"com.lumenfold.helper\" => \"com.lumenfold.app\"\n\t}\n";
}

std::string LaunchctlWords::failure(std::string_view action, int code) {
    return fmt::format("{} failed: {}: {}\n", action, code, wordsFor(failureWords, code));
}

}  // namespace brell
