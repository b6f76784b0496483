#include "BrellCore/Journal/JournalError.h"

namespace brell {

std::string describeAlone(const JournalFailure& failure) {
    switch (failure.kind) {
        case JournalFailure::Kind::cannotWrite:
        case JournalFailure::Kind::isBusy:
            return "The change journal could not be written: " + failure.text + ".";
        case JournalFailure::Kind::cannotRead:
            return "The change journal could not be read: " + failure.text + ".";
        case JournalFailure::Kind::cannotRebuild:
            return "The change journal could not be rebuilt: " + failure.text + ".";
        case JournalFailure::Kind::cannotLeave:
            return "The change journal could not be removed: " + failure.text + ".";
    }
    return {};
}

std::string describe(const JournalFailure& failure) {
    switch (failure.kind) {
        case JournalFailure::Kind::cannotWrite:
        case JournalFailure::Kind::isBusy: return describeAlone(failure) + " Nothing was changed.";
        case JournalFailure::Kind::cannotRebuild:
        case JournalFailure::Kind::cannotLeave: return describeAlone(failure) + " Nothing was lost.";
        case JournalFailure::Kind::cannotRead: break;
    }
    return describeAlone(failure);
}

JournalError::~JournalError() = default;

}  // namespace brell
