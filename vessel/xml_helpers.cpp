#include <velmio/xml_helpers.hpp>

#include "foundation/classic_locale.h"
#include "foundation/utf8.h"
#include "foundation/wide_copy.h"
#include "platform/fault_injection.h"
#include "platform/native_path.h"
#include "vessel/xml_access.h"

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlerror.h>

#include <cstdio>
#include <optional>
#include <string>

using velmio::vessel::xml;

namespace VELM {

namespace {
// The first child of the node a Read function searches from: the root
// element stands for its children, any other node for itself.
xmlNode *searchStart(xmlNode *start) {
    if (start->doc && xmlDocGetRootElement(start->doc) == start) return start->children;
    return start;
}

std::string narrow(const wchar_t *name) { return velmio::vessel::xmlText(name); }

// libxml2 would print its own parser messages on standard error; a file that
// does not parse or cannot be written is reported by the caller, so they are
// held back meanwhile (the handlers are libxml2's per-thread state).
void ignoreGeneric(void *, const char *, ...) {}
void ignoreStructured(void *, xmlError *) {}

// libxml2 sets up its global state on first use, and that setup races when
// several threads make their first call together: it is done once here.
bool initLibxml() {
    static const bool ready = (xmlInitParser(), true);
    return ready;
}

class QuietLibxml {
public:
    QuietLibxml()
        : generic_((initLibxml(), xmlGenericError)), genericContext_(xmlGenericErrorContext),
          structured_(xmlStructuredError),
          structuredContext_(xmlStructuredErrorContext) {
        xmlSetGenericErrorFunc(nullptr, ignoreGeneric);
        xmlSetStructuredErrorFunc(nullptr, ignoreStructured);
    }
    ~QuietLibxml() {
        xmlSetGenericErrorFunc(genericContext_, generic_);
        xmlSetStructuredErrorFunc(structuredContext_, structured_);
    }
    QuietLibxml(const QuietLibxml &) = delete;
    QuietLibxml &operator=(const QuietLibxml &) = delete;

private:
    xmlGenericErrorFunc generic_;
    void *genericContext_;
    xmlStructuredErrorFunc structured_;
    void *structuredContext_;
};

// The element holding the value of a Read function, and its "value" text.
xmlNode *findValue(xmlNode *start, const wchar_t *name, std::optional<std::string> &text) {
    xmlNode *element = getNode(start, name);
    if (element) text = velmio::vessel::attributeText(element, "value");
    return element;
}
}  // namespace

void CopyString(wchar_t *destination, std::size_t capacity, const char *source) {
    if (!destination || capacity == 0) return;
    velmio::copyBounded(destination, capacity, velmio::fromUtf8(source).c_str());
}

void CopyString(wchar_t *destination, const char *source) { CopyString(destination, kXmlTextCapacity, source); }

xmlNode *getNode2(xmlNode *start, const char *name) {
    if (!start || !name) return nullptr;
    return velmio::vessel::firstElementFrom(searchStart(start), name);
}

xmlNode *getNode(xmlNode *start, const wchar_t *name) {
    if (!name) return nullptr;
    return getNode2(start, narrow(name).c_str());
}

xmlNode *CreateNode(xmlNode *parent, const wchar_t *name) {
    if (!parent || !name) return nullptr;
    const std::string narrowName = narrow(name);
    if (xmlNode *existing = velmio::vessel::firstElementFrom(parent->children, narrowName.c_str())) return existing;
    return xmlNewChild(parent, nullptr, xml(narrowName), nullptr);
}

void DeleteNode(xmlNode *node) {
    if (!node) return;
    xmlUnlinkNode(node);
    xmlFreeNode(node);
}

xmlNode *WriteElementDouble(xmlNode *parent, const wchar_t *name, double value) {
    xmlNode *element = CreateNode(parent, name);
    if (element) velmio::vessel::setAttribute(element, "value", velmio::vessel::formatReal(value));
    return element;
}

xmlNode *WriteElementInt(xmlNode *parent, const wchar_t *name, int value) {
    xmlNode *element = CreateNode(parent, name);
    if (element) velmio::vessel::setAttribute(element, "value", velmio::vessel::formatInt(value));
    return element;
}

xmlNode *WriteElementString(xmlNode *parent, const wchar_t *name, const wchar_t *value) {
    xmlNode *element = CreateNode(parent, name);
    if (element && value) velmio::vessel::setAttribute(element, "value", narrow(value));
    return element;
}

xmlNode *ReadElementString(xmlNode *start, const wchar_t *name, wchar_t *destination, std::size_t capacity) {
    if (destination && capacity > 0) destination[0] = L'\0';
    std::optional<std::string> text;
    xmlNode *element = findValue(start, name, text);
    if (text) CopyString(destination, capacity, text->c_str());
    return element;
}

xmlNode *ReadElementString(xmlNode *start, const wchar_t *name, wchar_t *destination) {
    return ReadElementString(start, name, destination, kXmlTextCapacity);
}

xmlNode *ReadElementInt(xmlNode *start, const wchar_t *name, int *value) {
    if (value) *value = 0;
    std::optional<std::string> text;
    xmlNode *element = findValue(start, name, text);
    if (text && value) *value = velmio::vessel::parseInt(*text);
    return element;
}

xmlNode *ReadElementDouble(xmlNode *start, const wchar_t *name, double *value) {
    if (value) *value = 0.0;
    std::optional<std::string> text;
    xmlNode *element = findValue(start, name, text);
    if (text && value) *value = velmio::vessel::parseReal(*text);
    return element;
}

xmlDoc *OpenXmlFile(const wchar_t *path) {
    if (!path) return nullptr;
    QuietLibxml quiet;
    return xmlParseFile(velmio::platform::nativePath(path).c_str());
}

xmlDoc *CreateXmlFile(const wchar_t *rootName, float version) {
    if (!rootName) return nullptr;
    initLibxml();
    xmlDoc *doc = xmlNewDoc(xml("1.0"));
    if (!doc) return nullptr;
    doc->encoding = xmlStrdup(xml("UTF-8"));
    xmlNode *root = xmlNewDocNode(doc, nullptr, xml(narrow(rootName)), nullptr);
    if (!root) {
        xmlFreeDoc(doc);
        return nullptr;
    }
    xmlDocSetRootElement(doc, root);
    char text[64];
    {
        velmio::ClassicLocaleScope classic;
        std::snprintf(text, sizeof text, "%2.2lf", static_cast<double>(version));
    }
    if (!velmio::vessel::setAttribute(root, "Version", text)) {
        xmlFreeDoc(doc);
        return nullptr;
    }
    return doc;
}

int SaveXmlFile(xmlDoc *doc, const wchar_t *path) {
    if (!doc || !path) return -1;
    // libxml2 opens and writes the file itself: the seam sees one write.
    if (velmio::platform::injectFault(velmio::platform::FileOp::Write)) return -1;
    QuietLibxml quiet;
    return xmlSaveFormatFile(velmio::platform::nativePath(path).c_str(), doc, 1);
}

void FreeXmlDoc(xmlDoc *doc) {
    if (doc) xmlFreeDoc(doc);
}

xmlNode *CopyNode(xmlNode *node, int recursive) { return node ? xmlCopyNode(node, recursive) : nullptr; }

}  // namespace VELM
