// Any bytes give overrides and a state; and bytes that stand among a job's arguments change nothing about it.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "BrellCore/Background/LaunchctlParser.h"
#include "BrellCore/Support/Lines.h"

namespace {

using namespace brell;

void require(bool holds) {
    if (!holds) std::abort();
}

void checkOverrides(std::string_view text) {
    for (const auto& [label, override] : LaunchctlParser::parsePrintDisabled(text))
        require(label.find('\n') == std::string::npos && override != AgentOverride::absent);
}

void checkState(const std::string& text) {
    const LoadedState state = LaunchctlParser::parsePrint({0, text, {}});
    require(state.isUnknown() == stripped(text).empty());
    require(state.isUnknown() || state.isLoaded() || state == LoadedState::notLoaded());
    require(LaunchctlParser::parsePrint({0, text, {}}) == state);
}

void checkAsArgument(const std::string& text) {
    if (text.find("\t}") != std::string::npos) return;  // may look like the end of the arguments
    const std::string answer = "gui/501/x = {\n\tstate = running\n\targuments = {\n\t\t" + text +
                               "\n\t}\n\truns = 3\n\tlast exit code = 0\n\tpid = 7\n}\n";
    require(LaunchctlParser::parsePrint({0, answer, {}}) ==
            LoadedState{LoadedState::Kind::loaded, "running", 3, 0, 7});
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    checkOverrides(text);
    checkState(text);
    checkAsArgument(text);
    return 0;
}
