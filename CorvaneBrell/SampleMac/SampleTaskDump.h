// The sample Mac's database of background tasks, as sfltool prints it: task-dump.txt beside this header. The
// system's sections come first, then the user's; paths in the home stand as /Users/ and the user's number.
#pragma once

#include <string_view>

namespace brell {

extern const std::string_view sampleTaskDump;

}  // namespace brell
