// The outcome of a change.
#pragma once

#include <exception>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "CorvaneBrell/Model/Requests.h"

namespace brell {

struct ChangeOutcome {
    std::vector<JournalEntry> made;
    std::vector<JournalEntry> restored;
    std::vector<std::string> failures;  // sentences
    std::optional<DriftRequest>
        question;  // about changes that drifted: they are left alone until it is answered
    UndoNote undo;
    std::optional<UndoProof> proof;        // of what was restored
    std::vector<std::string> alreadyBack;  // titles of restored changes that others had undone before
    // By tweak, as it is kept for a relaunch: what its keys held just before, whoever had written it, and
    // hold now.
    std::map<std::string, std::string> before, touched;
    bool agentsTouched = false;       // some agent may be in another state than before
    std::vector<std::string> report;  // of a preset, sentences
    std::optional<std::vector<std::string>> recoveryFailures;  // of a recovery, sentences
};

// Where undoing an action leads that restored changes to make others.
enum class LeadsTo { whatItRestored, theOriginals };

// The action that can be undone from now on. Nothing for one that changed nothing.
std::optional<SessionChange> actionOf(const ChangeOutcome& outcome, std::string name,
                                      LeadsTo leadsTo = LeadsTo::whatItRestored);

// The changes that it restored and did not make anew.
std::vector<JournalEntry> undoneBy(const ChangeOutcome& outcome);

std::vector<Uuid> idsOf(const std::vector<JournalEntry>& entries);

// Undoing one of them runs commands.
bool hasAgent(const std::vector<JournalEntry>& entries);

// One step of several: the others are taken all the same.
template <class Step>
void tryStep(std::vector<std::string>& failures, Step step) try {
    step();
} catch (const std::exception& error) {
    failures.push_back(error.what());
}

}  // namespace brell
