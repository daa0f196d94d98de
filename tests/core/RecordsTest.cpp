#include <gtest/gtest.h>

#include "core/records/RecordFile.h"
#include "core/records/Sifrant.h"
#include "support/TempFolder.h"

namespace mailvane {
namespace {

const DateTime Date = *DateTime::FromParts(2024, 3, 15, 10, 30, 59);

struct Sample {
    std::int32_t Number = -2;
    std::string Text = "ab";
    bool Flag = true;
    std::int16_t Short = 258;
    DateTime When = Date;

    static void Fields(auto& record, auto&& field) {
        field(record.Number);
        field(record.Text);
        field(record.Flag);
        field(record.Short);
        field(record.When);
    }
    friend bool operator==(const Sample&, const Sample&) = default;
};

TEST(RecordFile, KeepsFieldsWithoutPaddingAndReadsWhatIsThere) {
    const test::TempFolder folder;
    const std::string path = folder.File("1.fl");
    EXPECT_FALSE(SaveRecordFile(folder.File("none/1.fl"), Sample{}));
    ASSERT_TRUE(SaveRecordFile(path, Sample{}));
    const std::string bytes = ReadWholeFile(path).value();
    EXPECT_EQ(bytes.substr(0, 12), std::string("\xFE\xFF\xFF\xFF\x02\0ab\xFF\xFF\x02\x01", 12));
    EXPECT_EQ(bytes.size(), 20u);
    Sample read{.Number = 0};
    EXPECT_TRUE(LoadRecordFile(path, read));
    EXPECT_EQ(read, Sample{});
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        ASSERT_TRUE(WriteWholeFile(path, bytes.substr(0, length)));
        EXPECT_FALSE(LoadRecordFile(path, read));
        EXPECT_EQ(read.Number, length < 4 ? 0 : -2);
        EXPECT_EQ(read.Text, length < 8 ? "" : "ab") << length;
        EXPECT_EQ(read.When, DateTime());
    }
    read = {};
    EXPECT_FALSE(LoadRecordFile(folder.File("2.fl"), read));
    EXPECT_EQ(read, (Sample{0, "", false, 0, DateTime()}));
}

TEST(RecordFile, CutsNoTextAndBelievesNoLength) {
    std::string text;
    for (const std::size_t length : {0u, 1u, 65534u, 65535u, 65536u, 200000u}) {
        RecordWriter writer;
        writer(std::string(length, 'x'));
        RecordReader reader(writer.Bytes());
        reader(text);
        EXPECT_EQ(text.size(), length);
        EXPECT_TRUE(reader.Complete());
    }
    for (const std::string bytes : {"\xFE\xFFxyz", "\xFF\xFF\xFF\xFF\xFF\xFFxyz", "\xFF\xFF\x01"}) {
        RecordReader reader(bytes);
        reader(text);
        EXPECT_EQ(text, "");
        EXPECT_FALSE(reader.Complete());
    }
    RecordReader dates(std::string(8, '\xFF') + std::string("\0\0\0\0\0\0\xF0\x7F", 8));
    for (DateTime date = Date; const int count : {1, 2}) {
        dates(date);
        EXPECT_EQ(date, DateTime()) << count;
    }
}

TEST(Sifrant, GivesTheTextBack) {
    std::string bytes;
    for (int i = 0; i < 256; ++i)
        bytes.push_back(static_cast<char>(i));
    for (std::size_t length = 0; length < 20; ++length)
        for (const char* key : {"Velorina", "512903847165320", "", "\xFF"}) {
            const std::string text = bytes.substr(60, length);
            EXPECT_EQ(Sifrant().DeSifriraj(Sifrant().Sifriraj(text, key), key), text) << key;
        }
    EXPECT_EQ(UnscrambleText(ScrambleText(bytes)), bytes);
}

// Files written by one version have to be read by every later one.
TEST(Sifrant, KeepsItsFileFormat) {
    Sifrant used;
    used.Sifriraj("something else", "other");
    EXPECT_EQ(used.Sifriraj("Mailvane", "Velorina"), "Nqit[\\NaR<?");
}

}  // namespace
}  // namespace mailvane
