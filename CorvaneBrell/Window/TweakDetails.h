// The knowledge about a tweak: first in plain words, then, for experts, everything about its keys.
#pragma once

#include <QWidget>

#include "CorvaneBrell/Model/TweakRowState.h"

class QVBoxLayout;

namespace brell {

class Disclosure;

class TweakDetails final : public QWidget {
    Q_OBJECT
public:
    // Model and tweak must outlive the details.
    TweakDetails(AppModel& model, const Tweak& tweak, QWidget* parent = nullptr);
    // True when the focus was in a part that is shown no more.
    bool show(const TweakRowState& state);

private:
    QString terminalCommand() const;
    QWidget* plainFacts(const TweakRowState& state) const;
    QWidget* keys(const std::vector<KeyFacts>& keys) const;
    QWidget* buttons() const;

    AppModel& model_;
    const Tweak& tweak_;
    QVBoxLayout* column_;
    QWidget* shown_ = nullptr;
    Disclosure* forExperts_ = nullptr;
};

}  // namespace brell
