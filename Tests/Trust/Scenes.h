// The operations that are tried, each with what went before it.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Tests/Trust/Rig.h"

namespace brell::trust {

struct Scene {
    std::string name;
    std::function<void(Rig&)> prepare;
    // Gives the sentences in which the operation reports failures of single entries; raises its other errors.
    std::function<std::vector<std::string>(Rig&)> perform;
};

const std::vector<Scene>& scenes();

}  // namespace brell::trust
