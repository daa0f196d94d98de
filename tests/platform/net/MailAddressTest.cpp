#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/net/mime/MailAddress.h"
#include "platform/net/mime/TextCoding.h"

namespace mailvane {
namespace {

using namespace std::string_literals;
using List = std::vector<std::string>;

TEST(MailAddress, AddressesOfAList) {
    const struct {
        const char* name;
        std::string list;
        List addresses;
    } rows[] = {
        {"empty", "", {}},
        {"nothing but separators", " , ;, <>,", {}},
        {"bare", "a@b.c", {"a@b.c"}},
        {"several, in order", "b@x, a@x;c@x", {"b@x", "a@x", "c@x"}},
        {"names", "Ann <a@x>, \"Ben\" <b@x>", {"a@x", "b@x"}},
        {"comma in quotes", "\"Doe, John\" <j@x>", {"j@x"}},
        {"comma without quotes", "Doe, John <j@x>, b@x", {"j@x", "b@x"}},
        {"local names stay", "root, postmaster", {"root", "postmaster"}},
        {"escaped quote", "\"a\\\", b\" <a@x>, c@x", {"a@x", "c@x"}},
        {"quoted local part", "\"a, b\"@x", {"\"a, b\"@x"}},
        {"comments", "a@x (one, two (three)), (x) b@x", {"a@x", "b@x"}},
        {"group", "Friends: a@x, B <b@x>;, c@x", {"a@x", "b@x", "c@x"}},
        {"empty group", "undisclosed-recipients:;", {}},
        {"link", "mailto:a@x", {"a@x"}},
        {"address literal", "a@[IPv6:::1], b@x", {"a@[IPv6:::1]", "b@x"}},
        {"source route", "<@r,@s:a@x>", {"a@x"}},
        {"open bracket", "Ann <a@x, Ben <b@x>", {"Ann a@x", "b@x"}},
        {"open quote", "\"Ann <a@x>, b@x", {"a@x", "b@x"}},
        {"open comment", "(Ann <a@x>, b@x", {"a@x", "b@x"}},
        {"line breaks and NUL", "a@x\r\nBcc: e@x\0\n, b@x"s, {"a@xBcc: e@x", "b@x"}},
        {"a closing bracket adds no parameter", "a@x> NOTIFY=NEVER", {"a@x NOTIFY=NEVER"}},
        {"outside ASCII",
         "Žan <ž@š.si>, a@BÜCHER.example, b@[ž], c@ž..x, d@\xFF",
         {"ž@xn--pga.si", "a@xn--bcher-kva.example", "b@[ž]", "c@ž..x", "d@\xFF"}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(AddressesOf(row.list), row.addresses) << row.name;
}

TEST(MailAddress, WhatIsAMailbox) {
    const std::string local = std::string(64, 'a') + "@";
    for (const std::string& address :
         {"a@x"s, "root"s, "o'neil+tag@x-y.org"s, "a..b@x"s, "\"a, @>b\"@x"s, "a@[127.0.0.1]"s,
          "a@[IPv6:::1]"s, "ž@š.si"s, local + std::string(255, 'x')})
        EXPECT_TRUE(IsMailbox(address)) << address;
    for (const std::string& address : {""s,
                                       "Ann a@x"s,
                                       "a@x NOTIFY=NEVER"s,
                                       "a@x>"s,
                                       "a@xb@y"s,
                                       "a@x\t"s,
                                       "a@x\x7F"s,
                                       "a\0@x"s,
                                       "\"a@x"s,
                                       "\"a\"x"s,
                                       "\"a\"b@x"s,
                                       "a@[x> SIZE=1]"s,
                                       "a@[x]y@[z]"s,
                                       "a@x:25"s,
                                       "(a)@x"s,
                                       "a\\@x"s,
                                       "@x"s,
                                       "a@"s,
                                       "a@.x"s,
                                       "a@x..y"s,
                                       "\xC5@x"s,
                                       local + std::string(256, 'x')})
        EXPECT_FALSE(IsMailbox(address)) << address;
}

TEST(MailAddress, HostileListsAreReadInNoTime) {
    const std::string end = "a@x";
    for (const std::string& noise : {"["s, "("s, "<"s, "\""s, ":"s, "a@b:"s, ","s, "a,"s, "\\"s})
        for (const std::string& front : {""s, std::string(100000, 'x') + "@"}) {
            std::string list = front;
            while (list.size() < 200000)
                list += noise;
            EXPECT_FALSE(AddressesOf(list + ",<" + end + ">").empty());
        }
}

TEST(MailAddress, HeaderText) {
    const std::string words = "aaaaaaaaa bbbbbbbbb ccccccccc ddddddddd eeeeeeeee fffffffff ";
    const struct {
        const char* name;
        std::string value;
        std::string header;
    } rows[] = {
        {"plain", "Hello, world", "Hello, world"},
        {"header injection", "a\r\nBcc: b@x\0c"s, "aBcc: b@xc"},
        {"outside ASCII", "Žan", "=?utf-8?B?xb1hbg==?="},
        {"Windows-1252", "caf\xE9 \x80", "=?utf-8?B?Y2Fmw6kg4oKs?="},
        {"folded at a blank", words + "ggggggggg hhhhhhhhh", words + "ggggggggg\r\n hhhhhhhhh"},
        {"blanks at the ends", "  a  ", "a"},
        {"no line of blanks alone", words + std::string(30, ' ') + "h",
         words.substr(0, 59) + "\r\n" + std::string(31, ' ') + "h"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(EncodeHeaderText(row.value, 8), row.header) << row.name;
}

TEST(MailAddress, LongTextIsCutBetweenCharacters) {
    std::string value;
    for (int i = 0; i < 100; ++i)
        value += "ž€";
    const std::string header = "Subject: " + EncodeHeaderText(value, 8);
    EXPECT_LE(ScanText(header).longestLine, 76U);
    // Every word begins a character: no base64 group of a continuation byte at its start.
    for (std::size_t at = header.find("?B?"); at != std::string::npos;
         at = header.find("?B?", at + 1)) {
        const std::string start = header.substr(at + 3, 1);
        EXPECT_TRUE(start == "x" || start == "4") << start;
    }
    for (const char filler : {'x', ' '})
        EXPECT_LE(ScanText(EncodeHeaderText("a" + std::string(5000, filler) + "b", 8)).longestLine,
                  76U);
}

TEST(MailAddress, HeaderAddresses) {
    const struct {
        const char* name;
        std::string value;
        std::string header;
    } rows[] = {
        {"as it stands", "\"Doe, J\" <j@x>; b@x", "\"Doe, J\" <j@x>, b@x"},
        {"only the name is encoded", "Žan <z@x>, b@x", "=?utf-8?B?xb1hbg==?= <z@x>, b@x"},
        {"quoted name", "\"Žan, Ž\" <z@x>", "=?utf-8?B?xb1hbiwgxb0=?= <z@x>"},
        {"comment", "z@x (Žan)", "=?utf-8?B?xb1hbg==?= <z@x>"},
        {"name with a comma", "Doe \"D\", J <j@x>", "\"Doe \\\"D\\\", J\" <j@x>"},
        {"header injection", "a@x\r\nBcc: b@x, c@x", "c@x"},
        {"an address outside ASCII", "ž@x, c@x", "c@x"},
        {"a domain outside ASCII", "Ann <a@bücher.example>", "\"Ann\" <a@xn--bcher-kva.example>"},
        {"quote that nothing closes", "\"Ann <a@x>, b@x", "\"Ann\" <a@x>, b@x"},
        {"bracket that nothing closes", "<Ann <a@x>", "\"Ann\" <a@x>"},
        {"comment that nothing closes", "Ann <a@x> ((b), c@x", "\"Ann\" <a@x>, c@x"},
        {"text behind the address", "Ann <a@x>Bcc: e@x", "\"Ann Bcc: e@x\" <a@x>"},
        {"address for a name", "e@x <a@x>", "\"e@x\" <a@x>"},
        {"items without an address", "<>, a@x, g:;", "a@x"},
        {"folded between items",
         "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaa@example.com, bbbbbbbbbbbbbbbbbbbbbbbbbbbbbb@example.com",
         "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaa@example.com,\r\n "
         "bbbbbbbbbbbbbbbbbbbbbbbbbbbbbb@example.com"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(EncodeHeaderAddresses(row.value, 3, false), row.header) << row.name;
    std::string many;
    for (int i = 0; i < 500; ++i)
        many += "Žan Žagar " + std::to_string(i) + " <z@example.com>,";
    EXPECT_LE(ScanText(EncodeHeaderAddresses(many, 3, true)).longestLine, 78U);
}

TEST(TextCoding, Utf8) {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"ž€😀", "ž€😀"},
        {"\x80\x9E\xFF\x81", "€žÿ\xEF\xBF\xBD"},
        {"a\xC5", "aÅ"},                          // cut character
        {"\xC0\x80", "À€"},                       // overlong
        {"\xED\xA0\x80", "í\xC2\xA0€"},           // surrogate
        {"\xF4\x90\x80\x80", "ô\xEF\xBF\xBD€€"},  // past the last code point
    };
    for (const auto& [text, utf8] : rows)
        EXPECT_EQ(ToUtf8(text), utf8);
}

TEST(TextCoding, QuotedPrintable) {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"a=b\n", "a=3Db\r\n"},
        {"end \rtab\t\r\n", "end=20\r\ntab=09\r\n"},
        {"ž", "=C5=BE"},
        {std::string(76, 'x'), std::string(76, 'x')},
        {std::string(77, 'x'), std::string(75, 'x') + "=\r\nxx"},
        {std::string(74, 'x') + "žy", std::string(74, 'x') + "=\r\n=C5=BEy"},
    };
    for (const auto& [text, coded] : rows) {
        std::string out;
        AppendQuotedPrintable(out, text);
        EXPECT_EQ(out, coded);
    }
}

}  // namespace
}  // namespace mailvane
