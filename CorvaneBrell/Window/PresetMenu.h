// The presets that come with Brell, and those in files.
#pragma once

#include <QMenu>

#include "CorvaneBrell/Model/AppModel.h"

namespace brell {

class PresetMenu final : public QMenu {
    Q_OBJECT
public:
    explicit PresetMenu(AppModel& model, QWidget* parent = nullptr);
};

// Ask for a file, then show what the preset in it would change, or write into it a preset or what is active
// now. The dialogs belong to the window; nothing here waits.
void importPreset(AppModel& model, QWidget* window);
void exportPreset(AppModel& model, QWidget* window, const Preset& preset);
void exportActivePreset(AppModel& model, QWidget* window);

}  // namespace brell
