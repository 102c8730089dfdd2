// Fuzz target of the side scan and processed depths families. One input is
// the files of one line held in memory (byte 0 picks the kind: EM100,
// EM1000, ELAC or trace-less side scan, or processed depths), read in query
// mode through every reader, edited and saved in update mode, and read
// again; processed depths also through the block reader. The same bytes are then taken as a
// trace file, as side scan and processed depths units to decode, and as a
// ping's samples to turn into amplitude bytes for each sonar.
#include "fuzz_support.h"

#include <velmio/amplitude_io.hpp>
#include <velmio/processed_depths.h>
#include <velmio/side_scan.h>

#include "linestore/memory_line.h"
#include "platform/memory_file.h"
#include "sensors/amplitude_bytes.h"
#include "sensors/processed_depths_records.h"
#include "sensors/side_scan_records.h"
#include "sensors/side_scan_trace.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

using velmio::fuzz::Bytes;
using namespace velmio;

namespace {

constexpr std::uint32_t kMaxTraces = 1024;
constexpr std::size_t kMaxWords = 4096;
// Loop bounds, so that a file claiming many profiles costs no more than the
// reads a small file can hold.
constexpr unsigned kMaxProfiles = 64, kMaxItems = 256;

using Opener = TOVO_Sensor *(*)(const wchar_t *, const wchar_t *, int *);
struct LineKind {
    const char *name;
    Opener open;  // null: processed depths
};
const LineKind kLineKinds[] = {{"SideScan", SideScanEM100OpenDir},
                               {"SideScan", SideScanEM1000OpenDir},
                               {"SideScan", SideScanELACOpenDir},
                               {"SideScan", SideScanOpenDir},
                               {"ProcessedDepths", nullptr}};
constexpr unsigned kLineKindCount = sizeof(kLineKinds) / sizeof(kLineKinds[0]);

void sideScanPass(const std::wstring &dir, Opener open, const wchar_t *mode) {
    int error = 0;
    TOVO_Sensor *h = open(dir.c_str(), mode, &error);
    if (!h) return;
    unsigned sonar, segments = 0, profiles = 0, samples, status, n = 0, first = 0, d;
    double t0, t1, interval;
    int a0, a1, gain, att1, att2, a;
    SideScanSummary(h, &sonar, &segments, &profiles, &samples, &t0, &t1, &a0, &a1, &status);
    wchar_t *name = nullptr;
    unsigned begin, end;
    for (unsigned k = 1; k <= std::min(segments, kMaxProfiles) + 1; ++k)
        if (SideScanLineSegment(h, static_cast<int>(k), &name, &begin, &end, &t0, &t1, &status) == 0) std::free(name);
    const bool query = std::wstring(mode) == L"query";
    for (unsigned p = 0; query && p <= std::min(profiles, kMaxProfiles); ++p) {
        if (SideScanReadProfileSeq(h, &n, &first, &t0, &interval, &gain, &att1, &att2, &status) != 0) break;
        for (unsigned k = 0; k < std::min(n, kMaxItems); ++k) SideScanReadSeq(h, &a, &d);
    }
    for (unsigned p = 0; p <= std::min(profiles, kMaxProfiles) + 1; ++p) {
        if (SideScanReadProfile(h, p, &n, &first, &t0, &interval, &gain, &att1, &att2, &status) != 0) continue;
        for (unsigned k = first - 1; k <= first + std::min(n, kMaxItems); ++k) SideScanRead(h, p, k, &a, &d);
        if (!query) SideScanUpdateProfileStatus(h, p, 0x10000u);
    }
    std::vector<unsigned> offsets(kMaxProfiles + 1);
    std::vector<int> amplitudes(kMaxItems);
    std::vector<unsigned> detections(kMaxItems);
    SideScanReadSamples(h, 1, std::min(profiles, kMaxProfiles), kMaxItems, offsets.data(), amplitudes.data(),
                        detections.data());
    unsigned traces = 0, b;
    if (SideScanTraceCount(h, &traces) == 0)
        for (unsigned k = 0; k <= std::min(traces, kMaxTraces) + 1; ++k) SideScanReadTrace(h, k, &n, &b, &t0);
    if (!query) {
        SideScanSetLineSegmentStatus(h, 1, 3);
        SideScanSetSummaryStatus(h, 5);
        SideScanSaveStatusToDisk(h);
    }
    SideScanClose(h);
}

void amplitudePass(const std::wstring &dir) {
    VELMAmplitudeIO reader;
    if (reader.open(dir.c_str()) != 0) return;
    long status = 0;
    for (unsigned p = 0; p <= 4; ++p)
        for (unsigned k = 0; k <= 4; ++k)
            if (reader.read(p, k) == 0) reader.getAmplitude(status), reader.getDetectType();
    VELMAmplitudeIO copy(reader);
    copy.read(1, 1);
}

void processedDepthsPass(const std::wstring &dir, const wchar_t *mode) {
    int error = 0;
    TOVO_Sensor *h = ProcessedDepthsOpenDir(dir.c_str(), mode, &error);
    if (!h) return;
    unsigned tool, segments = 0, profiles = 0, beams, status, begin, end;
    double t0, t1, d0, d1;
    ProcessedDepthsSummary(h, &tool, &segments, &profiles, &beams, &t0, &t1, &d0, &d1, &status);
    wchar_t *name = nullptr;
    for (unsigned k = 1; k <= std::min(segments, kMaxProfiles) + 1; ++k)
        if (ProcessedDepthsLineSegment(h, static_cast<int>(k), &name, &begin, &end, &t0, &t1, &d0, &d1, &status) == 0)
            std::free(name);
    ProcessedDepthsPing ping{};
    ProcessedDepthsHeads heads{};
    ProcessedDepthsPingUncertainty u{};
    ProcessedDepthsSounding s{};
    ProcessedDepthsMeasurement m{};
    ProcessedDepthsReductions r{};
    const bool query = std::wstring(mode) == L"query";
    for (unsigned p = 0; query && p <= std::min(profiles, kMaxProfiles); ++p) {
        if (ProcessedDepthsReadProfileSeq(h, &ping, p % 2 ? &heads : nullptr, &u) != 0) break;
        for (unsigned k = 0; k < std::min(ping.beamCount, kMaxItems); ++k)
            ProcessedDepthsReadSeq(h, &s, k % 2 ? &m : nullptr, &r);
    }
    for (unsigned p = 0; p <= std::min(profiles, kMaxProfiles) + 1; ++p) {
        if (ProcessedDepthsReadProfile(h, p, &ping, &heads, p % 2 ? &u : nullptr) != 0) continue;
        for (unsigned k = ping.firstBeam - 1; k <= ping.firstBeam + std::min(ping.beamCount, kMaxItems); ++k) {
            ProcessedDepthsRead(h, p, k, &s, &m, k % 2 ? &r : nullptr);
            if (!query) ProcessedDepthsUpdateStatus(h, p, k, 0x20000u);
        }
    }
    std::vector<unsigned> offsets(kMaxProfiles + 1);
    std::vector<ProcessedDepthsSounding> soundings(kMaxItems);
    ProcessedDepthsReadBeams(h, 1, std::min(profiles, kMaxProfiles), kMaxItems, offsets.data(), soundings.data(),
                             nullptr, nullptr);
    if (!query) {
        ProcessedDepthsSetLineSegmentStatus(h, 1, 3);
        ProcessedDepthsSetSummaryStatus(h, 5);
        ProcessedDepthsSaveStatusToDisk(h);
    }
    ProcessedDepthsClose(h);
}

// Query, update, then query again what the update saved, all in memory.
void runLine(const LineKind &kind, const std::vector<velmio::fuzz::Part> &parts) {
    MemoryLine line;
    line.data.assign(parts[0].data, parts[0].size);
    line.segments.assign(parts[1].data, parts[1].size);
    line.timeIndex.assign(parts[2].data, parts[2].size);
    if (kind.open == SideScanEM100OpenDir || kind.open == SideScanEM1000OpenDir)
        line.trace.assign(parts[3].data, parts[3].size);
    const std::wstring wdir = velmio::fuzz::memoryDirectory();
    const MountedLine mount(wdir, velmio::fuzz::widen(kind.name).c_str(), line);
    for (const wchar_t *mode : {L"query", L"update", L"query"}) {
        if (kind.open)
            sideScanPass(wdir, kind.open, mode);
        else
            processedDepthsPass(wdir, mode);
    }
    if (kind.open) amplitudePass(wdir);
}

void readTraces(const std::uint8_t *data, std::size_t size) {
    std::vector<unsigned char> bytes(data, data + size);
    std::FILE *f = platform::openMemoryFile(bytes, "rb");
    if (!f) return;
    std::uint32_t count = 0;
    SideScanTrace t;
    for (std::uint32_t type : {9u, 10u})
        if (countTraces(f, type, count) == 0)
            for (std::uint32_t n = 1; n <= std::min(count, kMaxTraces) + 1; ++n) readTrace(f, count, n, t);
    std::fclose(f);
}

void decodeUnits(const std::vector<std::uint32_t> &w) {
    if (w.size() >= kProcessedHeaderBytes / 4 + kProcessedBeamBytes / 4) {
        const ProcessedDepthsFrame frame;
        ProcessedDepthsPing ping;
        ProcessedDepthsHeads heads;
        ProcessedDepthsPingUncertainty uncertainty;
        ProcessedDepthsSounding sounding;
        ProcessedDepthsMeasurement measurement;
        ProcessedDepthsReductions reductions;
        decodePing(w.data(), frame, ping);
        decodeHeads(w.data() + kPingWords, heads);
        decodePingUncertainty(w.data() + kPingWords + kHeadsWords, uncertainty);
        const std::uint32_t *beam = w.data() + kProcessedHeaderBytes / 4;
        decodeSounding(beam, ping, frame, sounding);
        decodeMeasurement(beam + kSoundingWords, measurement);
        decodeReductions(beam + kSoundingWords + kMeasurementWords, reductions);
    }
    if (w.size() < kSideScanHeaderWords) return;
    SideScanHeader header;
    if (!decodeSideScanHeader(w.data(), 100, 1000, header)) return;
    // The samples the input still holds after the header, as a reader would be given them.
    const std::size_t first = kSideScanHeaderWords;
    const std::size_t count = std::min<std::size_t>(header.sampleCount, w.size() - first);
    std::vector<std::int32_t> raw(w.begin() + first, w.begin() + first + count);
    std::vector<unsigned char> bytes(count);
    SideScanPing ping;
    ping.sampleCount = static_cast<std::uint32_t>(count);
    ping.gain = header.gain;
    ping.attenuation1 = header.attenuation1;
    ping.attenuation2 = header.attenuation2;
    for (std::uint32_t sonar : {kEM100, kEM1000, kELAC}) amplitudeBytes(sonar, ping, raw.data(), count, bytes.data());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0) return 0;
    const LineKind &kind = kLineKinds[data[0] % kLineKindCount];
    const std::vector<velmio::fuzz::Part> parts = velmio::fuzz::unpack(data, size, 4);
    if (!kind.open) {
        // The block reader serves reads only when the cache size is set at open.
        setenv("VelmIOCacheSize", "3", 1);
        runLine(kind, parts);
        unsetenv("VelmIOCacheSize");
    }
    runLine(kind, parts);
    readTraces(data, size);
    std::vector<std::uint32_t> words;
    for (std::size_t k = 0; k + 4 <= size && words.size() < kMaxWords; k += 4)
        words.push_back(std::uint32_t{data[k]} << 24 | std::uint32_t{data[k + 1]} << 16 |
                        std::uint32_t{data[k + 2]} << 8 | data[k + 3]);
    decodeUnits(words);
    return 0;
}

