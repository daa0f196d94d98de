#include <gtest/gtest.h>

#include "core/settings/RegistryStore.h"
#include "core/settings/Settings.h"
#include "core/settings/frmOptions.h"
#include "support/TestBench.h"

namespace mailvane {
namespace {

constexpr const char* MessageKeys[] = {"Compact", "DeleteDatabase", "DeleteEmail",  "MemoSort",
                                       "Outbox",  "Resources",      "SndRecvError", "LargeEmailDB"};

struct FormOptions : testing::Test, test::TestBench {
    frmOptions& Form() { return wb.forms.Get<frmOptions>(); }
    /// The form as it is after the next start.
    frmOptions& Again() {
        Form().Unload();
        return Form();
    }
    std::string Stored(const char* section, const char* key) const {
        return GetUserSetting(wb, section, key);
    }
    void Store(const char* section, const char* key, const char* value) {
        SaveUserSetting(wb, section, key, value);
    }
};

TEST_F(FormOptions, EveryKeyGoesThereAndBack) {
    const std::tuple<const char*, const char*, const char*, const char*, const char*> rows[] = {
        {"Settings", "Load", "chkLoad", "1", "1"},
        {"Settings", "Save", "chkSave", "1", "1"},
        {"Settings", "Upgrade", "chkUpgrade", "1", "1"},
        {"Settings", "Welcome", "chkWelcome", "1", "1"},
        {"Settings", "CompactMessages", "chkCompactMessages", "1", "1"},
        {"Settings", "CompactDatabase", "chkCompactDatabase", "1", "1"},
        {"Settings", "PopUp", "chkPopUp", "1", "1"},
        {"Settings", "PopUp Orientation", "optOrientation2", "1", "2"},
        {"Settings", "HideTooltips", "chkHide", "1", "1"},
        {"Settings", "TooltipTimeOut", "txtHide", "30", "30"},
        {"Proxy", "UseProxy", "chkProxy", "1", "yes"},
        {"Proxy", "ProxyServerName", "txtProxy", "proxy.example.com", "proxy.example.com"},
        {"Proxy", "HttpPort", "txtPort", "3128", "3128"},
        {"Proxy", "Connection", "optDial", "1", "modem"},
    };
    for (const auto& [section, key, control, value, stored] : rows)
        EXPECT_EQ(Form().FindControl(control)->SetByUser(value), ControlAnswer::Done) << control;
    Form().List1.SetSelected(3, false);
    Form().cmdOk.Press();
    EXPECT_EQ(wb.forms.Find<frmOptions>(), &Form()) << "stays loaded";
    EXPECT_EQ(windows.TipTime(), std::chrono::seconds(std::stoi(Form().txtHide.Text())));
    for (const auto& [section, key, control, value, stored] : rows)
        EXPECT_EQ(Stored(section, key), stored) << key;
    for (const char* key : MessageKeys)
        EXPECT_EQ(Stored("Messages", key), std::string(key) == "MemoSort" ? "1" : "0") << key;

    frmOptions& again = Again();
    for (const auto& [section, key, control, value, stored] : rows)
        EXPECT_EQ(again.FindControl(control)->ShownText(), value) << key;
    EXPECT_EQ(again.List1.SelectedItems(), (std::vector<int>{0, 1, 2, 4, 5, 6, 7}));
    for (const auto& [section, key, control, value, stored] : rows)
        again.FindControl(control)->SetByUser("0");
    again.optDirect.SetByUser("1");
    again.cmdOk.Press();
    EXPECT_EQ(Stored("Settings", "Load"), "0");
    EXPECT_EQ(windows.TipTime(), std::nullopt) << "tips stay";
    EXPECT_EQ(Stored("Proxy", "UseProxy"), "no");
    EXPECT_EQ(Stored("Proxy", "Connection"), "direct");
}

TEST_F(FormOptions, WhatIsNotStoredKeepsItsDesign) {
    Store("Settings", "PopUp Orientation", "4");
    Store("Settings", "Load", "2");
    Store("Settings", "Welcome", "not found");
    EXPECT_TRUE(Form().optOrientation0.IsSet());
    EXPECT_FALSE(Form().chkWelcome.Checked() || Form().chkLoad.Checked());
    EXPECT_TRUE(Form().optDirect.IsSet());
    EXPECT_EQ(Form().txtHide.Text(), "10");
    EXPECT_EQ(Form().List1.SelectedItems().size(), 8u);
    EXPECT_FALSE(Form().txtProxy.Enabled());
    Form().chkProxy.SetByUser("1");
    EXPECT_TRUE(Form().txtPort.Enabled());
}

TEST_F(FormOptions, SecondsOfTips) {
    const std::pair<const char*, const char*> rows[] = {
        {"120", "120"}, {"121", "120"}, {"120.5", "120"}, {"1e9", "120"},
        {"abc", "10"},  {"", "10"},     {"7x", "10"},     {"0", "0"},
    };
    for (const auto& [typed, kept] : rows) {
        Form().txtHide.SetByUser(typed);
        EXPECT_EQ(Form().txtHide.Text(), kept) << typed;
        Form().txtHide.SetText(typed);
        Form().cmdOk.Press();
        EXPECT_EQ(Stored("Settings", "TooltipTimeOut"), kept) << typed;
        Store("Settings", "TooltipTimeOut", typed);
        EXPECT_EQ(Again().txtHide.Text(), kept) << typed;
    }
}

TEST_F(FormOptions, CancelledChangesAreNotInForce) {
    Store("Settings", "Save", "1");
    for (const bool closeBox : {false, true}) {
        Form().Show();
        Form().chkSave.SetByUser("0");
        Form().List1.SetSelected(0, false);
        if (closeBox)
            Form().OnCloseBox();
        else
            Form().cmdCancel.Press();
        const auto* live = wb.forms.Find<frmOptions>();
        ASSERT_NE(live, nullptr) << "its controls are read at any time";
        EXPECT_FALSE(live->Visible());
        EXPECT_TRUE(live->chkSave.Checked());
        EXPECT_TRUE(live->List1.IsSelected(0));
        EXPECT_EQ(Stored("Settings", "Save"), "1");
    }
}

TEST_F(FormOptions, AMessageSwitchedOffByItsOwnBoxStaysOff) {
    Form();
    Store("Messages", "Outbox", "1");
    Form().Show();
    EXPECT_FALSE(Form().List1.IsSelected(4));
    Form().List1.SetSelected(1, false);
    Form().BringToFront();
    EXPECT_FALSE(Form().List1.IsSelected(1)) << "what the user does meanwhile is kept";
    Form().cmdOk.Press();
    EXPECT_EQ(Stored("Messages", "Outbox"), "1");
    EXPECT_EQ(Stored("Messages", "DeleteDatabase"), "1");
}

TEST(Proxy, ServerOfTheDesktopsList) {
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"http=a.example.com:8080", "a.example.com", "8080"},
        {"ftp=f:21;http=a:80;https=s:443", "a", "80"},
        {"http=a:80:90;", "a", "80"},
        {"http=a", "a", "old port"},
        {"http=:80", "", "80"},
        {"http=a:80http=b:90", "a", "80"},
        {"https=s:443", "old", "old port"},
        {"a:80", "old", "old port"},
        {"http=", "old", "old port"},
        {"", "old", "old port"},
        {NotFound, "old", "old port"},
    };
    for (const auto& [list, server, port] : rows) {
        ProxySettings settings{false, false, "old", "old port"};
        TakeProxyServer(list, settings);
        EXPECT_EQ(settings.server, server) << list;
        EXPECT_EQ(settings.port, port) << list;
    }
}

TEST_F(FormOptions, DesktopsProxyCountsWhenNothingIsStored) {
    RegSetValue(wb, RegistryRoot::CurrentUser,
                "Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings", "ProxyServer",
                RegistryType::String, "http=desk:80");
    EXPECT_EQ(ReadProxySettings(wb).server, "desk") << "absent";
    SaveProxySettings(wb, {});
    EXPECT_EQ(ReadProxySettings(wb).port, "80") << "empty";
    SaveUserSetting(wb, "Proxy", "HttpPort", "3128");
    EXPECT_EQ(ReadProxySettings(wb).server, "") << "one of them is enough";
}

}  // namespace
}  // namespace mailvane
