// How much memory a merge run takes over what the program holds when it stands ready for it.
// Usage: MergeMemoryBench [--rows N] [--folder DIR]

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "MergeCampaign.h"
#include "ProcessMemory.h"

namespace {

using namespace mailvane;
using namespace mailvane::bench;

constexpr double MostMegabytes = 60;
constexpr std::size_t BodyBytes = 200;

/// In a process of its own: what it takes to make them is no part of what is measured.
void MakeRecipientsApart(const std::string& path, int count) {
    const pid_t child = fork();
    if (child == 0) std::_Exit(RunBench([&] { MakeRecipients(path, count); }));
    int status = 0;
    if (waitpid(child, &status, 0) != child || status != 0) Fail("No recipients were made.");
}

void Run(const Options& options) {
    const int count = options.Number("--rows", 1000000);
    const ScratchFolder scratch(options.Text("--folder", BuildFolder()));
    MakeRecipientsApart(scratch.File("recipients.db"), count);

    MergeCampaign campaign(scratch.File("program"), scratch.File("recipients.db"),
                           TaggedBody(BodyBytes));
    ForgetPeak();
    const double idle = ProcessMegabytes("VmRSS");
    const double seconds = campaign.Run(count);
    const double peak = ProcessMegabytes("VmHWM") - idle;
    Report("merge_memory_idle", idle, "MB");
    Report("merge_memory_rows", count / seconds, "messages/s");
    // Like the other targets a least ratio: what is allowed over what is taken.
    Report("merge_memory_peak_over_idle", peak, "MB", MostMegabytes / peak, 1);
}

}  // namespace

int main(int argc, char** argv) {
    return RunBench([&] { Run(Options(argc, argv)); });
}
