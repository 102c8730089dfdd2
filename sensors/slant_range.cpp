// Slant range: profiles of beam ranges, statuses edited in place on disk.
#include <velmio/encoding.h>
#include <velmio/linestore.h>
#include <velmio/slant_range.h>

#include "encoding/rounding.h"
#include "sensors/profile_bulk.h"
#include "sensors/profile_cursor.h"


using namespace velmio;

namespace {

constexpr int kTime = 0;

constexpr SummaryField kSummary[] = {
    {SummaryWord::Status},
    {SummaryWord::FamilyWord0},  // tool type
    {SummaryWord::RecordCount},
    {SummaryWord::ItemCount},
    {SummaryWord::TimeScale},
    {SummaryWord::DepthTimeScale},
    {SummaryWord::ReferenceTime},
    {SummaryWord::ExtentMin, kTime, ExtentKind::Time},
    {SummaryWord::ExtentMax, kTime, ExtentKind::Time},
};
constexpr int kSummaryWords = sizeof kSummary / sizeof kSummary[0];
static_assert(kSummaryWords <= kMaxSummaryWords && 20 <= kMaxRecordBytes, "the engine's buffers hold these records");

void widenByBeam(const ProfileState &s, const std::uint32_t *w, Extent *extents) {
    extents[kTime].widen(beamTime(s, s.profileTime, w[0]));
}

const ProfileFamily kSlantRange = {
    {
        5001900,
        2,                  // format version written
        {20, 16, false},    // header and beam bytes
        {0, 0, false},      // version 1 files share the layout
        kSummaryWords,
        kSummary,
        nullptr,
        {1, {ExtentKind::Time}, 5001901, nullptr, 5001903, 5001902, 5001926, nullptr, nullptr, nullptr, nullptr},
        5001906,
        nullptr,
        kReadFailed,
        nullptr,
        5001914,
        0,
    },
    30,
    kOutOfRange,
    false,
    true,
    widenByBeam,
    nullptr,
};

int enter(TOVO_Sensor *h, unsigned modes, ProfileState *&s) { return enterProfile(h, kSlantRange, modes, s); }

// Beam angles travel in ten-thousandths, two to a word.
std::uint32_t packAngles(double first, double second) {
    const auto a = static_cast<std::uint32_t>(nint(first * 10000.0)) & 0xFFFFu;
    const auto b = static_cast<std::uint32_t>(nint(second * 10000.0)) & 0xFFFFu;
    return (a << 16) | b;
}

double unpackAngle(std::uint32_t half) { return static_cast<std::int16_t>(half & 0xFFFFu) / 10000.0; }

void fillBeam(const TOVO_Sensor &, const ProfileState &s, const std::uint32_t *w, double *time, double *range,
              double *value, double *angle1, double *angle2, unsigned int *status) {
    *time = beamTime(s, s.profileTime, w[0]);
    *range = decodeMetres(asSigned(w[1]));
    *value = asSigned(w[2]) / 1000000.0;
    *angle1 = unpackAngle(w[3] >> 16);
    *angle2 = unpackAngle(w[3]);
    *status = w[0] & 0xFFFF0000u;
}

void fillHeader(const ProfileHeader &p, unsigned int *numberOfBeams, unsigned int *firstBeam, double *time,
                double *angle1, double *angle2, unsigned int *status) {
    *numberOfBeams = p.beamCount;
    *firstBeam = p.firstBeam;
    *time = p.time;
    *angle1 = TOVO_DecodeRadians(asSigned(p.words[3]));
    *angle2 = TOVO_DecodeRadians(asSigned(p.words[4]));
    *status = p.status;
}

}  // namespace

const ProfileFamily &velmio::slantRangeProfiles() { return kSlantRange; }

extern "C" {

VELMIO_API int SLRangeReadProfile(TOVO_Sensor *handle, unsigned int profileNumber, unsigned int *numberOfBeams,
                                  unsigned int *firstBeam, double *time, double *angle1, double *angle2,
                                  unsigned int *status) {
    ProfileState *s = nullptr;
    if (const int rc = enter(handle, kReadModes, s)) return rc;
    if (!numberOfBeams || !firstBeam || !time || !angle1 || !angle2 || !status) return -1;
    if (!withinBeamTotal(*s, profileNumber)) return kSlantRange.code(kOutOfRange);
    if (const int rc = loadHeader(*handle, *s, profileNumber, kNotDecoded)) return rc;
    s->profileTime = s->header.time;
    fillHeader(s->header, numberOfBeams, firstBeam, time, angle1, angle2, status);
    return 0;
}

VELMIO_API int SLRangeRead(TOVO_Sensor *handle, unsigned int profileNumber, unsigned int beamNumber,
                           double *beamTime, double *range, double *value, double *beamAngle1, double *beamAngle2,
                           unsigned int *status) {
    ProfileState *s = nullptr;
    if (const int rc = enter(handle, kReadModes, s)) return rc;
    if (!beamTime || !range || !value || !beamAngle1 || !beamAngle2 || !status) return -1;
    if (!withinBeamTotal(*s, profileNumber)) return kSlantRange.code(kOutOfRange);
    std::uint32_t words[kMaxRecordWords];
    if (const int rc = readBeam(*handle, *s, profileNumber, beamNumber, words, kOutOfRange)) return rc;
    fillBeam(*handle, *s, words, beamTime, range, value, beamAngle1, beamAngle2, status);
    return 0;
}

VELMIO_API int SLRangeReadProfileSeq(TOVO_Sensor *handle, unsigned int *numberOfBeams, unsigned int *firstBeam,
                                     double *time, double *angle1, double *angle2, unsigned int *status) {
    ProfileState *s = nullptr;
    if (const int rc = enter(handle, kQueryMode, s)) return rc;
    if (!numberOfBeams || !firstBeam || !time || !angle1 || !angle2 || !status) return -1;
    ProfileHeader header;
    if (const int rc = readHeaderSeq(*handle, *s, header)) return rc;
    fillHeader(header, numberOfBeams, firstBeam, time, angle1, angle2, status);
    return 0;
}

VELMIO_API int SLRangeReadSeq(TOVO_Sensor *handle, double *beamTime, double *range, double *value,
                              double *beamAngle1, double *beamAngle2, unsigned int *status) {
    ProfileState *s = nullptr;
    if (const int rc = enter(handle, kQueryMode, s)) return rc;
    if (!beamTime || !range || !value || !beamAngle1 || !beamAngle2 || !status) return -1;
    std::uint32_t words[kMaxRecordWords];
    if (const int rc = readBeamSeq(*handle, *s, words)) return rc;
    fillBeam(*handle, *s, words, beamTime, range, value, beamAngle1, beamAngle2, status);
    return 0;
}

}  // extern "C"

