#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <limits>
#include <ostream>

#include "platform/os/DateTime.h"

namespace mailvane {
namespace {

struct ParseCase {
    const char* name;
    const char* text;
    const char* iso;  ///< null when the text is no date

    friend void PrintTo(const ParseCase& row, std::ostream* out) { *out << row.name; }
};

class DateTimeParse : public testing::TestWithParam<ParseCase> {};

TEST_P(DateTimeParse, ReadsOrRefuses) {
    const auto date = DateTime::Parse(GetParam().text);
    if (GetParam().iso == nullptr)
        EXPECT_FALSE(date) << date->Iso();
    else
        EXPECT_EQ(date ? date->Iso() : "none", GetParam().iso);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, DateTimeParse,
    testing::Values(ParseCase{"UsDate", "3/9/2001", "2001-03-09 00:00:00"},
                    ParseCase{"MonthComesFirst", "12/11/2001", "2001-12-11 00:00:00"},
                    ParseCase{"NotDayFirst", "13/1/2001", nullptr},
                    ParseCase{"EveningTime", "3/9/2001 1:02:03 PM", "2001-03-09 13:02:03"},
                    ParseCase{"NoonAndMidnight", "3/9/2001 12:00:00 AM", "2001-03-09 00:00:00"},
                    ParseCase{"Noon", "3/9/2001 12:00 pm", "2001-03-09 12:00:00"},
                    ParseCase{"TwentyFourHours", "3/9/2001 23:59:59", "2001-03-09 23:59:59"},
                    ParseCase{"ThirteenPm", "3/9/2001 13:00 PM", nullptr},
                    ParseCase{"Iso", "2001-03-09 05:06:07", "2001-03-09 05:06:07"},
                    ParseCase{"IsoDateAlone", "2001-03-09", "2001-03-09 00:00:00"},
                    ParseCase{"TimeAlone", "10:20 PM", "1899-12-30 22:20:00"},
                    ParseCase{"Padded", "  3/9/2001 ", "2001-03-09 00:00:00"},
                    ParseCase{"TwoDigitYearOfThisCentury", "1/2/29", "2029-01-02 00:00:00"},
                    ParseCase{"TwoDigitYearOfLastCentury", "1/2/30", "1930-01-02 00:00:00"},
                    ParseCase{"LeapDay", "2/29/2000", "2000-02-29 00:00:00"},
                    ParseCase{"NoLeapDay", "2/29/1900", nullptr},
                    ParseCase{"Month13", "2001-13-01", nullptr},
                    ParseCase{"Minute60", "10:60", nullptr},
                    ParseCase{"TextBehind", "3/9/2001 x", nullptr},
                    ParseCase{"LongNumber", "3/9/200100000000000", nullptr},
                    ParseCase{"Empty", "", nullptr}, ParseCase{"Number", "36951", nullptr}),
    [](const auto& row) { return row.param.name; });

struct FormatCase {
    const char* name;
    DateTime date;
    const char* general;
    const char* stamp;

    friend void PrintTo(const FormatCase& row, std::ostream* out) { *out << row.name; }
};

DateTime At(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
    return DateTime::FromParts(year, month, day, hour, minute, second).value();
}

class DateTimeFormat : public testing::TestWithParam<FormatCase> {};

TEST_P(DateTimeFormat, HasItsTexts) {
    EXPECT_EQ(GetParam().date.GeneralDate(), GetParam().general);
    EXPECT_EQ(GetParam().date.Stamp(), GetParam().stamp);
    EXPECT_EQ(DateTime::Parse(GetParam().date.GeneralDate()), GetParam().date);
    EXPECT_EQ(DateTime::Parse(GetParam().date.Iso()), GetParam().date);
}

INSTANTIATE_TEST_SUITE_P(
    Dates, DateTimeFormat,
    testing::Values(FormatCase{"Evening", At(2001, 3, 9, 15, 4, 5), "3/9/2001 3:04:05 PM",
                               "3/9/2001 03:04:05 PM"},
                    FormatCase{"Midnight", At(2001, 3, 9), "3/9/2001", "3/9/2001 12:00:00 AM"},
                    FormatCase{"TimeAlone", At(1899, 12, 30, 9, 8, 7), "9:08:07 AM",
                               "12/30/1899 09:08:07 AM"},
                    FormatCase{"DayZero", DateTime(), "12:00:00 AM", "12/30/1899 12:00:00 AM"}),
    [](const auto& row) { return row.param.name; });

TEST(DateTimeSerial, KeepsDateAndTimeOnBothSidesOfDayZero) {
    EXPECT_DOUBLE_EQ(At(1900, 1, 1, 12).Serial(), 2.5);
    EXPECT_DOUBLE_EQ(At(1899, 12, 29, 6).Serial(), -1.25);
    for (const DateTime date : {At(2001, 3, 9, 23, 59, 59), At(1899, 12, 29, 6), At(1850, 7, 1),
                                At(100, 1, 1), At(9999, 12, 31, 23, 59, 59), DateTime()})
        EXPECT_EQ(DateTime::FromSerial(date.Serial()), date) << date.Iso();
    for (const double damaged : {1e300, -1e300, std::numeric_limits<double>::quiet_NaN(),
                                 std::numeric_limits<double>::infinity()})
        EXPECT_EQ(DateTime::FromSerial(damaged), DateTime());
}

TEST(DateTimeUnix, FollowsTheTimeZone) {
    const char* before = std::getenv("TZ");
    const std::string kept = before == nullptr ? "" : before;
    setenv("TZ", "EST5EDT", 1);
    tzset();
    EXPECT_EQ(DateTime::FromUnixLocal(0), At(1969, 12, 31, 19));
    EXPECT_EQ(DateTime::FromUnixLocal(962409600), At(2000, 6, 30, 20));  // summer time
    before == nullptr ? unsetenv("TZ") : setenv("TZ", kept.c_str(), 1);
    tzset();
}

TEST(DateTimePlusSeconds, CrossesDays) {
    EXPECT_EQ(At(2000, 2, 28, 23, 59, 59).PlusSeconds(1), At(2000, 2, 29));
    EXPECT_EQ(At(1899, 12, 30).PlusSeconds(-1), At(1899, 12, 29, 23, 59, 59));
}

}  // namespace
}  // namespace mailvane
