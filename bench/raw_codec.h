// The raw limit's own decoding and encoding of each family's records: only
// byte swaps and scales, the least any reader or writer of the bytes must do.
// Checksums add the values in the order the VelmIO passes add theirs, so the
// two can be compared.
#ifndef VELMIO_BENCH_RAW_CODEC_H
#define VELMIO_BENCH_RAW_CODEC_H

#include "bench_support.h"
#include "survey_lines.h"

namespace velmio::bench {

// A profile header: returns its checksum and sets the ping time its beams
// are offset from.
template <Family F>
inline double decodeHeader(const Scales &s, const unsigned char *p, double &pingTime) {
    const std::uint32_t layout = be32(p + 4);
    pingTime = sbe32(p + 8) / s.timeScale + s.referenceTime;
    double sum = be32(p) + static_cast<double>(layout >> 16) + static_cast<double>(layout & 0xFFFF) + pingTime;
    if constexpr (F == Family::ObservedDepths)
        sum += sbe32(p + 12) / 1e7 + sbe32(p + 16) / 1e7;
    else
        sum += be32(p + 12);
    return sum;
}

// One record, or one beam of a profile pinged at pingTime.
template <Family F>
inline double decodeRecord(const Scales &s, const unsigned char *p, double pingTime) {
    if constexpr (F == Family::Gyro) {
        return sbe32(p + 4) / s.timeScale + s.referenceTime + sbe32(p + 8) / 1e7 + be32(p);
    } else if constexpr (F == Family::Navigation) {
        const double scale = s.positionScale * 1e-9;
        return sbe32(p + 4) / s.timeScale + s.referenceTime + (sbe32(p + 8) * scale + s.referenceLatitude) +
               (sbe32(p + 12) * scale + s.referenceLongitude) + sbe32(p + 16) / 1000.0 + be32(p);
    } else {
        const std::uint32_t word = be32(p);
        const double time = static_cast<std::int16_t>(word & 0xFFFF) / s.depthTimeScale + pingTime;
        double sum = time + sbe32(p + 4) / 1000.0 + sbe32(p + 8) / 1000.0;
        if constexpr (F == Family::ObservedDepths) sum += sbe32(p + 12) / 1000.0;
        return sum + (word & 0xFFFF0000u);
    }
}

// The summary scales a writer fixes from the first record of writeLine's data.
inline Scales writerScales() {
    Scales s;
    s.referenceTime = nint(recordTime(0) / 60.0) * 60.0;
    s.referenceLatitude = nint(0.9 / 1e-7) * 1e-7;
    s.referenceLongitude = nint(0.05 / 1e-7) * 1e-7;
    return s;
}

// Record i of writeLine's data (beam b of profile i for profile families).
template <Family F>
inline void encodeRecord(const Scales &s, unsigned char *p, std::size_t i, std::size_t b = 0) {
    if constexpr (F == Family::Gyro) {
        putBe32(p, recordStatus(i));
        putBe32(p + 4, static_cast<std::uint32_t>(nint((recordTime(i) - s.referenceTime) * s.timeScale)));
        putBe32(p + 8, static_cast<std::uint32_t>(nint(recordValue(i) * 1e7)));
    } else if constexpr (F == Family::Navigation) {
        const double drift = static_cast<double>(i) * 1e-9;
        putBe32(p, recordStatus(i));
        putBe32(p + 4, static_cast<std::uint32_t>(nint((recordTime(i) - s.referenceTime) * s.timeScale)));
        putBe32(p + 8, static_cast<std::uint32_t>(nint((0.9 + drift - s.referenceLatitude) / 1e-9)));
        putBe32(p + 12, static_cast<std::uint32_t>(nint((0.05 + drift - s.referenceLongitude) / 1e-9)));
        putBe32(p + 16, static_cast<std::uint32_t>(nint(recordValue(i) * 1000.0)));
    } else {
        // The beam's time as writeLine gives it, less the ping time.
        const double offset = (recordTime(i) + b * 1e-5 - recordTime(i)) * s.depthTimeScale;
        putBe32(p, recordStatus(b) << 16 | (static_cast<std::uint32_t>(nint(offset)) & 0xFFFF));
        if constexpr (F == Family::ObservedDepths) {
            putBe32(p + 4, static_cast<std::uint32_t>(nint((20.0 + recordValue(b)) * 1000.0)));
            putBe32(p + 8, static_cast<std::uint32_t>(nint(-(b * 0.25) * 1000.0)));
            putBe32(p + 12, static_cast<std::uint32_t>(nint(b * 0.5 * 1000.0)));
        } else {
            putBe32(p + 4, static_cast<std::uint32_t>((0.1 + b * 0.001) * 1000.0));
            putBe32(p + 8, static_cast<std::uint32_t>((0.2 + b * 0.002) * 1000.0));
        }
    }
}

template <Family F>
inline void encodeHeader(const Scales &s, unsigned char *p, std::size_t profile) {
    putBe32(p, recordStatus(profile));
    putBe32(p + 4, static_cast<std::uint32_t>(kBeamsPerProfile << 16 | 1));
    putBe32(p + 8, static_cast<std::uint32_t>(nint((recordTime(profile) - s.referenceTime) * s.timeScale)));
    if constexpr (F == Family::ObservedDepths) {
        putBe32(p + 12, static_cast<std::uint32_t>(nint(0.01 * 1e7)));
        putBe32(p + 16, static_cast<std::uint32_t>(nint(-0.02 * 1e7)));
    } else {
        putBe32(p + 12, 7);
    }
}

}  // namespace velmio::bench

#endif
