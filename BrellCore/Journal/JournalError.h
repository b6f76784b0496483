// Why the journal could not be read, saved, rebuilt or taken away.
#pragma once

#include <string>

#include "BrellCore/Support/Failure.h"

namespace brell {

struct JournalFailure {
    enum class Kind {
        cannotWrite,
        cannotRead,
        isBusy,  // others held its lock all the time
        cannotRebuild,
        cannotLeave,  // its folder is in its place
    };
    Kind kind;
    std::string text;  // what happened, without a final stop
    bool operator==(const JournalFailure&) const = default;
};
std::string describe(const JournalFailure& failure);
// Without saying what became of the change.
std::string describeAlone(const JournalFailure& failure);

class JournalError final : public FailureError<JournalFailure> {
public:
    using FailureError::FailureError;
    ~JournalError() override;
};

}  // namespace brell
