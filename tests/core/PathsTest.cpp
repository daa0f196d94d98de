#include <gtest/gtest.h>

#include "core/Paths.h"
#include "platform/os/Files.h"
#include "support/TempFolder.h"

namespace mailvane {
namespace {

TEST(Paths, FindsFilesAndFolders) {
    const test::TempFolder folder;
    const std::string file = folder.Write("a.txt", "x");
    EXPECT_TRUE(FileExists(file) && !FileExists(file, true));
    EXPECT_TRUE(FileExists(folder.Path(), true));
    for (const std::string& none : {folder.Path(), folder.Path() + "/", std::string()})
        EXPECT_FALSE(FileExists(none)) << none;
    EXPECT_FALSE(FileExists("", true));
    EXPECT_EQ(ReadFileText(folder.Path() + "/none"), "");
    EXPECT_FALSE(WriteFileText(folder.Path() + "/none/a.txt", "x"));
}

TEST(Paths, TakesPathsApart) {
    struct {
        const char* path;
        const char* delimiter;
        const char* name;
        const char* bareName;
        const char* folder;
    } const rows[] = {
        {"/p/Summer.poc", "/", "Summer.poc", "Summer", "/p"},
        {"/p/Summer.2024.poc", "/", "Summer.2024.poc", "Summer.2024", "/p"},
        {"/p.q/Summer", "/", "Summer", "", "/p.q"},
        {"Summer.poc", "/", "Summer.poc", "Summer", ""},
        {"C:\\a\\b.txt", "\\", "b.txt", "b", "C:\\a"},
        {"/p/", "/", "", "", "/p"},
        {"", "/", "", "", ""},
        {"a.b", "", "a.b", "a", ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(FileNameFromPath(row.path, row.delimiter, false), row.name) << row.path;
        EXPECT_EQ(FileNameFromPath(row.path, row.delimiter, true), row.bareName) << row.path;
        EXPECT_EQ(FolderFromPath(row.path, row.delimiter), row.folder) << row.path;
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
