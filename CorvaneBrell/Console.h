// What a run without a window prints: one line an event.
#pragma once

#include <ostream>
#include <string_view>

#include "BrellCore/Support/Text.h"

namespace brell {

// The text as one line, whatever it holds: nothing in it can steer a terminal.
inline void printLine(std::ostream& out, std::string_view text) {
    out << oneLine(text) + '\n';  // in one piece, whoever else prints
}

}  // namespace brell
