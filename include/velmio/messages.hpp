// Message texts of the library: the resource bundle "VelmMessages".
//
// The bundle holds one sentence for every error code the library returns,
// keyed "E" followed by the seven digits ("E5000009"; -1 is "EMinus1"), and
// the texts of the velmio command ("Tool..." keys). Its source is ICU resource
// text (messages/VelmMessages/root.txt), compiled with genrb into the
// directory VelmMessages beside the shared library, where it is installed too.
//
// Where a bundle is found (no set-up by the caller): a bundle name that
// contains a path separator is the bundle's directory itself. Any other name N
// is looked for, in this order, in
//   1. <directory of the module holding this code>/N, that is beside
//      libvelmio (or beside a program that links the library statically);
//   2. <the build directory of the library>/N, compiled in at build time, so
//      that programs run from the build tree find it before installation.
// The first of these that is a directory is opened with the process's default
// ICU locale, falling back to root.res (translations go beside it, e.g. de.res).
#ifndef VELMIO_MESSAGES_HPP
#define VELMIO_MESSAGES_HPP

#include <velmio/export.h>
#include <velmio/morva_string.hpp>

namespace VELMIOUtils {

// The default bundle's name.
constexpr const wchar_t *kMessageBundleName = L"VelmMessages";

// Looks key up in the bundle (default "VelmMessages" when bundle is empty).
// Returns 0 with the text in result; -1 with result "" when the bundle cannot
// be opened or has no string under key; 5000009 when memory runs out.
VELMIO_API int findResourceString(const MORVAUString &key, MORVAUString &result,
                                  const MORVAUString &bundle = MORVAUString());

// The bundle key of an error code: "E" and the decimal digits ("E5000009"),
// "EMinus" and the digits for a negative code ("EMinus1").
VELMIO_API MORVAUString errorMessageKey(int code);

// The sentence for an error code: findResourceString(errorMessageKey(code)).
VELMIO_API int findErrorMessage(int code, MORVAUString &result, const MORVAUString &bundle = MORVAUString());

// The directory the bundle would be opened from, by the order above; false
// (and directory "") when no candidate exists.
VELMIO_API bool findMessageBundleDirectory(const MORVAUString &bundle, MORVAUString &directory);

}  // namespace VELMIOUtils

#endif
