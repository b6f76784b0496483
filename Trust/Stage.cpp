#include "Trust/Stage.h"

#include "BrellCore/Journal/Journal.h"
#include "BrellCore/Journal/JournalRebuild.h"

namespace brell::trust {

namespace {

void replaceFolder(const fs::path& from, const fs::path& to) {
    fs::remove_all(to);
    fs::copy(from, to, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
}

// Originals of several kinds for the keys that the scenes change; the sample Mac has the others.
void makePast(const Rig& rig) {
    rig.store->write(false, {"com.apple.finder", "ShowExternalHardDrivesOnDesktop"});
    rig.store->write("L'été $HOME", {"com.apple.finder", "ShowRemovableMediaOnDesktop"});
}

}  // namespace

std::map<std::string, std::string> below(const fs::path& folder, const std::string& name) {
    std::map<std::string, std::string> found;
    for (auto& [path, contents] : testing::everythingIn(folder))
        if (path == name || path.starts_with(name + "/")) found[path.substr(name.size())] = contents;
    return found;
}

Stage::Stage(fs::path folder) : folder_(std::move(folder)) {
    // The restore script asks who its user is.
    testing::setContents(tools() / "id", "#!/bin/sh\necho " + std::to_string(SampleMac::uid) + "\n");
    fs::permissions(tools() / "id", fs::perms::owner_all);
}

void Stage::prepare(const Scene& scene) {
    fs::remove_all(world());
    Rig rig(world());
    makePast(rig);
    setting_.original = conditionOf(world());
    scene.prepare(rig);
    setting_.entries = rig.journal.all();
    // An agent that is loaded no more, because its job file was removed, can't come back.
    const Rig after(world());
    for (const JournalEntry& entry : setting_.entries)
        if (entry.agent && !after.hasJobFile(entry.agent->label)) setting_.original.erase(entry.agent->label);
    setting_.damaged = std::nullopt;
    keep("prepared");
    if (!scene.damage) return;
    damageJournal(scene, rig);
    setting_.damaged = below(journalDirectory(), "journal.json");
}

fs::path Stage::journalDirectory() const {
    return Journal::defaultDirectory(SampleMac(world()).home());
}

bool Stage::hasLeft() const {
    return fs::exists(trashFor(journalDirectory()) / Journal::fileName) &&
           !fs::exists(journalDirectory() / Journal::fileName);
}

bool Stage::isDamagedNow() const {
    if (!setting_.damaged) return false;
    return journalDamage(journalDirectory()) || lackOfChanges(*Journal::open(journalDirectory()));
}

void Stage::keep(const std::string& name) const {
    replaceFolder(world(), folder_ / name);
}

void Stage::show(const std::string& name) const {
    replaceFolder(folder_ / name, world());
}

Ready::Ready(const Stage& stage, const Scene& scene) : Rig((stage.reset(), stage.world())) {
    damageJournal(scene, *this);
}

}  // namespace brell::trust
