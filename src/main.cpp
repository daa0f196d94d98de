#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/Workbench.h"
#include "platform/forms/HeadlessWindows.h"
#include "platform/os/FolderClaim.h"
#include "platform/script/ScriptRunner.h"
#include "shell/AssignedTask.h"
#include "shell/Folders.h"
#include "shell/frmMain.h"
#ifdef MAILVANE_WITH_QT
#include "platform/qt/QtWindows.h"
#endif

namespace {

namespace fs = std::filesystem;
using namespace mailvane;

constexpr const char* Usage =
    R"(Mailvane - a workbench for e-mail marketing

Usage: mailvane [options] [PROJECT.poc]

  PROJECT.poc      open this project
  --home DIR       the program folder, with messages.dat and the user's settings
                   (otherwise $MAILVANE_HOME, or mailvane in the user's data folder)
  --task NAME      start unattended, as the scheduled task of that name
  --script FILE    play an automation script, without the start-up dialogs
  --headless       no windows and no display; needs --script
  --with-dialogs   with --script: show the start-up dialogs, for the script to answer
  --version        print the version
  --help           print this text

One program runs on a program folder at a time: another start hands its project or task over to that
one and shows its window, or says why it cannot and ends with 1; with --script it always ends with 1.

Exit status with --script: 0 all went as expected, 1 an expectation failed or a box came up
that nothing answers, 2 the script is wrong or cannot be read.
)";

struct Arguments {
    std::string home;
    std::string script;
    std::string commandLine;
    bool headless = false;
    bool withDialogs = false;
};

/// Empty when the program is to end at once; `status` is its exit status then.
std::optional<Arguments> ReadArguments(const std::vector<std::string>& words, int& status) {
    Arguments arguments;
    status = 0;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        std::string task;
        std::string* value = word == "--home"     ? &arguments.home
                             : word == "--script" ? &arguments.script
                             : word == "--task"   ? &task
                                                  : nullptr;
        if (value) {
            if (i + 1 == words.size()) {
                std::cerr << "mailvane: " << word << " needs a value\n";
                status = 2;
                return {};
            }
            *value = words[++i];
            if (!task.empty()) arguments.commandLine = "\\SHC " + task;
        } else if (word == "--headless") {
            arguments.headless = true;
        } else if (word == "--with-dialogs") {
            arguments.withDialogs = true;
        } else if (word == "--help" || word == "--version") {
            std::cout << (word == "--help" ? std::string(Usage)
                                           : std::string("Mailvane ") + ProgramVersion + "\n");
            return {};
        } else if (word.starts_with("--")) {
            std::cerr << "mailvane: unknown option " << word << "\n" << Usage;
            status = 2;
            return {};
        } else {
            if (!arguments.commandLine.empty()) arguments.commandLine += ' ';
            arguments.commandLine += word;
        }
    }
    if (arguments.headless && arguments.script.empty()) {
        std::cerr << "mailvane: --headless needs --script FILE\n";
        status = 2;
        return {};
    }
    return arguments;
}

