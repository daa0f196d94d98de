#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <limits>

#include "platform/os/DateTime.h"

namespace mailvane {
namespace {

TEST(DateTime, ReadsTextsOrRefuses) {
    const std::pair<const char*, const char*> rows[] = {
        {"3/9/2001", "2001-03-09 00:00:00"},
        {"12/11/2001", "2001-12-11 00:00:00"},
        {"3/9/2001 1:02:03 PM", "2001-03-09 13:02:03"},
        {"3/9/2001 12:00:00 AM", "2001-03-09 00:00:00"},
        {"3/9/2001 12:00 pm", "2001-03-09 12:00:00"},
        {"3/9/2001 23:59:59", "2001-03-09 23:59:59"},
        {"2001-03-09 05:06:07", "2001-03-09 05:06:07"},
        {"2001-03-09", "2001-03-09 00:00:00"},
        {"10:20 PM", "1899-12-30 22:20:00"},
        {"  3/9/2001 ", "2001-03-09 00:00:00"},
        {"1/2/29", "2029-01-02 00:00:00"},
        {"1/2/30", "1930-01-02 00:00:00"},
        {"2/29/2000", "2000-02-29 00:00:00"},
    };
    for (const auto& [text, iso] : rows) {
        const auto date = DateTime::Parse(text);
        EXPECT_EQ(date ? date->Iso() : "none", iso) << text;
    }
    for (const char* text : {"13/1/2001", "3/9/2001 13:00 PM", "2/29/1900", "2001-13-01", "10:60",
                             "3/9/2001 x", "3/9/200100000000000", "", "36951"})
        EXPECT_FALSE(DateTime::Parse(text)) << text;
}

DateTime At(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
    return DateTime::FromParts(year, month, day, hour, minute, second).value();
}

TEST(DateTime, HasItsTexts) {
    const std::tuple<DateTime, const char*, const char*> rows[] = {
        {At(2001, 3, 9, 15, 4, 5), "3/9/2001 3:04:05 PM", "3/9/2001 03:04:05 PM"},
        {At(2001, 3, 9), "3/9/2001", "3/9/2001 12:00:00 AM"},
        {At(1899, 12, 30, 9, 8, 7), "9:08:07 AM", "12/30/1899 09:08:07 AM"},
        {DateTime(), "12:00:00 AM", "12/30/1899 12:00:00 AM"}};
    for (const auto& [date, general, stamp] : rows) {
        EXPECT_EQ(date.GeneralDate(), general);
        EXPECT_EQ(date.Stamp(), stamp);
        EXPECT_EQ(DateTime::Parse(general), date);
        EXPECT_EQ(DateTime::Parse(date.Iso()), date);
    }
}

TEST(DateTime, KeepsDateAndTimeOnBothSidesOfDayZero) {
    EXPECT_DOUBLE_EQ(At(1900, 1, 1, 12).Serial(), 2.5);
    EXPECT_DOUBLE_EQ(At(1899, 12, 29, 6).Serial(), -1.25);
    for (const DateTime date : {At(2001, 3, 9, 23, 59, 59), At(1899, 12, 29, 6), At(1850, 7, 1),
                                At(100, 1, 1), At(9999, 12, 31, 23, 59, 59), DateTime()})
        EXPECT_EQ(DateTime::FromSerial(date.Serial()), date) << date.Iso();
    for (const double damaged : {1e300, -1e300, std::numeric_limits<double>::quiet_NaN(),
                                 std::numeric_limits<double>::infinity()})
        EXPECT_EQ(DateTime::FromSerial(damaged), DateTime());
}

TEST(DateTime, FollowsTheTimeZone) {
    const char* before = std::getenv("TZ");
    const std::string kept = before == nullptr ? "" : before;
    setenv("TZ", "EST5EDT", 1);
    tzset();
    EXPECT_EQ(DateTime::FromUnixLocal(0), At(1969, 12, 31, 19));
    EXPECT_EQ(DateTime::FromUnixLocal(962409600), At(2000, 6, 30, 20));  // summer time
    before == nullptr ? unsetenv("TZ") : setenv("TZ", kept.c_str(), 1);
    tzset();
}

TEST(DateTime, CrossesDays) {
    EXPECT_EQ(At(2000, 2, 28, 23, 59, 59).PlusSeconds(1), At(2000, 2, 29));
    EXPECT_EQ(At(1899, 12, 30).PlusSeconds(-1), At(1899, 12, 29, 23, 59, 59));
}

}  // namespace
}  // namespace mailvane
