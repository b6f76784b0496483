// The row of one tweak: its switch, list or folder, and everything about its keys below.
#pragma once

#include "CorvaneBrell/Model/TweakRowState.h"
#include "CorvaneBrell/Window/Row.h"
#include "CorvaneBrell/Window/TweakControls.h"

namespace brell {

class TweakDetails;

class TweakRow final : public Row {
    Q_OBJECT
public:
    // Model and tweak must outlive the row.
    TweakRow(AppModel& model, const Tweak& tweak, QWidget* parent = nullptr);

    // Shows what the model says now.
    void refresh();
    const Tweak& tweak() const { return tweak_; }
    // Among the results of a search: the page it stands on, and what was looked for.
    void showAsResult(const QStringList& words);

private:
    void showState();

    AppModel& model_;
    const Tweak& tweak_;
    TweakControl control_;
    TweakRowState state_;
    TweakDetails* opened_ = nullptr;
};

}  // namespace brell
