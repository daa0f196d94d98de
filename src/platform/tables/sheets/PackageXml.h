#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace mailvane {

/// The attributes of an element by name without its prefix; the first of two counts.
class XmlAttributes {
public:
    std::string_view Of(std::string_view name) const;  ///< "" when there is none
    int NumberOf(std::string_view name, int fallback) const;
    void Add(std::string_view name, std::string_view value);
    void Clear() { count_ = 0; }

private:
    std::vector<std::pair<std::string, std::string>> pairs_;
    std::size_t count_ = 0;  ///< of pairs_ that are in use
};

/// Is told what an XML text consists of. Names come without their prefix.
class XmlListener {
public:
    virtual ~XmlListener() = default;
    virtual void Start(std::string_view name, const XmlAttributes& attributes) = 0;
    virtual void End(std::string_view name) = 0;
    virtual void Text(std::string_view text) = 0;
};

/// An office document: XML files in an archive. What is damaged throws std::exception, so this is
/// for reading processes only.
class Package {
public:
    explicit Package(const std::string& path);
    ~Package();
    Package(const Package&) = delete;
    Package& operator=(const Package&) = delete;

    /// False when the package has no such entry.
    bool Read(const std::string& entry, XmlListener& listener) const;

private:
    struct Archive;
    std::unique_ptr<Archive> archive_;
};

}  // namespace mailvane
