// Attribute values on an XDR stream, and the heap copies of array values
// that the attribute data file keeps and hands out.
#ifndef VELMIO_DATAFILE_VALUE_CODEC_H
#define VELMIO_DATAFILE_VALUE_CODEC_H

#include <velmio/data_file.hpp>

#include "encoding/xdr.h"

#include <cstdint>
#include <string>

namespace velmio::datafile {

// Codes of the attribute data file.
constexpr int kNoMemory = 5000009;
constexpr int kNoSpace = 5000014;
constexpr int kTooManyFiles = 5000015;
constexpr int kAccessDenied = 5000016;
constexpr int kCannotRead = 5000025;
constexpr int kCannotWrite = 5000026;
constexpr int kValidationMismatch = 5000027;
constexpr int kValidationNotWritten = 5000028;
constexpr int kNotFound = 5000046;
constexpr int kRecordUnreadable = 5000058;
constexpr int kRecordNotWritten = 5000059;
constexpr int kWrongAccess = 5000061;
constexpr int kAttributesClosed = 5000062;
constexpr int kNoSuchAttribute = 5000063;
constexpr int kRecordOutOfRange = 5000064;
constexpr int kBadArgument = -1;

constexpr std::uint32_t kMagic = 0x544F564F;  // "TOVO"
constexpr unsigned int kMaxNameBytes = 256;
constexpr unsigned int kSummaryLimit = 1000000;

inline bool validType(std::int32_t type) { return type >= DT_INT && type <= DT_OPAQUE; }
inline std::uint64_t pad4(std::uint64_t n) { return (n + 3) & ~std::uint64_t(3); }

// Bytes of one element of an array type (0 for scalars).
unsigned int elementSize(dataType type);
// Bytes one value takes on the stream (count matters for arrays only).
std::uint64_t encodedSize(dataType type, int count);

// Puts one value: scalars as XDR units, arrays as the count and, when it is
// not zero, a byte block of the elements in the machine's order.
bool encodeValue(xdr::XDR *x, dataType type, const dataValue &value, int count);
// Gets one value from a memory stream. Array blocks are checked against the
// count and the bytes left before anything is allocated; an empty array
// gives a null pointer. count is 1 for scalars.
bool decodeValue(xdr::XDR *x, dataType type, dataValue &value, int &count);

// A value with all eight bytes zero (a null array pointer). dataValue{}
// zeroes only the union's first, four-byte member.
inline dataValue zeroValue() {
    dataValue v;
    v.d = 0.0;
    return v;
}

// Text as an XDR string (length unit, bytes, zero padding).
bool encodeText(xdr::XDR *x, const std::string &text);
// Refuses lengths above limit or above the bytes left in the memory stream.
bool decodeText(xdr::XDR *x, unsigned int limit, std::string &text);

// A malloc'ed copy of count elements plus one zero byte (null for count 0).
// False when memory runs out.
bool copyValue(dataType type, const dataValue &from, int count, dataValue &to);

}  // namespace velmio::datafile

#endif
