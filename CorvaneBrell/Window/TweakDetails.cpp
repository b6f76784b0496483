#include "CorvaneBrell/Window/TweakDetails.h"

#include <QPushButton>
#include <QVBoxLayout>

#include "CorvaneBrell/Model/TerminalCommands.h"
#include "CorvaneBrell/Window/CopyButton.h"
#include "CorvaneBrell/Window/Disclosure.h"
#include "CorvaneBrell/Window/FactList.h"
#include "CorvaneBrell/Window/FlowLayout.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/Row.h"

namespace brell {

namespace {

QString withType(const std::optional<StoredValue>& value) {
    if (!value) return QWidget::tr("not read");
    return value->value ? qt(value->rendered() + " (" + std::string(value->value->typeName()) + ")")
                        : QWidget::tr("not set");
}

FactList* factsOf(const KeyFacts& key) {
    auto* facts = new FactList;
    facts->add(QWidget::tr("Domain"), qt(key.key.domain));
    facts->add(QWidget::tr("Key"), qt(key.key.name));
    facts->add(QWidget::tr("Type"), qt(key.type));
    facts->add(QWidget::tr("Stored now"), withType(key.stored));
    facts->add(QWidget::tr("Seen by apps"), withType(key.seenByApps));
    facts->add(QWidget::tr("Would be written"), withType(StoredValue(key.target)));
    if (key.original) facts->add(QWidget::tr("Original"), withType(key.original));
    return facts;
}

QString renderedKeys(const Tweak& tweak) {
    QStringList lines;
    for (const Write& write : tweak.writes) lines << qt(write.key.domain + " " + write.key.name);
    return lines.join('\n');
}

// The catalog's sentence is about changes that found nothing, or that a switch or a folder undoes.
QString undoText(const Tweak& tweak, const std::optional<RowUndo>& undo) {
    if (!std::holds_alternative<ChoiceKind>(tweak.kind) || !undo || !undo->leadsToAValue)
        return qt(tweak.explanation.undo);
    return QWidget::tr(
        "Press the arrow in the row, or choose “As before Brell” at the end of the list: Brell writes "
        "the original value it saved back. “macOS default” removes it instead.");
}

QVBoxLayout* columnOf(QWidget* widget, int spacing) {
    auto* column = new QVBoxLayout(widget);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(spacing);
    return column;
}

}  // namespace

TweakDetails::TweakDetails(AppModel& model, const Tweak& tweak, QWidget* parent)
    : QWidget(parent), model_(model), tweak_(tweak), column_(columnOf(this, 0)) {}

bool TweakDetails::show(const TweakRowState& state) {
    const bool hadFocus = shown_ && shown_->isAncestorOf(focusWidget() ? focusWidget() : this);
    const bool wasOpen = forExperts_ && forExperts_->isOpen();
    if (shown_) {
        shown_->hide();
        shown_->deleteLater();  // its button may be what was clicked
    }
    shown_ = new QWidget;
    auto* column = columnOf(shown_, 8);
    column->addWidget(plainFacts(state));
    if (state.undo && state.undo->otherMacOS)
        column->addWidget(symbolLine("info.circle", Tone::plain, qt(*state.undo->otherMacOS), shown_));
    forExperts_ = new Disclosure(tr("For experts"), qt(tweak_.title),
                                 [this, facts = state.keys] { return keys(facts); });
    forExperts_->setOpen(wasOpen);
    column->addWidget(forExperts_);
    column_->addWidget(shown_);
    return hadFocus;
}

QWidget* TweakDetails::plainFacts(const TweakRowState& state) const {
    auto* facts = new FactList;
    facts->add(tr("Now"), qt(state.now));
    if (state.undo) facts->add(tr("Before Brell"), qt(state.undo->leadsTo));
    facts->add(tr("Takes effect"), qt(tweak_.explanation.takesEffect));
    facts->add(tr("Risk"), qt(tweak_.explanation.risk));
    facts->add(tr("Undo"), undoText(tweak_, state.undo));
    facts->add(tr("Tried"), qt(state.confirmed));
    return facts;
}

QWidget* TweakDetails::keys(const std::vector<KeyFacts>& keys) const {
    auto* holder = new QWidget;
    auto* column = columnOf(holder, 12);
    auto* all = new FactList;
    all->add(tr("Writes"), qt(tweak_.explanation.value));
    column->addWidget(all);
    for (const KeyFacts& key : keys) column->addWidget(factsOf(key));
    column->addWidget(buttons());
    return holder;
}

// The writes that are active now, or else those that turning it on would make.
QString TweakDetails::terminalCommand() const {
    std::vector<JournalEntry> active;
    for (const JournalEntry& entry : model_.state().entries)
        if (entry.isActive() && entry.tweakID == tweak_.id) active.push_back(entry);
    return qt(active.empty() ? commandsMaking(tweak_) : commandsMaking(active, model_.catalog()));
}

QWidget* TweakDetails::buttons() const {
    auto* holder = new QWidget;
    auto* line = new FlowLayout(8);
    holder->setLayout(line);
    const QString title = qt(tweak_.title);
    line->addWidget(copyButton(tr("Copy Key"), title, [this] { return renderedKeys(tweak_); }));
    auto* copyCommand = copyButton(tr("Copy Terminal Command"), title, [this] { return terminalCommand(); });
    copyCommand->setToolTip(tr("For zsh and bash."));
    line->addWidget(copyCommand);
    return holder;
}

}  // namespace brell
