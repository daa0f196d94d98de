#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "platform/os/Files.h"
#include "support/TempFolder.h"

namespace mailvane {
namespace {

namespace fs = std::filesystem;

class Files : public testing::Test {
protected:
    std::size_t EntriesIn(const std::string& path) {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(path), fs::directory_iterator()));
    }
    test::TempFolder folder;
};

TEST_F(Files, WriteReplacesTheFileAndKeepsItsPermissions) {
    const std::string path = folder.Write("a.dat", "old");
    ::chmod(path.c_str(), 0640);
    const std::string content("new\0\r\n\xFF", 7);
    EXPECT_TRUE(WriteWholeFile(path, content));
    EXPECT_EQ(ReadWholeFile(path), content);
    struct stat status {};
    ASSERT_EQ(::stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640u);
    EXPECT_EQ(EntriesIn(folder.Path()), 1u);  // nothing temporary stays
}

TEST_F(Files, WriteFollowsSymbolicLinks) {
    folder.Write("data/real.dat", "old");
    fs::create_symlink("data/real.dat", folder.File("second"));
    fs::create_symlink(folder.File("second"), folder.File("first"));
    fs::create_symlink("data/new.dat", folder.File("dangling"));
    EXPECT_TRUE(WriteWholeFile(folder.File("first"), "new"));
    EXPECT_TRUE(WriteWholeFile(folder.File("dangling"), "made"));
    EXPECT_TRUE(fs::is_symlink(folder.File("first")));
    EXPECT_TRUE(fs::is_symlink(folder.File("second")));
    EXPECT_EQ(folder.Read("data/real.dat"), "new");
    EXPECT_EQ(folder.Read("data/new.dat"), "made");
}

TEST_F(Files, FailedWriteLeavesWhatWasThereAndSaysWhy) {
    folder.Write("folder/kept.dat", "kept");
    std::string reason;
    EXPECT_FALSE(WriteWholeFile(folder.File("folder"), "x", &reason));
    EXPECT_EQ(reason, "Is a directory");
    EXPECT_FALSE(WriteWholeFile(folder.File("missing/a.dat"), "x", &reason));
    EXPECT_EQ(reason, "No such file or directory");
    EXPECT_FALSE(WriteWholeFile("", "x"));
    ::mkfifo(folder.File("pipe").c_str(), 0600);
    EXPECT_FALSE(WriteWholeFile(folder.File("pipe"), "x"));
    EXPECT_FALSE(WriteWholeFile(folder.File(std::string(300, 'n')), "x", &reason));
    EXPECT_EQ(reason, "File name too long");
    EXPECT_EQ(EntriesIn(folder.Path()), 2u);
    EXPECT_EQ(EntriesIn(folder.File("folder")), 1u);
}

TEST_F(Files, QuestionsAboutPaths) {
    const std::string file = folder.Write("a.dat", "abc");
    EXPECT_TRUE(IsFile(file) && !IsFolder(file) && FileSize(file) == 3);
    EXPECT_TRUE(IsFolder(folder.Path()) && !IsFile(folder.Path()) && FileSize(folder.Path()) == -1);
    EXPECT_TRUE(!IsFile("") && !IsFolder("") && FileSize("") == -1 && !ReadWholeFile(""));
    EXPECT_EQ(ReadWholeFile(folder.Path()), std::nullopt);
    ASSERT_EQ(::mkfifo(folder.File("pipe").c_str(), 0600), 0);
    EXPECT_EQ(ReadWholeFile(folder.File("pipe")), std::nullopt) << "and nobody waits for a writer";
    EXPECT_TRUE(MakeFolders(folder.File("x/y/z")));
    EXPECT_TRUE(MakeFolders(folder.File("x/y/z")));
    EXPECT_FALSE(MakeFolders(file + "/below"));
    EXPECT_FALSE(DeleteFile(folder.File("x/y/z")));  // folders are not files
    EXPECT_TRUE(DeleteFile(file));
    EXPECT_FALSE(DeleteFile(file));
}

