#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace mailvane {

/// A local date and time in whole seconds. Day zero is 30 December 1899: a value on that day is a
/// time without a date, as in the databases and files that the users bring along.
class DateTime {
public:
    constexpr DateTime() = default;

    /// Parts that name no real date (month 13, 30 February) give an empty result.
    static std::optional<DateTime> FromParts(int year, int month, int day, int hour = 0,
                                             int minute = 0, int second = 0);
    /// Days since day zero, the fraction being the time of day, as record files hold a date.
    static DateTime FromSerial(double days);
    /// Reads "m/d/yyyy", "m/d/yyyy h:mm[:ss] [AM|PM]", a time alone, "yyyy-mm-dd[ hh:mm:ss]"; never
    /// the locale's forms, so that files move between machines. Empty when the text is no date.
    static std::optional<DateTime> Parse(std::string_view text);
    static DateTime FromUnixLocal(std::int64_t unixSeconds);  ///< in the machine's time zone

    double Serial() const;
    std::int64_t Seconds() const { return seconds_; }  ///< since day zero
    DateTime PlusSeconds(std::int64_t seconds) const;

    int Year() const;
    int Month() const;
    int Day() const;
    int Hour() const;
    int Minute() const;
    int Second() const;
    bool HasDate() const;  ///< false on day zero
    bool HasTime() const;  ///< false at midnight

    /// "m/d/yyyy h:mm:ss AM/PM"; without the time at midnight, without the date on day zero.
    std::string GeneralDate() const;
    std::string ShortDate() const;  ///< "m/d/yyyy"
    std::string LongTime() const;   ///< "h:mm:ss AM/PM"
    /// "m/d/yyyy hh:mm:ss AM/PM" with a two-digit hour: the stamp of messages and table names.
    std::string Stamp() const;
    std::string Iso() const;  ///< "YYYY-MM-DD HH:MM:SS", the form stored in databases

    friend constexpr auto operator<=>(const DateTime&, const DateTime&) = default;

private:
    constexpr explicit DateTime(std::int64_t seconds) : seconds_(seconds) {}
    std::int64_t seconds_ = 0;
};

}  // namespace mailvane
