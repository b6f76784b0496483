#include "BrellCore/Engine/EngineError.h"

namespace brell {

namespace {

struct TextAlone {
    std::string operator()(const Refused& failure) const { return failure.text; }
    std::string operator()(const StoreFailure& failure) const { return describe(failure); }
    std::string operator()(const JournalFailure& failure) const { return describeAlone(failure); }
    std::string operator()(const VerifyFailed& failure) const {
        return "After writing " + failure.key.rendered() + ", macOS reports " + failure.read.rendered() +
               " instead of " + failure.written.rendered() + ".";
    }
    std::string operator()(const Drift& failure) const {
        return "Entry " + failure.entry.text() +
               " was changed outside Brell since it was applied; restoring needs confirmation.";
    }
    std::string operator()(const NotActive& failure) const {
        return "Entry " + failure.entry.text() + " is not an active change.";
    }
    std::string operator()(const NoAgentRestorer&) const { return "No launchd restorer is available."; }
};

}  // namespace

std::string describeAlone(const EngineFailure& failure) {
    return std::visit(TextAlone(), failure);
}

std::string describe(const EngineFailure& failure) {
    if (const auto* journal = std::get_if<JournalFailure>(&failure)) return describe(*journal);
    const bool wasRolledBack = std::holds_alternative<VerifyFailed>(failure);
    return describeAlone(failure) + (wasRolledBack ? " The keys written so far were put back." : "");
}

EngineError::~EngineError() = default;

}  // namespace brell
