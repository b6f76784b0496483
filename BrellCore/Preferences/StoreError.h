// The errors that a preference store raises.
#pragma once

#include <string>
#include <variant>

#include "BrellCore/Preferences/PrefKey.h"
#include "BrellCore/Support/Failure.h"

namespace brell {

struct DomainNotAllowed {
    std::string domain;
    bool operator==(const DomainNotAllowed&) const = default;
};
struct UnsupportedType {
    PrefKey key;
    std::string typeWord;  // from propertyListTypeName
    bool operator==(const UnsupportedType&) const = default;
};
struct SynchronizeFailed {
    std::string domain;
    bool operator==(const SynchronizeFailed&) const = default;
};
struct StoreIo {
    std::string message;  // a whole sentence
    bool operator==(const StoreIo&) const = default;
};

using StoreFailure = std::variant<DomainNotAllowed, UnsupportedType, SynchronizeFailed, StoreIo>;
std::string describe(const StoreFailure& failure);

class StoreError final : public FailureError<StoreFailure> {
public:
    using FailureError::FailureError;
    ~StoreError() override;
};

}  // namespace brell
