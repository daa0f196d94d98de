#include <gtest/gtest.h>

#include "core/Paths.h"

namespace mailvane {
namespace {

TEST(Paths, TakesPathsApart) {
    const std::tuple<const char*, const char*, const char*, const char*, const char*> rows[] = {
        {"/p/Summer.poc", "/", "Summer.poc", "Summer", "/p"},
        {"/p/Summer.2024.poc", "/", "Summer.2024.poc", "Summer.2024", "/p"},
        {"/p.q/Summer", "/", "Summer", "", "/p.q"},
        {"Summer.poc", "/", "Summer.poc", "Summer", ""},
        {"C:\\a\\b.txt", "\\", "b.txt", "b", "C:\\a"},
        {"/p/", "/", "", "", "/p"},
        {"", "/", "", "", ""},
        {"a.b", "", "a.b", "a", ""},
    };
    for (const auto& [path, delimiter, name, bareName, folder] : rows) {
        EXPECT_EQ(FileNameFromPath(path, delimiter, false), name) << path;
        EXPECT_EQ(FileNameFromPath(path, delimiter, true), bareName) << path;
        EXPECT_EQ(FolderFromPath(path, delimiter), folder) << path;
    }
}

TEST(Paths, ChecksTableNames) {
    EXPECT_TRUE(IsValidTableName(std::string(63, 'a')));
    EXPECT_FALSE(IsValidTableName(std::string(64, 'a')));
    EXPECT_TRUE(IsValidTableName("My table (2) \"x\""));
    for (const char* bad : {"", " a", "a.b", "a,b", "a[b", "a]b", "a!b", "a'b", "a`b", "a\tb"})
        EXPECT_FALSE(IsValidTableName(bad)) << bad;
    EXPECT_TRUE(
        InvalidNameText("Table", "a.b")
            .starts_with("Invalid Table name: 'a.b'\r\n\r\nNames can be up to 64 characters long"));
    EXPECT_TRUE(InvalidNameText("Folder", "x").starts_with("Invalid Folder name: 'x'\r\nNames"));
}

TEST(Paths, ReadsTheTableOfARecordSource) {
    const std::pair<const char*, const char*> rows[] = {
        {"Clients", "Clients"},
        {"SELECT * FROM [My clients] ORDER BY [Name] ASC", "My clients"},
        {"SELECT * FROM [a] ORDER BY [x] ORDER BY [b] DESC", "a"},
        {"select * from [a] ORDER BY [b] ASC", ""},
        {"SELECT * FROM [a]", "a]"},
        {"", ""},
    };
    for (const auto& [source, table] : rows)
        EXPECT_EQ(TableOfRecordSource(source), table) << source;
}

}  // namespace
}  // namespace mailvane
