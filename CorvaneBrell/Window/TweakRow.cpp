#include "CorvaneBrell/Window/TweakRow.h"

#include "CorvaneBrell/Model/ValueWords.h"
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

std::optional<RowBadge> badgeOf(const TweakRowState& state) {
    if (!state.badge) return std::nullopt;
    return RowBadge{qt(state.badge->text), qt(state.badge->symbol), toneOf(state.badge->weight),
                    qt(state.badge->help)};
}

// The folder that is stored, and why nothing can be changed.
std::vector<RowBadge> noticesOf(const Tweak& tweak, const TweakRowState& state) {
    std::vector<RowBadge> notices;
    if (std::holds_alternative<FolderKind>(tweak.kind))
        notices.push_back({qt(state.now), "folder", Tone::plain, {}});
    if (!state.reason.empty()) notices.push_back({qt(state.reason), "info.circle", Tone::plain, {}});
    return notices;
}

}  // namespace

TweakRow::TweakRow(AppModel& model, const Tweak& tweak, QWidget* parent)
    : Row(qt(tweak.title), Columns::stateAndControl, parent),
      model_(model),
      tweak_(tweak),
      control_(makeTweakControl(model, tweak)),
      state_(tweakRowState(model, tweak)) {
    setObjectName(qt(tweak.id));
    setWhat(qt(tweak.explanation.what));
    setNotes(qt(noteWords(tweak)));
    setDetails([this]() -> QWidget* {
        opened_ = new TweakDetails(model_, tweak_);
        opened_->show(state_);
        return opened_;
    });
    setControl(control_.widget);
    connect(this, &Row::wayBackAsked, this, [this] { model_.restore(tweak_.id); });
    showState();
}

void TweakRow::refresh() {
    TweakRowState now = tweakRowState(model_, tweak_);
    if (now == state_) return control_.show(state_);  // what the user just asked for may have been refused
    state_ = std::move(now);
    showState();
    if (opened_ && opened_->show(state_)) focusArrow();
}

void TweakRow::showAsResult(const QStringList& words) {
    QStringList notes{qt(brell::title(screenOf(tweak_.group)))};
    if (const QString own = qt(noteWords(tweak_)); !own.isEmpty()) notes << own;
    const QString text = ' ' + title() + ' ' + qt(tweak_.explanation.what);
    for (const QString& other : qt(tweak_.searchWords).split(' ', Qt::SkipEmptyParts))
        for (const QString& word : words)
            if (other.startsWith(word, Qt::CaseInsensitive) &&
                !text.contains(' ' + word, Qt::CaseInsensitive))
                notes << tr("also “%1”").arg(other);
    notes.removeDuplicates();
    setNotes(notes.join(" · "));
    mark(words);
}

void TweakRow::showState() {
    setBadge(badgeOf(state_));
    setNotices(noticesOf(tweak_, state_));
    if (state_.undo)
        setWayBack(RowWayBack{qt(state_.undo->leadsTo), state_.canUndo});
    else
        setWayBack(std::nullopt);
    control_.show(state_);
}

}  // namespace brell
