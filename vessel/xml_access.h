// Attribute and path access beneath the public element helpers, shared by the
// entry tables, the document and the helpers themselves.
#ifndef VELMIO_VESSEL_XML_ACCESS_H
#define VELMIO_VESSEL_XML_ACCESS_H

#include <libxml/tree.h>

#include <cstddef>
#include <optional>
#include <string>

namespace velmio::vessel {

// UTF-8 for libxml2. Characters that XML 1.0 cannot carry (controls other
// than tab, newline and return; U+FFFE, U+FFFF) become U+FFFD, because
// libxml2 would write them as character references that no parser accepts
// and the whole file would then read as not XML.
std::string xmlText(const wchar_t *text);

// True when name equals wanted ignoring ASCII case.
bool sameName(const xmlChar *name, const char *wanted);

// The first element among node and its following siblings named name.
xmlNode *firstElementFrom(xmlNode *node, const char *name);

// The element at a '/'-separated path of child names below parent ("" is
// parent itself). With create, missing levels are appended; null on failure.
xmlNode *descend(xmlNode *parent, const char *path, bool create);

// The attribute of element named name: an exact match first, else one that
// matches ignoring ASCII case. Null when there is none.
xmlAttr *findAttribute(xmlNode *element, const char *name);

// The text of that attribute ("" for an empty one), or nothing when the
// element or the attribute is missing.
std::optional<std::string> attributeText(xmlNode *element, const char *name);

// Sets the attribute, replacing one whose name differs only in case.
bool setAttribute(xmlNode *element, const char *name, const std::string &value);
// Removes the attribute if present.
void removeAttribute(xmlNode *element, const char *name);

// Numbers as the document holds them, always in the "C" locale.
std::string formatReal(double value);  // "%f"
std::string formatInt(int value);      // "%d"
double parseReal(const std::string &text);  // atof
int parseInt(const std::string &text);      // atoi
// "yes" or "true" ignoring case; anything else is false.
bool parseFlag(const std::string &text);
inline const char *formatFlag(bool value) { return value ? "Yes" : "No"; }

// "%04d-%03d %02d:%02d:%02d" of a UTC time since 1980, fractions of a second
// truncated. -1 when capacity is below 18 or the time has no calendar form.
int formatTimeStamp(double time, char *buffer, std::size_t capacity);

inline const xmlChar *xml(const char *text) { return reinterpret_cast<const xmlChar *>(text); }
inline const xmlChar *xml(const std::string &text) { return xml(text.c_str()); }

}  // namespace velmio::vessel

#endif
