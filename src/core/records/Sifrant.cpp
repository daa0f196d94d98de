#include "core/records/Sifrant.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <utility>

namespace mailvane {

namespace {

constexpr int FirstCode = 59;  ///< ";": scrambled text lies between it and "z"
constexpr int LowBits = 63;
constexpr const char* DefaultKey = "Sifrant";
constexpr const char* ProgramKey = "k4mt7wq2zp8xr3vbn";

/// Spreads every bit of a number over all of its bits.
std::uint32_t Mix(std::uint64_t value) {
    value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9u;
    value = (value ^ (value >> 27)) * 0x94D049BB133111EBu;
    return static_cast<std::uint32_t>((value ^ (value >> 31)) >> 16);
}

double Fraction(std::uint32_t state) {
    return static_cast<double>(state) / 4294967296.0;
}

/// Restarts the generator from a number alone; the result is its first value.
double Restart(std::uint32_t& generator, double from) {
    generator = Mix(std::bit_cast<std::uint64_t>(from) + 0x9E3779B97F4A7C15u);
    return Fraction(generator);
}

void Reseed(std::uint32_t& generator, double with) {
    generator = Mix(std::bit_cast<std::uint64_t>(with) ^ generator);
}

int Code(char character) {
    return static_cast<unsigned char>(character);
}

}  // namespace

double Sifrant::NextRandom() {
    generator_ += 0x9E3779B9u;
    return Fraction(Mix(generator_));
}

void Sifrant::SetKey(const std::string& key) {
    key_ = key.empty() ? DefaultKey : key;
    SeedGenerator();
}

void Sifrant::SeedGenerator() {
    Reseed(generator_, Restart(generator_, -1));
    for (const char character : key_) {
        const double from = -NextRandom() * Code(character);
        Reseed(generator_, Restart(generator_, from));
    }
}

void Sifrant::XorText() {
    for (char& character : Text) {
        const int random = static_cast<int>(std::floor(NextRandom() * 256));
        character = static_cast<char>(Code(character) ^ random);
    }
}

void Sifrant::Stretch() {
    std::string stretched;
    stretched.reserve(Text.size() + (Text.size() + 2) / 3);
    int bits = 0;
    for (std::size_t i = 1; i <= Text.size(); ++i) {
        const int code = Code(Text[i - 1]);
        const int high = code / 64;
        stretched.push_back(static_cast<char>((code & LowBits) + FirstCode));
        if (i % 3 == 1) bits = high * 16;
        if (i % 3 == 2) bits |= high * 4;
        if (i % 3 == 0) {
            stretched.push_back(static_cast<char>((bits | high) + FirstCode));
            bits = 0;
        }
    }
    if (Text.size() % 3 != 0) stretched.push_back(static_cast<char>(bits + FirstCode));
    Text = std::move(stretched);
}

void Sifrant::Shrink() {
    const std::size_t length = Text.size();
    const std::size_t count = length == 0 ? 0 : (length - 1) - (length - 1) / 4;
    // Codes outside the range come from files that are not ours: they give some byte, no more.
    const auto valueAt = [this](std::size_t position) {
        return Code(Text[position - 1]) - FirstCode;
    };
    std::string shrunk;
    shrunk.reserve(count);
    std::size_t read = 0;
    std::size_t packed = 0;
    for (std::size_t i = 1; i <= count; ++i) {
        const int low = valueAt(++read);
        if (i % 3 == 1) packed = std::min(packed + 4, length);
        const int shift = i % 3 == 1 ? 4 : i % 3 == 2 ? 2 : 0;
        const int high = ((valueAt(packed) >> shift) & 3) * 64;
        if (i % 3 == 0) ++read;
        shrunk.push_back(static_cast<char>(low | high));
    }
    Text = std::move(shrunk);
}

std::string Sifrant::Sifriraj(const std::string& text, const std::string& key) {
    Text = text;
    SetKey(key);
    XorText();
    Stretch();
    return Text;
}

std::string Sifrant::DeSifriraj(const std::string& text, const std::string& key) {
    Text = text;
    SetKey(key);
    Shrink();
    XorText();
    return Text;
}

std::string ScrambleText(const std::string& text) {
    return Sifrant().Sifriraj(text, ProgramKey);
}

std::string UnscrambleText(const std::string& text) {
    return Sifrant().DeSifriraj(text, ProgramKey);
}

}  // namespace mailvane
