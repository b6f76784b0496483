// Moments as people write them, in the time zone of the machine.
#pragma once

#include <QDateTime>

#include "BrellCore/Support/TimeStamp.h"
#include "CorvaneBrell/Window/QtText.h"

namespace brell {

// "21 November 2026"
inline QString dayText(TimeStamp time) {
    return qt(localDayWords(time));
}

// "14:05"
inline QString clockText(TimeStamp time) {
    return QDateTime::fromSecsSinceEpoch(time.time_since_epoch().count()).toString(QStringLiteral("HH:mm"));
}

}  // namespace brell