int velmio::readSlantRangeRange(TOVO_Sensor *handle, unsigned int firstProfile, unsigned int count,
                                const AngleHeaderArrays &headers, unsigned int beamCapacity,
                                unsigned int *beamOffsets, double *beamTimes, double *ranges, double *values,
                                double *beamAngles1, double *beamAngles2, unsigned int *statuses) {
    AngleHeader last;
    auto beamsOf = angleProfileBeams(handle, SLRangeReadProfile, last);
    const ProfileState *s = stateOf<ProfileState>(handle, kSlantRange);
    auto decode = [&](const std::uint32_t *words, std::uint32_t k) {
        double t, r, v, a1, a2;
        unsigned int status;
        fillBeam(*handle, *s, words, &t, &r, &v, &a1, &a2, &status);
        if (beamTimes) beamTimes[k] = t;
        if (ranges) ranges[k] = r;
        if (values) values[k] = v;
        if (beamAngles1) beamAngles1[k] = a1;
        if (beamAngles2) beamAngles2[k] = a2;
        if (statuses) statuses[k] = status;
    };
    auto readable = [s](std::uint32_t p) { return withinBeamTotal(*s, p); };
    return readBeamsInPlace(handle, kSlantRange, firstProfile, count, beamCapacity, beamOffsets, beamsOf, readable,
                            decode, [&](std::uint32_t i) { headers.store(last, i); });
}

extern "C" {

VELMIO_API int SLRangeBgnSeqWriteProfile(TOVO_Sensor *handle, unsigned int numberOfBeams, unsigned int firstBeam,
                                         double time, double angle1, double angle2, unsigned int status) {
    ProfileState *s = nullptr;
    if (const int rc = enter(handle, kCreateMode, s)) return rc;
    const std::uint32_t angles[2] = {asWord(TOVO_EncodeRadians(angle1)), asWord(TOVO_EncodeRadians(angle2))};
    return beginProfile(*handle, *s, numberOfBeams, firstBeam, time, status, angles, 2, true);
}

VELMIO_API int SLRangeSeqWrite(TOVO_Sensor *handle, double beamTime, double range, double value, double beamAngle1,
                               double beamAngle2, unsigned int status) {
    ProfileState *s = nullptr;
    if (const int rc = enter(handle, kCreateMode, s)) return rc;
    // The value is truncated, unlike the rounded beam angles.
    const std::uint32_t words[4] = {statusAndOffset(*s, beamTime, status),
                                    asWord(TOVO_EncodeMeters(range)), asWord(truncToInt32(value * 1000000.0)),
                                    packAngles(beamAngle1, beamAngle2)};
    return writeBeam(*handle, *s, words, beamTime);
}

VELMIO_API int SLRangeSeqWriteBeams(TOVO_Sensor *handle, unsigned int count, const double *beamTimes,
                                    const double *ranges, const double *values, const double *beamAngles1,
                                    const double *beamAngles2, const unsigned int *statuses) {
    const bool present = beamTimes && ranges && values && beamAngles1 && beamAngles2;
    return appendBeams(
        handle, kSlantRange, count, present, statuses,
        [&](const BeamClock &clock, std::uint32_t i, std::uint32_t status, unsigned char *bytes) {
            storeBe32(bytes, clock.word1(beamTimes[i], status));
            storeBe32(bytes + 4, asWord(encodeMetres(ranges[i])));
            storeBe32(bytes + 8, asWord(truncToInt32(values[i] * 1000000.0)));
            storeBe32(bytes + 12, packAngles(beamAngles1[i], beamAngles2[i]));
            return beamTimes[i];
        },
        [](ProfileState &) {},
        [&](std::uint32_t i) {
            return SLRangeSeqWrite(handle, beamTimes[i], ranges[i], values[i], beamAngles1[i], beamAngles2[i],
                                   statuses ? statuses[i] : 0);
        });
}

VELMIO_API int SLRangeUpdateStatus(TOVO_Sensor *handle, unsigned int profileNumber, unsigned int beamNumber,
                                   unsigned int status) {
    ProfileState *s = nullptr;
    if (const int rc = enter(handle, kUpdateMode, s)) return rc;
    if (handle->formatVersion != 2) return 0;
    if (profileNumber < 1 || profileNumber > handle->recordCount) return kSlantRange.code(kOutOfRange);
    std::uint32_t words[kMaxRecordWords];
    std::uint32_t offset = 0;
    if (const int rc = loadBeamForEdit(*handle, *s, profileNumber, beamNumber, words, offset)) return rc;
    words[0] = (words[0] & 0xFFFFu) | status;
    return storeBeam(*handle, *s, offset, words);
}

}  // extern "C"
