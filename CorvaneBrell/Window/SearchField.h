// A field to search or filter with.
#pragma once

#include <QLineEdit>

namespace brell {

// The name is what assistive technology calls it.
QLineEdit* searchField(const QString& placeholder, const QString& name);

}  // namespace brell
