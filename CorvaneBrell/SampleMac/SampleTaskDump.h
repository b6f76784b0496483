// The sample Mac's database of background tasks, as sfltool prints it.
#pragma once

#include <string_view>

namespace brell {

extern const std::string_view sampleTaskDump;

}  // namespace brell
