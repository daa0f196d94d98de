#include "platform/os/SpellChecker.h"

#include <unicode/uchar.h>
#include <unicode/ucnv.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <hunspell.hxx>
#include <sstream>

#include "platform/os/Files.h"

namespace mailvane {

namespace {

constexpr const char* SystemFolder = "/usr/share/hunspell";
constexpr const char* UsualLanguage = "en_US";
constexpr std::string_view Blanks = " \t\r\n";

struct Letter {
    UChar32 code = 0;
    std::size_t end = 0;  ///< the byte behind it
    bool IsLetter() const { return u_isalpha(code) || u_charType(code) == U_NON_SPACING_MARK; }
    bool IsWordPart() const { return IsLetter() || u_isdigit(code); }
    bool IsApostrophe() const { return code == '\'' || code == 0x2019; }
};

Letter LetterAt(std::string_view text, std::size_t at) {
    const auto length = static_cast<std::int32_t>(text.size());
    auto next = static_cast<std::int32_t>(at);
    UChar32 code = 0;
    U8_NEXT(text.data(), next, length, code);
    return {code, static_cast<std::size_t>(next)};
}

/// The end of the word that begins at `start`.
std::size_t WordEnd(std::string_view text, std::size_t start, bool& hasDigits) {
    std::size_t end = start;
    while (end < text.size()) {
        const Letter letter = LetterAt(text, end);
        const bool joins = letter.IsApostrophe() && letter.end < text.size() &&
                           LetterAt(text, letter.end).IsLetter();
        if (!letter.IsWordPart() && !joins) break;
        hasDigits = hasDigits || u_isdigit(letter.code);
        end = letter.end;
    }
    return end;
}

bool IsAddress(std::string_view piece) {
    return piece.find('@') != std::string_view::npos ||
           piece.find("://") != std::string_view::npos || piece.starts_with("www.");
}

/// The place behind what is not checked and begins at `at`; `at` itself when nothing does.
std::size_t PassOver(std::string_view text, std::size_t at) {
    const bool beginsPiece = at == 0 || Blanks.find(text[at - 1]) != std::string_view::npos;
    if (beginsPiece) {
        const std::size_t end = std::min(text.find_first_of(Blanks, at), text.size());
        if (IsAddress(text.substr(at, end - at))) return end;
    }
    if (text[at] != '[') return at;
    const std::size_t close = text.find_first_of("]\r\n", at);
    return close != std::string_view::npos && text[close] == ']' ? close + 1 : at;
}

/// "de_DE" of "de_DE.UTF-8"; "" where no language is set.
std::string UsersLanguage() {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* value = std::getenv(name);
        if (!value || !*value) continue;
        const std::string locale(value);
        return locale.substr(0, locale.find_first_of(".@"));
    }
    return {};
}

std::string Convert(const std::string& text, const std::string& to, const std::string& from) {
    if (to == from) return text;
    std::string converted(text.size() * 4 + 4, '\0');
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t length = ucnv_convert(
        to.c_str(), from.c_str(), converted.data(), static_cast<std::int32_t>(converted.size()),
        text.data(), static_cast<std::int32_t>(text.size()), &status);
    if (U_FAILURE(status)) return text;
    converted.resize(static_cast<std::size_t>(length));
    return converted;
}

constexpr const char* TextEncoding = "UTF-8";

}  // namespace

std::optional<WordPlace> NextWord(std::string_view text, std::size_t from) {
    std::size_t at = from;
    while (at < text.size()) {
        if (const std::size_t behind = PassOver(text, at); behind != at) {
            at = behind;
            continue;
        }
        const Letter letter = LetterAt(text, at);
        if (!letter.IsWordPart()) {
            at = letter.end;
            continue;
        }
        bool hasDigits = false;
        const std::size_t end = WordEnd(text, at, hasDigits);
        if (!hasDigits) return WordPlace{at, end - at};
        at = end;
    }
    return std::nullopt;
}

std::unique_ptr<SpellChecker> SpellChecker::Open(const std::string& ownWords,
                                                 std::string& problem) {
    const char* const chosen = std::getenv("DICPATH");
    const std::string folder = chosen && *chosen ? chosen : SystemFolder;
    for (const std::string& language : {UsersLanguage(), std::string(UsualLanguage)}) {
        const std::string dictionary = folder + "/" + language;
        if (!language.empty() && IsFile(dictionary + ".aff") && IsFile(dictionary + ".dic"))
            return std::unique_ptr<SpellChecker>(new SpellChecker(dictionary, ownWords));
    }
    problem = "The spelling cannot be checked: there is no dictionary in '" + folder +
              "'.\r\nInstall a Hunspell dictionary, for instance the package 'hunspell-en-us'.";
    return nullptr;
}

SpellChecker::SpellChecker(const std::string& dictionary, std::string ownWords)
    : dictionary_(
          std::make_unique<Hunspell>((dictionary + ".aff").c_str(), (dictionary + ".dic").c_str())),
      encoding_(dictionary_->get_dict_encoding()),
      ownWords_(std::move(ownWords)) {
    ReadOwnWords();
}

SpellChecker::~SpellChecker() = default;

void SpellChecker::ReadOwnWords() {
    std::istringstream lines(ReadWholeFile(ownWords_).value_or(std::string()));
    for (std::string word; std::getline(lines, word);)
        if (!word.empty()) dictionary_->add(ToDictionary(word));
}

bool SpellChecker::Knows(const std::string& word) const {
    return dictionary_->spell(ToDictionary(word));
}

std::vector<std::string> SpellChecker::Suggestions(const std::string& word) const {
    std::vector<std::string> suggestions = dictionary_->suggest(ToDictionary(word));
    for (std::string& suggestion : suggestions)
        suggestion = FromDictionary(suggestion);
    return suggestions;
}

bool SpellChecker::AddOwnWord(const std::string& word) {
    dictionary_->add(ToDictionary(word));
    return WriteWholeFile(ownWords_,
                          ReadWholeFile(ownWords_).value_or(std::string()) + word + "\n");
}

std::string SpellChecker::ToDictionary(const std::string& text) const {
    return Convert(text, encoding_, TextEncoding);
}

std::string SpellChecker::FromDictionary(const std::string& text) const {
    return Convert(text, TextEncoding, encoding_);
}

}  // namespace mailvane