// ---- seeds ---------------------------------------------------------------

namespace {

// Two segments of two pings, the second with its samples numbered from 5,
// an empty ping and trace records where the kind has them.
void writeSideScan(const std::wstring &dir, Opener open) {
    int error = 0;
    TOVO_Sensor *h = open(dir.c_str(), L"create", &error);
    if (!h) return;
    SideScanBgnSeqWriteSummary(h, 3);
    for (int s = 0; s < 2; ++s) {
        SideScanBgnSeqWriteLineSegment(h, s ? L"b.all" : L"a.all");
        for (int p = 0; p < 2; ++p) {
            const unsigned n = s && p ? 0 : 3;
            SideScanBgnSeqWriteProfile(h, n, s ? 5 : 1, 7200.0 + s * 10 + p * 0.5, 0.0001, 18, -20, -10, 0);
            const int amplitudes[] = {-64, 10, 300};
            const unsigned detections[] = {0x81, 3, 0};
            SideScanSeqWriteSamples(h, n, amplitudes, detections);
            SideScanEndSeqWriteProfile(h);
            SideScanSeqWriteTrace(h, 2, 12.5);
        }
        SideScanEndSeqWriteLineSegment(h, 0);
    }
    SideScanEndSeqWriteSummary(h, 1);
    SideScanClose(h);
}

void writeProcessedDepths(const std::wstring &dir) {
    int error = 0;
    TOVO_Sensor *h = ProcessedDepthsOpenDir(dir.c_str(), L"create", &error);
    if (!h) return;
    ProcessedDepthsBgnSeqWriteSummary(h, 2);
    ProcessedDepthsBgnSeqWriteLineSegment(h, L"a.all");
    for (unsigned p = 0; p < 3; ++p) {
        ProcessedDepthsPing ping = {0, p == 1 ? 0u : 2u, 1 + p, 7200.0 + p, p, 0.7, -1.2, 0, 0, 0, 0, 0, 0, 1490};
        ProcessedDepthsHeads heads{};
        heads.count = 1;
        ProcessedDepthsBgnSeqWriteProfile(h, &ping, &heads, nullptr);
        for (unsigned k = 0; k < ping.beamCount; ++k) {
            ProcessedDepthsSounding s = {0, ping.time + 0.001 * k, 20.0 + k, -1.0 + k, 0, 0.7, -1.2, 0.1, 0.1};
            ProcessedDepthsSeqWrite(h, &s, nullptr, nullptr);
        }
        ProcessedDepthsEndSeqWriteProfile(h);
    }
    ProcessedDepthsEndSeqWriteLineSegment(h, 0);
    ProcessedDepthsEndSeqWriteSummary(h, 0);
    ProcessedDepthsClose(h);
}

}  // namespace

