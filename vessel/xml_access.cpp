#include "vessel/xml_access.h"

#include <velmio/time_conversions.h>

#include "foundation/classic_locale.h"
#include "foundation/utf8.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace velmio::vessel {

namespace {
bool allowedInXml(wchar_t c) {
    const unsigned long u = static_cast<unsigned long>(c);
    if (u < 0x20) return u == 0x9 || u == 0xA || u == 0xD;
    return u != 0xFFFE && u != 0xFFFF;
}

char foldAscii(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }
}  // namespace

std::string xmlText(const wchar_t *text) {
    if (!text) return std::string();
    std::wstring clean(text);
    for (auto &c : clean)
        if (!allowedInXml(c)) c = static_cast<wchar_t>(0xFFFD);
    return toUtf8(clean);
}

bool sameName(const xmlChar *name, const char *wanted) {
    return name && wanted && xmlStrcasecmp(name, xml(wanted)) == 0;
}

xmlNode *firstElementFrom(xmlNode *node, const char *name) {
    for (xmlNode *n = node; n; n = n->next)
        if (n->type == XML_ELEMENT_NODE && sameName(n->name, name)) return n;
    return nullptr;
}

xmlNode *descend(xmlNode *parent, const char *path, bool create) {
    if (!parent || !path) return nullptr;
    xmlNode *at = parent;
    const char *p = path;
    while (*p) {
        const char *end = std::strchr(p, '/');
        std::string part = end ? std::string(p, end) : std::string(p);
        xmlNode *child = firstElementFrom(at->children, part.c_str());
        if (!child) {
            if (!create) return nullptr;
            child = xmlNewChild(at, nullptr, xml(part), nullptr);
            if (!child) return nullptr;
        }
        at = child;
        if (!end) break;
        p = end + 1;
    }
    return at;
}

xmlAttr *findAttribute(xmlNode *element, const char *name) {
    if (!element || !name || element->type != XML_ELEMENT_NODE) return nullptr;
    xmlAttr *folded = nullptr;
    for (xmlAttr *a = element->properties; a; a = a->next) {
        if (!a->name) continue;
        if (std::strcmp(reinterpret_cast<const char *>(a->name), name) == 0) return a;
        if (!folded && sameName(a->name, name)) folded = a;
    }
    return folded;
}

std::optional<std::string> attributeText(xmlNode *element, const char *name) {
    xmlAttr *a = findAttribute(element, name);
    if (!a) return std::nullopt;
    xmlChar *value = xmlNodeListGetString(element->doc, a->children, 1);
    std::string text = value ? reinterpret_cast<const char *>(value) : "";
    xmlFree(value);
    return text;
}

bool setAttribute(xmlNode *element, const char *name, const std::string &value) {
    if (!element) return false;
    xmlAttr *old = findAttribute(element, name);
    if (old && std::strcmp(reinterpret_cast<const char *>(old->name), name) != 0) xmlRemoveProp(old);
    return xmlSetProp(element, xml(name), xml(value)) != nullptr;
}

void removeAttribute(xmlNode *element, const char *name) {
    if (xmlAttr *a = findAttribute(element, name)) xmlRemoveProp(a);
}

std::string formatReal(double value) {
    ClassicLocaleScope classic;
    char buffer[400];  // "%f" of the largest double needs 317 characters
    std::snprintf(buffer, sizeof buffer, "%f", value);
    return buffer;
}

std::string formatInt(int value) {
    char buffer[16];
    std::snprintf(buffer, sizeof buffer, "%d", value);
    return buffer;
}

double parseReal(const std::string &text) {
    ClassicLocaleScope classic;
    return std::atof(text.c_str());
}

int parseInt(const std::string &text) {
    ClassicLocaleScope classic;
    // atoi's overflow is undefined: read wide and clamp, keeping atoi's rules.
    long long v = std::strtoll(text.c_str(), nullptr, 10);
    if (v > 2147483647LL) v = 2147483647LL;
    if (v < -2147483648LL) v = -2147483648LL;
    return static_cast<int>(v);
}

bool parseFlag(const std::string &text) {
    auto equals = [&](const char *word) {
        std::size_t n = std::strlen(word);
        if (text.size() != n) return false;
        for (std::size_t i = 0; i < n; ++i)
            if (foldAscii(text[i]) != word[i]) return false;
        return true;
    };
    return equals("yes") || equals("true");
}

int formatTimeStamp(double time, char *buffer, std::size_t capacity) {
    if (!buffer || capacity < 18) return -1;
    int year = -1, day = -1, hours = 0, minutes = 0, seconds = 0;
    double secondsOfDay = -1.0, fraction = 0.0;
    TmUTCs80toYDS(time, &year, &day, &secondsOfDay);
    if (year < 0 || day < 1 || !(secondsOfDay >= 0.0)) return -1;
    TmStoHMSX(secondsOfDay, &hours, &minutes, &seconds, &fraction);
    ClassicLocaleScope classic;
    int n = std::snprintf(buffer, capacity, "%04d-%03d %02d:%02d:%02d", year, day, hours, minutes, seconds);
    return (n > 0 && static_cast<std::size_t>(n) < capacity) ? 0 : -1;
}

}  // namespace velmio::vessel
