#include "BrellCore/Journal/JournalError.h"

namespace brell {

std::string describe(const JournalFailure& failure) {
    switch (failure.kind) {
        case JournalFailure::Kind::cannotWrite:
            return "The change journal could not be written: " + failure.text + ". Nothing was changed.";
        case JournalFailure::Kind::cannotRead:
            return "The change journal could not be read: " + failure.text + ".";
    }
    return {};
}

JournalError::~JournalError() = default;

}  // namespace brell
