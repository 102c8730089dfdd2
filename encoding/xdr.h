// The library's own XDR codec: big-endian 32-bit units, items padded to four
// bytes, memory and stdio streams. Internal; kept in a namespace so that it
// never meets a system RPC library's xdr_* symbols.
#ifndef VELMIO_ENCODING_XDR_H
#define VELMIO_ENCODING_XDR_H

#include <cstdint>
#include <cstdio>

namespace velmio::xdr {

enum xdr_op { XDR_ENCODE = 0, XDR_DECODE = 1, XDR_FREE = 2 };

using bool_t = int;
struct XDR;

// Stream operations, in the classic order.
struct xdr_ops {
    bool_t (*x_getlong)(XDR *, std::int32_t *);
    bool_t (*x_putlong)(XDR *, const std::int32_t *);
    bool_t (*x_getbytes)(XDR *, char *, unsigned int);
    bool_t (*x_putbytes)(XDR *, const char *, unsigned int);
    unsigned int (*x_getpostn)(XDR *);
    bool_t (*x_setpostn)(XDR *, unsigned int);
    std::int32_t *(*x_inline)(XDR *, unsigned int);
    void (*x_destroy)(XDR *);
};

struct XDR {
    xdr_op x_op = XDR_ENCODE;
    const xdr_ops *x_ops = nullptr;
    char *x_private = nullptr;  // memory: current position; stdio: the FILE*
    char *x_base = nullptr;     // memory: start of the buffer
    int x_handy = 0;            // memory: bytes still free
};

using xdrproc_t = bool_t (*)(XDR *, void *, unsigned int);

void xdrmem_create(XDR *xdrs, char *buffer, unsigned int size, xdr_op op);
void xdrstdio_create(XDR *xdrs, std::FILE *file, xdr_op op);

inline unsigned int xdr_getpos(XDR *x) { return x->x_ops->x_getpostn(x); }
inline bool_t xdr_setpos(XDR *x, unsigned int pos) { return x->x_ops->x_setpostn(x, pos); }
inline std::int32_t *xdr_inline(XDR *x, unsigned int len) { return x->x_ops->x_inline(x, len); }
inline void xdr_destroy(XDR *x) {
    if (x->x_ops && x->x_ops->x_destroy) x->x_ops->x_destroy(x);
}

bool_t xdr_int(XDR *, int *);
bool_t xdr_u_int(XDR *, unsigned int *);
bool_t xdr_long(XDR *, std::int32_t *);
bool_t xdr_u_long(XDR *, std::uint32_t *);
bool_t xdr_short(XDR *, short *);
bool_t xdr_u_short(XDR *, unsigned short *);
// Widens the byte without sign extension (only 0-127 travel through it).
bool_t xdr_u_char(XDR *, unsigned char *);
bool_t xdr_char(XDR *, char *);
bool_t xdr_enum(XDR *, int *);
// Bit-for-bit copy of an IEEE single; the attribute data file's float type.
bool_t xdr_float(XDR *, float *);
// Low-order word of the IEEE pattern first, then the high-order word.
bool_t xdr_double(XDR *, double *);
bool_t xdr_opaque(XDR *, char *buffer, unsigned int count);
bool_t xdr_bytes(XDR *, char **buffer, unsigned int *count, unsigned int maxsize);
bool_t xdr_string(XDR *, char **text, unsigned int maxsize);
bool_t xdr_array(XDR *, char **array, unsigned int *count, unsigned int maxsize, unsigned int elsize,
                 xdrproc_t elproc);

// Element filters with the signature xdr_array expects.
bool_t xdr_int_element(XDR *, void *, unsigned int);
bool_t xdr_u_int_element(XDR *, void *, unsigned int);

}  // namespace velmio::xdr

#endif
