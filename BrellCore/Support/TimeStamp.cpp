#include "BrellCore/Support/TimeStamp.h"

#include <fmt/compile.h>

#include <array>
#include <ctime>

namespace brell {

namespace chr = std::chrono;

namespace {

constexpr unsigned noNumber = 1'000'000;

// The number that so many digits at this place stand for; noNumber or more when one of them is no digit.
template <std::size_t count>
unsigned digits(std::string_view text, std::size_t at) {
    unsigned number = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const unsigned digit = static_cast<unsigned char>(text[at + i]) - unsigned{'0'};
        number = number * 10 + (digit <= 9 ? digit : noNumber);
    }
    return number;
}

void setTwoDigits(std::string& text, std::size_t at, std::int64_t number) {
    text[at] = static_cast<char>('0' + number / 10);
    text[at + 1] = static_cast<char>('0' + number % 10);
}

bool hasTheMarks(std::string_view text) {
    return text.size() == 20 && text[4] == '-' && text[7] == '-' && text[10] == 'T' && text[13] == ':' &&
           text[16] == ':' && text[19] == 'Z';
}

std::tm localTime(TimeStamp time) {
    const std::time_t seconds = chr::system_clock::to_time_t(time);
    std::tm local{};
    ::localtime_r(&seconds, &local);
    return local;
}

}  // namespace

TimeStamp systemNow() {
    return chr::floor<chr::seconds>(chr::system_clock::now());
}

std::string iso8601(TimeStamp time) {
    const auto day = chr::floor<chr::days>(time);
    const chr::year_month_day date(day);
    const chr::hh_mm_ss clock(time - day);
    std::string text = fmt::format(FMT_COMPILE("{:04}-00-00T00:00:00Z"), static_cast<int>(date.year()));
    const std::size_t behindYear = text.size() - std::string_view("00-00T00:00:00Z").size();
    setTwoDigits(text, behindYear, unsigned{date.month()});
    setTwoDigits(text, behindYear + 3, unsigned{date.day()});
    setTwoDigits(text, behindYear + 6, clock.hours().count());
    setTwoDigits(text, behindYear + 9, clock.minutes().count());
    setTwoDigits(text, behindYear + 12, clock.seconds().count());
    return text;
}

std::optional<TimeStamp> parseIso8601(std::string_view text) {
    if (!hasTheMarks(text)) return std::nullopt;
    const unsigned year = digits<4>(text, 0), month = digits<2>(text, 5), day = digits<2>(text, 8);
    const unsigned hour = digits<2>(text, 11), minute = digits<2>(text, 14), second = digits<2>(text, 17);
    if (year > 9999 || month > 12 || day > 31 || hour > 23 || minute > 59 || second > 59) return std::nullopt;
    const chr::year_month_day date(chr::year(static_cast<int>(year)), chr::month(month), chr::day(day));
    if (!date.ok()) return std::nullopt;
    return chr::sys_days(date) + chr::hours(hour) + chr::minutes(minute) + chr::seconds(second);
}

std::string localDay(TimeStamp time) {
    const std::tm local = localTime(time);
    return fmt::format("{:04}-{:02}-{:02}", local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
}

std::string localDayWords(TimeStamp time) {
    constexpr std::array<std::string_view, 12> months{"January",   "February", "March",    "April",
                                                      "May",       "June",     "July",     "August",
                                                      "September", "October",  "November", "December"};
    const std::tm local = localTime(time);
    return fmt::format("{} {} {}", local.tm_mday, months.at(static_cast<std::size_t>(local.tm_mon)),
                       local.tm_year + 1900);
}

std::string localMoment(TimeStamp time) {
    const std::tm local = localTime(time);
    return localDay(time) + fmt::format("-{:02}{:02}{:02}", local.tm_hour, local.tm_min, local.tm_sec);
}

}  // namespace brell
