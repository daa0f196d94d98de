#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <thread>

#include "platform/os/Processes.h"
#include "support/TempFolder.h"

namespace mailvane {
namespace {

using Words = std::vector<std::string>;

class Programs : public testing::Test {
protected:
    /// A program that the tests start.
    std::string Program(const std::string& name, const std::string& script) {
        const std::string path = folder.Write(name, "#!/bin/sh\n" + script);
        ::chmod(path.c_str(), 0755);
        return path;
    }
    /// What a program that runs on its own has written, once it is whole.
    std::string WaitForFile(const std::string& name) {
        for (int i = 0; i < 500 && folder.Read(name).find("end") == std::string::npos; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        return folder.Read(name);
    }

    test::TempFolder folder;
    SystemProcesses processes;
};

TEST_F(Programs, RunWithTheirArgumentsUntouched) {
    const std::string program = Program(
        "show args", "for a in \"$@\"; do echo \"[$a]\"; done >'" + folder.File("out") + "'");
    EXPECT_TRUE(processes.RunAndWait({program, "a b", "", "$HOME", "; touch x", "*", "\"q\""}));
    EXPECT_EQ(folder.Read("out"), "[a b]\n[]\n[$HOME]\n[; touch x]\n[*]\n[\"q\"]\n");
}

TEST_F(Programs, AreFoundInThePathAndMayFail) {
    EXPECT_TRUE(processes.RunAndWait({"false"}));  // it ran
    EXPECT_FALSE(processes.RunAndWait({}));
    EXPECT_FALSE(processes.RunAndWait({"no-such-program-here"}));
    EXPECT_FALSE(processes.RunAndWait({folder.Write("plain.txt", "text")}));
    EXPECT_FALSE(processes.RunAndWait({folder.Path()}));
}

TEST_F(Programs, AreLeftAloneWhenNobodyWaits) {
    const std::string program =
        Program("long", "sleep 0.3; echo \"$1 end\" >'" + folder.File("out") + "'");
    int calls = 0;
    EXPECT_TRUE(processes.RunAndWait({program, "one"}, [&calls] { return ++calls < 3; }));
    EXPECT_EQ(calls, 3);
    EXPECT_EQ(folder.Read("out"), "");
    EXPECT_EQ(WaitForFile("out"), "one end\n");
    // The next one finds its end, and is waited for by itself.
    EXPECT_TRUE(processes.RunAndWait({program, "two"}, [] { return true; }));
    EXPECT_EQ(folder.Read("out"), "two end\n");
    errno = 0;
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

TEST_F(Programs, InheritNoFilesAndNoSignalSettings) {
    const int leaked = ::fcntl(STDERR_FILENO, F_DUPFD, 77);  // without close-on-exec
    const auto before = std::signal(SIGPIPE, SIG_IGN);
    const std::string program =
        Program("inherit", "ls /proc/$$/fd >'" + folder.File("files") +
                               "'\ngrep SigIgn /proc/$$/status >'" + folder.File("signals") + "'");
    EXPECT_TRUE(processes.RunAndWait({program}));
    std::signal(SIGPIPE, before);
    ::close(leaked);
    const std::string files = "\n" + folder.Read("files");
    EXPECT_NE(files.find("\n2\n"), std::string::npos);
    EXPECT_EQ(files.find("\n" + std::to_string(leaked) + "\n"), std::string::npos);
    EXPECT_EQ(folder.Read("signals"), "SigIgn:\t0000000000000000\n");
}

TEST_F(Programs, OpenedOnesRunOnWithoutBecomingOurChildren) {
    const std::string program =
        Program("long", "sleep 0.2; echo \"$1 $2 end\" >'" + folder.File("out") + "'");
    EXPECT_TRUE(processes.OpenDocument(program, {"one", "two words"}));
    EXPECT_EQ(folder.Read("out"), "");
    errno = 0;
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
    EXPECT_EQ(WaitForFile("out"), "one two words end\n");
}

TEST_F(Programs, DocumentsGoToTheDesktopsOpener) {
    Program("xdg-open", "echo \"$# $1 end\" >'" + folder.File("out") + "'");
    const std::string oldPath = std::getenv("PATH");
    ::setenv("PATH", (folder.Path() + ":" + oldPath).c_str(), 1);
    const std::string document = folder.Write("my report.txt", "text");
    EXPECT_TRUE(processes.OpenDocument(document, {}));
    EXPECT_EQ(WaitForFile("out"), "1 " + document + " end\n");
    folder.Write("out", "");
    EXPECT_TRUE(processes.OpenDocument("--help", {}));
    EXPECT_EQ(WaitForFile("out"), "1 ./--help end\n");
    ::setenv("PATH", folder.File("none").c_str(), 1);
    EXPECT_FALSE(processes.OpenDocument(document, {}));
    ::setenv("PATH", oldPath.c_str(), 1);
    EXPECT_FALSE(processes.OpenDocument("", {}));
}

TEST(CommandLine, IsSplitAtBlanksOutsideQuotes) {
    const std::pair<const char*, Words> rows[] = {
        {"", {}},
        {"  a\t b ", {"a", "b"}},
        {"\"C D\"/x --n=\"a b\"", {"C D/x", "--n=a b"}},
        {"a \"\" b", {"a", "", "b"}},
        {R"(say \"hi\" "in \"side\"")", {"say", "\"hi\"", "in \"side\""}},
        {R"(c:\temp\x \\)", {"c:\\temp\\x", "\\\\"}},
        {"open \"to the end", {"open", "to the end"}},
        {"$(x) `y` ; *", {"$(x)", "`y`", ";", "*"}}};
    for (const auto& [line, words] : rows)
        EXPECT_EQ(SplitCommandLine(line), words) << line;
}

TEST(Machine, TellsItsTemporaryFolderAndItsAddress) {
    const char* before = std::getenv("TMPDIR");
    const std::string kept = before ? before : "";
    ::setenv("TMPDIR", "/var/tmp", 1);
    EXPECT_EQ(TemporaryFolder(), "/var/tmp/");
    ::setenv("TMPDIR", "/var/tmp/", 1);
    EXPECT_EQ(TemporaryFolder(), "/var/tmp/");
    ::unsetenv("TMPDIR");
    EXPECT_EQ(TemporaryFolder(), "/tmp/");
    if (before) ::setenv("TMPDIR", kept.c_str(), 1);
    EXPECT_THAT(LocalIpAddress(), testing::MatchesRegex("[0-9]+\\.[0-9]+\\.[0-9]+\\.[0-9]+"));
}

}  // namespace
}  // namespace mailvane
