// Everything about the keys of one tweak, when it takes effect, its risk and the way back.
#pragma once

#include <QWidget>

#include "CorvaneBrell/Model/TweakRowState.h"

class QVBoxLayout;

namespace brell {

class TweakDetails final : public QWidget {
    Q_OBJECT
public:
    // Model and tweak must outlive the details.
    TweakDetails(AppModel& model, const Tweak& tweak, QWidget* parent = nullptr);
    // Whether the focus was in what is shown no more.
    bool show(const TweakRowState& state);

private:
    QString terminalCommand() const;
    QWidget* buttons(const TweakRowState& state);
    void fill(const TweakRowState& state);

    AppModel& model_;
    const Tweak& tweak_;
    QVBoxLayout* column_;
    QWidget* shown_ = nullptr;
};

}  // namespace brell
