#include <gtest/gtest.h>

#include "core/settings/RegistryStore.h"
#include "core/settings/Settings.h"
#include "core/settings/cRegistry.h"
#include "support/TestBench.h"

namespace mailvane {
namespace {

using Names = std::vector<std::string>;

const std::string Awkward[] = {" both ends ", "two\r\nlines", "\"quoted\"", "\\dword:00000001",
                               "a=b;[c]#d\t\xC3\xA4"};

struct Settings : testing::Test, test::TestBench {};

TEST_F(Settings, UserSettingsSurvive) {
    EXPECT_EQ(GetUserSetting(wb, "Settings", "Load"), NotFound);
    SaveUserSetting(wb, "Settings", "Load", "/home/ann/My mail");
    EXPECT_EQ(folder.Read("registry.ini"), "[Settings]\r\nLoad=/home/ann/My mail\r\n");
    for (const std::string& value : Awkward) {
        SaveUserSetting(wb, "Settings", "Load", value);
        EXPECT_EQ(GetUserSetting(wb, "settings", "LOAD"), value);
        SaveUserSetting(wb, value, value, "v");
        EXPECT_EQ(GetUserSetting(wb, value, value), "v") << value;
    }
    SaveUserSetting(wb, "Settings", "Load", "other", "Other program");
    EXPECT_EQ(GetUserSetting(wb, "Settings", "Load"), Awkward[4]);
    EXPECT_EQ(GetUserSetting(wb, "Settings", "Load", "Other program"), "other");
}

TEST_F(Settings, ProfileValuesHave255Characters) {
    const std::string path = folder.File("project.ini");
    EXPECT_EQ(IniRead("Database", "LastTable", path), "");
    for (const std::size_t length : {254u, 255u, 256u, 3000u}) {
        IniWrite("Database", "LastTable", std::string(length, 'x'), path);
        EXPECT_EQ(IniRead("Database", "LastTable", path).size(),
                  std::min<std::size_t>(length, 255));
    }
    IniWrite("Database", "LastTable", std::string(254, 'x') + "\xC3\xA4", path);
    EXPECT_EQ(IniRead("Database", "LastTable", path), std::string(254, 'x'));
    IniWrite("Database", "LastTable", "a\r\n[Other]\r\nkey=1", path);
    EXPECT_EQ(IniRead("Database", "LastTable", path), "a\r\n[Other]\r\nkey=1");
    EXPECT_EQ(IniRead("Other", "key", path), "");
}

TEST_F(Settings, RegistryValuesReadAsText) {
    const std::tuple<const char*, RegistryValue, std::string> rows[] = {
        {"short double word", {RegistryType::DoubleWord, 5u}, "005"},
        {"long double word", {RegistryType::DoubleWord, 4294967295u}, "4294967295"},
        {"big-endian", {RegistryType::DoubleWordBigEndian, 12u}, "012"},
        {"binary", {RegistryType::Binary, std::vector<unsigned char>{0, 5, 16, 171}}, "005010AB"},
        {"expandable", {RegistryType::ExpandString, "%HOME%\\a\r\n"}, "%HOME%\\a\r\n"},
        {"longest text", {RegistryType::String, std::string(2047, 'x')}, std::string(2047, 'x')},
        {"too long", {RegistryType::String, std::string(2048, 'x')}, NotFound},
    };
    const RegistryKey key{RegistryRoot::LocalMachine, "SOFTWARE\\Any"};
    for (const auto& [name, value, text] : rows) {
        ASSERT_TRUE(WriteRegistryValue(platform.registryFile, key, name, value));
        EXPECT_EQ(RegGetValue(wb, key.root, key.path, name), text) << name;
    }
    ASSERT_TRUE(RegSetValue(wb, key.root, key.path, "n", RegistryType::DoubleWord, "7"));
    EXPECT_EQ(RegGetValue(wb, key.root, key.path, "n"), "007");
    EXPECT_EQ(RegGetValue(wb, key.root, "SOFTWARE\\None", "n"), NotFound);
}

TEST_F(Settings, DamagedRegistryFileReadsAsText) {
    folder.Write("registry.ini",
                 "\xFF[[Settings\r\n=\r\n[Settings]\r\na=\\dword:xyz\r\nb=\\binary:1\r\n"
                 "c=\\:\\4\r\nd=\\\r\nno sign\r\n[Settings");
    const std::pair<const char*, const char*> rows[] = {
        {"a", "000"}, {"b", ""}, {"c", "\\4"}, {"d", "\\"}};
    for (const auto& [key, text] : rows)
        EXPECT_EQ(GetUserSetting(wb, "Settings", key), text) << key;
}

TEST_F(Settings, RegistryClassKeepsKeysAndValues) {
    cRegistry registry(wb);
    registry.SectionKey = "SOFTWARE\\Mailvane\\Columns";
    EXPECT_FALSE(registry.KeyExists());
    EXPECT_EQ(registry.DeleteKey().text,
              "Failed to delete registry Key: "
              "'HKEY_CURRENT_USER',Section: 'SOFTWARE\\Mailvane\\Columns'");
    EXPECT_FALSE(registry.CreateKey().Failed());
    EXPECT_TRUE(registry.KeyExists());

    registry.Default = "none";
    registry.ValueKey = "Path";
    EXPECT_EQ(registry.Value(), RegistryData("none"));
    EXPECT_FALSE(registry.SetValue("%HOME%/x").Failed());
    EXPECT_EQ(registry.Value(), RegistryData("%HOME%/x"));
    EXPECT_EQ(registry.ValueType, RegistryType::ExpandString);
    registry.ValueKey = "Width";
    registry.ValueType = RegistryType::DoubleWord;
    EXPECT_FALSE(registry.SetValue("300").Failed());
    EXPECT_EQ(registry.Value(), RegistryData(300u));
    EXPECT_EQ(GetUserSetting(wb, "Columns", "Width"), "300");

    Names names;
    EXPECT_FALSE(registry.EnumerateValues(names).Failed());
    EXPECT_EQ(names, (Names{"Path", "Width"}));
    EXPECT_FALSE(registry.DeleteValue().Failed());
    EXPECT_FALSE(registry.EnumerateValues(names).Failed());
    EXPECT_EQ(names, (Names{"Path"}));
    EXPECT_TRUE(registry.DeleteValue().Failed());

    SaveUserSetting(wb, "Columns\\Sub", "k", "v");
    SaveUserSetting(wb, "ColumnsToo", "k", "v");
    registry.SectionKey = "SOFTWARE\\Mailvane";
    EXPECT_FALSE(registry.EnumerateSections(names).Failed());
    EXPECT_EQ(names, (Names{"Columns", "ColumnsToo"}));
    registry.SectionKey = "SOFTWARE\\Mailvane\\Columns";
    EXPECT_FALSE(registry.DeleteKey().Failed());
    EXPECT_EQ(GetUserSetting(wb, "Columns\\Sub", "k"), NotFound);
    EXPECT_EQ(GetUserSetting(wb, "ColumnsToo", "k"), "v");
}

TEST_F(Settings, RegistryClassTellsWhatFailed) {
    platform.registryFile = folder.Write("file", "") + "/registry.ini";
    cRegistry registry(wb);
    registry.SectionKey = "A";
    registry.ValueKey = "b";
    const RegistryError error = registry.SetValue("c");
    EXPECT_TRUE(error.source.ends_with(".cRegistry"));
    EXPECT_EQ(error.text,
              "Failed to set registry value Key: 'HKEY_CURRENT_USER',Section: 'A',Key: 'b' to "
              "value: 'c'");
    EXPECT_TRUE(registry.CreateKey().text.starts_with("Failed to create registry Key: '"));
    Names names;
    EXPECT_TRUE(registry.EnumerateValues(names).text.starts_with("Failed to open key '"));
}

TEST_F(Settings, AssociationsStandInTheClassesSection) {
    cRegistry registry(wb);
    ExeAssociation association;
    association.program = "/usr/bin/mailvane";
    association.className = "Mailvane.Project";
    association.extension = ".poc";
    ASSERT_FALSE(registry.CreateEXEAssociation(association).Failed());
    ASSERT_FALSE(registry.CreateAdditionalEXEAssociations("Mailvane.Project", {".mp"}).Failed());
    const std::pair<const char*, const char*> rows[] = {
        {".mp", "Mailvane.Project"},
        {"Mailvane.Project\\shell\\open\\command", "/usr/bin/mailvane \"%1\""},
        {"Mailvane.Project\\shell\\print\\command", "/usr/bin/mailvane /p \"%1\""},
        {"Mailvane.Project\\shell\\add", NotFound},
        {"Mailvane.Project\\DefaultIcon", "/usr/bin/mailvane,0"},
    };
    for (const auto& [path, text] : rows)
        EXPECT_EQ(RegGetValue(wb, RegistryRoot::ClassesRoot, path, ""), text) << path;
}

TEST_F(Settings, GridLayoutsComeBack) {
    class frmGrid final : public WorkbenchForm {
    public:
        explicit frmGrid(Workbench& wb) : WorkbenchForm(wb, "frmGrid", "") {
            Grid1.SetColumns({{"email", "", 1500, 0, "", true}, {"a=[b]", "", 800, 1, "", true}});
        }
        Grid Grid1{*this, "Grid1"};
    };
    const std::string path = InProgramFolder("egd.lyt");
    Grid& grid = wb.forms.Load<frmGrid>().Grid1;
    LoadGridLayout(grid, path);
    EXPECT_EQ(grid.Columns()[0].width, 1500);
    grid.SetColumnWidth(0, 1234.5);
    grid.SetColumnPosition(0, 1);
    grid.SetColumnPosition(1, 0);
    SaveGridLayout(grid, path);
    EXPECT_EQ(IniRead("frmGrid", "email", path), "1234.5");
    EXPECT_EQ(IniRead("frmGrid", "email_POS", path), "1");
    grid.SetColumnWidth(0, 10);
    grid.SetColumnWidth(1, 10);
    grid.SetColumnPosition(1, 1);
    LoadGridLayout(grid, path);
    EXPECT_EQ(grid.Columns()[0].width, 1234.5);
    EXPECT_EQ(grid.Columns()[1].width, 800);
    EXPECT_EQ(grid.Columns()[1].position, 0);
    IniWrite("Clients", "email", "1e99", path);
    IniWrite("Clients", "email_POS", "-3", path);
    LoadGridLayoutIn(grid, path, "Clients");
    EXPECT_EQ(grid.Columns()[0].width, 1234.5);
    EXPECT_EQ(grid.Columns()[0].position, 1);
}

TEST_F(Settings, WindowPlaces) {
    const auto restoreWith = [&](const char* state) {
        mainForm.SetRect({});
        SaveUserSetting(wb, "Settings", "WindowState", state);
        RestoreWindowPlace(wb, mainForm, "Main", "WindowState");
        return mainForm.State();
    };
    EXPECT_EQ(restoreWith("0"), WindowState::Normal);
    EXPECT_EQ(mainForm.Rect().width, -1) << "nothing stored";
    mainForm.PlacedByUser({15, -30, 9000, 6000.5}, WindowState::Normal);
    StoreWindowPlace(wb, mainForm, "Main", "WindowState");
    EXPECT_EQ(restoreWith("1"), WindowState::Normal) << "never minimised";
    EXPECT_EQ(mainForm.Rect().top, -30);
    EXPECT_EQ(mainForm.Rect().width, 9000);
    EXPECT_EQ(restoreWith("2"), WindowState::Maximized);
    EXPECT_EQ(mainForm.Rect().width, -1) << "the width of a maximised window is not its own";
    EXPECT_EQ(mainForm.Rect().height, 6000.5);
    mainForm.PlacedByUser({0, 0, 1, 1}, WindowState::Maximized);
    StoreWindowPlace(wb, mainForm, "Main", "WindowState");
    EXPECT_EQ(GetUserSetting(wb, "Settings", "MainWidth"), "9000");
    EXPECT_EQ(GetUserSetting(wb, "Settings", "WindowState"), "2");
}

}  // namespace
}  // namespace mailvane