std::vector<std::vector<std::uint8_t>> velmioFuzzSeeds() {
    std::vector<std::vector<std::uint8_t>> seeds;
    for (unsigned k = 0; k < kLineKindCount; ++k) {
        const std::string dir = velmio::fuzz::freshDirectory();
        const std::wstring wdir = velmio::fuzz::widen(dir);
        if (kLineKinds[k].open)
            writeSideScan(wdir, kLineKinds[k].open);
        else
            writeProcessedDepths(wdir);
        const std::string stem = dir + "/" + kLineKinds[k].name;
        const bool traced = k < 2;
        seeds.push_back(velmio::fuzz::pack(
            {static_cast<std::uint8_t>(k)},
            {velmio::fuzz::requireFile(stem), velmio::fuzz::requireFile(stem + "LineSegments"),
             velmio::fuzz::requireFile(stem + "TmIdx"), traced ? velmio::fuzz::requireFile(stem + "Trace") : Bytes()}));
    }
    const std::string path = velmio::fuzz::freshDirectory() + "/SideScanTrace";
    std::FILE *f = std::fopen(path.c_str(), "wb+");
    if (f) {
        startTraceFile(f, 10);
        for (std::uint32_t p = 1; p <= 3; ++p) appendTrace(f, {p, 40 * p, 12.5 * p});
        std::fclose(f);
    }
    // A trace file, then units that read as a three-sample EM100 ping.
    Bytes units;
    for (std::uint32_t w : {0u, 3u, 1u, 0u, 125u, 18u,
                            0xFFFFFFE2u, 0xFFFFFFF6u, 10u, 266u, 0xFFFFFFFDu})
        for (int b = 24; b >= 0; b -= 8) units.push_back(static_cast<std::uint8_t>(w >> b));
    units.resize(std::max<std::size_t>(units.size(), 4 * (kProcessedHeaderBytes / 4 + kProcessedBeamBytes / 4)));
    seeds.push_back(velmio::fuzz::requireFile(path));
    seeds.push_back(units);
    return seeds;
}
