#include "encoding/xdr.h"

#include "platform/stdio_file.h"

#include <climits>
#include <cstdlib>
#include <cstring>

namespace velmio::xdr {
namespace {

std::uint32_t toBig(std::uint32_t v) {
    unsigned char b[4] = {static_cast<unsigned char>(v >> 24), static_cast<unsigned char>(v >> 16),
                          static_cast<unsigned char>(v >> 8), static_cast<unsigned char>(v)};
    std::uint32_t out;
    std::memcpy(&out, b, 4);
    return out;
}

std::uint32_t fromBig(std::uint32_t raw) {
    unsigned char b[4];
    std::memcpy(b, &raw, 4);
    return (std::uint32_t(b[0]) << 24) | (std::uint32_t(b[1]) << 16) | (std::uint32_t(b[2]) << 8) | b[3];
}

// ---- memory stream ----

bool_t mem_getlong(XDR *x, std::int32_t *lp) {
    x->x_handy -= 4;
    if (x->x_handy < 0) return 0;
    std::uint32_t raw;
    std::memcpy(&raw, x->x_private, 4);
    *lp = static_cast<std::int32_t>(fromBig(raw));
    x->x_private += 4;
    return 1;
}

bool_t mem_putlong(XDR *x, const std::int32_t *lp) {
    x->x_handy -= 4;
    if (x->x_handy < 0) return 0;
    std::uint32_t raw = toBig(static_cast<std::uint32_t>(*lp));
    std::memcpy(x->x_private, &raw, 4);
    x->x_private += 4;
    return 1;
}

bool_t mem_getbytes(XDR *x, char *addr, unsigned int len) {
    if (len > static_cast<unsigned int>(INT_MAX)) return 0;
    x->x_handy -= static_cast<int>(len);
    if (x->x_handy < 0) return 0;
    if (len) std::memcpy(addr, x->x_private, len);
    x->x_private += len;
    return 1;
}

bool_t mem_putbytes(XDR *x, const char *addr, unsigned int len) {
    if (len > static_cast<unsigned int>(INT_MAX)) return 0;
    x->x_handy -= static_cast<int>(len);
    if (x->x_handy < 0) return 0;
    if (len) std::memcpy(x->x_private, addr, len);
    x->x_private += len;
    return 1;
}

unsigned int mem_getpos(XDR *x) { return static_cast<unsigned int>(x->x_private - x->x_base); }

bool_t mem_setpos(XDR *x, unsigned int pos) {
    // The end is start + bytes used + bytes remaining; a negative handy (after
    // a failed put) counts as nothing remaining.
    long used = static_cast<long>(x->x_private - x->x_base);
    long remaining = x->x_handy > 0 ? x->x_handy : 0;
    long limit = used + remaining;
    if (static_cast<long>(pos) > limit) return 0;
    x->x_private = x->x_base + pos;
    x->x_handy = static_cast<int>(limit - static_cast<long>(pos));
    return 1;
}

std::int32_t *mem_inline(XDR *x, unsigned int len) {
    if (len > static_cast<unsigned int>(INT_MAX) || x->x_handy < static_cast<int>(len)) return nullptr;
    auto *p = reinterpret_cast<std::int32_t *>(x->x_private);
    x->x_handy -= static_cast<int>(len);
    x->x_private += len;
    return p;
}

void mem_destroy(XDR *) {}

const xdr_ops kMemOps = {mem_getlong, mem_putlong, mem_getbytes, mem_putbytes,
                         mem_getpos,  mem_setpos,  mem_inline,   mem_destroy};

// ---- stdio stream ----

std::FILE *fileOf(XDR *x) { return reinterpret_cast<std::FILE *>(x->x_private); }

bool_t stdio_getlong(XDR *x, std::int32_t *lp) {
    std::uint32_t raw;
    if (velmio::platform::readFile(&raw, 4, 1, fileOf(x)) != 1) return 0;
    *lp = static_cast<std::int32_t>(fromBig(raw));
    return 1;
}

bool_t stdio_putlong(XDR *x, const std::int32_t *lp) {
    std::uint32_t raw = toBig(static_cast<std::uint32_t>(*lp));
    return velmio::platform::writeFile(&raw, 4, 1, fileOf(x)) == 1;
}

bool_t stdio_getbytes(XDR *x, char *addr, unsigned int len) {
    if (len == 0) return 1;
    return velmio::platform::readFile(addr, len, 1, fileOf(x)) == 1;
}

bool_t stdio_putbytes(XDR *x, const char *addr, unsigned int len) {
    if (len == 0) return 1;
    return velmio::platform::writeFile(addr, len, 1, fileOf(x)) == 1;
}

unsigned int stdio_getpos(XDR *x) { return static_cast<unsigned int>(std::ftell(fileOf(x))); }

bool_t stdio_setpos(XDR *x, unsigned int pos) {
    return velmio::platform::seekFile(fileOf(x), static_cast<long>(pos), SEEK_SET) >= 0;
}

std::int32_t *stdio_inline(XDR *, unsigned int) { return nullptr; }

void stdio_destroy(XDR *x) { velmio::platform::flushFile(fileOf(x)); }

const xdr_ops kStdioOps = {stdio_getlong, stdio_putlong, stdio_getbytes, stdio_putbytes,
                           stdio_getpos,  stdio_setpos,  stdio_inline,   stdio_destroy};

bool_t getUnit(XDR *x, std::int32_t *v) { return x->x_ops->x_getlong(x, v); }
bool_t putUnit(XDR *x, const std::int32_t *v) { return x->x_ops->x_putlong(x, v); }

// Passes one unit in the stream's direction; XDR_FREE succeeds untouched.
template <typename T>
bool_t unit(XDR *x, T *value) {
    std::int32_t v;
    switch (x->x_op) {
    case XDR_ENCODE:
        v = static_cast<std::int32_t>(*value);
        return putUnit(x, &v);
    case XDR_DECODE:
        if (!getUnit(x, &v)) return 0;
        *value = static_cast<T>(v);
        return 1;
    case XDR_FREE:
        return 1;
    }
    return 0;
}

}  // namespace

void xdrmem_create(XDR *xdrs, char *buffer, unsigned int size, xdr_op op) {
    xdrs->x_op = op;
    xdrs->x_ops = &kMemOps;
    xdrs->x_private = xdrs->x_base = buffer;
    xdrs->x_handy = size > static_cast<unsigned int>(INT_MAX) ? INT_MAX : static_cast<int>(size);
}

void xdrstdio_create(XDR *xdrs, std::FILE *file, xdr_op op) {
    xdrs->x_op = op;
    xdrs->x_ops = &kStdioOps;
    xdrs->x_private = reinterpret_cast<char *>(file);
    xdrs->x_base = nullptr;
    xdrs->x_handy = 0;
}

bool_t xdr_int(XDR *x, int *ip) { return unit(x, ip); }
bool_t xdr_u_int(XDR *x, unsigned int *up) { return unit(x, up); }
bool_t xdr_long(XDR *x, std::int32_t *lp) { return unit(x, lp); }
bool_t xdr_u_long(XDR *x, std::uint32_t *ulp) { return unit(x, ulp); }
bool_t xdr_enum(XDR *x, int *ep) { return unit(x, ep); }

bool_t xdr_short(XDR *x, short *sp) {
    if (x->x_op == XDR_ENCODE) {
        std::int32_t v = *sp;
        return putUnit(x, &v);
    }
    return unit(x, sp);
}

bool_t xdr_u_short(XDR *x, unsigned short *usp) {
    if (x->x_op == XDR_ENCODE) {
        std::int32_t v = *usp;
        return putUnit(x, &v);
    }
    return unit(x, usp);
}

bool_t xdr_u_char(XDR *x, unsigned char *cp) {
    if (x->x_op == XDR_ENCODE) {
        std::int32_t v = *cp;
        return putUnit(x, &v);
    }
    return unit(x, cp);
}

bool_t xdr_char(XDR *x, char *cp) {
    if (x->x_op == XDR_ENCODE) {
        std::int32_t v = *cp;
        return putUnit(x, &v);
    }
    return unit(x, cp);
}

bool_t xdr_float(XDR *x, float *fp) {
    std::int32_t bits;
    switch (x->x_op) {
    case XDR_ENCODE:
        std::memcpy(&bits, fp, 4);
        return putUnit(x, &bits);
    case XDR_DECODE:
        if (!getUnit(x, &bits)) return 0;
        std::memcpy(fp, &bits, 4);
        return 1;
    case XDR_FREE:
        return 1;
    }
    return 0;
}

bool_t xdr_double(XDR *x, double *dp) {
    std::uint64_t bits;
    std::int32_t low, high;
    switch (x->x_op) {
    case XDR_ENCODE:
        std::memcpy(&bits, dp, 8);
        low = static_cast<std::int32_t>(static_cast<std::uint32_t>(bits));
        high = static_cast<std::int32_t>(static_cast<std::uint32_t>(bits >> 32));
        return putUnit(x, &low) && putUnit(x, &high);
    case XDR_DECODE:
        if (!getUnit(x, &low) || !getUnit(x, &high)) return 0;
        bits = (std::uint64_t(static_cast<std::uint32_t>(high)) << 32) | static_cast<std::uint32_t>(low);
        std::memcpy(dp, &bits, 8);
        return 1;
    case XDR_FREE:
        return 1;
    }
    return 0;
}

bool_t xdr_opaque(XDR *x, char *buffer, unsigned int count) {
    if (count == 0) return 1;
    unsigned int pad = (4 - count % 4) % 4;
    static const char zeros[4] = {0, 0, 0, 0};
    char scratch[4];
    switch (x->x_op) {
    case XDR_DECODE:
        if (!x->x_ops->x_getbytes(x, buffer, count)) return 0;
        return pad == 0 || x->x_ops->x_getbytes(x, scratch, pad);
    case XDR_ENCODE:
        if (!x->x_ops->x_putbytes(x, buffer, count)) return 0;
        return pad == 0 || x->x_ops->x_putbytes(x, zeros, pad);
    case XDR_FREE:
        return 1;
    }
    return 0;
}

bool_t xdr_bytes(XDR *x, char **buffer, unsigned int *count, unsigned int maxsize) {
    if (!xdr_u_int(x, count)) return 0;
    unsigned int n = *count;
    if (n > maxsize && x->x_op != XDR_FREE) return 0;
    switch (x->x_op) {
    case XDR_DECODE:
        if (n == 0) return 1;
        if (!*buffer) {
            *buffer = static_cast<char *>(std::malloc(n));
            if (!*buffer) {
                std::fputs("xdr_bytes: out of memory\n", stderr);
                return 0;
            }
        }
        return xdr_opaque(x, *buffer, n);
    case XDR_ENCODE:
        return xdr_opaque(x, *buffer, n);
    case XDR_FREE:
        if (*buffer) {
            std::free(*buffer);
            *buffer = nullptr;
        }
        return 1;
    }
    return 0;
}

bool_t xdr_string(XDR *x, char **text, unsigned int maxsize) {
    unsigned int size = 0;
    switch (x->x_op) {
    case XDR_FREE:
        if (!*text) return 1;
        size = static_cast<unsigned int>(std::strlen(*text));
        break;
    case XDR_ENCODE:
        if (!*text) return 0;
        size = static_cast<unsigned int>(std::strlen(*text));
        break;
    case XDR_DECODE:
        break;
    }
    if (!xdr_u_int(x, &size)) return 0;
    if (size > maxsize && x->x_op != XDR_FREE) return 0;
    unsigned int nodesize = size + 1;
    switch (x->x_op) {
    case XDR_DECODE:
        if (nodesize == 0) return 1;
        if (!*text) {
            *text = static_cast<char *>(std::malloc(nodesize));
            if (!*text) {
                std::fputs("xdr_string: out of memory\n", stderr);
                return 0;
            }
        }
        (*text)[size] = '\0';
        return xdr_opaque(x, *text, size);
    case XDR_ENCODE:
        return xdr_opaque(x, *text, size);
    case XDR_FREE:
        std::free(*text);
        *text = nullptr;
        return 1;
    }
    return 0;
}

bool_t xdr_array(XDR *x, char **array, unsigned int *count, unsigned int maxsize, unsigned int elsize,
                 xdrproc_t elproc) {
    if (!xdr_u_int(x, count)) return 0;
    unsigned int c = *count;
    if (c > maxsize && x->x_op != XDR_FREE) return 0;
    char *target = *array;
    if (!target) {
        switch (x->x_op) {
        case XDR_DECODE: {
            if (c == 0) return 1;
            if (elsize != 0 && c > SIZE_MAX / elsize) return 0;
            target = static_cast<char *>(std::calloc(c, elsize));
            if (!target) {
                std::fputs("xdr_array: out of memory\n", stderr);
                return 0;
            }
            *array = target;
            break;
        }
        case XDR_FREE:
            return 1;
        case XDR_ENCODE:
            if (c != 0) return 0;  // nothing to encode from
            break;
        }
    }
    bool_t ok = 1;
    for (unsigned int i = 0; i < c && ok; ++i) {
        ok = elproc(x, target, ~0u);
        target += elsize;
    }
    if (x->x_op == XDR_FREE) {
        std::free(*array);
        *array = nullptr;
    }
    return ok;
}

bool_t xdr_int_element(XDR *x, void *p, unsigned int) { return xdr_int(x, static_cast<int *>(p)); }
bool_t xdr_u_int_element(XDR *x, void *p, unsigned int) { return xdr_u_int(x, static_cast<unsigned int *>(p)); }

}  // namespace velmio::xdr
