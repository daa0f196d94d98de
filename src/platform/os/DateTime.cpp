#include "platform/os/DateTime.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>

namespace mailvane {

namespace {

using namespace std::chrono;

constexpr std::int64_t SecondsPerDay = 86400;
constexpr sys_days DayZero = sys_days{year{1899} / 12 / 30};
constexpr int FirstYear = 100;
constexpr int LastYear = 9999;
/// Serials of the first day of FirstYear and of the day after the last of LastYear.
constexpr double FirstSerial = -657434.0;
constexpr double EndSerial = 2958466.0;

/// Whole days from day zero, rounded down, so that the rest is the time of day.
constexpr std::int64_t DayOf(std::int64_t seconds) {
    const std::int64_t day = seconds / SecondsPerDay;
    return seconds % SecondsPerDay < 0 ? day - 1 : day;
}

constexpr std::int64_t TimeOfDay(std::int64_t seconds) {
    return seconds - DayOf(seconds) * SecondsPerDay;
}

year_month_day DateOf(std::int64_t seconds) {
    return year_month_day{DayZero + days{DayOf(seconds)}};
}

template <class... Parts>
std::string Format(const char* form, Parts... parts) {
    char text[48];
    const int length = std::snprintf(text, sizeof text, form, parts...);
    return std::string(text, static_cast<std::size_t>(length));
}

int TwelveHour(int hour) {
    return hour % 12 == 0 ? 12 : hour % 12;
}

const char* HalfOfDay(int hour) {
    return hour < 12 ? "AM" : "PM";
}

/// Reads the pieces of a date from the front of a text.
class DateScanner {
public:
    explicit DateScanner(std::string_view text) : rest_(text) { SkipBlanks(); }

    bool AtEnd() const { return rest_.empty(); }

    bool SkipBlanks() {
        const std::size_t before = rest_.size();
        while (!rest_.empty() && (rest_.front() == ' ' || rest_.front() == '\t'))
            rest_.remove_prefix(1);
        return rest_.size() != before;
    }

    bool Accept(char wanted) {
        if (rest_.empty() || rest_.front() != wanted) return false;
        rest_.remove_prefix(1);
        return true;
    }

    bool AcceptWord(std::string_view upper) {
        if (rest_.size() < upper.size()) return false;
        for (std::size_t i = 0; i < upper.size(); ++i)
            if ((rest_[i] & ~0x20) != upper[i]) return false;
        rest_.remove_prefix(upper.size());
        return true;
    }

    /// A number of `least` to `most` digits; -1 when there is none of that length.
    int Number(std::size_t least, std::size_t most) {
        int value = 0;
        std::size_t count = 0;
        while (count < rest_.size() && rest_[count] >= '0' && rest_[count] <= '9') {
            if (++count > most) return -1;
            value = value * 10 + (rest_[count - 1] - '0');
        }
        if (count < least) return -1;
        lastLength_ = count;
        rest_.remove_prefix(count);
        return value;
    }

