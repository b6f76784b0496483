// The colours that the palette does not name, made from it so that they can be read in light and in dark.
#pragma once

#include <QColor>
#include <QPalette>

namespace brell {

// The tone of a symbol or a bar beside its words.
enum class Tone { plain, accent, positive, caution, critical };

namespace Appearance {

// Used where the system brings no palette of its own.
QPalette light();
QPalette dark();
// Of the two the one that is light or dark as the desktop's palette is.
QPalette following(const QPalette& desktop);

// Of two opaque colours, from 1 to 21: the ratio of the Web Content Accessibility Guidelines 2.1.
double contrast(const QColor& one, const QColor& other);

// Readable (4.5:1) on the window, on cards and on bars of the same tone.
QColor secondaryText(const QPalette& palette);
QColor toned(Tone tone, const QPalette& palette);

// Surfaces: the text colour of the palette and the toned one can be read on them.
QColor card(const QPalette& palette);
QColor tinted(Tone tone, const QPalette& palette);
// The ground of words that a search found, on cards and on the window.
QColor marked(const QPalette& palette);

QColor hairline(const QPalette& palette);
// The edge of a control, to be told from what is around it (3:1).
QColor outline(const QPalette& palette);

}  // namespace Appearance

}  // namespace brell
