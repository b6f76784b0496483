// Moments as people write them, in the time zone of the machine.
#pragma once

#include <QDateTime>
#include <QLocale>

#include "BrellCore/Support/TimeStamp.h"

namespace brell {

inline QString momentText(TimeStamp time, const QString& form) {
    const QDateTime moment = QDateTime::fromSecsSinceEpoch(time.time_since_epoch().count());
    return QLocale(QLocale::English, QLocale::UnitedKingdom).toString(moment, form);
}

// "21 November 2026"
inline QString dayText(TimeStamp time) {
    return momentText(time, QStringLiteral("d MMMM yyyy"));
}

// "14:05"
inline QString clockText(TimeStamp time) {
    return momentText(time, QStringLiteral("HH:mm"));
}

}  // namespace brell
