#include <gtest/gtest.h>
#include <unistd.h>

#include <thread>

#include "platform/os/FolderClaim.h"
#include "support/TempFolder.h"

namespace mailvane {
namespace {

using std::chrono::milliseconds;

TEST(FolderClaim, CommandLinesGoToTheHolderThatListens) {
    const test::TempFolder folder;
    FolderClaim first(folder.Path());
    const FolderClaim second(folder.Path());
    EXPECT_EQ(second.Holder(), ::getpid());
    EXPECT_EQ(second.HandOver("a.poc", milliseconds(0)), HandedOver::NotAnswered);
    first.Listen();
    EXPECT_FALSE(first.TakeRequest());
    const struct {
        const char* line;
        bool taken;
        HandedOver outcome;
    } rows[] = {{"", true, HandedOver::Taken}, {"\\SHC nightly", false, HandedOver::Refused}};
    for (const auto& row : rows) {
        std::thread running([&] {
            std::optional<StartRequest> request;
            while (!request)
                request = first.TakeRequest();
            EXPECT_EQ(request->commandLine, row.line);
            first.Answer(*request, row.taken);
        });
        EXPECT_EQ(second.HandOver(row.line, milliseconds(5000)), row.outcome);
        running.join();
    }
}

}  // namespace
}  // namespace mailvane
