// Bulk reads and writes of whole lines into and from caller arrays, beside
// the raw limit on the same bytes: one read of the data bytes and a byte
// swap with scaling into the same arrays, or the reverse and one write (with
// the time index and segment files, synced as the library syncs them).
#include "bench_support.h"
#include "raw_codec.h"
#include "raw_files.h"
#include "survey_lines.h"

#include <velmio/navigation.h>
#include <velmio/observed_depths.h>
#include <velmio/simple_sensor.h>
#include <velmio/tpe.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>

namespace velmio::bench {
namespace {

// The caller's arrays of a whole line, one per field: per record (per beam
// for profile families) and, for profile families, per profile.
struct Columns {
    std::vector<double> time, v1, v2, v3, v4;
    std::vector<unsigned int> status;
    std::vector<double> pingTime, angle1, angle2;
    std::vector<unsigned int> beams, firstBeam, word, profileStatus, offsets;

    Columns(Family family, std::size_t records) {
        const std::size_t profiles = profilesFor(family, records);
        const bool profiled = layoutOf(family).headerBytes != 0;
        const std::size_t n = profiled ? profiles * kBeamsPerProfile : records;
        time.resize(n), v1.resize(n), status.resize(n);
        if (family != Family::Gyro) v2.resize(n);
        if (family == Family::Navigation || family == Family::ObservedDepths) v3.resize(n);
        if (family == Family::ObservedDepths) v4.resize(n);
        if (!profiled) return;
        pingTime.resize(profiles), beams.resize(profiles), firstBeam.resize(profiles);
        profileStatus.resize(profiles), offsets.resize(profiles + 1);
        if (family == Family::ObservedDepths)
            angle1.resize(profiles), angle2.resize(profiles);
        else
            word.resize(profiles);
    }

