#include "send/direct/frmMailServer.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <filesystem>

#include "core/MessageBoxes.h"
#include "core/Paths.h"
#include "core/Running.h"
#include "core/Waiting.h"
#include "core/settings/Settings.h"
#include "core/settings/frmSettings.h"
#include "core/text/Text.h"
#include "platform/os/Files.h"
#include "send/run/SessionLog.h"

namespace mailvane {

namespace {

namespace fs = std::filesystem;

constexpr const char* Section = "MailServer";
constexpr const char* LogEnding = ".txt";
constexpr const char* UsualDays = "3";
constexpr std::size_t PartsOfAddress = 4;

struct LogFile {
    std::string name;  ///< without its ending
    std::string path;
    DateTime written;
};

DateTime WrittenAt(const fs::directory_entry& file) {
    std::error_code failed;
    const auto time = std::chrono::file_clock::to_sys(file.last_write_time(failed));
    return DateTime::FromUnixLocal(
        std::chrono::duration_cast<std::chrono::seconds>(time.time_since_epoch()).count());
}

/// In the order of their names.
std::vector<LogFile> SessionLogs(const std::string& folder) {
    std::vector<LogFile> logs;
    std::error_code failed;
    for (const auto& file : fs::directory_iterator(folder, failed)) {
        const bool isLog = ToLower(file.path().extension().string()) == LogEnding;
        if (isLog && IsFile(file.path()))
            logs.push_back({file.path().stem(), file.path(), WrittenAt(file)});
    }
    std::sort(logs.begin(), logs.end(),
              [](const LogFile& a, const LogFile& b) { return a.name < b.name; });
    return logs;
}

/// Days of the calendar between the two.
double DaysBetween(const DateTime& from, const DateTime& to) {
    return std::floor(to.Serial()) - std::floor(from.Serial());
}

}  // namespace

frmMailServer::frmMailServer(Workbench& wb)
    : WorkbenchForm(wb, "frmMailServer", "Internal mail server") {
    optDefaultDNS.onClick = optCustomDNS.onClick =
        chkDelete.onClick = [this] { ApplyDependentStates(); };
    chkEnable.SetTip("Deliver straight to the recipients' servers, without a server of your own");
    optDefaultDNS.SetTip("Look up the recipients' servers as this system looks up names");
    optCustomDNS.SetTip("Look them up at the name server that you enter");
    txtDNS.SetTip("Address of a name server, such as 192.0.2.53");
    chkLogs.SetTip("Write the conversation with the servers of each run to a file");
    cmbLogs.SetTip("Logs of this project");
    cmdLogs.SetTip("Show the chosen log");
    chkDelete.SetTip("Remove logs when this window opens");
    txtDays.SetTip("Days after which a log is old");
    cmdLAN.SetTip("Help on delivery from a local network");
}

void frmMailServer::OnLoad() {
    ReadSettings();
}

void frmMailServer::ReadSettings() {
    const auto setting = [this](const char* key) { return GetUserSetting(wb_, Section, key); };
    chkEnable.SetChecked(wb_.forms.Get<frmSettings>().chkServer.Checked());
    if (const std::string dns = setting("DNS"); dns != NotFound) txtDNS.SetText(dns);
    if (const std::string days = setting("Days"); days != NotFound) txtDays.SetText(days);
    chkLogs.SetChecked(setting("Logs") == "1");
    chkDelete.SetChecked(setting("Delete") == "1");
    (ToLower(setting("DefDNS")) == "false" ? optCustomDNS : optDefaultDNS).SetValue(true);
    ApplyDependentStates();
    ReadLogs();
}

void frmMailServer::ApplyDependentStates() {
    txtDNS.SetEnabled(optCustomDNS.IsSet());
    txtDays.SetEnabled(chkDelete.Checked());
    cmdLogs.SetEnabled(cmbLogs.Count() > 0);
}

// --- session logs -----------------------------------------------------------------------------

void frmMailServer::ReadLogs() {
    cmbLogs.Clear();
    if (FileExists(wb_.state.ProjectFolder, true)) {
        const std::string folder = SessionLogFolder(wb_.state.ProjectFolder);
        MakeFolders(folder);
        if (chkDelete.Checked() && IsNumeric(txtDays.Text())) DeleteOldLogs(folder);
        FillLogs(folder);
    }
    ApplyDependentStates();
}

void frmMailServer::DeleteOldLogs(const std::string& folder) {
    const DateTime now = wb_.platform.clock.Now();
    const double limit = NumberOf(txtDays.Text());
    for (const LogFile& log : SessionLogs(folder)) {
        if (DaysBetween(log.written, now) > limit) DeleteFile(log.path);
        YieldBriefly(wb_);
    }
}

void frmMailServer::FillLogs(const std::string& folder) {
    const std::vector<LogFile> logs = SessionLogs(folder);
    for (const LogFile& log : logs)
        cmbLogs.AddItem(log.name);
    const auto newest =
        std::max_element(logs.begin(), logs.end(),
                         [](const LogFile& a, const LogFile& b) { return a.written < b.written; });
    cmbLogs.SetListIndex(newest == logs.end() ? -1 : static_cast<int>(newest - logs.begin()));
}

void frmMailServer::OpenLog() {
    const std::string path =
        SessionLogFolder(wb_.state.ProjectFolder) + PathSeparator + cmbLogs.Text() + LogEnding;
    if (FileExists(path) && !OpenDocument(wb_, path))
        Tell(wb_, "No program could be started for '" + path + "'.", BoxIcon::Exclamation);
}

// --- buttons ----------------------------------------------------------------------------------

void frmMailServer::ShowHelp() {
    ShowHelpContext(wb_);
}

void frmMailServer::Accept() {
    txtDNS.SetText(Trim(txtDNS.Text()));
    if (optCustomDNS.IsSet() && Split(txtDNS.Text(), ".").size() != PartsOfAddress) {
        Tell(wb_, "Wrong IP address of your DNS server.", BoxIcon::Exclamation);
        optDefaultDNS.SetValue(true);
    }
    wb_.forms.Get<frmSettings>().chkServer.SetChecked(chkEnable.Checked());
    if (!IsNumeric(txtDays.Text())) {
        chkDelete.SetChecked(false);
        txtDays.SetText(UsualDays);
    }
    WriteSettings();
    Hide();
}

void frmMailServer::WriteSettings() {
    const auto write = [this](const char* key, const std::string& value) {
        SaveUserSetting(wb_, Section, key, value);
    };
    write("DefDNS", optDefaultDNS.IsSet() ? "true" : "false");
    write("DNS", txtDNS.Text());
    write("Logs", chkLogs.ShownText());
    write("Delete", chkDelete.ShownText());
    write("Days", txtDays.Text());
}

void ShowMailServer(Workbench& wb) {
    if (auto* open = wb.forms.Find<frmMailServer>(); open && !open->Visible()) open->ReadSettings();
    ShowModalDialog(wb, wb.forms.Get<frmMailServer>());
}

}  // namespace mailvane
