// A button that copies a text and says for a moment that it did.
#pragma once

#include <QPushButton>
#include <functional>

namespace brell {

// The text is made when it is wanted. Its subject stands in the button's accessible name.
QPushButton* copyButton(const QString& title, const QString& of, std::function<QString()> text);

}  // namespace brell
