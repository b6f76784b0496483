#include "CorvaneBrell/Window/TweakDetails.h"

#include <QPushButton>
#include <QVBoxLayout>

#include "CorvaneBrell/Model/TerminalCommands.h"
#include "CorvaneBrell/Window/CopyButton.h"
#include "CorvaneBrell/Window/FactList.h"
#include "CorvaneBrell/Window/FlowLayout.h"
#include "CorvaneBrell/Window/Page.h"
#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/Row.h"
#include "CorvaneBrell/Window/SelectableText.h"

namespace brell {

namespace {

constexpr std::size_t longestButtonText = 40;

QString shown(const std::optional<StoredValue>& value) {
    return value ? qt(value->rendered()) : QWidget::tr("not read");
}

QString withType(const std::optional<StoredValue>& value) {
    const QString text = shown(value);
    return value && value->value ? text + " (" + qt(value->value->typeName()) + ")" : text;
}

QWidget* keyView(const KeyFacts& key) {
    auto* holder = new QWidget;
    auto* column = new QVBoxLayout(holder);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(5);
    auto* name = new SelectableText(QWidget::tr("Domain and key"), SelectableText::Look::monospace);
    name->setPlainText(qt(key.key.domain) + "  " + qt(key.key.name));
    column->addWidget(name);
    auto* facts = new FactList;
    facts->add(QWidget::tr("Stored now"), withType(key.stored));
    facts->add(QWidget::tr("Seen by apps"), shown(key.seenByApps));
    facts->add(QWidget::tr("On would write"), qt(key.target.rendered() + " (" + key.type + ")"));
    if (key.original) facts->add(QWidget::tr("Original"), shown(key.original));
    column->addWidget(facts);
    return holder;
}

QString renderedKeys(const Tweak& tweak) {
    QStringList lines;
    for (const Write& write : tweak.writes) lines << qt(write.key.domain + " " + write.key.name);
    return lines.join('\n');
}

}  // namespace

TweakDetails::TweakDetails(AppModel& model, const Tweak& tweak, QWidget* parent)
    : QWidget(parent), model_(model), tweak_(tweak), column_(new QVBoxLayout(this)) {
    column_->setContentsMargins(0, 2, 40, 4);
}

bool TweakDetails::show(const TweakRowState& state) {
    const bool hadFocus = shown_ && shown_->isAncestorOf(focusWidget() ? focusWidget() : this);
    if (shown_) {
        shown_->hide();
        shown_->deleteLater();  // its button may be what was clicked
    }
    fill(state);
    return hadFocus;
}

void TweakDetails::fill(const TweakRowState& state) {
    shown_ = new QWidget;
    auto* column = new QVBoxLayout(shown_);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(10);
    for (const KeyFacts& key : state.keys) column->addWidget(keyView(key));
    auto* facts = new FactList;
    facts->add(tr("Takes effect"), qt(tweak_.explanation.takesEffect));
    facts->add(tr("Risk"), qt(tweak_.explanation.risk));
    facts->add(tr("Undo"), qt(tweak_.explanation.undo));
    facts->add(tr("Tried"), qt(state.confirmed));
    column->addWidget(facts);
    if (state.undo && state.undo->otherMacOS)
        column->addWidget(symbolLine("info.circle", Tone::plain, qt(*state.undo->otherMacOS), shown_));
    column->addWidget(buttons(state));
    column_->addWidget(shown_);
}

// What is active now, or else what turning it on would do.
QString TweakDetails::terminalCommand() const {
    std::vector<JournalEntry> active;
    for (const JournalEntry& entry : model_.state().entries)
        if (entry.isActive() && entry.tweakID == tweak_.id) active.push_back(entry);
    return qt(active.empty() ? commandsMaking(tweak_) : commandsMaking(active, model_.catalog()));
}

QWidget* TweakDetails::buttons(const TweakRowState& state) {
    auto* holder = new QWidget;
    auto* rows = new QVBoxLayout(holder);
    rows->setContentsMargins(0, 0, 0, 0);
    auto* line = new FlowLayout(8);
    const QString title = qt(tweak_.title);
    line->addWidget(copyButton(tr("Copy Key"), title, [this] { return renderedKeys(tweak_); }));
    line->addWidget(copyButton(tr("Copy Terminal Command"), title, [this] { return terminalCommand(); }));
    if (const auto& undo = state.undo) {
        const bool isShort = undo->leadsTo.size() <= longestButtonText;
        auto* restore =
            actionButton(isShort ? tr("Restore: back to %1").arg(label(qt(undo->leadsTo))) : tr("Restore"),
                         "arrow.uturn.backward");
        restore->setAccessibleName(tr("Restore %1: back to %2").arg(title, qt(undo->leadsTo)));
        restore->setEnabled(!model_.state().startupError);
        connect(restore, &QPushButton::clicked, this, [this, id = undo->entry] { model_.askRestore(id); });
        line->addWidget(restore);
        if (!isShort)
            rows->addWidget(new Paragraph(tr("Restoring leads back to: %1").arg(qt(undo->leadsTo))));
    }
    rows->addLayout(line);
    return holder;
}

}  // namespace brell
