// Everything there is to see of the window: every page, a search, open details, the bars and every sheet.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "CorvaneBrell/Window/MainWindow.h"

namespace brell {

// Each begins where the one before it ended. Between the two a picture is taken.
struct Scene {
    std::string name;
    std::function<void(MainWindow&)> begin;
    std::function<void(MainWindow&)> end;
};

// For a sample Mac with a past. Each begin with a window opened anew, after those before; the third are for
// one whose journal was damaged meanwhile.
std::vector<Scene> scenesOfTrouble();
std::vector<Scene> everydayScenes();
std::vector<Scene> scenesOfDamage();
std::vector<Scene> scenesOfLeaving();

// Lets the window work until nothing is under way any more.
void settle(MainWindow& window);

}  // namespace brell
