#include <gtest/gtest.h>

#include "merge/AddressBook.h"
#include "merge/clsAutoComplete.h"
#include "platform/forms/Form.h"
#include "support/TestBench.h"

namespace mailvane::test {
namespace {

TEST(AutoComplete, OffersTheFirstEntryThatBeginsWithTheSameLetter) {
    const std::string list = "\"Bob\" <bob@x>\",\" anna@x \",\"ANDREW@x\",\"éva@x\",\"";
    struct Row {
        const char* name;
        const char* typed;
        int key;
        const char* shown;
        const char* offered;
    };
    const Row rows[] = {
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
    for (const Row& row : rows) {
        box.SetText(row.typed);
        box.Select(box.Text().size(), 0);
        box.onKeyUp(row.key);
        EXPECT_EQ(box.Text(), row.shown) << row.name;
        EXPECT_EQ(box.Text().substr(box.SelectionStart(), box.SelectionLength()), row.offered)
            << row.name;
    }
}

TEST(AddressBook, AnAddressEntersOnce) {
    struct Row {
        const char* name;
        std::string list;
        std::string text;
        std::string after;
    };
    const Row rows[] = {
        {"the first", "", "a@x", "a@x\",\""},
        {"another", "a@x\",\"", "b@x", "a@x\",\"b@x\",\""},
        {"in other letters", "a@x\",\"b@x\",\"", "A@X", "a@x\",\"b@x\",\""},
        {"a part of one", "anna@x\",\"", "anna", "anna@x\",\"anna\",\""},
        {"nothing, to an empty list", "", "", ""},
        {"nothing, to a list", "a@x\",\"", "", "a@x\",\"\",\""},
    };
    for (const Row& row : rows) {
        std::string list = row.list;
        EXPECT_EQ(AppendAddress(list, row.text), row.after != row.list) << row.name;
        EXPECT_EQ(list, row.after) << row.name;
    }
}

}  // namespace
}  // namespace mailvane::test
