#pragma once

#include <cstdint>
#include <string>

namespace mailvane {

/// Turns a text into printable scrambled text with a key, and back. It keeps casual readers out; it
/// is no encryption. The same text and key always give the same result.
class Sifrant {
public:
    std::string Text;  ///< the working text

    void SetKey(const std::string& key);  ///< stores the key and seeds the generator
    void Shrink();                        ///< unpacks the working text to bytes
    std::string Sifriraj(const std::string& text, const std::string& key);
    std::string DeSifriraj(const std::string& text, const std::string& key);

private:
    void SeedGenerator();
    void XorText();
    void Stretch();
    double NextRandom();
    std::string key_;
    std::uint32_t generator_ = 0;
};

std::string ScrambleText(const std::string& text);
std::string UnscrambleText(const std::string& text);

}  // namespace mailvane
