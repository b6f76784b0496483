// Turns one of the user's own LaunchAgents off or on as a journaled change, and puts it back.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "BrellCore/Background/AgentFolder.h"
#include "BrellCore/Background/AgentSteps.h"
#include "BrellCore/Background/LaunchAgentReader.h"
#include "BrellCore/Engine/TweakEngine.h"

namespace brell {

// The commands that a switch would run, and where they lead.
struct AgentPreview {
    std::vector<std::string> commands;
    AgentTarget target;
    bool operator==(const AgentPreview&) const = default;
};

// Everything here blocks on launchctl: on a dozen commands or more, each of which may take as long as the
// runner lets it, and for up to half a minute whenever a job takes its time to end. Off and on are each
// other's undo: asking for the opposite of an applied change restores that change. Every refusal comes before
// the journal is touched, every launchctl step after the entry is on disk.
class AgentToggle final : public AgentRestoring {
public:
    // The record that every command is built from; nothing of a record on screen reaches launchctl unchecked.
    struct Validated {
        std::string label;
        std::string plistPath;  // absolute, links resolved
        bool operator==(const Validated&) const = default;
    };

    // launchAgentsDirectory is the user's "Library/LaunchAgents". runner and engine must outlive the toggle.
    AgentToggle(CommandRunning& runner, TweakEngine& engine, std::uint32_t uid,
                const std::filesystem::path& launchAgentsDirectory, Waiting waiting = Waiting::real());

    std::string domain() const { return AgentCommands::guiDomain(uid_); }

    // Told, on the thread that waits, when a job takes its time to end, and how long it is given at most. To
    // be set before the toggle is shared between threads.
    void setWaitingHook(std::function<void(const std::string& label, std::chrono::seconds atMost)> hook) {
        waiting_.tell = std::move(hook);
    }

    // Why an agent can't be switched, as far as its record tells: a sentence; nothing when it can. Never
    // raises.
    std::optional<std::string> whyNotSwitched(const LaunchAgentRecord& record) const;

    // All of these raise AgentToggleError.
    Validated validate(const LaunchAgentRecord& record) const;
    AgentState currentState(const std::string& label) const;
    // The overrides of every label. Where many are looked at, they need to be asked for only once.
    AgentOverrides overrides() const;
    AgentState currentState(const std::string& label, const AgentOverrides& known) const;

    // The user's LaunchAgents.
    const AgentFolder& folder() const { return folder_; }

    // The rendered commands that a switch would run: those of the restore where it would undo an applied one.
    // Refuses what an active change of the agent would make the switch refuse.
    AgentPreview preview(const LaunchAgentRecord& record, AgentSwitch direction) const;
    std::vector<std::string> previewOff(const LaunchAgentRecord& record) const;
    std::vector<std::string> previewOn(const LaunchAgentRecord& record) const;
    // Undoing the change with this capture, and making it anew after that. Neither raises.
    std::vector<std::string> previewRestore(const AgentCapture& capture) const;
    std::vector<std::string> previewAgain(const AgentCapture& capture) const;

    // Give the entry of the change, or the restored one. After an error the agent is as it was captured, or
    // its entry is still active and says why. One that is turned that way already is refused.
    JournalEntry turnOff(const LaunchAgentRecord& record);
    JournalEntry turnOn(const LaunchAgentRecord& record);

    // An override that was absent comes back as an explicit enabled one: launchctl can't remove an override.
    // Loads the file of the folder that has the label now; gives a sentence where none has it any more.
    std::optional<std::string> restore(const AgentCapture& capture) override;
    std::optional<std::string> otherState(const AgentCapture& capture) override;
    std::optional<std::string> whyNotRestored(const AgentCapture& capture) override;
    std::optional<std::string> whyNotRestored(const AgentCapture& capture, const AgentState& now) const;
    // As far as the capture alone tells: it is none of the user's own agents. Never raises.
    std::optional<std::string> whyNotOwn(const AgentCapture& capture) const;

    // The recorded change was a turning on.
    static bool brellTurnedOn(const AgentCapture& capture) { return capture.turnedOn(); }

private:
    // How a change that did not succeed is recorded.
    struct Ending {
        EntryStatus status;
        std::string reason;
    };

    AgentSteps stepsFor(const std::string& label) const;
    std::vector<std::string> rendered(const AgentPlan& plan, const AgentCapture& capture) const;
    std::vector<std::string> rendered(const AgentPlan& plan, const std::string& label,
                                      const std::string& jobFile) const;
    JournalEntry toggle(const LaunchAgentRecord& record, AgentSwitch direction);
    AgentCapture captured(const LaunchAgentRecord& record, AgentSwitch direction) const;
    std::optional<std::string> putBack(AgentSteps& steps, const AgentCapture& capture) const;
    std::optional<std::string> putBackWithoutFile(AgentSteps& steps, const AgentCapture& capture) const;
    Ending undone(AgentSteps& steps, const AgentCapture& capture, std::string reason) const;
    std::optional<JournalEntry> restorableEntry(const std::string& label, AgentSwitch direction) const;
    std::optional<std::string> whyNotPutBack(const AgentState& now, const AgentCapture& capture,
                                             const std::optional<std::filesystem::path>& file) const;
    bool isOwn(const LoadedState& loaded, bool hasFile) const;
    bool isOfAFormerHome(const AgentCapture& capture) const;

    CommandRunning& runner_;
    TweakEngine& engine_;
    const std::uint32_t uid_;
    const AgentFolder folder_;
    Waiting waiting_;
};

}  // namespace brell
