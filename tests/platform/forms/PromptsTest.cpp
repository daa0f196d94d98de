#include <gtest/gtest.h>

#include "platform/forms/HeadlessWindows.h"
#include "support/ManualClock.h"

namespace mailvane {
namespace {

class Prompts : public testing::Test {
protected:
    BoxAnswer Box(const std::string& text, BoxButtons buttons) {
        return windows.MessageBox({text, "Mailvane", BoxIcon::Question, buttons});
    }

    test::ManualClock clock;
    HeadlessWindows windows{clock};
};

TEST_F(Prompts, BoxesTakeTheFirstAnswerThatIsForThem) {
    windows.prompts.QueueBox(BoxAnswer::No, "delete");
    windows.prompts.QueueBox(BoxAnswer::Yes);
    windows.prompts.QueueBox(BoxAnswer::Cancel);
    EXPECT_EQ(Box("Save it?", BoxButtons::YesNo), BoxAnswer::Yes);
    EXPECT_EQ(Box("Really delete?", BoxButtons::YesNo), BoxAnswer::No);
    EXPECT_EQ(Box("Go on?", BoxButtons::OkCancel), BoxAnswer::Cancel);
    EXPECT_EQ(windows.prompts.Failure(), std::nullopt);
    windows.prompts.QueueBox(BoxAnswer::Yes);
    EXPECT_EQ(Box("Stop?", BoxButtons::OkCancel), BoxAnswer::Cancel);
    EXPECT_EQ(windows.prompts.Failure(), "the message box \"Stop?\" offers no button \"yes\"");
}

TEST_F(Prompts, UnansweredBoxesAreClosedAndTheFirstIsTold) {
    const std::tuple<BoxButtons, BoxAnswer, BoxAnswer> rows[] = {
        {BoxButtons::Ok, BoxAnswer::Ok, BoxAnswer::Ok},
        {BoxButtons::OkCancel, BoxAnswer::Cancel, BoxAnswer::Ok},
        {BoxButtons::YesNo, BoxAnswer::No, BoxAnswer::Yes},
        {BoxButtons::YesNoCancel, BoxAnswer::Cancel, BoxAnswer::Yes}};
    for (const auto& [buttons, closed, byDefault] : rows) {
        HeadlessWindows fresh(clock);
        EXPECT_EQ(fresh.MessageBox({"One\r\ntwo", "T", BoxIcon::None, buttons}), closed);
        EXPECT_EQ(fresh.prompts.Failure(), "nothing answers the message box \"T\": \"One\\ntwo\"");
        PromptScript relaxed;
        relaxed.UseDefaults();
        fresh.PlayPrompts(&relaxed);
        EXPECT_EQ(fresh.MessageBox({"One", "T", BoxIcon::None, buttons}), byDefault);
        EXPECT_EQ(relaxed.Failure(), std::nullopt);
        EXPECT_EQ(fresh.InputBox({"Name", "T", ""}), std::nullopt);
        EXPECT_NE(relaxed.Failure(), std::nullopt);  // no default for what must be typed
    }
}

TEST_F(Prompts, FilesComeInOrderAndGetTheirExtensionWhenSaved) {
    const FileRequest open{};
    FileRequest save;
    save.save = true;
    save.defaultExtension = "poc";
    for (const auto* path : {"/p.d/plain", "/p.d/named.txt", "", "/p.d/plain"})
        windows.prompts.QueueFile(path);
    windows.prompts.QueueFile(std::nullopt);
    windows.prompts.QueueFileFirst("/first");
    EXPECT_EQ(windows.FileDialog(open), "/first");
    for (const char* path : {"/p.d/plain.poc", "/p.d/named.txt", ""})
        EXPECT_EQ(windows.FileDialog(save), path);
    EXPECT_EQ(windows.FileDialog(open), "/p.d/plain");
    EXPECT_EQ(windows.FileDialog(save), std::nullopt);
    EXPECT_EQ(windows.prompts.Failure(), std::nullopt);
    EXPECT_EQ(windows.FileDialog(open), std::nullopt);
    EXPECT_NE(windows.prompts.Failure(), std::nullopt);
}

TEST_F(Prompts, ExpectedBoxesAreFoundOnceAndInOrder) {
    windows.prompts.UseDefaults();
    for (const auto* text : {"first", "second", "first"})
        Box(text, BoxButtons::Ok);
    const std::pair<const char*, bool> rows[] = {
        {"fir", false}, {"second", true}, {"second", false}, {"first", true}, {"first", false}};
    for (const auto& [text, found] : rows)
        EXPECT_EQ(windows.prompts.ExpectBox(text), found) << text;
}

}  // namespace
}  // namespace mailvane
