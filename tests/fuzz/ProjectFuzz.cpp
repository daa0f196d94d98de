// The files of a project and the user settings: scrambled text, control values, profile files.
// Whatever a file holds, reading it is harmless, and what the program writes it reads back.

#include <algorithm>

#include "core/project/Project.h"
#include "core/records/Sifrant.h"
#include "core/settings/ProfileText.h"
#include "core/settings/RegistryStore.h"
#include "fuzz/FuzzTarget.h"
#include "support/TestBench.h"

namespace mailvane::fuzz {
namespace {

/// One control of each kind whose value a project keeps, and some whose value it does not.
class frmValues final : public Form {
public:
    explicit frmValues(WindowSystem& windows) : Form(windows, "frmValues", "Values") {
        cmbServer.SetItems({"a", "b", "c"});
    }

    TextBox txtServer{*this, "txtServer", "localhost"};
    RichTextBox rtfSignature{*this, "rtfSignature", "kept"};
    Label lblServer{*this, "lblServer", "Server"};
    CheckBox chkWrap{*this, "chkWrap", true};
    Slider sldPause{*this, "sldPause", 0, 60, 5};
    OptionButton optPersonal{*this, "optPersonal", true};
    OptionButton optBulk{*this, "optBulk"};
    ComboBox cmbServer{*this, "cmbServer"};
    ComboBox cmbTyped{*this, "cmbTyped", ComboBox::Style::Editable};
    TextBox txtPacket{*this, "txtPacket", "19"};
};

void TryScrambling(const std::string& text) {
    static_cast<void>(Sifrant().DeSifriraj(text, text));
    const std::string scrambled = ScrambleText(text);
    Require(std::all_of(scrambled.begin(), scrambled.end(),
                        [](char c) { return c >= ';' && c <= 'z'; }),
            "scrambled text can be printed");
    Require(UnscrambleText(scrambled) == text, "scrambled text comes back");
    Require(Sifrant().DeSifriraj(Sifrant().Sifriraj(text, ProjectKey), ProjectKey) == text,
            "it comes back with any key");
}

/// A text of the kind that project files hold, once unscrambled.
void TryValues(Workbench& wb, const std::string& text) {
    frmValues form(wb.platform.windows);
    ApplyControlValues(wb, form, text);
    Require(form.sldPause.Value() >= 0 && form.sldPause.Value() <= 60, "a slider in its bounds");
    Require(form.cmbServer.ListIndex() >= -1 && form.cmbServer.ListIndex() < 3, "an entry or none");
    Require(!(form.optPersonal.IsSet() && form.optBulk.IsSet()), "one option of a group");
    Require(form.rtfSignature.Text() == "kept" && form.lblServer.Text() == "Server",
            "what has no value in a project keeps its own");

    const std::string values = ReadControlValues(wb, form);
    const std::string texts = form.txtServer.Text() + form.txtPacket.Text();
    // A text may hold a part of a separator that its neighbour makes whole.
    if (texts.find_first_of("#|*") != std::string::npos) return;
    frmValues other(wb.platform.windows);
    ApplyControlValues(wb, other, values);
    Require(ReadControlValues(wb, other) == values, "a saved project opens as it was");
}

void TryEscapes(const std::string& text) {
    Require(UnescapeProfileText(EscapeProfileName(text)) == text, "a name comes back");
    Require(UnescapeProfileText(EscapeProfileValue(text)) == text, "a value comes back");
    Require(UnescapeBytes(EscapeBytes(text, "=;")) == text, "bytes come back");
    static_cast<void>(UnescapeProfileText(text));
}

/// The text up to the next NUL, taken off the front.
std::string TakePart(std::string& rest) {
    const std::size_t end = std::min(rest.find('\0'), rest.size());
    const std::string part = rest.substr(0, end);
    rest.erase(0, end + 1);
    return part;
}

/// A profile file that somebody else has written, changed by the program.
void TryProfile(const std::string& path, const std::string& section, const std::string& key,
                const std::string& value) {
    const std::string before = ReadWholeFile(path).value_or("");
    const std::optional<std::string> old = ReadProfileValue(path, section, key);
    const std::size_t keys = ProfileKeys(path, section).size();
    const bool written = WriteProfileValue(path, section, key, value);
    if (!written) {
        Require(ReadWholeFile(path).value_or("") == before, "what is refused changes nothing");
        return;
    }
    std::string line = value;
    std::erase_if(line, [](char c) { return c == '\r' || c == '\n'; });
    Require(ReadProfileValue(path, section, key) == line, "a value that was written is read");
    const std::size_t now = ProfileKeys(path, section).size();
    Require(now == keys + (old ? 0 : 1), "one key came, or one value changed");
    const std::string after = ReadWholeFile(path).value_or("");
    Require(WriteProfileValue(path, section, key, value), "it can be written again");
    Require(ReadWholeFile(path) == after, "and is the same");
}

/// The user settings in a file that may be somebody else's.
void TrySetting(const std::string& path, const RegistryKey& key, const std::string& name,
                const std::string& value) {
    static_cast<void>(RegistrySubkeys(path, key));
    static_cast<void>(ReadRegistryValue(path, key, name));
    static_cast<void>(RegistryValueNames(path, key));
    const std::vector<unsigned char> bytes(value.begin(), value.end());
    for (const RegistryValue& stored :
         {RegistryValue{RegistryType::String, value},
          RegistryValue{RegistryType::ExpandString, value},
          RegistryValue{RegistryType::Binary, bytes},
          RegistryValue{RegistryType::DoubleWord, static_cast<std::uint32_t>(value.size())}}) {
        Require(WriteRegistryValue(path, key, name, stored), "any value can be written");
        const auto read = ReadRegistryValue(path, key, name);
        Require(read && read->type == stored.type && read->data == stored.data,
                "a setting comes back, whatever its name and bytes");
    }
}

/// The same in a file of the program's own.
void TryKey(const std::string& path, const RegistryKey& key, const std::string& name) {
    TrySetting(path, key, name, "value");
    TrySetting(path, {RegistryRoot::Users, "other"}, name, "value");
    const auto names = RegistryValueNames(path, key);
    Require(names.size() == 1 && SameName(names[0], name), "a setting is listed");
    Require(RegistryKeyExists(path, key), "its key is there");
    Require(DeleteRegistryValue(path, key, name), "a setting can be deleted");
    Require(!ReadRegistryValue(path, key, name), "and is gone");
    Require(DeleteRegistryKey(path, key), "a key can be deleted");
    Require(!RegistryKeyExists(path, key), "and is gone");
    Require(ReadRegistryValue(path, {RegistryRoot::Users, "other"}, name).has_value(),
            "the other keys stay");
}

}  // namespace

/// The whole input is a project file, scrambled and not. For profile files it is a section, a key
/// and a value, each ended by NUL, and the file's content.
void TryInput(const std::string& input) {
    test::HeadlessBench bench;
    TryScrambling(input);
    TryEscapes(input);
    TryValues(bench.wb, input);
    TryValues(bench.wb, Sifrant().DeSifriraj(input, ProjectKey));

    std::string rest = input;
    const std::string section = TakePart(rest), key = TakePart(rest), value = TakePart(rest);
    TryProfile(bench.folder.Write("profile.ini", rest), section, key, value);
    const RegistryKey registryKey{RegistryRoot::CurrentUser, section};
    TrySetting(bench.folder.Write("registry.ini", rest), registryKey, key, value);
    TryKey(bench.folder.File("own.ini"), registryKey, key);
}

}  // namespace mailvane::fuzz
