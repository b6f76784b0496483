// Points in time with whole seconds, as every file of ours stores them.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace brell {

using TimeStamp = std::chrono::sys_seconds;
using Clock = std::function<TimeStamp()>;

// The system's clock, cut to the second.
TimeStamp systemNow();

// ISO 8601 internet date-time in UTC, for example 2026-11-15T20:23:13Z.
std::string iso8601(TimeStamp time);

// Reads exactly that form, years 0000 to 9999; nothing for any other text or a date that does not exist.
std::optional<TimeStamp> parseIso8601(std::string_view text);

// The day of this moment in the machine's time zone, for example 2026-11-15.
std::string localDay(TimeStamp time);
// That day in words: 15 November 2026.
std::string localDayWords(TimeStamp time);
// The moment there, for a file's name: 2026-11-22-153000.
std::string localMoment(TimeStamp time);

}  // namespace brell
