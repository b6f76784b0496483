// Every change, made beside the main thread: an operation makes one and tells how it went.
#pragma once

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "BrellCore/Journal/JournalLeaving.h"
#include "CorvaneBrell/Model/ChangeOutcome.h"
#include "CorvaneBrell/Model/Progress.h"

namespace brell {

class AgentToggle;
struct Dependencies;

// Raises std::exception, naming the file, when an agent's job file is gone.
void checkJobFile(const LaunchAgentRecord& agent);
// The agent of a change, to be switched once more. Raises std::exception when no file of the user's
// LaunchAgents folder has its label any more.
LaunchAgentRecord switchedAgent(const AgentFolder& folder, const AgentCapture& before);

// Of one thread; it shares nothing with the main thread but the collaborators, which must outlive it. Every
// operation may raise std::exception, and has then changed nothing that it would tell of.
class ChangeWork {
public:
    ChangeWork(Dependencies& dependencies, Progress& progress);

    // A tweak with an active change is restored first, and made again as it was when the new one fails.
    ChangeOutcome apply(const PendingApply& wish);
    ChangeOutcome turnOff(const std::string& tweakID);
    // One change, unless it is back already: what is there then is nobody's but the user's.
    ChangeOutcome restore(const Uuid& entryID);

    // Restores the others of the request and those of its drifted ones that are ticked. While a ticked one
    // holds something else than the request shows nothing is restored, and it is asked for again; one of the
    // others that has drifted since is left, and asked for.
    ChangeOutcome restoreConfirmed(const DriftRequest& request, const std::set<Uuid>& ticked);
    // Restores what the action made and makes again what it restored. A change that drifted is asked for,
    // and the rest waits; with an answer the ticked ones are restored, and the rest follows if those were
    // all.
    ChangeOutcome undoAction(const SessionChange& action);
    // Makes again what others reset, where it is as it was shown; the first originals are kept.
    ChangeOutcome applyAgain(const std::vector<DriftedEntry>& shown);
    // Closes changes that others changed since, without writing: what is there now stays.
    ChangeOutcome keepTheirs(const std::vector<Uuid>& ids);
    // Restores what an earlier run left unfinished, the settings first: they wait for no launchd. An agent
    // that other commands than were shown would put back is left, and told of.
    ChangeOutcome recover(const RecoveryCommands& shown);

    ChangeOutcome switchAgents(const AgentConfirmRequest& request);
    // Applies what is valid, in order, and reports the rest.
    ChangeOutcome applyPreset(const PresetPlan& plan);

    // Takes the journal's folder away. False when there is none.
    bool leave(const TakeAway& takeAway);

private:
    std::optional<std::string> whyLeft(const JournalEntry& entry, const RecoveryCommands& shown) const;
    void recoverOf(EntryKind kind, const RecoveryCommands& shown, ChangeOutcome& outcome);
    ChangeOutcome undoWith(const SessionChange& action, const std::vector<DriftedEntry>& asked,
                           const std::set<Uuid>& ticked);
    void carryOut(ChangeOutcome& outcome, const PendingApply& wish);
    void noteKeys(ChangeOutcome& outcome, const std::string& tweakID);
    void noteBefore(ChangeOutcome& outcome, const JournalEntry& entry);
    bool restoreUnlessDrifted(ChangeOutcome& outcome, const JournalEntry& active,
                              const DriftedEntry* confirmed = nullptr);
    // False when mayBegin, which is asked while nobody else changes anything, kept it from beginning.
    bool restoreTogether(ChangeOutcome& outcome, const std::vector<JournalEntry>& entries,
                         const std::set<Uuid>& confirmed, const std::optional<PendingApply>& then,
                         const std::function<bool()>& mayBegin);
    std::string namesOf(const std::vector<JournalEntry>& switched);
    void addLeftOut(ChangeOutcome& outcome, const PresetPlan& plan) const;
    void checkCanBeMadeAgain(const JournalEntry& entry);
    void makeAgain(ChangeOutcome& outcome, const JournalEntry& entry);
    JournalEntry switchedAgain(const AgentCapture& before);
    void ask(ChangeOutcome& outcome, const std::vector<Uuid>& drifted, DriftRequest request);
    bool isAsShown(const DriftedEntry& shown);
    bool asksForDrift(const JournalEntry& entry);
    ChangeOutcome finished(ChangeOutcome outcome);

    Dependencies& deps_;
    Progress& progress_;
};

}  // namespace brell
