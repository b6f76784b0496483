#include "CorvaneBrell/Window/NoticeBars.h"

#include <QVBoxLayout>
#include <algorithm>
#include <functional>

#include "BrellCore/Support/Text.h"
#include "CorvaneBrell/Model/NoticeText.h"
#include "CorvaneBrell/Window/NoticeBar.h"
#include "CorvaneBrell/Window/QtText.h"

namespace brell {

namespace {

constexpr std::chrono::milliseconds patience{300};

QString words(const std::optional<std::string>& text) {
    return text ? qt(*text) : QString();
}

const std::optional<Activity>& activityOf(const AppState& state) {
    if (state.changeActivity) return state.changeActivity;
    return state.relaunchActivity ? state.relaunchActivity : state.fileActivity;
}

}  // namespace

NoticeBars::NoticeBars(AppModel& model, QWidget* parent) : QWidget(parent), model_(model) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(16, 10, 16, 2);
    column->setSpacing(8);
    addBars();
    patience_.setSingleShot(true);
    connect(&patience_, &QTimer::timeout, this, [this] { refresh(); });
    hide();
}

NoticeBar* NoticeBars::added(NoticeBar* bar) {
    layout()->addWidget(bar);
    bars_.push_back(bar);
    return bar;
}

QPushButton* NoticeBars::addDismissal(NoticeBar* bar, std::function<void()> dismiss) {
    QPushButton* button = bar->addAction(tr("Dismiss"));
    connect(button, &QPushButton::clicked, this, [dismiss = std::move(dismiss)] { dismiss(); });
    return button;
}

void NoticeBars::addBars() {
    startupError_ = added(new NoticeBar(tr("Journal problem"), "xmark.circle", Tone::critical));
    safety_ = added(new NoticeBar(tr("Before a change"), "exclamationmark.triangle", Tone::caution));
    dryRun_ = added(new NoticeBar(tr("Dry run"), "info.circle", Tone::plain));
    interrupted_ = added(new NoticeBar(tr("Interrupted changes"), "bolt.slash", Tone::caution));
    recover_ = interrupted_->addAction(tr("Restore"));
    connect(recover_, &QPushButton::clicked, this, [this] { model_.recover(); });
    recoveryFailures_ =
        added(new NoticeBar(tr("Failed recovery"), "exclamationmark.triangle", Tone::critical));
    recoveryFailures_->setHeading(tr("Brell could not put everything back"));
    error_ = added(new NoticeBar(tr("Last error"), "exclamationmark.triangle", Tone::critical));
    error_->setHeading(tr("Brell could not do that"));
    addDismissal(error_, [this] { model_.dismissError(); });
    relaunch_ = added(new NoticeBar(tr("Relaunch needed"), "arrow.clockwise", Tone::accent));
    connect(relaunch_->addAction(tr("Relaunch...")), &QPushButton::clicked, this,
            [this] { model_.askRelaunch(); });
    relaunchReport_ = added(new NoticeBar(tr("Relaunch report"), "info.circle", Tone::plain));
    addDismissal(relaunchReport_, [this] {
        readReport_ = model_.state().relaunchReport;
        refresh();
    });
    activity_ = added(new NoticeBar(tr("What is being done"), "clock", Tone::plain));
    proof_ = added(new NoticeBar(tr("Proof of the undo"), "checkmark.circle", Tone::positive));
    incompleteProof_ = added(new NoticeBar(tr("Incomplete undo"), "exclamationmark.triangle", Tone::caution));
    for (NoticeBar* proof : {proof_, incompleteProof_})
        addDismissal(proof, [this] {
            readProof_ = model_.state().undoProof;
            refresh();
        });
}

void NoticeBars::refresh() {
    refreshErrors();
    refreshRelaunch();
    refreshActivity();
    refreshProof();
    setVisible(std::any_of(bars_.begin(), bars_.end(), [](NoticeBar* bar) { return !bar->isHidden(); }));
}

void NoticeBars::refreshErrors() {
    const AppState& state = model_.state();
    startupError_->setWords(words(state.startupError));
    safety_->setWords(qt(state.safetyWarnings).join('\n'));
    dryRun_->setWords(state.startupError ? QString() : words(model_.whyNothingReal()));
    interrupted_->setWords(qt(interruptedText(state)));
    recover_->setEnabled(!state.changeActivity && !state.startupError);
    recoveryFailures_->setWords(qt(firstOf(state.recoveryFailures, "\n")));
    error_->setWords(words(state.errorMessage));
}

void NoticeBars::refreshRelaunch() {
    const AppState& state = model_.state();
    const bool isUnderWay = state.relaunchActivity.has_value();
    relaunch_->setWords(isUnderWay ? QString() : qt(relaunchText(state, model_.catalog())));
    if (state.relaunchReport != readReport_) readReport_.reset();
    relaunchReport_->setWords(readReport_ ? QString() : words(state.relaunchReport));
}

// Progress takes no new patience; the look at everything that follows a change does.
void NoticeBars::refreshActivity() {
    const std::optional<Activity>& activity = activityOf(model_.state());
    if (!activity)
        patience_.stop();
    else if (waitedFor_ != &activity)
        patience_.start(patience);
    waitedFor_ = activity ? &activity : nullptr;
    activity_->setWords(activity && !patience_.isActive() ? qt(activityText(*activity)) : QString());
}

void NoticeBars::refreshProof() {
    const AppState& state = model_.state();
    // What comes after another change is news, even in the same words.
    if (state.changeActivity) isProofOld_ = true;
    if (state.undoProof != readProof_ || (isProofOld_ && !state.changeActivity)) readProof_.reset();
    if (!state.changeActivity) isProofOld_ = false;
    const bool isShown = state.undoProof && !readProof_;
    const QString text = isShown ? qt(state.undoProof->words) : QString();
    const bool isComplete = isShown && state.undoProof->isComplete;
    proof_->setWords(isComplete ? text : QString());
    incompleteProof_->setWords(isComplete ? QString() : text);
}

}  // namespace brell
