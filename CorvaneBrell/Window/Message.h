// A sheet that only tells something.
#pragma once

#include <QString>

class QWidget;

namespace brell {

// Over the window of this widget. The text is plain, can be selected, and stays whole however long it is.
void tell(QWidget* over, const QString& title, const QString& text);

}  // namespace brell
