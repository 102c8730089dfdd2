// Profile headers and items of any size for the families whose records are
// larger than the shared cursor's (side scan, processed depths): units are
// decoded straight from the read window and encoded into a buffer of the
// family's size, while the counts, the time index, the segments and the
// profile cache stay the shared ProfileState's.
#ifndef VELMIO_SENSORS_PROFILE_RECORDS_H
#define VELMIO_SENSORS_PROFILE_RECORDS_H

#include "sensors/profile_cursor.h"

#include <cstdint>

namespace velmio {

constexpr unsigned kMaxProfileRecordWords = 40;  // a processed depths header

// Big-endian units to bytes and back.
void putUnits(const std::uint32_t *words, unsigned count, unsigned char *bytes);
void getUnits(const unsigned char *bytes, unsigned count, std::uint32_t *words);

// Reading: bytes at the state's position, which then moves behind them.
int readUnits(TOVO_Sensor &h, ProfileState &s, unsigned bytes, std::uint32_t *words);
// Moves the position over bytes without reading them.
void skipBytes(ProfileState &s, unsigned bytes);
// Positions on the header of profile n: its offset from the time index.
int seekProfile(TOVO_Sensor &h, ProfileState &s, std::uint32_t profile, std::uint32_t &offset);
// True when count items of itemBytes behind a header at offset end before
// the next profile (or the end of the file): what a count read from the
// file must satisfy before anything is sized or read by it.
bool payloadFits(TOVO_Sensor &h, ProfileState &s, std::uint32_t profile, std::uint64_t offset,
                 std::uint32_t count);
// The same for the header just read sequentially at offset.
bool payloadFitsFile(const ProfileState &s, std::uint64_t offset, std::uint32_t count);
// Positions on item k (from 0) of the profile cached in s.header, without a
// seek when it is the next one.
int seekItem(TOVO_Sensor &h, ProfileState &s, std::uint32_t k);

// Writing. fixReference makes the first ping's time the line's reference,
// so that the header can be encoded, and tells whether it was the first;
// appendHeader counts the profile and its items, adds the time index entry,
// writes the header and, after the first, the summary as it stands;
// appendItem writes one item of the open profile.
bool fixReference(TOVO_Sensor &h, ProfileState &s, double time);
int appendHeader(TOVO_Sensor &h, ProfileState &s, std::uint32_t items, double time, const std::uint32_t *words,
                 bool first);
int appendItem(TOVO_Sensor &h, ProfileState &s, const std::uint32_t *words);
// Writes units in place at offset (update mode).
int storeUnits(TOVO_Sensor &h, ProfileState &s, std::uint64_t offset, const std::uint32_t *words, unsigned count);

}  // namespace velmio

#endif
