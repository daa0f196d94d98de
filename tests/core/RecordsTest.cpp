#include <gtest/gtest.h>

#include "core/records/RecordFile.h"
#include "core/records/Sifrant.h"
#include "support/TempFolder.h"

namespace mailvane {
namespace {

const DateTime Date = *DateTime::FromParts(2024, 3, 15, 10, 30, 59);

std::string SampleBytes() {
    RecordWriter writer;
    writer.Long(-2);
    writer.Text("ab");
    writer.Flag(true);
    writer.Integer(258);
    writer.Date(Date);
    return writer.Bytes();
}

TEST(RecordFile, FieldsStandWithoutPadding) {
    const std::string bytes = SampleBytes();
    EXPECT_EQ(bytes.substr(0, 12), std::string("\xFE\xFF\xFF\xFF\x02\0ab\xFF\xFF\x02\x01", 12));
    EXPECT_EQ(bytes.size(), 20u);
    RecordReader reader(bytes);
    EXPECT_EQ(reader.Long(), -2);
    EXPECT_EQ(reader.Text(), "ab");
    EXPECT_TRUE(reader.Flag());
    EXPECT_EQ(reader.Integer(), 258);
    EXPECT_EQ(reader.Date(), Date);
    EXPECT_TRUE(reader.Complete());
    EXPECT_EQ(reader.Long(), 0);
    EXPECT_FALSE(reader.Complete());
}

TEST(RecordFile, CutsNoText) {
    for (const std::size_t length : {0u, 1u, 65534u, 65535u, 65536u, 200000u}) {
        RecordWriter writer;
        writer.Text(std::string(length, 'x'));
        writer.Text("behind");
        RecordReader reader(writer.Bytes());
        EXPECT_EQ(reader.Text().size(), length);
        EXPECT_EQ(reader.Text(), "behind") << length;
    }
}

TEST(RecordFile, ShortAndHostileBytesReadAsNothing) {
    for (const std::string bytes : {"\xFE\xFFxyz", "\xFF\xFF\xFF\xFF\xFF\xFFxyz", "\xFF\xFF\x01"}) {
        RecordReader reader(bytes);
        EXPECT_EQ(reader.Text(), "");
        EXPECT_EQ(reader.Long(), 0);
        EXPECT_FALSE(reader.Complete());
    }
    RecordReader dates(std::string(8, '\xFF') + std::string("\0\0\0\0\0\0\xF0\x7F", 8));
    EXPECT_EQ(dates.Date(), DateTime());
    EXPECT_EQ(dates.Date(), DateTime());
    const std::string bytes = SampleBytes();
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        RecordReader reader(bytes.substr(0, length));
        EXPECT_EQ(reader.Long(), length < 4 ? 0 : -2);
        EXPECT_EQ(reader.Text(), length < 8 ? "" : "ab") << length;
        reader.Flag();
        reader.Integer();
        EXPECT_EQ(reader.Date(), DateTime());
        EXPECT_FALSE(reader.Complete());
    }
}

TEST(RecordFile, SavesAndLoadsWholeFiles) {
    const test::TempFolder folder;
    const std::string path = folder.File("1.fl");
    ASSERT_TRUE(SaveRecordFile(path, [](RecordWriter& writer) { writer.Text("t"); }));
    std::string text;
    const auto read = [&](RecordReader& reader) { text = reader.Text(); };
    EXPECT_TRUE(LoadRecordFile(path, read));
    EXPECT_EQ(text, "t");
    EXPECT_FALSE(LoadRecordFile(folder.File("2.fl"), read));
    EXPECT_EQ(text, "");
    EXPECT_FALSE(SaveRecordFile(folder.File("none/1.fl"), [](RecordWriter&) {}));
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
