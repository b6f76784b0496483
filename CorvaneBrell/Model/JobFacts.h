// Facts about a job that its file does not tell.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace brell {

struct JobFacts {
    std::optional<std::string> missingProgram;  // which it starts, and which is not there
    std::vector<std::string> apps;              // to which the job says it belongs, by name
    std::optional<std::uint32_t>
        otherOwner;  // of a file in the user's own folder, where that is not the user
    bool operator==(const JobFacts&) const = default;
};

}  // namespace brell
