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
    patience_.setSingleShot(true);
    patience_.setInterval(std::chrono::milliseconds(300));
    connect(&patience_, &QTimer::timeout, this, &QWidget::show);
}

void ReadingLine::setActivity(const std::optional<Activity>& activity) {
    if (!activity) {
        patience_.stop();
        return hide();
    }
    if (isHidden() && !patience_.isActive()) patience_.start();
    const QString what = qt(activity->what);
    words_->setText(activity->total == 0
                        ? tr("%1 …").arg(what)
                        : tr("%1: %2 of %3").arg(what).arg(activity->done).arg(activity->total));
}

}  // namespace brell
