// Pictures of a window hold thousands of shades at the edges of letters, and need few of them.
#pragma once

#include <QImage>

namespace brell {

// The picture in 256 of its colours, every other one given the nearest of these: a third of the size, and no
// difference to see.
QImage inFewColors(const QImage& picture);

}  // namespace brell
