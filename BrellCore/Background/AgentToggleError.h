// Why a LaunchAgent was not switched or not put back.
#pragma once

#include <string>

#include "BrellCore/Support/Failure.h"

namespace brell {

enum class AgentToggleProblem {
    refused,       // nothing was run, or launchd could not be asked
    command,       // a launchctl step failed; the text is the command and its output
    verifyFailed,  // launchd reports another state than the one asked for
    engine,        // the journal or the engine
};

struct AgentToggleFailure {
    AgentToggleProblem problem;
    std::string text;
    bool operator==(const AgentToggleFailure&) const = default;
};
std::string describe(const AgentToggleFailure& failure);

class AgentToggleError final : public FailureError<AgentToggleFailure> {
public:
    using FailureError::FailureError;
    ~AgentToggleError() override;
};

}  // namespace brell
