// A walk through everything the program does to preferences, over a sample Mac: every tweak applied, shown
// and put back, and the proof that nothing is left of it.
#pragma once

#include <ostream>

#include "CorvaneBrell/LaunchOptions.h"

namespace brell {

// Prints the walk and gives the exit status: 0 when every tweak was applied and every key is as before.
// Leaves the restore script and the report in the journal directory and names them. options.sampleMac must be
// set.
int runHeadlessTour(const LaunchOptions& options, std::ostream& out);

}  // namespace brell
