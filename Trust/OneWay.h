// Watches that an undo goes one way only: a key that has come back to its original stays there.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "Tests/Support/SystemCalls.h"
#include "Trust/Verdict.h"

namespace brell::trust {

// Looks, as long as it lives, at the keys of the changes that are active when it is made: each time before a
// preference file is replaced.
class OneWay final : testing::CallObserver {
public:
    explicit OneWay(Rig& rig);
    ~OneWay() override { stop(); }

    Faults found();  // after one more look

private:
    int sees(testing::SystemCall call, const std::string& path) override;
    void look();

    const SampleMac mac_;
    std::vector<JournaledWrite> writes_;
    std::set<PrefKey> back_;
    Faults faults_;
};

}  // namespace brell::trust
