// Replaces a file so that a reader, now or after a power cut, finds all of the old contents or all of the
// new ones.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "BrellCore/Support/Failure.h"

namespace brell {

enum class ReplaceStep { createFolder, create, write, synchronize, rename };

// One replacement that did not happen.
struct ReplaceFailure {
    ReplaceStep step;
    std::filesystem::path path;  // what the step worked on: the folder, the temporary file or the target
    int code;                    // errno at that step
    bool operator==(const ReplaceFailure&) const = default;
};
std::string describe(const ReplaceFailure& failure);

class ReplaceError final : public FailureError<ReplaceFailure> {
public:
    using FailureError::FailureError;
    ~ReplaceError() override;
};

enum class Durability {
    readersOnly,  // other processes never see half a file; a power cut may lose the change
    powerCut,     // the new contents are on stable storage when the call returns
};

// Gives target, an absolute path, these contents, creating it and the folders above it when absent. The bytes
// go to a hidden sibling ".NAME.UUID.tmp" first, which gets these permissions less the umask. May be called
// from any thread. After a ReplaceError target is as it was and no temporary file is left behind.
void replaceFile(const std::filesystem::path& target, std::string_view contents, Durability durability,
                 unsigned permissions = 0600);

}  // namespace brell
