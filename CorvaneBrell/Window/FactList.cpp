#include "CorvaneBrell/Window/FactList.h"

#include "BrellCore/Support/Text.h"
#include "CorvaneBrell/Window/CopyButton.h"
#include "CorvaneBrell/Window/Paragraph.h"
#include "CorvaneBrell/Window/QtText.h"

namespace brell {

FactList::FactList(QWidget* parent) : QWidget(parent), grid_(new QGridLayout(this)) {
    grid_->setContentsMargins(0, 0, 0, 0);
    grid_->setHorizontalSpacing(14);
    grid_->setVerticalSpacing(5);
    grid_->setColumnMinimumWidth(0, 110);
    grid_->setColumnStretch(1, 1);
}

void FactList::add(const QString& name, const QString& text) {
    if (text.isEmpty()) return;
    const int row = grid_->rowCount();
    grid_->addWidget(new Paragraph(name, Paragraph::Look::secondary), row, 0, Qt::AlignTop);
    const QString shown = qt(excerpt(utf8(text), mostOfASentence));
    grid_->addWidget(new Paragraph(shown, Paragraph::Look::body), row, 1);
    if (shown != text)
        grid_->addWidget(copyButton(tr("Copy"), name, [text] { return text; }), row, 2, Qt::AlignTop);
}

}  // namespace brell
