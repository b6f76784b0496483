#include "Trust/OneWay.h"

namespace brell::trust {

OneWay::OneWay(Rig& rig) : CallObserver(rig.mac.preferences()), mac_(rig.mac) {
    for (const JournalEntry& entry : rig.journal.active())
        for (const JournaledWrite& write : entry.writes)
            if (write.original != write.written) writes_.push_back(write);
    start();
}

int OneWay::sees(testing::SystemCall call, const std::string&) {
    if (call == testing::SystemCall::rename) look();
    return 0;
}

void OneWay::look() {
    const auto store = mac_.openPreferences();
    for (const JournaledWrite& write : writes_) {
        const StoredValue now = store->exactValue(write.key);
        if (now == write.original)
            back_.insert(write.key);
        else if (back_.contains(write.key))
            faults_.push_back(write.key.rendered() + " was back and then became " + now.rendered());
    }
}

Faults OneWay::found() {
    look();
    return faults_;
}

}  // namespace brell::trust
