#include "CorvaneBrell/Window/SearchField.h"

#include <QAction>

#include "CorvaneBrell/Window/Symbol.h"

namespace brell {

QLineEdit* searchField(const QString& placeholder, const QString& name) {
    auto* field = new QLineEdit;
    field->setPlaceholderText(placeholder);
    field->setAccessibleName(name);
    field->setClearButtonEnabled(true);
    field->addAction(symbolIcon("magnifyingglass"), QLineEdit::LeadingPosition)->setText(placeholder);
    field->setMinimumHeight(28);
    return field;
}

}  // namespace brell
