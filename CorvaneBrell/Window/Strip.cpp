#include "CorvaneBrell/Window/Strip.h"

#include <QAccessible>
#include <QApplication>
#include <QBoxLayout>
#include <QPainter>
#include <QPushButton>
#include <algorithm>

#include "CorvaneBrell/Window/FileActions.h"
#include "CorvaneBrell/Window/Page.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/StripLine.h"
#include "CorvaneBrell/Window/TabOrder.h"
#include "CorvaneBrell/Window/TypeSize.h"

namespace brell {

namespace {

constexpr std::chrono::milliseconds patience{300};
constexpr std::chrono::seconds lookAgain{1};

struct Look {
    QString title;
    QString symbol;
    Tone tone;
};

Look lookOf(NoticeKind kind) {
    switch (kind) {
        case NoticeKind::journal:
        case NoticeKind::damagedJournal:
            return {Strip::tr("The change journal"), "xmark.circle", Tone::critical};
        case NoticeKind::olderJournal:
            return {Strip::tr("Changes are missing from the journal"), "exclamationmark.triangle",
                    Tone::caution};
        case NoticeKind::error:
            return {Strip::tr("Brell could not do that"), "exclamationmark.triangle", Tone::critical};
        case NoticeKind::script:
            return {Strip::tr("The restore script"), "exclamationmark.triangle", Tone::caution};
        case NoticeKind::failedRecovery:
            return {Strip::tr("Brell could not put everything back"), "exclamationmark.triangle",
                    Tone::critical};
        case NoticeKind::incompleteUndo:
            return {Strip::tr("Not everything is as before"), "exclamationmark.triangle", Tone::caution};
        case NoticeKind::failedRelaunch:
            return {Strip::tr("Not everything was relaunched"), "exclamationmark.triangle", Tone::caution};
        case NoticeKind::warning:
            return {Strip::tr("Before a change"), "exclamationmark.triangle", Tone::caution};
        case NoticeKind::interrupted: return {Strip::tr("Interrupted changes"), "bolt.slash", Tone::caution};
        case NoticeKind::macOSUpdate:
            return {Strip::tr("After an update of macOS"), "info.circle", Tone::caution};
        case NoticeKind::relaunch: return {Strip::tr("Relaunch needed"), "arrow.clockwise", Tone::accent};
        case NoticeKind::dryRun: return {Strip::tr("Dry run"), "info.circle", Tone::plain};
        case NoticeKind::activity: return {Strip::tr("What is being done"), "clock", Tone::plain};
        case NoticeKind::done: break;
    }
    return {Strip::tr("What was done"), "checkmark.circle", Tone::positive};
}

// An error says so in words, not only by its symbol.
QString prefixOf(NoticeKind kind) {
    const bool isFailure = kind == NoticeKind::error || kind == NoticeKind::failedRecovery;
    return isFailure ? lookOf(kind).title + ": " : QString();
}

QHBoxLayout* lineIn(QVBoxLayout* column) {
    auto* place = new QWidget;
    place->setFixedHeight(heightFor(5, 25));
    auto* line = new QHBoxLayout(place);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(8);
    column->addWidget(place);
    return line;
}

}  // namespace

Strip::Strip(AppModel& model, QWidget* parent) : QWidget(parent), model_(model), more_(actionButton({})) {
    auto* column = new QVBoxLayout(PageColumn::in(this));
    column->setContentsMargins(PageColumn::margin, 4, PageColumn::margin, 3);
    column->setSpacing(0);
    upper_ = lineIn(column);
    lower_ = lineIn(column);
    upper_->addWidget(more_);
    more_->setMinimumHeight(24);
    more_->setAccessibleDescription(tr("Shows the next of what is told here."));
    more_->hide();
    connect(more_, &QPushButton::clicked, this, [this] {
        ++first_;
        showStanding();
    });
    for (QTimer* timer : {&patience_, &staying_}) timer->setSingleShot(true);
    connect(&patience_, &QTimer::timeout, this, &Strip::showPassing);
    connect(&staying_, &QTimer::timeout, this, &Strip::forgetWhatWasDone);
}

StripLine* Strip::line(NoticeKind kind) {
    StripLine*& known = lines_[kind];
    if (known) return known;
    const Look look = lookOf(kind);
    known = new StripLine(look.title, look.symbol, look.tone);
    addActions(*known, kind);
    return known;
}

void Strip::addActions(StripLine& line, NoticeKind kind) {
    switch (kind) {
        case NoticeKind::damagedJournal:
        case NoticeKind::olderJournal:
            line.addAction(tr("Rebuild from History..."), [this] { model_.askRebuild(); });
            [[fallthrough]];
        case NoticeKind::journal:
            line.addAction(tr("Show in Finder"), [this] { FileActions::showJournalFolder(model_); });
            line.addAction(tr("Show Restore Script"),
                           [this] { FileActions::showRestoreScript(model_, this); });
            return;
        case NoticeKind::error: return line.addDismissal([this] { model_.dismiss(&AppState::errorMessage); });
        case NoticeKind::script: return line.addDismissal([this] { model_.dismiss(&AppState::scriptNews); });
        case NoticeKind::incompleteUndo:
        case NoticeKind::failedRelaunch: return line.addDismissal([this] { dismiss(); });
        case NoticeKind::failedRecovery:
        case NoticeKind::interrupted:
            recover_.push_back(line.addAction(tr("Restore"), [this] { model_.askRecovery(); }));
            return;
        case NoticeKind::macOSUpdate:
            line.addAction(tr("Review..."), [this] { model_.show(Screen::journal); });
            line.addAction(tr("Nothing to Do"), [this] { model_.dismissUpdate(); });
            return;
        case NoticeKind::relaunch:
            line.addAction(tr("Relaunch..."), [this] { model_.askRelaunch(); });
            return;
        case NoticeKind::done:
            return line.addDismissal([this] {
                told_.reset();
                showPassing();
            });
        case NoticeKind::warning:
        case NoticeKind::dryRun:
        case NoticeKind::activity: return;
    }
}

void Strip::dismiss() {
    if (!notices_.empty()) dismissed_.push_back(notices_[first_ % notices_.size()]);
    refresh();
}

void Strip::refresh() {
    const AppState& state = model_.state();
    hearNews();
    std::vector<Notice> standing = standingNotices(state, model_.catalog(), model_.whyNothingReal());
    std::erase_if(dismissed_, [&](const Notice& one) {
        return std::find(standing.begin(), standing.end(), one) == standing.end();
    });
    std::erase_if(standing, [&](const Notice& one) {
        return std::find(dismissed_.begin(), dismissed_.end(), one) != dismissed_.end();
    });
    if (standing != notices_) {
        notices_ = std::move(standing);
        first_ = 0;
    }
    showStanding();
    // Progress takes no new patience; the look at everything that follows a change does.
    const bool isBusy = activityOf(state).has_value();
    const bool begins = isBusy && (!wasBusy_ || changeIsUnderWay_ != state.changeActivity.has_value());
    if (begins) patience_.start(patience);
    if (!isBusy) patience_.stop();
    wasBusy_ = isBusy;
    changeIsUnderWay_ = state.changeActivity.has_value();
    showPassing();
}

// A notice after another change is news, even in the same words.
void Strip::hearNews() {
    const AppState& state = model_.state();
    const std::vector<Notice> done = doneNotices(state);
    const bool isFinished = changeIsUnderWay_ && !state.changeActivity;
    if (isFinished)
        std::erase_if(dismissed_, [](const Notice& one) { return one.kind == NoticeKind::incompleteUndo; });
    for (const Notice& notice : done) {
        const bool isKnown = std::find(done_.begin(), done_.end(), notice) != done_.end();
        const bool isProof = state.undoProof && state.undoProof->words == notice.words;
        if (isKnown && !(isFinished && isProof)) continue;
        told_ = notice;
        staying_.start(stay_);
    }
    if (told_ && std::find(done.begin(), done.end(), *told_) == done.end()) told_.reset();
    done_ = done;
}

// Not while the pointer or the focus is on it.
void Strip::forgetWhatWasDone() {
    if (passing_ && (passing_->underMouse() || passing_->isAncestorOf(QApplication::focusWidget())))
        return staying_.start(lookAgain);
    told_.reset();
    showPassing();
}

void Strip::showStanding() {
    const bool none = notices_.empty();
    put(upper_, standing_, none ? nullptr : &notices_[first_ % notices_.size()]);
    more_->setVisible(notices_.size() > 1);
    setActionText(more_, tr("%1 more").arg(notices_.size() - !none));
    for (QPushButton* button : recover_)
        button->setEnabled(!model_.state().changeActivity && !isLocked(model_.state()));
}

void Strip::showPassing() {
    const std::optional<Activity> activity = activityOf(model_.state());
    if (activity && !patience_.isActive()) {
        const Notice notice{NoticeKind::activity, activityText(*activity)};
        return put(lower_, passing_, &notice);
    }
    put(lower_, passing_, told_ ? &*told_ : nullptr);
}

void Strip::put(QHBoxLayout* place, StripLine*& shown, const Notice* notice) {
    StripLine* wanted = notice ? line(notice->kind) : nullptr;
    const bool isNews = wanted && (wanted != shown || qt(notice->words) != wanted->words());
    if (isNews) wanted->setWords(qt(notice->words), prefixOf(notice->kind));
    if (shown != wanted) {
        const bool hadFocus = shown && shown->isAncestorOf(QApplication::focusWidget());
        if (wanted) {
            place->insertWidget(0, wanted, 1);
            wanted->show();
        }
        if (shown) shown->hide();
        shown = wanted;
        QWidget* next = hadFocus ? firstControl(this) : nullptr;
        if (next) next->setFocus(Qt::OtherFocusReason);
    }
    if (isNews && notice->kind != NoticeKind::activity) {
        QAccessibleEvent event(wanted, QAccessible::Alert);
        QAccessible::updateAccessibility(&event);
    }
}

void Strip::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(Appearance::hairline(palette()));
    painter.drawLine(0, 0, width(), 0);
}

}  // namespace brell
