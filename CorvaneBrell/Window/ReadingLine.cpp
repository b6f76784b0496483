#include "CorvaneBrell/Window/ReadingLine.h"

#include <QHBoxLayout>

#include "CorvaneBrell/Window/QtText.h"
#include "CorvaneBrell/Window/Symbol.h"

namespace brell {

ReadingLine::ReadingLine(QWidget* parent)
    : QWidget(parent), words_(new Paragraph({}, Paragraph::Look::secondary)) {
    auto* line = new QHBoxLayout(this);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(6);
    line->addWidget(new SymbolView("clock", Tone::plain, 15));
    line->addWidget(words_, 1);
    hide();
}

void ReadingLine::setActivity(const std::optional<Activity>& activity) {
    setVisible(activity.has_value());
    if (!activity) return;
    const QString what = qt(activity->what);
    words_->setText(activity->total == 0
                        ? tr("%1 …").arg(what)
                        : tr("%1: %2 of %3").arg(what).arg(activity->done).arg(activity->total));
}

}  // namespace brell
