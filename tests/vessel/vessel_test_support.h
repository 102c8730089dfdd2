// Helpers of the vessel tests: documents from text and back.
#ifndef VELMIO_TESTS_VESSEL_TEST_SUPPORT_H
#define VELMIO_TESTS_VESSEL_TEST_SUPPORT_H

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <memory>
#include <string>

namespace velmio::test {

struct DocFree {
    void operator()(xmlDoc *doc) const { xmlFreeDoc(doc); }
};
using Doc = std::unique_ptr<xmlDoc, DocFree>;

// Parses text without blank text between elements, as the vessel reads files.
inline Doc parseXml(const std::string &text) {
    return Doc(xmlReadMemory(text.data(), static_cast<int>(text.size()), "test.xml", nullptr,
                             XML_PARSE_NOBLANKS | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
}

// The subtree of node as indented text, the way files are written.
inline std::string dump(xmlNode *node) {
    xmlBuffer *buffer = xmlBufferCreate();
    xmlNodeDump(buffer, node->doc, node, 0, 1);
    std::string text(reinterpret_cast<const char *>(xmlBufferContent(buffer)));
    xmlBufferFree(buffer);
    return text;
}

inline std::string attribute(xmlNode *node, const char *name) {
    xmlChar *value = xmlGetProp(node, reinterpret_cast<const xmlChar *>(name));
    std::string text = value ? reinterpret_cast<const char *>(value) : "<absent>";
    xmlFree(value);
    return text;
}

}  // namespace velmio::test

#endif
