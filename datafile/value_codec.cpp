#include "datafile/value_codec.h"

#include <cstdlib>
#include <cstring>

namespace velmio::datafile {

using namespace velmio::xdr;

unsigned int elementSize(dataType type) {
    switch (type) {
    case DT_INT_ARRAY:
    case DT_UINT_ARRAY:
    case DT_FLOAT_ARRAY: return 4;
    case DT_DOUBLE_ARRAY: return 8;
    case DT_SHORT_ARRAY:
    case DT_USHORT_ARRAY: return 2;
    case DT_CHAR_ARRAY:
    case DT_STRING:
    case DT_OPAQUE: return 1;
    default: return 0;
    }
}

std::uint64_t encodedSize(dataType type, int count) {
    if (type == DT_DOUBLE) return 8;
    if (!VELMDataFile::IsArrayType(type)) return 4;
    if (count <= 0) return 4;
    return 8 + pad4(std::uint64_t(count) * elementSize(type));
}

bool encodeValue(XDR *x, dataType type, const dataValue &value, int count) {
    switch (type) {
    case DT_INT: {
        int v = value.i;
        return xdr_int(x, &v);
    }
    case DT_UINT: {
        unsigned int v = value.ui;
        return xdr_u_int(x, &v);
    }
    case DT_FLOAT: {
        float v = value.f;
        return xdr_float(x, &v);
    }
    case DT_DOUBLE: {
        double v = value.d;
        return xdr_double(x, &v);
    }
    case DT_CHAR: {
        // Widened as a signed char whatever the platform's char is.
        int v = static_cast<signed char>(value.c);
        return xdr_int(x, &v);
    }
    case DT_SHORT: {
        short v = value.s;
        return xdr_short(x, &v);
    }
    case DT_USHORT: {
        unsigned short v = value.us;
        return xdr_u_short(x, &v);
    }
    default:
        break;
    }
    if (!VELMDataFile::IsArrayType(type) || count < 0) return false;
    int c = count;
    if (!xdr_int(x, &c)) return false;
    if (c == 0) return true;
    std::uint64_t bytes = std::uint64_t(c) * elementSize(type);
    if (bytes > 0x7FFFFFFFu || !value.ptr) return false;
    unsigned int n = static_cast<unsigned int>(bytes);
    char *data = static_cast<char *>(value.ptr);
    return xdr_bytes(x, &data, &n, n);
}

bool decodeValue(XDR *x, dataType type, dataValue &value, int &count) {
    value.d = 0;
    count = 1;
    switch (type) {
    case DT_INT: return xdr_int(x, &value.i);
    case DT_UINT: return xdr_u_int(x, &value.ui);
    case DT_FLOAT: return xdr_float(x, &value.f);
    case DT_DOUBLE: return xdr_double(x, &value.d);
    case DT_CHAR: {
        int v;
        if (!xdr_int(x, &v)) return false;
        value.c = static_cast<char>(v);
        return true;
    }
    case DT_SHORT: {
        short v;
        if (!xdr_short(x, &v)) return false;
        value.s = v;
        return true;
    }
    case DT_USHORT: {
        unsigned short v;
        if (!xdr_u_short(x, &v)) return false;
        value.us = v;
        return true;
    }
    default:
        break;
    }
    if (!VELMDataFile::IsArrayType(type)) return false;
    int c;
    if (!xdr_int(x, &c) || c < 0) return false;
    count = c;
    value.ptr = nullptr;
    if (c == 0) return true;
    unsigned int bytes;
    if (!xdr_u_int(x, &bytes)) return false;
    // The block must be exactly the count's elements and must lie in what is
    // left of the record: a corrupt count never sizes an allocation.
    if (std::uint64_t(bytes) != std::uint64_t(c) * elementSize(type)) return false;
    if (x->x_handy < 0 || pad4(bytes) > static_cast<std::uint64_t>(x->x_handy)) return false;
    char *data = static_cast<char *>(std::malloc(std::size_t(bytes) + 1));
    if (!data) return false;
    data[bytes] = '\0';
    if (!xdr_opaque(x, data, bytes)) {
        std::free(data);
        return false;
    }
    value.ptr = data;
    return true;
}

bool encodeText(XDR *x, const std::string &text) {
    unsigned int n = static_cast<unsigned int>(text.size());
    return xdr_u_int(x, &n) && xdr_opaque(x, const_cast<char *>(text.data()), n);
}

bool decodeText(XDR *x, unsigned int limit, std::string &text) {
    unsigned int n;
    if (!xdr_u_int(x, &n)) return false;
    if (n > limit || x->x_handy < 0 || pad4(n) > static_cast<std::uint64_t>(x->x_handy)) return false;
    text.assign(n, '\0');
    return xdr_opaque(x, text.data(), n);
}

bool copyValue(dataType type, const dataValue &from, int count, dataValue &to) {
    if (!VELMDataFile::IsArrayType(type)) {
        to = from;
        return true;
    }
    to.d = 0;
    to.ptr = nullptr;
    if (count <= 0 || !from.ptr) return true;
    std::size_t bytes = std::size_t(count) * elementSize(type);
    char *data = static_cast<char *>(std::malloc(bytes + 1));
    if (!data) return false;
    std::memcpy(data, from.ptr, bytes);
    data[bytes] = '\0';
    to.ptr = data;
    return true;
}

}  // namespace velmio::datafile