std::string FromEnvironment(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

std::string UserFolder(const char* variable, const char* belowHome) {
    const std::string base = FromEnvironment(variable);
    return (base.empty() ? fs::path(FromEnvironment("HOME")) / belowHome : fs::path(base)) /
           "mailvane";
}

std::string ProgramFolder(const Arguments& arguments) {
    std::string folder = arguments.home;
    if (folder.empty()) folder = FromEnvironment("MAILVANE_HOME");
    if (folder.empty()) folder = UserFolder("XDG_DATA_HOME", ".local/share");
    return fs::absolute(folder).lexically_normal().string();
}

/// Beside an installed program its files lie in ../share/mailvane, otherwise in the sources.
std::string ShareFolder() {
    std::error_code error;
    const fs::path installed =
        fs::read_symlink("/proc/self/exe", error).parent_path() / ".." / "share" / "mailvane";
    return fs::is_directory(installed, error) ? installed.string()
                                              : std::string(MAILVANE_SHARE_DIR);
}

std::unique_ptr<WindowSystem> MakeWindows(const Arguments& arguments, Clock& clock, int& argc,
                                          char** argv) {
#ifdef MAILVANE_WITH_QT
    if (!arguments.headless) return std::make_unique<QtWindows>(argc, argv, clock);
#else
    (void)argc;
    (void)argv;
    if (!arguments.headless) return nullptr;
#endif
    return std::make_unique<HeadlessWindows>(clock);
}

/// Says why the program ends at once: in a box only where somebody can be expected to read it.
int RefuseStart(const Arguments& arguments, WindowSystem& windows, const std::string& text) {
    std::cerr << "mailvane: " << text << std::endl;
    if (arguments.script.empty() && !NamesTask(arguments.commandLine))
        windows.MessageBox({"Mailvane cannot start: " + text + ".", ProgramTitle, BoxIcon::Critical,
                            BoxButtons::Ok});
    return 1;
}

/// The program runs on that folder already: it opens the project or carries out the task, or comes
/// to the front.
int LeaveToOther(const Arguments& arguments, WindowSystem& windows, const FolderClaim& claim,
                 const std::string& folder) {
    constexpr std::chrono::seconds LongestWait{20};
    std::error_code error;
    const bool isFile = fs::is_regular_file(arguments.commandLine, error);
    const std::string line =
        isFile ? fs::absolute(arguments.commandLine).string() : arguments.commandLine;
    const HandedOver outcome =
        arguments.script.empty() ? claim.HandOver(line, LongestWait) : HandedOver::NotAnswered;
    if (outcome == HandedOver::Taken) return 0;
    std::string text = "the program folder '" + folder + "' is in use by another Mailvane";
    if (claim.Holder() > 0) text += " (process " + std::to_string(claim.Holder()) + ")";
    if (outcome == HandedOver::Refused) text += ", which is busy: try again when it has finished";
    return RefuseStart(arguments, windows, text);
}

int Run(const Arguments& arguments, WindowSystem& windows, Clock& clock) {
    const std::string folder = ProgramFolder(arguments);
    FolderClaim claim(folder);
    if (!claim.Held()) return LeaveToOther(arguments, windows, claim, folder);
    if (!claim.Writable())
        return RefuseStart(arguments, windows,
                           "nothing can be written to the program folder '" + folder + "'");
    claim.Listen();
    const std::string registry =
        arguments.home.empty() ? UserFolder("XDG_CONFIG_HOME", ".config") : folder;
    SystemProcesses processes;
    Platform platform{windows, clock, processes, folder, ShareFolder(), registry + "/registry.ini"};
    Workbench bench(platform);
    Folders folders(bench);
    PromptScript prompts;
    int status = 0;

    ScriptRunner runner(windows, bench.forms, prompts,
                        {[&bench](const std::string& name, const std::string& caption) {
                            return bench.shell->ExecuteCommand(name, caption);
                        }},
                        std::cout, std::cerr);
    const Subscription finished = runner.finished.Observe([&](int exitStatus) {
        status = exitStatus;
        windows.PlayPrompts(nullptr);
        windows.Quit();
    });
    if (!arguments.script.empty()) windows.PlayPrompts(&prompts);
    if (!arguments.script.empty()) runner.Start(arguments.script);
    if (status == 0)
        bench.forms.Load<frmMain>().Start(
            {arguments.commandLine, arguments.script.empty() || arguments.withDialogs, &claim});
    windows.Run();
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    int status = 0;
    const auto arguments = ReadArguments({argv + 1, argv + argc}, status);
    if (!arguments) return status;
    SystemClock clock;
    const auto windows = MakeWindows(*arguments, clock, argc, argv);
    if (!windows) {
        std::cerr << "mailvane: this build has no windows; use --headless --script FILE\n";
        return 2;
    }
    return Run(*arguments, *windows, clock);
}
