#include "vessel/field_table.h"

#include "foundation/utf8.h"

#include <velmio/xml_helpers.hpp>

namespace velmio::vessel {

void assign(double &to, const std::string &text) { to = parseReal(text); }
void assign(int &to, const std::string &text) { to = parseInt(text); }
// Written "%d", so values above INT_MAX come back through the negative ints.
void assign(unsigned &to, const std::string &text) { to = static_cast<unsigned>(parseInt(text)); }
void assign(bool &to, const std::string &text) { to = parseFlag(text); }
void assign(Text &to, const std::string &text) { to = MORVAUString(fromUtf8(text)); }

namespace {
int storeText(xmlNode *element, const char *path, const char *attribute, const std::string &text) {
    xmlNode *at = descend(element, path, true);
    return (at && setAttribute(at, attribute, text)) ? 0 : -1;
}
}  // namespace

int storeValue(xmlNode *element, const char *path, const char *attribute, double value) {
    return storeText(element, path, attribute, formatReal(value));
}

int storeValue(xmlNode *element, const char *path, const char *attribute, int value) {
    return storeText(element, path, attribute, formatInt(value));
}

int storeValue(xmlNode *element, const char *path, const char *attribute, unsigned value) {
    return storeText(element, path, attribute, formatInt(static_cast<int>(value)));
}

int storeValue(xmlNode *element, const char *path, const char *attribute, bool value) {
    return storeText(element, path, attribute, formatFlag(value));
}

int storeValue(xmlNode *element, const char *path, const char *attribute, const Text &value) {
    if (!value) {  // unset texts are not written; one written before goes
        removeValue(element, path, attribute);
        return 0;
    }
    return storeText(element, path, attribute, xmlText(value->c_str()));
}

void removeValue(xmlNode *element, const char *path, const char *attribute) {
    xmlNode *at = descend(element, path, false);
    if (!at) return;
    removeAttribute(at, attribute);
    if (at != element && !at->properties && !at->children) VELM::DeleteNode(at);
}

void removeRows(xmlNode *container, const char *rowName) {
    xmlNode *child = container ? container->children : nullptr;
    while (child) {
        xmlNode *next = child->next;
        if (child->type == XML_ELEMENT_NODE && sameName(child->name, rowName)) VELM::DeleteNode(child);
        child = next;
    }
}

}  // namespace velmio::vessel
