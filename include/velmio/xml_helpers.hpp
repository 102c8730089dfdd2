// The XML element layer of the vessel configuration: thin functions over
// libxml2's own node and document types.
//
// Storage convention: every scalar setting is an element whose value sits in
// its attribute "value" (<Latency value="0.000000"/>), never in element text.
// Names and texts are wide strings, handed to libxml2 as UTF-8 and widened
// back from UTF-8 on reading. Element names match ignoring ASCII case.
//
// Child lookup (getNode, getNode2 and the Read functions): when the start node
// is the root element of its document the search runs over the root's
// children; any other start node is searched itself and then its following
// siblings, so callers pass the root or the first child of the parent whose
// children they search. Only element nodes match.
//
// The functions live in namespace VELM with C++ linkage so that their generic
// names cannot clash with a caller's own functions.
#ifndef VELMIO_XML_HELPERS_HPP
#define VELMIO_XML_HELPERS_HPP

#include <velmio/export.h>

#include <cstddef>

// libxml2's types, declared as libxml2 declares them so that this header can
// be included with or without <libxml/tree.h>.
typedef struct _xmlNode xmlNode;
typedef struct _xmlDoc xmlDoc;

namespace VELM {

// Capacity in wide characters, terminator included, that the buffer forms
// without a length (CopyString, ReadElementString) assume: longer texts are
// truncated to kXmlTextCapacity - 1 characters. Pass a length to lift it.
constexpr std::size_t kXmlTextCapacity = 256;

// Widens source (UTF-8) into destination, truncating to capacity characters
// with the terminator. A null destination or a zero capacity does nothing; a
// null source gives the empty string.
VELMIO_API void CopyString(wchar_t *destination, std::size_t capacity, const char *source);
// As above with a destination of at least kXmlTextCapacity characters.
VELMIO_API void CopyString(wchar_t *destination, const char *source);

// The element named name (ignoring case) by child lookup from start, or null.
VELMIO_API xmlNode *getNode2(xmlNode *start, const char *name);
VELMIO_API xmlNode *getNode(xmlNode *start, const wchar_t *name);

// The child element of parent named name, appended when there is none;
// null when an argument is null or the element cannot be made.
VELMIO_API xmlNode *CreateNode(xmlNode *parent, const wchar_t *name);
// Unlinks node from its document and frees it with its subtree; null is ignored.
VELMIO_API void DeleteNode(xmlNode *node);

// Write the child element name of parent (made when missing, never duplicated)
// with attribute "value" set to the value: doubles as "%f" (six decimals, so
// values below 5e-7 are written 0.000000), integers as "%d", strings as
// given. A null string leaves "value" as it is. Return the element, or null.
VELMIO_API xmlNode *WriteElementDouble(xmlNode *parent, const wchar_t *name, double value);
VELMIO_API xmlNode *WriteElementInt(xmlNode *parent, const wchar_t *name, int value);
VELMIO_API xmlNode *WriteElementString(xmlNode *parent, const wchar_t *name, const wchar_t *value);

// Read the "value" attribute of the element name found by child lookup from
// start. The result is first set to 0, 0.0 or the empty string; it is then
// converted as atoi/atof do ("12abc" gives 12, "abc" gives 0; always in the
// "C" locale). Return the element when it exists, whether or not it has a
// value, and null when it does not.
// The string form truncates to capacity characters with the terminator.
VELMIO_API xmlNode *ReadElementString(xmlNode *start, const wchar_t *name, wchar_t *destination,
                                      std::size_t capacity);
// As above with a destination of at least kXmlTextCapacity characters.
VELMIO_API xmlNode *ReadElementString(xmlNode *start, const wchar_t *name, wchar_t *destination);
VELMIO_API xmlNode *ReadElementInt(xmlNode *start, const wchar_t *name, int *value);
VELMIO_API xmlNode *ReadElementDouble(xmlNode *start, const wchar_t *name, double *value);

// Parses the file at path; null when it cannot be opened or is not
// well-formed. The caller frees the document with FreeXmlDoc.
VELMIO_API xmlDoc *OpenXmlFile(const wchar_t *path);
// A new document (XML 1.0, UTF-8) whose root element rootName carries the
// attribute "Version" formatted "%2.2lf" (2.0 gives "2.00"); null on failure.
VELMIO_API xmlDoc *CreateXmlFile(const wchar_t *rootName, float version);
// Writes doc indented to path: the number of bytes written, or -1.
VELMIO_API int SaveXmlFile(xmlDoc *doc, const wchar_t *path);
// Frees a document; null is ignored.
VELMIO_API void FreeXmlDoc(xmlDoc *doc);
// xmlCopyNode: a copy of node (with its subtree when recursive is not 0),
// owned by the caller; null for a null node.
VELMIO_API xmlNode *CopyNode(xmlNode *node, int recursive);

}  // namespace VELM

#endif
