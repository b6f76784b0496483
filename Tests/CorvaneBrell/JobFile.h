// The file of a launchd job.
#pragma once

#include <string>

namespace brell::testing {

inline std::string jobFile(const std::string& label, const std::string& more = {}) {
    return "<plist version=\"1.0\"><dict><key>Label</key><string>" + label + "</string>" + more +
           "</dict></plist>";
}

}  // namespace brell::testing
