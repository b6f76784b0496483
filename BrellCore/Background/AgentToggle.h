// Turns one of the user's own LaunchAgents off or on as a journaled change, and puts it back.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "BrellCore/Background/AgentSteps.h"
#include "BrellCore/Background/LaunchAgentReader.h"
#include "BrellCore/Engine/TweakEngine.h"

namespace brell {

// Everything here blocks on launchctl: up to half a minute when it is slow. Off and on are each other's undo:
// asking for the opposite of an applied change restores that change. Every refusal comes before the journal
// is touched, every launchctl step after the entry is on disk.
class AgentToggle final : public AgentRestoring {
public:
    // What every command is built from; nothing of a record on screen reaches launchctl unchecked.
    struct Validated {
        std::string label;
        std::string plistPath;  // absolute, links resolved
        bool operator==(const Validated&) const = default;
    };

    // launchAgentsDirectory is the user's "Library/LaunchAgents". runner and engine must outlive the toggle.
    AgentToggle(CommandRunning& runner, TweakEngine& engine, std::uint32_t uid,
                const std::filesystem::path& launchAgentsDirectory, Waiting waiting = Waiting::real());

    std::string domain() const { return "gui/" + std::to_string(uid_); }

    // Why an agent can't be switched, as far as its record tells: a sentence; nothing when it can. Never
    // raises.
    std::optional<std::string> whyNotSwitched(const LaunchAgentRecord& record) const;

    // All of these raise AgentToggleError.
    Validated validate(const LaunchAgentRecord& record) const;
    AgentState currentState(const std::string& label) const;
    // The overrides of every label. Where many are looked at, they need to be asked for only once.
    AgentOverrides overrides() const;
    AgentState currentState(const std::string& label, const AgentOverrides& known) const;

    // The rendered commands that a change would run; those of the restore where it would undo an applied one.
    std::vector<std::string> previewOff(const LaunchAgentRecord& record) const;
    std::vector<std::string> previewOn(const LaunchAgentRecord& record) const;
    std::vector<std::string> previewRestore(const AgentCapture& capture) const;

    // Give the entry of the change, or the restored one. After an error the agent is as it was captured, or
    // its entry is still active and says why. One that is turned that way already is refused.
    JournalEntry turnOff(const LaunchAgentRecord& record);
    JournalEntry turnOn(const LaunchAgentRecord& record);

    // An override that was absent comes back as an explicit enabled one: launchctl can't remove an override.
    void restore(const AgentCapture& capture) override;

    // The recorded change was a turning on.
    static bool brellTurnedOn(const AgentCapture& capture) {
        return capture.override == AgentOverride::disabled;
    }

private:
    enum class Direction { off, on };

    // How a change that did not succeed is recorded.
    struct Ending {
        EntryStatus status;
        std::string reason;
    };

    static bool undoes(Direction direction, const JournalEntry& entry);
    AgentSteps stepsFor(const std::string& label) const;
    std::vector<std::string> preview(const LaunchAgentRecord& record, Direction direction) const;
    JournalEntry toggle(const LaunchAgentRecord& record, Direction direction);
    AgentCapture captured(const LaunchAgentRecord& record, Direction direction) const;
    void putBack(AgentSteps& steps, const AgentCapture& capture) const;
    Ending undone(AgentSteps& steps, const AgentCapture& capture, std::string reason) const;
    std::optional<Uuid> restorableEntry(const std::string& label, Direction direction) const;
    void checkOwn(const AgentCapture& capture) const;
    void checkLoadable(const AgentCapture& capture) const;
    bool isDirectlyInside(const std::filesystem::path& resolved) const;

    CommandRunning& runner_;
    TweakEngine& engine_;
    const std::uint32_t uid_;
    const std::filesystem::path directory_;  // links resolved
    const Waiting waiting_;
};

}  // namespace brell
