// Room that follows the font of the application, so that large type is not cut.
#pragma once

namespace brell {

// Room for so many characters of a text, and at least the room that they have in the usual font.
int widthFor(int characters, int usual);

// A line of text with so much above and below it together; likewise.
int heightFor(int around, int usual);

}  // namespace brell
