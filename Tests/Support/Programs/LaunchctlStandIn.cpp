// A stand-in for macOS's `launchctl`, over the sample Mac in the folder $BRELL_SAMPLE_MAC.

#include <cstdlib>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "CorvaneBrell/SampleMac/SampleMac.h"

using namespace brell;

namespace {

std::optional<AllowedCommand> commandFrom(const std::vector<std::string>& words) {
    if (words.size() == 3 && words[0] == "bootstrap")
        return AllowedCommand::launchctlBootstrap(words[1], words[2]);
    if (words.size() != 2) return std::nullopt;
    if (words[0] == "print") return AllowedCommand::launchctlPrint(words[1]);
    if (words[0] == "print-disabled") return AllowedCommand::launchctlPrintDisabled(words[1]);
    const std::size_t slash = words[1].rfind('/');
    if (slash == std::string::npos) return std::nullopt;
    const std::string domain = words[1].substr(0, slash);
    const std::string label = words[1].substr(slash + 1);
    if (words[0] == "bootout") return AllowedCommand::launchctlBootout(domain, label);
    if (words[0] == "enable") return AllowedCommand::launchctlEnable(domain, label);
    if (words[0] == "disable") return AllowedCommand::launchctlDisable(domain, label);
    return std::nullopt;
}

}  // namespace

int main(int argc, char** argv) try {
    const auto command = commandFrom({argv + 1, argv + argc});
    const char* folder = std::getenv("BRELL_SAMPLE_MAC");
    if (!command || !folder) {
        std::cerr << "Unrecognized subcommand, or no sample Mac\n";
        return 64;
    }
    const CommandResult result = SampleMac(folder).openTools()->run(*command);
    std::cout << result.stdoutText;
    std::cerr << result.stderrText;
    return result.exitCode;
} catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 70;
}
