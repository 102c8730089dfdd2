// Per-record writing, sequential and random reading, and opening a line,
// each beside the raw limit on the same bytes: a stdio loop with a 64 KiB
// buffer (a write also making the time index and segment files, synced as
// the library syncs them), one pread per random record, one read of the time
// index file.
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

#include <cstdio>
#include <filesystem>
#include <memory>
#include <random>
#include <stdexcept>

namespace velmio::bench {
namespace {

constexpr std::size_t kStdioBuffer = 64 * 1024;
constexpr std::size_t kRandomReads = 20000;

struct FileClose {
    void operator()(std::FILE *f) const { std::fclose(f); }
};
using File = std::unique_ptr<std::FILE, FileClose>;

File openBuffered(const std::string &path, const char *mode) {
    File f(std::fopen(path.c_str(), mode));
    if (!f) throw std::runtime_error("cannot open " + path);
    std::setvbuf(f.get(), nullptr, _IOFBF, kStdioBuffer);
    return f;
}

std::size_t beamsOf(Family family, std::size_t records) {
    return layoutOf(family).headerBytes ? profilesFor(family, records) * kBeamsPerProfile : records;
}

// The VelmIO side of one family: the next record, and record i (from 0) at random.
template <Family F>
double readNext(TOVO_Sensor *h, double &pingTime, std::size_t index) {
    unsigned int status = 0;
    if constexpr (F == Family::Gyro) {
        double t, v;
        GyroReadSeq(h, &t, &v, &status);
        return t + v + status;
    } else if constexpr (F == Family::Navigation) {
        double t, lat, lon, m;
        NavigationReadSeq(h, &t, &lat, &lon, &m, &status);
        return t + lat + lon + m + status;
    } else {
        double sum = 0;
        if (index % kBeamsPerProfile == 0) {
            unsigned int n, first;
            if constexpr (F == Family::ObservedDepths) {
                double a1, a2;
                ObservedDepthsReadProfileSeq(h, &n, &first, &pingTime, &a1, &a2, &status);
                sum = status + static_cast<double>(n) + first + pingTime + a1 + a2;
            } else {
                unsigned int word;
                TPEReadProfileSeq(h, &n, &first, &pingTime, &word, &status);
                sum = status + static_cast<double>(n) + first + pingTime + word;
            }
        }
        double t, a, b;
        if constexpr (F == Family::ObservedDepths) {
            double c, extra;
            ObservedDepthsReadSeq(h, &t, &a, &b, &c, &extra, &status);
            return sum + t + c + b + a + status;
        } else {
            TPEReadSeq(h, &t, &a, &b, &status);
            return sum + t + a + b + status;
        }
    }
}

template <Family F>
double readAt(TOVO_Sensor *h, std::size_t index) {
    unsigned int status = 0;
    const auto n = static_cast<unsigned int>(index + 1);
    if constexpr (F == Family::Gyro) {
        double t, v;
        GyroRead(h, n, &t, &v, &status);
        return t + v + status;
    } else if constexpr (F == Family::Navigation) {
        double t, lat, lon, m;
        NavigationRead(h, n, &t, &lat, &lon, &m, &status);
        return t + lat + lon + m + status;
    } else {
        const auto profile = static_cast<unsigned int>(index / kBeamsPerProfile + 1);
        const auto beam = static_cast<unsigned int>(index % kBeamsPerProfile + 1);
        double t, a, b;
        if constexpr (F == Family::ObservedDepths) {
            double c, extra;
            ObservedDepthsRead(h, profile, beam, &t, &a, &b, &c, &extra, &status);
            return t + c + b + a + status;
        } else {
            TPERead(h, profile, beam, &t, &a, &b, &status);
            return t + a + b + status;
        }
    }
}

// The raw writer of a line: the header as the library left it, each record
// through a 64 KiB stdio buffer with its time index entry, then the same
// files as the library's, made as durable.
template <Family F>
void writeRaw(const std::string &dir, std::size_t records, const std::vector<unsigned char> &head,
              const std::vector<SideFile> &sides) {
    const Layout &layout = layoutOf(F);
    const Scales s = writerScales();
    File f = openBuffered(dir + "/" + layout.stem, "wb");
    std::fwrite(head.data(), 1, head.size(), f.get());
    RawIndex index(be32(&head[4]), be32(&head[12]), profilesFor(F, records));
    auto offset = static_cast<std::uint32_t>(layout.dataOffset);
    unsigned char record[32];
    if constexpr (F == Family::Gyro || F == Family::Navigation) {
        for (std::size_t i = 0; i < records; ++i, offset += layout.recordBytes) {
            encodeRecord<F>(s, record, i);
            index.add(sbe32(record + 4), offset);
            std::fwrite(record, layout.recordBytes, 1, f.get());
        }
    } else {
        for (std::size_t p = 0; p < profilesFor(F, records); ++p) {
            encodeHeader<F>(s, record, p);
            index.add(sbe32(record + 8), offset);
            offset += layout.headerBytes + kBeamsPerProfile * layout.recordBytes;
            std::fwrite(record, layout.headerBytes, 1, f.get());
            for (std::size_t b = 0; b < kBeamsPerProfile; ++b) {
                encodeRecord<F>(s, record, p, b);
                std::fwrite(record, layout.recordBytes, 1, f.get());
            }
        }
    }
    bool ok = syncClose(f.release());
    const std::vector<unsigned char> &indexBytes = index.bytes();
    ok = replaceDurably(dir + "/" + layout.stem + "TmIdx", indexBytes.data(), indexBytes.size()) && ok;
    for (const SideFile &side : sides) ok = replaceDurably(dir + "/" + side.name, side.bytes.data(), side.bytes.size()) && ok;
    if (!ok) throw std::runtime_error("raw write failed in " + dir);
}

// Both passes make a whole line on the disk, Close included: the library's
// Close writes the time index and segment files and syncs them and the data
// file, so the raw pass writes the same bytes to the same files and syncs
// them alike (checked byte for byte after each pass).
template <Family F>
void PerRecordWrite(benchmark::State &state) {
    const auto records = static_cast<std::size_t>(state.range(0));
    const std::string dir = freshDir("write");
    const std::string velmioDir = dir + "/velmio", rawDir = dir + "/raw";
    std::filesystem::create_directories(velmioDir);
    std::filesystem::create_directories(rawDir);
    const std::wstring wdir = widen(velmioDir);
    const Layout &layout = layoutOf(F);
    compare(
        state, static_cast<double>(beamsOf(F, records)),
        [&](Stopwatch &watch) {
            watch.start();
            writeLine(F, wdir, records);
            watch.stop();
            return 1.0;
        },
        [&](Stopwatch &watch) {
            const std::vector<unsigned char> head = fileBytes(velmioDir + "/" + layout.stem, layout.dataOffset);
            const std::vector<SideFile> sides = sideFiles(velmioDir, layout.stem);
            watch.start();
            writeRaw<F>(rawDir, records, head, sides);
            watch.stop();
            return sameFiles(velmioDir, rawDir);
        });
}

template <Family F>
void PerRecordRead(benchmark::State &state) {
    const Line &l = line(F, static_cast<std::size_t>(state.range(0)));
    const char *cache = state.range(1) ? "64" : nullptr;
    const std::size_t beams = beamsOf(F, l.records);
    const Layout &layout = layoutOf(F);
    const Scales s = scalesOf(F, fileBytes(l.dataFile, 128).data());
    compare(
        state, static_cast<double>(beams),
        [&](Stopwatch &watch) {
            TOVO_Sensor *h = openLine(F, l.wdirectory, L"query", cache);
            double sum = 0, pingTime = 0;
            watch.start();
            for (std::size_t i = 0; i < beams; ++i) sum += readNext<F>(h, pingTime, i);
            watch.stop();
            closeLine(F, h);
            return sum;
        },
        [&](Stopwatch &watch) {
            File f = openBuffered(l.dataFile, "rb");
            std::fseek(f.get(), static_cast<long>(layout.dataOffset), SEEK_SET);
            double sum = 0, pingTime = 0;
            unsigned char record[32];
            watch.start();
            for (std::size_t i = 0; i < beams; ++i) {
                if (layout.headerBytes && i % kBeamsPerProfile == 0) {
                    if (std::fread(record, layout.headerBytes, 1, f.get()) != 1) break;
                    sum += decodeHeader<F>(s, record, pingTime);
                }
                if (std::fread(record, layout.recordBytes, 1, f.get()) != 1) break;
                sum += decodeRecord<F>(s, record, pingTime);
            }
            watch.stop();
            return sum;
        });
}

// Ping times as the time index holds them, so the raw random read of a beam
// needs only the beam's bytes, like a reader that keeps the index in memory.
std::vector<double> pingTimes(const Line &l, const Scales &s) {
    const std::vector<unsigned char> index = fileBytes(l.indexFile);
    const std::uint32_t sets = be32(index.data() + 16);
    std::vector<double> times;
    std::size_t at = 24 + 12 * static_cast<std::size_t>(sets);
    for (std::uint32_t set = 0; set < sets; ++set) {
        const std::uint32_t count = be32(index.data() + at);
        at += 4;
        for (std::uint32_t e = 0; e < count; ++e, at += 8)
            times.push_back(sbe32(index.data() + at) / s.timeScale + s.referenceTime);
    }
    return times;
}

template <Family F>
void RandomRead(benchmark::State &state) {
    const Line &l = line(F, static_cast<std::size_t>(state.range(0)));
    const char *cache = state.range(1) ? "64" : nullptr;
    const Layout &layout = layoutOf(F);
    const Scales s = scalesOf(F, fileBytes(l.dataFile, 128).data());
    const std::vector<double> pings = layout.headerBytes ? pingTimes(l, s) : std::vector<double>();
    std::mt19937_64 random(12);
    std::uniform_int_distribution<std::size_t> pick(0, beamsOf(F, l.records) - 1);
    std::vector<std::size_t> order(kRandomReads);
    for (std::size_t &i : order) i = pick(random);
    compare(
        state, static_cast<double>(kRandomReads),
        [&](Stopwatch &watch) {
            TOVO_Sensor *h = openLine(F, l.wdirectory, L"query", cache);
            double sum = 0;
            watch.start();
            for (std::size_t i : order) sum += readAt<F>(h, i);
            watch.stop();
            closeLine(F, h);
            return sum;
        },
        [&](Stopwatch &watch) {
            const int fd = ::open(l.dataFile.c_str(), O_RDONLY);
            double sum = 0;
            unsigned char record[32];
            const std::size_t profileBytes = layout.headerBytes + kBeamsPerProfile * layout.recordBytes;
            watch.start();
            for (std::size_t i : order) {
                double pingTime = 0;
                off_t at;
                if (layout.headerBytes) {
                    const std::size_t profile = i / kBeamsPerProfile;
                    pingTime = pings[profile];
                    at = static_cast<off_t>(layout.dataOffset + profile * profileBytes + layout.headerBytes +
                                            (i % kBeamsPerProfile) * layout.recordBytes);
                } else {
                    at = static_cast<off_t>(layout.dataOffset + i * layout.recordBytes);
                }
                if (::pread(fd, record, layout.recordBytes, at) != static_cast<ssize_t>(layout.recordBytes)) break;
                sum += decodeRecord<F>(s, record, pingTime);
            }
            watch.stop();
            ::close(fd);
            return sum;
        });
}

// Opening for query loads and checks summary, segments and the whole time index.
void OpenForQuery(benchmark::State &state) {
    const Line &l = line(Family::Gyro, static_cast<std::size_t>(state.range(0)));
    const std::size_t indexBytes = fileSize(l.indexFile);
    compare(
        state, 1.0,
        [&](Stopwatch &watch) {
            watch.start();
            TOVO_Sensor *h = openLine(Family::Gyro, l.wdirectory, L"query");
            watch.stop();
            closeLine(Family::Gyro, h);
            return 0.0;
        },
        [&](Stopwatch &watch) {
            std::vector<unsigned char> bytes(indexBytes);
            watch.start();
            const int fd = ::open(l.indexFile.c_str(), O_RDONLY);
            const ssize_t got = ::read(fd, bytes.data(), bytes.size());
            ::close(fd);
            watch.stop();
            return static_cast<double>(got);
        });
}

const bool registered = [] {
    addForLines("PerRecordWrite/Gyro", PerRecordWrite<Family::Gyro>);
    addForLines("PerRecordWrite/Navigation", PerRecordWrite<Family::Navigation>);
    addForLines("PerRecordWrite/ObservedDepths", PerRecordWrite<Family::ObservedDepths>);
    addForLines("PerRecordWrite/TPE", PerRecordWrite<Family::TPE>);
    addForLines("PerRecordRead/Gyro", PerRecordRead<Family::Gyro>);
    addForLines("PerRecordRead/Navigation", PerRecordRead<Family::Navigation>);
    addForLines("PerRecordRead/ObservedDepths", PerRecordRead<Family::ObservedDepths>);
    addForLines("PerRecordRead/TPE", PerRecordRead<Family::TPE>, true);
    addForLines("RandomRead/Gyro", RandomRead<Family::Gyro>);
    addForLines("RandomRead/Navigation", RandomRead<Family::Navigation>);
    addForLines("RandomRead/ObservedDepths", RandomRead<Family::ObservedDepths>);
    addForLines("RandomRead/TPE", RandomRead<Family::TPE>, true);
    passes(benchmark::RegisterBenchmark("OpenForQuery/Gyro", OpenForQuery)
               ->Args({static_cast<long long>(kLargeLine), 0})
               ->ArgNames({"records", "cache"}),
           kLargeLine);
    return true;
}();

}  // namespace
}  // namespace velmio::bench
