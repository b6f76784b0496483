// The output of a run without a window: one line an event, there as soon as it happened.
#pragma once

#include <ostream>
#include <string_view>

#include "BrellCore/Support/Text.h"

namespace brell {

// The text as one line, whatever it holds: nothing in it can steer a terminal. It has left the program when
// this returns, so that a reader knows how far a run is, also one that is killed.
inline void printLine(std::ostream& out, std::string_view text) {
    out << oneLine(text) + '\n' << std::flush;  // in one piece, whatever other programs print
}

}  // namespace brell
