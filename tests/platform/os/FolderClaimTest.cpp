#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <memory>

#include "platform/os/FolderClaim.h"
#include "support/TempFolder.h"

namespace mailvane {
namespace {

TEST(FolderClaim, OneHolderByWhateverPath) {
    const test::TempFolder folder;
    const std::string path = folder.Path() + "/program";
    auto first = std::make_unique<FolderClaim>(path);
    EXPECT_TRUE(first->Held()) << "the folder is made";
    std::filesystem::create_directory_symlink(path, folder.Path() + "/link");
    const FolderClaim second(folder.Path() + "/link");
    EXPECT_FALSE(second.Held());
    EXPECT_EQ(second.Holder(), ::getpid());
    EXPECT_TRUE(FolderClaim(folder.Path() + "/other").Held());
    first.reset();
    EXPECT_TRUE(FolderClaim(path).Held()) << "free again";
}

TEST(FolderClaim, OnlyAHolderThatListensIsAskedToShow) {
    const test::TempFolder folder;
    FolderClaim first(folder.Path());
    const FolderClaim second(folder.Path());
    EXPECT_FALSE(second.AskToShow());
    first.Listen();
    EXPECT_FALSE(first.TakeShowRequest());
    EXPECT_TRUE(second.AskToShow());
    EXPECT_TRUE(second.AskToShow());
    EXPECT_TRUE(first.TakeShowRequest()) << "both at once";
    EXPECT_FALSE(first.TakeShowRequest());
}

}  // namespace
}  // namespace mailvane
