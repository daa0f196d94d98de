#include <gtest/gtest.h>

#include "merge/message/AddressBook.h"
#include "merge/message/clsAutoComplete.h"
#include "platform/forms/Form.h"
#include "support/TestBench.h"

namespace mailvane::test {
namespace {

TEST(AutoComplete, OffersTheFirstEntryThatBeginsWithTheSameLetter) {
    const std::string list = "\"Bob\" <bob@x>\",\" anna@x \",\"ANDREW@x\",\"éva@x\",\"";
    const std::tuple<const char*, const char*, int, const char*, const char*> rows[] = {
        {"the begin of an entry", "an", 'N', "anna@x", "na@x"},
        {"as typed", "AN", 'N', "ANna@x", "na@x"},
        {"a later entry", "and", 'D', "andREW@x", "REW@x"},
        {"a whole entry", "anna@x", 'X', "anna@x", ""},
        {"inside, with the same first letter", "a@", 0xFF, "a@na@x", "na@x"},
        {"inside only", "bob", 'B', "bob", ""},
        {"letters of several bytes", "É", 0xFF, "Éva@x", "va@x"},
        {"unknown", "z", 'Z', "z", ""},
        {"nothing typed", "", 'A', "", ""},
        {"the digit 0", "an", '0', "an", ""},
        {"the digit 1", "an", '1', "anna@x", "na@x"},
        {"backspace", "an", 8, "an", ""},
        {"an editing key", "an", 0, "an", ""},
    };
    HeadlessBench bench;
    Form form(bench.windows, "frmTest", "Test");
    TextBox box(form, "txtFrom");
    clsAutoComplete completion;
    completion.SetCompleteTextbox(box);
    completion.SearchList = list;
    completion.Delimeter = AddressDelimiter;
    for (const auto& [name, typed, key, shown, offered] : rows) {
        box.SetText(typed);
        box.Select(box.Text().size(), 0);
        box.onKeyUp(key);
        EXPECT_EQ(box.Text(), shown) << name;
        EXPECT_EQ(box.Text().substr(box.SelectionStart(), box.SelectionLength()), offered) << name;
    }
}

TEST(AddressBook, AnAddressEntersOnce) {
    const std::tuple<const char*, std::string, std::string, std::string> rows[] = {
        {"the first", "", "a@x", "a@x\",\""},
        {"another", "a@x\",\"", "b@x", "a@x\",\"b@x\",\""},
        {"in other letters", "a@x\",\"b@x\",\"", "A@X", "a@x\",\"b@x\",\""},
        {"a part of one", "anna@x\",\"", "anna", "anna@x\",\"anna\",\""},
        {"nothing, to an empty list", "", "", ""},
        {"nothing, to a list", "a@x\",\"", "", "a@x\",\"\",\""},
    };
    for (const auto& [name, before, text, after] : rows) {
        std::string list = before;
        EXPECT_EQ(AppendAddress(list, text), after != before) << name;
        EXPECT_EQ(list, after) << name;
    }
}

}  // namespace
}  // namespace mailvane::test
