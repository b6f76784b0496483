#include "CorvaneBrell/Window/TweakRow.h"

#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/TweakDetails.h"

namespace brell {

namespace {

Tone toneOf(StateBadge::Weight weight) {
    switch (weight) {
        case StateBadge::Weight::plain: return Tone::plain;
        case StateBadge::Weight::good: return Tone::positive;
        case StateBadge::Weight::attention: return Tone::caution;
    }
    return Tone::plain;
}

std::vector<RowBadge> badgesOf(const TweakRowState& state) {
    if (!state.badge) return {};
    return {
        {qt(state.badge->text), qt(state.badge->symbol), toneOf(state.badge->weight), qt(state.badge->help)}};
}

}  // namespace

TweakRow::TweakRow(AppModel& model, const Tweak& tweak, QWidget* parent)
    : Row(qt(tweak.title), parent),
      model_(model),
      tweak_(tweak),
      control_(makeTweakControl(model, tweak)),
      state_(tweakRowState(model, tweak)) {
    setObjectName(qt(tweak.id));
    setWhat(qt(tweak.explanation.what));
    setDetails([this]() -> QWidget* {
        opened_ = new TweakDetails(model_, tweak_);
        opened_->show(state_);
        return opened_;
    });
    setControl(control_.widget);
    showState();
}

void TweakRow::refresh() {
    TweakRowState now = tweakRowState(model_, tweak_);
    if (now == state_) return control_.show(state_);  // what the user just asked for may have been refused
    state_ = std::move(now);
    showState();
    if (opened_ && opened_->show(state_)) focusArrow();
}

void TweakRow::showState() {
    setBadges(badgesOf(state_));
    setNotice(qt(state_.reason));
    control_.show(state_);
}

}  // namespace brell
