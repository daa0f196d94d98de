#include "core/settings/frmOptions.h"

#include <utility>

#include "core/MessageBoxes.h"
#include "core/Paths.h"
#include "core/notices/frmMSGCompact.h"
#include "core/settings/Settings.h"
#include "core/settings/frmSettings.h"
#include "core/text/Text.h"

namespace mailvane {

namespace {

constexpr const char* Section = "Settings";
constexpr const char* MessagesSection = "Messages";
constexpr const char* OrientationKey = "PopUp Orientation";
constexpr const char* SecondsKey = "TooltipTimeOut";
constexpr double MostSeconds = 120;

/// An option that is on or off, and its key in the user's settings.
struct OptionRow {
    const char* key;
    CheckBox frmOptions::*box;
};

constexpr OptionRow Options[] = {
    {"Load", &frmOptions::chkLoad},
    {"Save", &frmOptions::chkSave},
    {"Upgrade", &frmOptions::chkUpgrade},
    {"Welcome", &frmOptions::chkWelcome},
    {"CompactMessages", &frmOptions::chkCompactMessages},
    {"CompactDatabase", &frmOptions::chkCompactDatabase},
    {"PopUp", &frmOptions::chkPopUp},
    {"HideTooltips", &frmOptions::chkHide},
};

/// A message that the user can do without. The stored value is "1" when it is not to come.
struct MessageRow {
    const char* key;
    const char* item;
};

constexpr MessageRow Messages[] = {
    {"Compact", "Show warning before compact operation"},
    {"DeleteDatabase", "Confirm before deleting records"},
    {"DeleteEmail", "Confirm before deleting messages"},
    {"MemoSort", "Show warning when sorting a memo column"},
    {"Outbox", "Show information about the Outbox after merging"},
    {"Resources", "Show information about system resources (only for Win95/98)"},
    {"SndRecvError", "Ask to show error log after sending or receiving e-mail"},
    {"LargeEmailDB", "Show warning when messages database is too large"},
};

constexpr int CompactMessage = 0;  ///< of Messages

}  // namespace

frmOptions::frmOptions(Workbench& wb) : WorkbenchForm(wb, "frmOptions", "Options") {
    for (const MessageRow& row : Messages)
        List1.AddItem(row.item);
    txtHide.onLeave = [this] { LimitSeconds(); };
    chkProxy.onClick = [this] {
        txtProxy.SetEnabled(chkProxy.Checked());
        txtPort.SetEnabled(chkProxy.Checked());
    };
    chkProxy.onClick();
}

void frmOptions::OnLoad() {
    for (const OptionRow& row : Options) {
        const std::string value = GetUserSetting(wb_, Section, row.key);
        if (!EqualText(value, NotFound)) (this->*row.box).SetChecked(NumberOf(value) == 1);
    }
    LoadOrientation();
    const std::string seconds = GetUserSetting(wb_, Section, SecondsKey);
    if (!EqualText(seconds, NotFound)) txtHide.SetText(seconds);
    LimitSeconds();
    ShowProxy(ReadProxySettings(wb_));
    LoadMessages();
}

/// The messages' own boxes may have been ticked since the form was loaded.
void frmOptions::OnActivate() {
    if (!std::exchange(open_, true)) LoadMessages();
}

std::array<OptionButton*, 4> frmOptions::Orientations() {
    return {&optOrientation0, &optOrientation1, &optOrientation2, &optOrientation3};
}

void frmOptions::LoadOrientation() {
    const std::string value = GetUserSetting(wb_, Section, OrientationKey);
    const auto buttons = Orientations();
    for (std::size_t i = 0; i < buttons.size(); ++i)
        if (value == std::to_string(i)) buttons[i]->SetValue(true);
}

void frmOptions::LoadMessage(int index) {
    List1.SetSelected(index, GetUserSetting(wb_, MessagesSection, Messages[index].key) != "1");
}

void frmOptions::LoadMessages() {
    for (int i = 0; i < List1.Count(); ++i)
        LoadMessage(i);
}

void frmOptions::LimitSeconds() {
    if (!IsNumeric(txtHide.Text()))
        txtHide.SetText("10");
    else if (NumberOf(txtHide.Text()) > MostSeconds)
        txtHide.SetText("120");
}

/// Asks first; the answer may also have been not to be asked again.
bool frmOptions::ConfirmCompacting() {
    const bool confirmed = ConfirmCompaction(wb_);
    LoadMessage(CompactMessage);
    return confirmed && wb_.shell;
}

void frmOptions::CompactMessages() {
    if (!ConfirmCompacting()) return;
    wb_.runs.EndThen(Holds::Store, [&wb = wb_] {
        if (wb.shell->CompactMessageStore()) Tell(wb, MessagesCompactedText);
    });
}

void frmOptions::CompactDatabase() {
    const std::string path = wb_.forms.Get<frmSettings>().txtAccessDBPath.Text();
    if (!FileExists(path))
        return Tell(wb_, "Please create new database or open existing database first.");
    if (!ConfirmCompacting()) return;
    wb_.runs.EndThen(RecipientViews, [&wb = wb_, path] {
        if (wb.shell->CompactRecipients())
            Tell(wb, "Successfully compacted the '" + FileNameFromPath(path, PathSeparator, false) +
                         "' database.");
    });
}

void frmOptions::ShowProxy(const ProxySettings& proxy) {
    optDial.SetValue(proxy.modem);
    optDirect.SetValue(!proxy.modem);
    chkProxy.SetChecked(proxy.useProxy);
    txtProxy.SetText(proxy.server);
    txtPort.SetText(proxy.port);
}

void frmOptions::ApplyTipTime() {
    const auto seconds = std::chrono::seconds(static_cast<int>(NumberOf(txtHide.Text())));
    Windows().SetTipTime(chkHide.Checked() ? std::optional(seconds) : std::nullopt);
}

void frmOptions::Store() {
    for (const OptionRow& row : Options)
        SaveUserSetting(wb_, Section, row.key, (this->*row.box).ShownText());
    const auto buttons = Orientations();
    for (std::size_t i = 0; i < buttons.size(); ++i)
        if (buttons[i]->IsSet()) SaveUserSetting(wb_, Section, OrientationKey, std::to_string(i));
    LimitSeconds();
    SaveUserSetting(wb_, Section, SecondsKey, txtHide.Text());
    SaveProxySettings(wb_, {optDial.IsSet(), chkProxy.Checked(), txtProxy.Text(), txtPort.Text()});
    for (int i = 0; i < List1.Count(); ++i)
        SaveUserSetting(wb_, MessagesSection, Messages[i].key, List1.IsSelected(i) ? "0" : "1");
    ApplyTipTime();
    open_ = false;
    Hide();
}

/// The form comes back at once with what is stored: other parts read its controls at any time.
void frmOptions::Cancel() {
    Workbench& wb = wb_;
    Unload();
    wb.forms.Load<frmOptions>();
}

}  // namespace mailvane
