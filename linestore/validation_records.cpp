// The validation records that open every data and line segment file.
#include <velmio/linestore.h>

#include "linestore/sensor.h"

#include <cstdio>

using namespace velmio;
using namespace velmio::xdr;

namespace {
constexpr unsigned int kMagic = 0x544F564F;  // "TOVO"
constexpr unsigned int kDataRecord = 1;
constexpr unsigned int kSegmentRecord = 2;
}  // namespace

extern "C" VELMIO_API int TOVO_WriteDataValidationRecord(TOVO_Sensor *handle) {
    constexpr int kFailed = 5000028;
    if (!handle || !handle->dataFile) return kFailed;
    char buffer[16];
    XDR x;
    xdrmem_create(&x, buffer, sizeof buffer, XDR_ENCODE);
    unsigned int units[4] = {kMagic, handle->typeId, kDataRecord, handle->formatVersion};
    for (unsigned int &u : units)
        if (!xdr_u_int(&x, &u)) return kFailed;
    if (std::fseek(handle->dataFile, 0, SEEK_SET) != 0) return kFailed;
    if (std::fwrite(buffer, 4, 4, handle->dataFile) != 4) return kFailed;
    return 0;
}

int velmio::checkDataValidationRecord(TOVO_Sensor &h, const unsigned char *bytes) {
    constexpr int kFailed = 5000027;
    XDR x;
    xdrmem_create(&x, reinterpret_cast<char *>(const_cast<unsigned char *>(bytes)), 16, XDR_DECODE);
    unsigned int magic, type, record, version;
    if (!xdr_u_int(&x, &magic) || magic != kMagic || !xdr_u_int(&x, &type) || type != h.typeId ||
        !xdr_u_int(&x, &record) || record != kDataRecord || !xdr_u_int(&x, &version))
        return kFailed;
    h.formatVersion = version;
    return 0;
}

extern "C" VELMIO_API int TOVO_ReadDataValidationRecord(TOVO_Sensor *handle) {
    constexpr int kFailed = 5000027;
    if (!handle || !handle->dataFile) return kFailed;
    unsigned char buffer[16];
    if (std::fseek(handle->dataFile, 0, SEEK_SET) != 0) return kFailed;
    if (std::fread(buffer, 4, 4, handle->dataFile) != 4) return kFailed;
    return checkDataValidationRecord(*handle, buffer);
}

extern "C" VELMIO_API int TOVO_WriteLnSegValidationRecord(TOVO_Sensor *handle, void *xdrStream) {
    constexpr int kFailed = 5000030;
    auto *x = static_cast<XDR *>(xdrStream);
    if (!handle || !x) return kFailed;
    unsigned int units[4] = {kMagic, handle->typeId, kSegmentRecord, handle->formatVersion};
    for (unsigned int &u : units)
        if (!xdr_u_int(x, &u)) return kFailed;
    return 0;
}

// The fourth unit is read and dropped: the data file's record is authoritative.
extern "C" VELMIO_API int TOVO_ReadLnSegValidationRecord(TOVO_Sensor *handle, void *xdrStream) {
    constexpr int kFailed = 5000029;
    auto *x = static_cast<XDR *>(xdrStream);
    if (!handle || !x) return kFailed;
    unsigned int magic, type, record, version;
    if (!xdr_u_int(x, &magic) || magic != kMagic || !xdr_u_int(x, &type) || type != handle->typeId ||
        !xdr_u_int(x, &record) || record != kSegmentRecord || !xdr_u_int(x, &version))
        return kFailed;
    return 0;
}
