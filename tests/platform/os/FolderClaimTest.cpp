#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/os/FolderClaim.h"
#include "support/TempFolder.h"

namespace mailvane {
namespace {

TEST(FolderClaim, OnlyAHolderThatListensIsAskedToShow) {
    const test::TempFolder folder;
    FolderClaim first(folder.Path());
    const FolderClaim second(folder.Path());
    EXPECT_FALSE(second.AskToShow());
    EXPECT_EQ(second.Holder(), ::getpid());
    first.Listen();
    EXPECT_FALSE(first.TakeShowRequest());
    EXPECT_TRUE(second.AskToShow());
    EXPECT_TRUE(second.AskToShow());
    EXPECT_TRUE(first.TakeShowRequest()) << "both at once";
    EXPECT_FALSE(first.TakeShowRequest());
}

}  // namespace
}  // namespace mailvane
