// A failure is a plain record that callers compare and switch on; the exception only carries it.
#pragma once

#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

namespace brell {

// The system's own words for an error number, for example "No space left on device" for ENOSPC; no final
// stop.
inline std::string systemMessage(int errorNumber) {
    return std::generic_category().message(errorNumber);
}

// Base of every exception of ours. describe(Failure), found next to the record, gives what(): whole
// sentences, shown to the user as they stand. Derived classes define their destructor out of line, so
// that the type has one identity however many libraries see it.
template <class Failure>
class FailureError : public std::runtime_error {
public:
    explicit FailureError(Failure failure)
        : std::runtime_error(describe(failure)), failure_(std::move(failure)) {}
    const Failure& failure() const noexcept { return failure_; }

protected:
    // Where more is known than the failure alone says.
    FailureError(const std::string& sentences, Failure failure)
        : std::runtime_error(sentences), failure_(std::move(failure)) {}

private:
    Failure failure_;
};

}  // namespace brell