    std::size_t LastLength() const { return lastLength_; }

private:
    std::string_view rest_;
    std::size_t lastLength_ = 0;
};

struct Clock {
    int hour = 0;
    int minute = 0;
    int second = 0;
};

/// "h:mm[:ss] [AM|PM]" to the end of the text.
std::optional<Clock> ScanClock(DateScanner& scanner) {
    Clock clock;
    clock.hour = scanner.Number(1, 2);
    if (clock.hour < 0 || !scanner.Accept(':')) return std::nullopt;
    clock.minute = scanner.Number(2, 2);
    if (clock.minute < 0) return std::nullopt;
    if (scanner.Accept(':') && (clock.second = scanner.Number(2, 2)) < 0) return std::nullopt;
    scanner.SkipBlanks();
    const bool morning = scanner.AcceptWord("AM");
    const bool evening = !morning && scanner.AcceptWord("PM");
    if (morning || evening) {
        if (clock.hour < 1 || clock.hour > 12) return std::nullopt;
        clock.hour = clock.hour % 12 + (evening ? 12 : 0);
    }
    scanner.SkipBlanks();
    if (!scanner.AtEnd()) return std::nullopt;
    return clock;
}

/// What follows the date: nothing, or blanks and a time.
std::optional<DateTime> WithClock(DateScanner& scanner, int year, int month, int day) {
    const bool separated = scanner.SkipBlanks();
    if (scanner.AtEnd()) return DateTime::FromParts(year, month, day);
    if (!separated) return std::nullopt;
    const std::optional<Clock> clock = ScanClock(scanner);
    if (!clock) return std::nullopt;
    return DateTime::FromParts(year, month, day, clock->hour, clock->minute, clock->second);
}

/// A year of two digits lies from 1930 to 2029.
int FullYear(int year, std::size_t digits) {
    if (digits != 2) return year;
    return year < 30 ? 2000 + year : 1900 + year;
}

std::optional<DateTime> ParseSlashed(std::string_view text) {
    DateScanner scanner(text);
    const int month = scanner.Number(1, 2);
    if (month < 0 || !scanner.Accept('/')) return std::nullopt;
    const int day = scanner.Number(1, 2);
    if (day < 0 || !scanner.Accept('/')) return std::nullopt;
    const int year = scanner.Number(2, 4);
    if (year < 0 || scanner.LastLength() == 3) return std::nullopt;
    return WithClock(scanner, FullYear(year, scanner.LastLength()), month, day);
}

std::optional<DateTime> ParseIso(std::string_view text) {
    DateScanner scanner(text);
    const int year = scanner.Number(4, 4);
    if (year < 0 || !scanner.Accept('-')) return std::nullopt;
    const int month = scanner.Number(1, 2);
    if (month < 0 || !scanner.Accept('-')) return std::nullopt;
    const int day = scanner.Number(1, 2);
    if (day < 0) return std::nullopt;
    return WithClock(scanner, year, month, day);
}

}  // namespace

std::optional<DateTime> DateTime::FromParts(int year, int month, int day, int hour, int minute,
                                            int second) {
    if (year < FirstYear || year > LastYear || month < 1 || day < 1) return std::nullopt;
    if (hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 59)
        return std::nullopt;
    const year_month_day date{std::chrono::year{year},
                              std::chrono::month{static_cast<unsigned>(month)},
                              std::chrono::day{static_cast<unsigned>(day)}};
    if (!date.ok()) return std::nullopt;
    const std::int64_t wholeDays = (sys_days{date} - DayZero).count();
    return DateTime(wholeDays * SecondsPerDay + hour * 3600 + minute * 60 + second);
}

DateTime DateTime::FromSerial(double days) {
    // Serials out of range come from damaged files.
    if (!(days > FirstSerial - 1.0 && days < EndSerial)) return DateTime();
    // Before day zero the fraction still counts forward from the start of its day.
    const double wholeDays = std::trunc(days);
    const double timeOfDay = std::fabs(days - wholeDays);
    const std::int64_t seconds = static_cast<std::int64_t>(wholeDays) * SecondsPerDay +
                                 std::llround(timeOfDay * SecondsPerDay);
    // The last moment of the last day rounds up to a day that there is not.
    return DayOf(seconds) < static_cast<std::int64_t>(EndSerial) ? DateTime(seconds) : DateTime();
}

std::optional<DateTime> DateTime::Parse(std::string_view text) {
    if (auto slashed = ParseSlashed(text)) return slashed;
    if (auto iso = ParseIso(text)) return iso;
    DateScanner scanner(text);
    const std::optional<Clock> clock = ScanClock(scanner);
    if (!clock) return std::nullopt;
    return FromParts(1899, 12, 30, clock->hour, clock->minute, clock->second);
}

DateTime DateTime::FromUnixLocal(std::int64_t unixSeconds) {
    const std::time_t moment = static_cast<std::time_t>(unixSeconds);
    std::tm parts{};
    if (localtime_r(&moment, &parts) == nullptr) return DateTime();
    // A leap second is shown as the last second of its minute.
    return FromParts(parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday, parts.tm_hour,
                     parts.tm_min, parts.tm_sec > 59 ? 59 : parts.tm_sec)
        .value_or(DateTime());
}

double DateTime::Serial() const {
    const double day = static_cast<double>(DayOf(seconds_));
    const double time = static_cast<double>(TimeOfDay(seconds_)) / SecondsPerDay;
    return day < 0 ? day - time : day + time;
}

DateTime DateTime::PlusSeconds(std::int64_t seconds) const {
    return DateTime(seconds_ + seconds);
}

int DateTime::Year() const {
    return static_cast<int>(DateOf(seconds_).year());
}
int DateTime::Month() const {
    return static_cast<int>(static_cast<unsigned>(DateOf(seconds_).month()));
}
int DateTime::Day() const {
    return static_cast<int>(static_cast<unsigned>(DateOf(seconds_).day()));
}
int DateTime::Hour() const {
    return static_cast<int>(TimeOfDay(seconds_) / 3600);
}
int DateTime::Minute() const {
    return static_cast<int>(TimeOfDay(seconds_) / 60 % 60);
}
int DateTime::Second() const {
    return static_cast<int>(TimeOfDay(seconds_) % 60);
}
bool DateTime::HasDate() const {
    return DayOf(seconds_) != 0;
}
bool DateTime::HasTime() const {
    return TimeOfDay(seconds_) != 0;
}

std::string DateTime::GeneralDate() const {
    if (!HasDate()) return LongTime();
    return HasTime() ? ShortDate() + " " + LongTime() : ShortDate();
}

std::string DateTime::ShortDate() const {
    return Format("%d/%d/%04d", Month(), Day(), Year());
}

std::string DateTime::LongTime() const {
    return Format("%d:%02d:%02d %s", TwelveHour(Hour()), Minute(), Second(), HalfOfDay(Hour()));
}

std::string DateTime::Stamp() const {
    return ShortDate() +
           Format(" %02d:%02d:%02d %s", TwelveHour(Hour()), Minute(), Second(), HalfOfDay(Hour()));
}

std::string DateTime::Iso() const {
    return Format("%04d-%02d-%02d %02d:%02d:%02d", Year(), Month(), Day(), Hour(), Minute(),
                  Second());
}

}  // namespace mailvane
