#include "CorvaneBrell/Window/SelectableText.h"

#include <QFontDatabase>
#include <QTextBlockFormat>
#include <QTextCursor>
#include <QWheelEvent>
#include <cmath>
#include <memory>

namespace brell {

SelectableText::SelectableText(const QString& name, Look look, QWidget* parent) : QTextEdit(parent) {
    setAccessibleName(name);
    setReadOnly(true);
    setAcceptRichText(false);
    setTabChangesFocus(true);
    setFrameShape(QFrame::NoFrame);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAutoFillBackground(false);
    document()->setDocumentMargin(0);
    if (look == Look::monospace) setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    connect(this, &QTextEdit::textChanged, this, &SelectableText::measureAgain);
}

void SelectableText::setLines(const QStringList& lines) {
    constexpr qreal indent = 18, gap = 2;
    setPlainText(lines.join('\n'));
    QTextBlockFormat format;
    format.setLeftMargin(indent);
    format.setTextIndent(-indent);
    format.setBottomMargin(gap);
    QTextCursor cursor(document());
    cursor.select(QTextCursor::Document);
    cursor.setBlockFormat(format);
}

void SelectableText::measureAgain() {
    heights_.clear();
    updateGeometry();
}

void SelectableText::changeEvent(QEvent* event) {
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) measureAgain();
    QTextEdit::changeEvent(event);
}

int SelectableText::heightForWidth(int width) const {
    if (const auto known = heights_.find(width); known != heights_.end()) return known->second;
    const std::unique_ptr<QTextDocument> copy(document()->clone());
    copy->setTextWidth(width);
    return heights_[width] = static_cast<int>(std::ceil(copy->size().height()));
}

QSize SelectableText::sizeHint() const {
    constexpr int comfortableWidth = 420;
    return {comfortableWidth, heightForWidth(comfortableWidth)};
}

void SelectableText::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

}  // namespace brell
