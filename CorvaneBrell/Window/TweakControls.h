// The controls of tweak rows, one for each kind of tweak: they show the row's state and pass the user's wish
// on to the model.
#pragma once

#include <functional>

#include "CorvaneBrell/Model/TweakRowState.h"

class QWidget;

namespace brell {

struct TweakControl {
    QWidget* widget;
    std::function<void(const TweakRowState&)> show;
};

// Model and tweak must outlive the control.
TweakControl makeTweakControl(AppModel& model, const Tweak& tweak);

}  // namespace brell