    double checksum() const {
        double sum = 0;
        for (const auto *column : {&time, &v1, &v2, &v3, &v4, &pingTime, &angle1, &angle2})
            for (double v : *column) sum += v;
        for (const auto *column : {&status, &beams, &firstBeam, &word, &profileStatus, &offsets})
            for (unsigned int v : *column) sum += v;
        return sum;
    }
};

int readAll(Family family, TOVO_Sensor *h, Columns &c) {
    const auto n = static_cast<unsigned int>(c.time.size());
    const auto profiles = static_cast<unsigned int>(c.pingTime.size());
    switch (family) {
    case Family::Gyro: return GyroReadRange(h, 1, n, c.time.data(), c.v1.data(), c.status.data());
    case Family::Navigation:
        return NavigationReadRange(h, 1, n, c.time.data(), c.v1.data(), c.v2.data(), c.v3.data(), c.status.data());
    case Family::ObservedDepths:
        return ObservedDepthsReadRange(h, 1, profiles, c.beams.data(), c.firstBeam.data(), c.pingTime.data(),
                                       c.angle1.data(), c.angle2.data(), c.profileStatus.data(), n, c.offsets.data(),
                                       c.time.data(), c.v1.data(), c.v2.data(), c.v3.data(), c.v4.data(),
                                       c.status.data());
    case Family::TPE:
        return TPEReadRange(h, 1, profiles, c.beams.data(), c.firstBeam.data(), c.pingTime.data(), c.word.data(),
                            c.profileStatus.data(), n, c.offsets.data(), c.time.data(), c.v1.data(), c.v2.data(),
                            c.status.data());
    }
    return -1;
}

// The raw limit's decoding of a data area already in memory into the arrays.
template <Family F>
void decodeAll(const Scales &s, const unsigned char *p, Columns &c) {
    if constexpr (F == Family::Gyro || F == Family::Navigation) {
        const std::size_t step = layoutOf(F).recordBytes;
        for (std::size_t i = 0; i < c.time.size(); ++i, p += step) {
            c.status[i] = be32(p);
            c.time[i] = sbe32(p + 4) / s.timeScale + s.referenceTime;
            if constexpr (F == Family::Gyro) {
                c.v1[i] = sbe32(p + 8) / 1e7;
            } else {
                const double scale = s.positionScale * 1e-9;
                c.v1[i] = sbe32(p + 8) * scale + s.referenceLatitude;
                c.v2[i] = sbe32(p + 12) * scale + s.referenceLongitude;
                c.v3[i] = sbe32(p + 16) / 1000.0;
            }
        }
    } else {
        std::size_t beam = 0;
        for (std::size_t profile = 0; profile < c.pingTime.size(); ++profile) {
            const std::uint32_t layout = be32(p + 4);
            const double ping = sbe32(p + 8) / s.timeScale + s.referenceTime;
            c.profileStatus[profile] = be32(p);
            c.beams[profile] = layout >> 16;
            c.firstBeam[profile] = layout & 0xFFFF;
            c.pingTime[profile] = ping;
            c.offsets[profile] = static_cast<unsigned int>(beam);
            if constexpr (F == Family::ObservedDepths) {
                c.angle1[profile] = sbe32(p + 12) / 1e7;
                c.angle2[profile] = sbe32(p + 16) / 1e7;
            } else {
                c.word[profile] = be32(p + 12);
            }
            p += layoutOf(F).headerBytes;
            for (std::uint32_t b = 0; b < layout >> 16; ++b, ++beam, p += layoutOf(F).recordBytes) {
                const std::uint32_t w = be32(p);
                c.status[beam] = w & 0xFFFF0000u;
                c.time[beam] = static_cast<std::int16_t>(w & 0xFFFF) / s.depthTimeScale + ping;
                if constexpr (F == Family::ObservedDepths) {
                    // On file depth, x, y; the arrays are in Read's order y, x, depth.
                    c.v1[beam] = sbe32(p + 12) / 1000.0;
                    c.v2[beam] = sbe32(p + 8) / 1000.0;
                    c.v3[beam] = sbe32(p + 4) / 1000.0;
                    c.v4[beam] = 0;
                } else {
                    c.v1[beam] = sbe32(p + 4) / 1000.0;
                    c.v2[beam] = sbe32(p + 8) / 1000.0;
                }
            }
        }
        c.offsets[c.pingTime.size()] = static_cast<unsigned int>(beam);
    }
}

template <Family F>
void BulkRead(benchmark::State &state) {
    const Line &l = line(F, static_cast<std::size_t>(state.range(0)));
    const char *cache = state.range(1) ? "64" : nullptr;
    const Layout &layout = layoutOf(F);
    const std::size_t bytes = fileSize(l.dataFile) - layout.dataOffset;
    const Scales s = scalesOf(F, fileBytes(l.dataFile, 128).data());
    const bool measureMemory = l.records >= kLargeLine;
    Columns velmio(F, l.records), raw(F, l.records);
    std::vector<unsigned char> buffer(bytes);
    double peakExtra = 0, mappedFile = 0;
    compare(
        state, static_cast<double>(velmio.time.size()),
        [&](Stopwatch &watch) {
            TOVO_Sensor *h = openLine(F, l.wdirectory, L"query", cache);
            const std::size_t before = measureMemory ? residentBytes() : 0;
            const std::size_t fileBefore = measureMemory ? residentFileBytes() : 0;
            if (measureMemory) resetPeak();
            watch.start();
            const int rc = readAll(F, h, velmio);
            watch.stop();
            if (measureMemory) {
                // Pages of a mapped data file are the page cache's, not memory the read holds.
                const double mapped = static_cast<double>(residentFileBytes()) - static_cast<double>(fileBefore);
                mappedFile = std::max(mappedFile, mapped);
                peakExtra = std::max(peakExtra, static_cast<double>(peakBytes() - before) - std::max(mapped, 0.0));
            }
            closeLine(F, h);
            if (rc) state.SkipWithError(("bulk read failed: " + std::to_string(rc)).c_str());
            return velmio.checksum();
        },
        [&](Stopwatch &watch) {
            const int fd = ::open(l.dataFile.c_str(), O_RDONLY);
            watch.start();
            const ssize_t got = ::pread(fd, buffer.data(), bytes, static_cast<off_t>(layout.dataOffset));
            if (got == static_cast<ssize_t>(bytes)) decodeAll<F>(s, buffer.data(), raw);
            watch.stop();
            ::close(fd);
            return raw.checksum();
        });
    if (measureMemory) {
        state.counters["peak_extra_bytes"] = peakExtra;
        state.counters["mapped_file_bytes"] = mappedFile;
    }
}

// writeLine's data as arrays, the input of a bulk write.
Columns source(Family family, std::size_t records) {
    Columns c(family, records);
    if (layoutOf(family).headerBytes == 0) {
        for (std::size_t i = 0; i < records; ++i) {
            c.time[i] = recordTime(i);
            c.status[i] = recordStatus(i);
            if (family == Family::Gyro) {
                c.v1[i] = recordValue(i);
            } else {
                const double drift = static_cast<double>(i) * 1e-9;
                c.v1[i] = 0.9 + drift, c.v2[i] = 0.05 + drift, c.v3[i] = recordValue(i);
            }
        }
        return c;
    }
    for (std::size_t p = 0, i = 0; p < c.pingTime.size(); ++p) {
        c.pingTime[p] = recordTime(p);
        c.profileStatus[p] = recordStatus(p);
        for (std::size_t b = 0; b < kBeamsPerProfile; ++b, ++i) {
            c.time[i] = recordTime(p) + b * 1e-5;
            c.status[i] = recordStatus(b) << 16;
            if (family == Family::ObservedDepths)
                c.v1[i] = b * 0.5, c.v2[i] = -(b * 0.25), c.v3[i] = 20.0 + recordValue(b);
            else
                c.v1[i] = 0.1 + b * 0.001, c.v2[i] = 0.2 + b * 0.002;
        }
    }
    return c;
}

// The same line writeLine makes (a segment per million records), in bulk calls.
void writeAll(Family family, const std::wstring &dir, const Columns &c) {
    TOVO_Sensor *h = openLine(family, dir, L"create");
    const std::size_t n = c.time.size();
    switch (family) {
    case Family::Gyro:
    case Family::Navigation:
        require(family == Family::Gyro ? GyroBgnSeqWriteSummary(h) : NavigationBgnSeqWriteSummary(h, 1),
              "BgnSeqWriteSummary");
        for (std::size_t at = 0; at < n; at += kSegmentRecords) {
            const auto count = static_cast<unsigned int>(std::min(kSegmentRecords, n - at));
            if (family == Family::Gyro) {
                require(GyroBgnSeqWriteLineSegment(h, L"raw.dat"), "GyroBgnSeqWriteLineSegment");
                require(GyroSeqWriteRange(h, count, &c.time[at], &c.v1[at], &c.status[at]), "GyroSeqWriteRange");
                require(GyroEndSeqWriteLineSegment(h, 0), "GyroEndSeqWriteLineSegment");
            } else {
                require(NavigationBgnSeqWriteLineSegment(h, L"raw.dat"), "NavigationBgnSeqWriteLineSegment");
                require(NavigationSeqWriteRange(h, count, &c.time[at], &c.v1[at], &c.v2[at], &c.v3[at], &c.status[at]),
                      "NavigationSeqWriteRange");
                require(NavigationEndSeqWriteLineSegment(h, 0), "NavigationEndSeqWriteLineSegment");
            }
        }
        require(family == Family::Gyro ? GyroEndSeqWriteSummary(h, 0) : NavigationEndSeqWriteSummary(h, 0),
              "EndSeqWriteSummary");
        break;
    case Family::ObservedDepths:
        require(ObservedDepthsBgnSeqWriteSummary(h), "ObservedDepthsBgnSeqWriteSummary");
        require(ObservedDepthsBgnSeqWriteLineSegment(h, L"raw.dat"), "ObservedDepthsBgnSeqWriteLineSegment");
        for (std::size_t p = 0, at = 0; p < c.pingTime.size(); ++p, at += kBeamsPerProfile) {
            require(ObservedDepthsBgnSeqWriteProfile(h, kBeamsPerProfile, 1, c.pingTime[p], 0.01, -0.02,
                                                   c.profileStatus[p]),
                  "ObservedDepthsBgnSeqWriteProfile");
            require(ObservedDepthsSeqWriteBeams(h, kBeamsPerProfile, &c.time[at], &c.v1[at], &c.v2[at], &c.v3[at],
                                              &c.status[at]),
                  "ObservedDepthsSeqWriteBeams");
            require(ObservedDepthsEndSeqWriteProfile(h), "ObservedDepthsEndSeqWriteProfile");
        }
        require(ObservedDepthsEndSeqWriteLineSegment(h, 0), "ObservedDepthsEndSeqWriteLineSegment");
        require(ObservedDepthsEndSeqWriteSummary(h, 0), "ObservedDepthsEndSeqWriteSummary");
        break;
    case Family::TPE:
        require(TPEBgnSeqWriteSummary(h), "TPEBgnSeqWriteSummary");
        require(TPEBgnSeqWriteLineSegment(h, L"raw.dat"), "TPEBgnSeqWriteLineSegment");
        for (std::size_t p = 0, at = 0; p < c.pingTime.size(); ++p, at += kBeamsPerProfile) {
            require(TPEBgnSeqWriteProfile(h, kBeamsPerProfile, 1, c.pingTime[p], 7, c.profileStatus[p]),
                  "TPEBgnSeqWriteProfile");
            require(TPESeqWriteBeams(h, kBeamsPerProfile, &c.time[at], &c.v1[at], &c.v2[at], &c.status[at]),
                  "TPESeqWriteBeams");
            require(TPEEndSeqWriteProfile(h), "TPEEndSeqWriteProfile");
        }
        require(TPEEndSeqWriteLineSegment(h, 0), "TPEEndSeqWriteLineSegment");
        require(TPEEndSeqWriteSummary(h, 0), "TPEEndSeqWriteSummary");
        break;
    }
    require(closeLine(family, h), "Close");
}

// The raw limit's encoding of the arrays: scale, round and swap into one buffer.
template <Family F>
std::size_t encodeAll(const Scales &s, const Columns &c, unsigned char *p) {
    unsigned char *const begin = p;
    auto time = [&](double t, double reference) {
        return static_cast<std::uint32_t>(nint((t - reference) * s.timeScale));
    };
    if constexpr (F == Family::Gyro || F == Family::Navigation) {
        for (std::size_t i = 0; i < c.time.size(); ++i, p += layoutOf(F).recordBytes) {
            putBe32(p, c.status[i]);
            putBe32(p + 4, time(c.time[i], s.referenceTime));
            if constexpr (F == Family::Gyro) {
                putBe32(p + 8, static_cast<std::uint32_t>(nint(c.v1[i] * 1e7)));
            } else {
                putBe32(p + 8, static_cast<std::uint32_t>(nint((c.v1[i] - s.referenceLatitude) / 1e-9)));
                putBe32(p + 12, static_cast<std::uint32_t>(nint((c.v2[i] - s.referenceLongitude) / 1e-9)));
                putBe32(p + 16, static_cast<std::uint32_t>(nint(c.v3[i] * 1000.0)));
            }
        }
    } else {
        for (std::size_t profile = 0, i = 0; profile < c.pingTime.size(); ++profile) {
            encodeHeader<F>(s, p, profile);
            p += layoutOf(F).headerBytes;
            const double ping = c.pingTime[profile];
            for (std::size_t b = 0; b < kBeamsPerProfile; ++b, ++i, p += layoutOf(F).recordBytes) {
                const std::uint32_t offset = static_cast<std::uint32_t>(nint((c.time[i] - ping) * s.depthTimeScale));
                putBe32(p, c.status[i] | (offset & 0xFFFF));
                if constexpr (F == Family::ObservedDepths) {
                    putBe32(p + 4, static_cast<std::uint32_t>(nint(c.v3[i] * 1000.0)));
                    putBe32(p + 8, static_cast<std::uint32_t>(nint(c.v2[i] * 1000.0)));
                    putBe32(p + 12, static_cast<std::uint32_t>(nint(c.v1[i] * 1000.0)));
                } else {
                    putBe32(p + 4, static_cast<std::uint32_t>(static_cast<std::int32_t>(c.v1[i] * 1000.0)));
                    putBe32(p + 8, static_cast<std::uint32_t>(static_cast<std::int32_t>(c.v2[i] * 1000.0)));
                }
            }
        }
    }
    return static_cast<std::size_t>(p - begin);
}

// The time index of an encoded data area: one entry per record, or per
// profile header.
template <Family F>
void indexData(const unsigned char *area, std::size_t records, RawIndex &index) {
    const Layout &layout = layoutOf(F);
    auto offset = static_cast<std::uint32_t>(layout.dataOffset);
    if constexpr (F == Family::Gyro || F == Family::Navigation) {
        for (std::size_t i = 0; i < records; ++i, area += layout.recordBytes, offset += layout.recordBytes)
            index.add(sbe32(area + 4), offset);
    } else {
        const std::size_t step = layout.headerBytes + kBeamsPerProfile * layout.recordBytes;
        for (std::size_t p = 0; p < profilesFor(F, records); ++p, area += step, offset += step)
            index.add(sbe32(area + 8), offset);
    }
}

// Both passes make a whole line on the disk, Close included: the raw pass
// encodes into one buffer and writes it with one call, adds the time index
// and segment files, and syncs them as the library's Close does (checked
// byte for byte after each pass).
template <Family F>
void BulkWrite(benchmark::State &state) {
    const auto records = static_cast<std::size_t>(state.range(0));
    const std::string dir = freshDir("bulk-write");
    const std::string velmioDir = dir + "/velmio", rawDir = dir + "/raw";
    std::filesystem::create_directories(velmioDir);
    std::filesystem::create_directories(rawDir);
    const std::wstring wdir = widen(velmioDir);
    const Columns c = source(F, records);
    const Scales s = writerScales();
    const Layout &layout = layoutOf(F);
    std::vector<unsigned char> buffer(layout.dataOffset + c.time.size() * layout.recordBytes +
                                      c.pingTime.size() * layout.headerBytes);
    compare(
        state, static_cast<double>(c.time.size()),
        [&](Stopwatch &watch) {
            watch.start();
            writeAll(F, wdir, c);
            watch.stop();
            return 1.0;
        },
        [&](Stopwatch &watch) {
            const std::vector<unsigned char> head = fileBytes(velmioDir + "/" + layout.stem, layout.dataOffset);
            const std::vector<SideFile> sides = sideFiles(velmioDir, layout.stem);
            watch.start();
            std::copy(head.begin(), head.end(), buffer.begin());
            const std::size_t bytes = layout.dataOffset + encodeAll<F>(s, c, buffer.data() + layout.dataOffset);
            RawIndex index(be32(&head[4]), be32(&head[12]), profilesFor(F, records));
            indexData<F>(buffer.data() + layout.dataOffset, records, index);
            const int fd = ::open((rawDir + "/" + layout.stem).c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
            bool ok = ::write(fd, buffer.data(), bytes) == static_cast<ssize_t>(bytes) && ::fdatasync(fd) == 0;
            ok = ::close(fd) == 0 && ok;
            const std::vector<unsigned char> &indexBytes = index.bytes();
            ok = replaceDurably(rawDir + "/" + layout.stem + "TmIdx", indexBytes.data(), indexBytes.size()) && ok;
            for (const SideFile &side : sides)
                ok = replaceDurably(rawDir + "/" + side.name, side.bytes.data(), side.bytes.size()) && ok;
            watch.stop();
            if (!ok) throw std::runtime_error("raw write failed in " + rawDir);
            return sameFiles(velmioDir, rawDir);
        });
}

const bool registered = [] {
    addForLines("BulkWrite/Gyro", BulkWrite<Family::Gyro>);
    addForLines("BulkWrite/Navigation", BulkWrite<Family::Navigation>);
    addForLines("BulkWrite/ObservedDepths", BulkWrite<Family::ObservedDepths>);
    addForLines("BulkWrite/TPE", BulkWrite<Family::TPE>);
    addForLines("BulkRead/Gyro", BulkRead<Family::Gyro>);
    addForLines("BulkRead/Navigation", BulkRead<Family::Navigation>);
    addForLines("BulkRead/ObservedDepths", BulkRead<Family::ObservedDepths>);
    addForLines("BulkRead/TPE", BulkRead<Family::TPE>, true);
    return true;
}();

}  // namespace
}  // namespace velmio::bench
