#include "platform/tables/sheets/PackageXml.h"

#include <charconv>
#include <orcus/sax_parser.hpp>
#include <orcus/zip_archive.hpp>
#include <orcus/zip_archive_stream.hpp>

namespace mailvane {

namespace {

/// Brings the attributes, which the library tells one by one, together with their element.
class SaxListener final : public orcus::sax_handler {
public:
    explicit SaxListener(XmlListener& listener) : listener_(listener) {}

    void end_declaration(std::string_view) { attributes_.Clear(); }
    void attribute(const orcus::sax::parser_attribute& attribute) {
        attributes_.Add(attribute.name, attribute.value);
    }
    void start_element(const orcus::sax::parser_element& element) {
        listener_.Start(element.name, attributes_);
        attributes_.Clear();
    }
    void end_element(const orcus::sax::parser_element& element) { listener_.End(element.name); }
    void characters(std::string_view text, bool) { listener_.Text(text); }

private:
    XmlListener& listener_;
    XmlAttributes attributes_;
};

}  // namespace

void XmlAttributes::Add(std::string_view name, std::string_view value) {
    if (pairs_.size() == count_) pairs_.emplace_back();
    pairs_[count_].first.assign(name);
    pairs_[count_].second.assign(value);
    ++count_;
}

std::string_view XmlAttributes::Of(std::string_view name) const {
    for (std::size_t i = 0; i < count_; ++i)
        if (pairs_[i].first == name) return pairs_[i].second;
    return {};
}

int XmlAttributes::NumberOf(std::string_view name, int fallback) const {
    const std::string_view text = Of(name);
    int number = fallback;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

struct Package::Archive {
    explicit Archive(const std::string& path) : stream(path.c_str()), archive(&stream) {
        archive.load();
    }
    orcus::zip_archive_stream_fd stream;
    orcus::zip_archive archive;
};

Package::Package(const std::string& path) : archive_(std::make_unique<Archive>(path)) {}
Package::~Package() = default;

bool Package::Read(const std::string& entry, XmlListener& listener) const {
    std::vector<unsigned char> bytes;
    if (!archive_->archive.read_file_entry(entry, bytes)) return false;
    // The library puts a zero behind an entry that it has expanded.
    while (!bytes.empty() && bytes.back() == 0)
        bytes.pop_back();
    SaxListener sax(listener);
    orcus::sax_parser<SaxListener> parser(reinterpret_cast<const char*>(bytes.data()), bytes.size(),
                                          sax);
    parser.parse();
    return true;
}

}  // namespace mailvane
