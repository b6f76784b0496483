// One thread of a program among many: does, in random order, what windows, scripts and users do.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "Trust/Diary.h"
#include "Trust/Rig.h"

namespace brell::trust {

class Worker {
public:
    // Threads may share the rig and the diary. The same seed gives the same order of deeds.
    Worker(Rig& rig, Diary& diary, std::uint64_t seed) : rig_(rig), diary_(diary), random_(seed) {}

    void workUntil(std::chrono::steady_clock::time_point end);

private:
    struct Deed;
    static const std::vector<Deed>& deeds();
    const Deed& chooseDeed();
    void perform(const Deed& deed);

    void apply();
    void turnOff();
    void restoreOne();
    void restoreAll();
    void recover();
    void switchAgent();
    void applyPreset();
    void readStatus();
    void readReport();
    void readJournal();
    void readHistory();
    void writeScript();

    std::size_t below(std::size_t limit) { return static_cast<std::size_t>(random_() % limit); }
    bool coin() { return below(2) == 0; }
    const Tweak& anyTweak();
    void keepInMind(const JournalEntry& entry);
    void report(const RestoreAllOutcome& outcome);
    void refused(const std::string& sentence, bool mayHappen);

    Rig& rig_;
    Diary& diary_;
    std::mt19937_64 random_;
    std::string_view deed_;             // under way
    std::map<Uuid, EntryStatus> told_;  // of the entries that this worker was told of
    std::size_t linesSeen_ = 0;         // of the history
};

}  // namespace brell::trust
