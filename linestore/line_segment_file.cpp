#include "linestore/line_segment_file.h"

#include <velmio/encoding.h>
#include <velmio/linestore.h>

#include "encoding/rounding.h"
#include "foundation/diagnostics.h"
#include "linestore/memory_line.h"
#include "platform/durable_replace.h"
#include "platform/files.h"
#include "platform/stdio_file.h"

#include <cerrno>
#include <cstdint>
#include <cwchar>
#include <new>
#include <string>
#include <vector>

namespace velmio {

using namespace xdr;

int encodeExtent(const TOVO_Sensor &h, ExtentKind kind, double v) {
    switch (kind) {
    case ExtentKind::Time: return TOVO_EncodeTime(v, h.referenceTime, h.timeScale);
    case ExtentKind::Value: return h.encodeValue ? h.encodeValue(v) : TOVO_EncodeMeters(v);
    case ExtentKind::Latitude: return TOVO_EncodePosition(v, h.referenceLatitude, h.positionScale);
    case ExtentKind::Longitude: return TOVO_EncodePosition(v, h.referenceLongitude, h.positionScale);
    case ExtentKind::Metres: return TOVO_EncodeMeters(v);
    case ExtentKind::Thousandths: return truncToInt32(v * 1000.0);
    case ExtentKind::Whole:  // held within the range, so that an empty extent stays empty
        return v >= 2147483647.0 ? 2147483647 : v <= -2147483648.0 ? -2147483647 - 1 : v == v ? static_cast<int>(v) : 0;
    }
    return 0;
}

double decodeExtent(const TOVO_Sensor &h, ExtentKind kind, int unit) {
    switch (kind) {
    case ExtentKind::Time: return TOVO_DecodeTime(h.referenceTime, h.timeScale, unit);
    case ExtentKind::Value: return h.decodeValue ? h.decodeValue(unit) : TOVO_DecodeMeters(unit);
    case ExtentKind::Latitude: return TOVO_DecodePosition(h.referenceLatitude, h.positionScale, unit);
    case ExtentKind::Longitude: return TOVO_DecodePosition(h.referenceLongitude, h.positionScale, unit);
    case ExtentKind::Metres: return TOVO_DecodeMeters(unit);
    case ExtentKind::Thousandths: return unit / 1000.0;
    case ExtentKind::Whole: return unit;
    }
    return 0.0;
}

namespace {

int openFailure(const TOVO_Sensor &h, const SegmentFileFormat &f, int err) {
    if (!f.openErrors) return f.cannotOpen;
    return platform::reportOpenFailure(printable(h.segmentPath.c_str()), err, *f.openErrors, false,
                                       f.openErrors->other);
}

void sayIf(const char *message) {
    if (message) say("%s", message);
}

}  // namespace

namespace {

// The name as it travels: 8-bit characters, others as '?'.
std::string narrowName(const std::wstring &name) {
    std::string narrow;
    for (wchar_t c : name) narrow += (c >= 0 && c < 256) ? static_cast<char>(c) : '?';
    return narrow;
}

// The file form of the handle's segments; false when a unit does not encode.
bool encodeSegments(TOVO_Sensor &h, const SegmentFileFormat &f, std::vector<unsigned char> &out) {
    std::size_t size = 20;
    for (_TOVO_LnSeg *s = h.firstSegment; s; s = s->next)
        size += 20 + (narrowName(s->name).size() + 3) / 4 * 4 + 8 * static_cast<std::size_t>(f.extentCount);
    if (size > 0xFFFFFFFFu) return false;
    out.assign(size, 0);
    XDR x;
    xdrmem_create(&x, reinterpret_cast<char *>(out.data()), static_cast<unsigned int>(size), XDR_ENCODE);
    int count = static_cast<int>(h.segmentCount);
    bool ok = TOVO_WriteLnSegValidationRecord(&h, &x) == 0 && xdr_int(&x, &count);
    for (_TOVO_LnSeg *s = h.firstSegment; s && ok; s = s->next) {
        std::string narrow = narrowName(s->name);
        unsigned int length = static_cast<unsigned int>(narrow.size());
        char *text = narrow.data();
        ok = xdr_u_int(&x, &s->status) && xdr_u_int(&x, &length) && xdr_string(&x, &text, length) &&
             xdr_u_int(&x, &s->firstRecord) && xdr_u_int(&x, &s->lastRecord);
        for (int k = 0; k < f.extentCount && ok; ++k) {
            int lo = encodeExtent(h, f.kinds[k], s->extents[k].min);
            int hi = encodeExtent(h, f.kinds[k], s->extents[k].max);
            ok = xdr_int(&x, &lo) && xdr_int(&x, &hi);
        }
    }
    ok = ok && xdr_getpos(&x) == size;
    xdr_destroy(&x);
    return ok;
}

// The whole file, from the disk or the mounted line: 0, errno when it cannot
// be opened, or -1 when it was read but did not close.
int segmentFileBytes(const TOVO_Sensor &h, std::vector<unsigned char> &bytes) {
    if (h.memory) {
        if (!h.memory->segments.exists) return ENOENT;
        bytes = h.memory->segments.bytes;
        return 0;
    }
    std::FILE *file = platform::openFile(h.segmentPath.c_str(), "rb");
    if (!file) return errno != 0 ? errno : ENOENT;
    const std::int64_t size = platform::fileSize(file);
    // A read that stops early leaves the bytes cut there, and the parse
    // names the field the file ends in.
    bytes.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
    bytes.resize(bytes.empty() ? 0 : platform::readFile(bytes.data(), 1, bytes.size(), file));
    return std::fclose(file) == 0 ? 0 : -1;
}

}  // namespace

int writeLineSegmentFile(TOVO_Sensor &h, const SegmentFileFormat &f) {
    std::vector<unsigned char> bytes;
    const bool encoded = encodeSegments(h, f, bytes);
    if (h.memory) {
        if (!encoded) return f.notWritten;
        h.memory->segments.bytes.swap(bytes);
        h.memory->segments.exists = true;
        return 0;
    }
    // Replaced through a temporary: a status save that fails part way must
    // leave the previous segment file, never a cut one.
    bool opened = false, ok = encoded;
    const int error = platform::replaceFile(h.segmentPath, [&](std::FILE *file) {
        opened = true;
        if (ok && !bytes.empty()) ok = platform::writeFile(bytes.data(), bytes.size(), 1, file) == 1;
        return ok ? 0 : (errno != 0 ? errno : EIO);
    });
    if (!opened) return openFailure(h, f, error);
    if (!ok) return f.notWritten;
    return error ? f.closeFailed : 0;
}

int readLineSegmentFile(TOVO_Sensor &h, const SegmentFileFormat &f) {
    std::vector<unsigned char> bytes;
    const int got = segmentFileBytes(h, bytes);
    if (got > 0) return openFailure(h, f, got);
    if (int rc = parseLineSegments(h, f, bytes)) return rc;
    if (got != 0) {
        sayIf(f.closeMessage);
        return f.closeFailed;
    }
    return 0;
}

int parseLineSegments(TOVO_Sensor &h, const SegmentFileFormat &f, std::vector<unsigned char> &bytes) {
    const std::int64_t size = static_cast<std::int64_t>(bytes.size());
    if (bytes.size() > 0xFFFFFFFFu) return f.invalid;
    XDR x;
    xdrmem_create(&x, reinterpret_cast<char *>(bytes.data()), static_cast<unsigned int>(bytes.size()), XDR_DECODE);
    auto fail = [&](const char *message, int code) {
        sayIf(message);
        return code;
    };
    int count = 0;
    if (TOVO_ReadLnSegValidationRecord(&h, &x) != 0 || !xdr_int(&x, &count)) return fail(f.streamMessage, f.invalid);
    // No size check on the count: segments are allocated one at a time as
    // they decode, and a file cut short must name the field it ends in.
    if (count < 0) return fail(f.streamMessage, f.invalid);
    auto field = [&](int i) { return f.fieldMessages ? f.fieldMessages[i] : nullptr; };
    std::vector<char> name;
    for (int i = 0; i < count; ++i) {
        _TOVO_LnSeg *s = LnSegAlloc(&h);
        if (!s) return fail(f.allocMessage, 5000009);
        if (!xdr_u_int(&x, &s->status)) return fail(field(0), f.invalid);
        unsigned int length = 0;
        if (!xdr_u_int(&x, &length)) return fail(field(1), f.invalid);
        const std::int64_t here = xdr_getpos(&x);
        if (static_cast<std::int64_t>(length) > size - here) return fail(field(2), f.invalid);
        try {
            name.assign(static_cast<std::size_t>(length) + 1, '\0');
        } catch (const std::bad_alloc &) {
            return fail(f.allocMessage, 5000009);
        }
        char *text = name.data();
        if (!xdr_string(&x, &text, length)) return fail(field(2), f.invalid);
        s->nameLength = length;
        s->name.clear();
        for (const char *c = text; *c; ++c) s->name += static_cast<wchar_t>(static_cast<unsigned char>(*c));
        if (!xdr_u_int(&x, &s->firstRecord)) return fail(field(3), f.invalid);
        if (!xdr_u_int(&x, &s->lastRecord)) return fail(field(4), f.invalid);
        for (int k = 0; k < f.extentCount; ++k) {
            int lo, hi;
            if (!xdr_int(&x, &lo)) return fail(field(5 + 2 * k), f.invalid);
            if (!xdr_int(&x, &hi)) return fail(field(6 + 2 * k), f.invalid);
            s->extents[k].min = decodeExtent(h, f.kinds[k], lo);
            s->extents[k].max = decodeExtent(h, f.kinds[k], hi);
        }
    }
    return 0;
}

int beginSegment(TOVO_Sensor &h, const wchar_t *name, std::uint32_t firstRecord) {
    _TOVO_LnSeg *s = LnSegAlloc(&h);
    if (!s) return 5000009;
    try {
        s->name = name ? name : L"";
    } catch (const std::bad_alloc &) {
        return 5000009;
    }
    s->nameLength = static_cast<std::uint32_t>(s->name.size());
    s->firstRecord = firstRecord;
    return 0;
}

}  // namespace velmio
