// The operations that are tried, each with what went before it.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Trust/Rig.h"

namespace brell::trust {

struct Scene {
    std::string name;
    std::function<void(Rig&)> prepare;
    // Gives the sentences in which the operation reports failures of single entries; raises its other errors.
    std::function<std::vector<std::string>(Rig&)> perform;
    // Does something to the journal of a running program, just before; nothing where none is given.
    std::function<void(const std::filesystem::path& journal)> damage = nullptr;
};

// To be called before the operation, and before anything watches it.
void damageJournal(const Scene& scene, const Rig& rig);

// Gives the sentences in which it says what it could not do; raises JournalError.
std::vector<std::string> rebuildFromHistory(const std::filesystem::path& journalDirectory);

// Where leaving moves the journal's folder. In one folder with it: a renaming is done or not, wherever to.
std::filesystem::path trashFor(const std::filesystem::path& journalDirectory);

const std::vector<Scene>& scenes();

}  // namespace brell::trust