TEST_F(Files, ReadsProfileValues) {
    const std::string path = folder.Write("project.ini",
                                          "\xEF\xBB\xBF[Database]\r\n"
                                          "; LastTable=comment\r\n"
                                          " LastTable =  Customers  \r\n"
                                          "Quoted=\"  two words \"\n"
                                          "Single='x'\r\n"
                                          "Odd=\"half\r\n"
                                          "Empty=\r\n"
                                          "no value here\r\n"
                                          "[x]=5]\r\n"
                                          "a=b=6\r\n"
                                          "\r\n"
                                          "[ Other ]\r\n"
                                          "LastTable=Orders");
    const std::tuple<const char*, const char*, std::optional<std::string>> rows[] = {
        {"Database", "LastTable", "Customers"},
        {"DATABASE", "lasttable", "Customers"},
        {"Database", "Quoted", "  two words "},
        {"Database", "Single", "x"},
        {"Database", "Odd", "\"half"},
        {"Database", "Empty", ""},
        {"Database", "no value here", std::nullopt},
        {"Database", "Last", std::nullopt},
        {"Database", "[x]", "5]"},
        {"Database", "a=b", "6"},
        {"Other", "LastTable", "Orders"},
        {"Other", "Quoted", std::nullopt},
        {"None", "LastTable", std::nullopt}};
    for (const auto& [section, key, value] : rows)
        EXPECT_EQ(ReadProfileValue(path, section, key), value) << key;
    EXPECT_EQ(ReadProfileValue(folder.File("none.ini"), "a", "b"), std::nullopt);
    EXPECT_EQ(ProfileKeys(path, "other"), std::vector<std::string>{"LastTable"});
    EXPECT_EQ(ProfileKeys(path, "Database").size(), 7u);
}

TEST_F(Files, WritesProfileValuesAmongTheOtherLines) {
    const std::tuple<const char*, std::string, std::string, std::string, std::string, std::string>
        rows[] = {
            {"new file", "", "Main", "Width", "10", "[Main]\r\nWidth=10\r\n"},
            {"changed", "[a]\nk=1\r\n; c\r\n[b]\r\nk=2\r\n", "B", "K", "3",
             "[a]\nk=1\r\n; c\r\n[b]\r\nK=3\r\n"},
            {"new key before the blank line", "[a]\r\nk=1\r\n\r\n[b]\r\n", "a", "n", "2",
             "[a]\r\nk=1\r\nn=2\r\n\r\n[b]\r\n"},
            {"new key in an empty section", "[a]\r\n[b]\r\n", "a", "n", "2",
             "[a]\r\nn=2\r\n[b]\r\n"},
            {"new section behind a line without end", "[a]\r\nk=1", "b", "n", "2",
             "[a]\r\nk=1\r\n[b]\r\nn=2\r\n"},
            {"new key behind a line without end", "[a]", "a", "n", "2", "[a]\r\nn=2\r\n"},
            {"line ends are left out", "", "a\r\n[x]", "k\n2", "1\r\n[evil]\r\nz=2",
             "[a[x]]\r\nk2=1[evil]z=2\r\n"},
            {"mark stays", "\xEF\xBB\xBF", "a", "k", "1", "\xEF\xBB\xBF[a]\r\nk=1\r\n"},
        };
    for (const auto& [name, before, section, key, value, after] : rows) {
        const std::string path = folder.Write("t.ini", before);
        EXPECT_TRUE(WriteProfileValue(path, section, key, value)) << name;
        EXPECT_EQ(folder.Read("t.ini"), after) << name;
    }
    const std::string path = folder.Write("t.ini", "[a]\r\nk=1\r\n");
    EXPECT_FALSE(WriteProfileValue(path, "a", "", "1"));
    EXPECT_FALSE(WriteProfileValue(path, "a", ";k", "1"));
    EXPECT_FALSE(WriteProfileValue(folder.File("none/t.ini"), "a", "k", "1"));
}

}  // namespace
}  // namespace mailvane
