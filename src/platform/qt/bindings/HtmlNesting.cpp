#include "platform/qt/bindings/HtmlNesting.h"

#include <libxml/HTMLparser.h>
#include <libxml/HTMLtree.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <string_view>

namespace mailvane {

namespace {

constexpr int MostTables = 12;

struct FreeDocument {
    void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
};
struct CloseBuffer {
    void operator()(xmlOutputBuffer* buffer) const { xmlOutputBufferClose(buffer); }
};

std::string_view NameOf(const xmlNode& node) {
    return node.type == XML_ELEMENT_NODE ? reinterpret_cast<const char*>(node.name) : "";
}

bool IsTablePart(std::string_view name) {
    constexpr std::string_view Names[] = {"table", "caption", "col", "colgroup", "tbody",
                                          "td",    "tfoot",   "th",  "thead",    "tr"};
    return std::find(std::begin(Names), std::end(Names), name) != std::end(Names);
}

/// The parser has bounded how deep this goes.
void FlattenTables(xmlNode& first, int tables) {
    for (xmlNode* node = &first; node; node = node->next) {
        const std::string_view name = NameOf(*node);
        const int inside = tables + (name == "table" ? 1 : 0);
        if (inside > MostTables && IsTablePart(name))
            xmlNodeSetName(node, reinterpret_cast<const xmlChar*>("span"));
        if (node->children && node->type == XML_ELEMENT_NODE)
            FlattenTables(*node->children, inside);
    }
}

QString HtmlOf(xmlDoc& document, xmlNode& root) {
    const std::unique_ptr<xmlOutputBuffer, CloseBuffer> buffer(xmlAllocOutputBuffer(nullptr));
    if (!buffer) return {};
    htmlNodeDumpFormatOutput(buffer.get(), &document, &root, "UTF-8", 0);
    return QString::fromUtf8(reinterpret_cast<const char*>(xmlOutputBufferGetContent(buffer.get())),
                             static_cast<qsizetype>(xmlOutputBufferGetSize(buffer.get())));
}

}  // namespace

QString BoundNesting(const QString& html) {
    QByteArray bytes = html.toUtf8();
    bytes.replace('\0', ' ');  // the parser would end there
    const std::unique_ptr<xmlDoc, FreeDocument> document(htmlReadMemory(
        bytes.constData(), static_cast<int>(bytes.size()), nullptr, "UTF-8",
        HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING | HTML_PARSE_NONET));
    xmlNode* root = document ? xmlDocGetRootElement(document.get()) : nullptr;
    if (!root) return html.toHtmlEscaped();  // there is no element
    FlattenTables(*root, 0);
    return HtmlOf(*document, *root);
}

}  // namespace mailvane
