#include "BrellCore/Journal/JournalError.h"

namespace brell {

std::string describeAlone(const JournalFailure& failure) {
    switch (failure.kind) {
        case JournalFailure::Kind::cannotWrite:
        case JournalFailure::Kind::isBusy:
            return "The change journal could not be written: " + failure.text + ".";
        case JournalFailure::Kind::cannotRead:
            return "The change journal could not be read: " + failure.text + ".";
    }
    return {};
}

std::string describe(const JournalFailure& failure) {
    const bool wasToBeSaved = failure.kind != JournalFailure::Kind::cannotRead;
    return describeAlone(failure) + (wasToBeSaved ? " Nothing was changed." : "");
}

JournalError::~JournalError() = default;

}  // namespace brell
