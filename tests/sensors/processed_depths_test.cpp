// The processed depths family on disk: its bytes against bytes written by
// hand, every read path (direct and through the block reader) giving the
// same values, status edits, and files cut at every byte.
#include <velmio/processed_depths.h>

#include "tests/sensors/sensor_test_support.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace velmio::test;

namespace {

using Values = std::vector<double>;

TEST(ProcessedDepthsFiles, BytesWrittenByHand) {
    TempDir dir;
    TOVO_Sensor *h = openLine(ProcessedDepthsOpenDir, dir, L"create");
    ASSERT_NE(h, nullptr);
    ProcessedDepthsPing ping{};
    ping = {0x04000000u, 1, 3, 6001.5, 77, 0.5, -0.1, 0, 0, 0, 0, 0, 0, 1500.0};
    ProcessedDepthsSounding sounding{};
    sounding = {0x80000000u, 6001.75, 25.5, -12.25, 0, 0.5, -0.1, 0, 0};
    const ProcessedDepthsMeasurement measurement = {0.0345, 0, 0, 30.25, -35.5, 3, 0x81, 1};
    for (int rc : {ProcessedDepthsBgnSeqWriteSummary(h, 2), ProcessedDepthsBgnSeqWriteLineSegment(h, L"a"),
                   ProcessedDepthsBgnSeqWriteProfile(h, &ping, nullptr, nullptr),
                   ProcessedDepthsSeqWrite(h, &sounding, &measurement, nullptr),
                   ProcessedDepthsEndSeqWriteProfile(h), ProcessedDepthsEndSeqWriteLineSegment(h, 0),
                   ProcessedDepthsEndSeqWriteSummary(h, 0), ProcessedDepthsClose(h)})
        ASSERT_EQ(rc, 0);
    // References: 100 min, 0.5 and -0.1 rad in 1e-7 rad; positions then in
    // 1e-9 rad from them; the beam 250 ms after the ping; mm, microseconds.
    const Bytes zeros17 = words({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    const Bytes data = cat({words({kTovo, 0, 1, 1}),
                            words({0, 2, 1, 1, 1000, 1000, 1, 100, 5000000, -1000000, 1500, 1500, 25500, 25500, 0, 0}),
                            words({0x04000000, 0x10003, 1500, 77, 0, 0, 0, 0, 0, 0, 0, 0, 1500000}), zeros17,
                            words({0, 0, 0, 0, 0, 0, 0, 0, 0, 0}),
                            words({0x800000FA, 25500, -12250, 0, 0, 0, 0, 0}),
                            words({34500, 0, 0, 30250, -35500, 3, 0x81, 1}), words({0, 0, 0, 0})});
    EXPECT_EQ(hex(readFile(dir.file("ProcessedDepths"))), hex(data));
}

// Nine pings, two of them empty, in two segments.
const unsigned kBeams[] = {3, 0, 5, 1, 2, 0, 4, 1, 2};
const unsigned kFirst[] = {1, 1, 7, 65535, 2, 1, 10, 1, 3};
constexpr unsigned kPings = 9;

void writeLine(const TempDir &dir, bool perBeamOnly = false) {
    TOVO_Sensor *h = openLine(ProcessedDepthsOpenDir, dir, L"create");
    ASSERT_NE(h, nullptr);
    ASSERT_EQ(ProcessedDepthsBgnSeqWriteSummary(h, 5), 0);
    for (unsigned p = 1; p <= kPings; ++p) {
        if (p == 1 || p == 5) {
            ASSERT_EQ(ProcessedDepthsBgnSeqWriteLineSegment(h, p == 1 ? L"one" : L"two"), 0);
        }
        ProcessedDepthsPing ping = {p << 24, kBeams[p - 1], kFirst[p - 1], 7200.0 + 0.5 * p, 1000 + p,
                                    0.7 + 1e-6 * p, -1.2 - 1e-6 * p, 0.1 * p, 0.01, 0.002, -0.003, 0.4, 2.5, 1490.0};
        ProcessedDepthsHeads heads{};
        heads.count = 2;
        heads.head[1] = {0.5, -1.0, 2.0, 0.01, 0.02, -0.03, 0.001, p};
        const ProcessedDepthsPingUncertainty u = {0.5, 0.25, 0.05, 0.1, 0.02, 0.0001, 0.0002, 0.0003, 0.5, 0.001 * p};
        ASSERT_EQ(ProcessedDepthsBgnSeqWriteProfile(h, &ping, &heads, &u), 0);
        std::vector<ProcessedDepthsSounding> s(kBeams[p - 1]);
        std::vector<ProcessedDepthsMeasurement> m(s.size());
        std::vector<ProcessedDepthsReductions> r(s.size());
        for (unsigned k = 0; k < s.size(); ++k) {
            s[k] = {(p * 16 + k) << 20, ping.time + 0.001 * k, 20.0 + p + 0.25 * k, k - 2.0, 0.1,
                    ping.latitude + 1e-7 * k, ping.longitude, 0.3, 0.15};
            m[k] = {0.03 + 0.001 * k, -0.5 + 0.1 * k, 0.01, 30.0 + k, -30.0 + k, k, 0x80u | k, 1 + k % 2};
            r[k] = {0.4, 0.01 * k, 2.5, -0.001 * k};
        }
        // Half the beams one by one, the rest in bulk.
        const unsigned half = perBeamOnly ? static_cast<unsigned>(s.size()) : static_cast<unsigned>(s.size()) / 2;
        for (unsigned k = 0; k < half; ++k) ASSERT_EQ(ProcessedDepthsSeqWrite(h, &s[k], &m[k], &r[k]), 0);
        ASSERT_EQ(ProcessedDepthsSeqWriteBeams(h, static_cast<unsigned>(s.size()) - half, s.data() + half,
                                               m.data() + half, r.data() + half),
                  0);
        ASSERT_EQ(ProcessedDepthsEndSeqWriteProfile(h), 0);
        if (p == 4 || p == kPings) {
            ASSERT_EQ(ProcessedDepthsEndSeqWriteLineSegment(h, p), 0);
        }
    }
    ASSERT_EQ(ProcessedDepthsEndSeqWriteSummary(h, 0x40), 0);
    ASSERT_EQ(ProcessedDepthsClose(h), 0);
}

TEST(ProcessedDepthsFiles, BulkBeamsWriteThePerBeamBytes) {
    TempDir perBeam, mixed;
    writeLine(perBeam, true);
    writeLine(mixed);
    for (const char *name : {"ProcessedDepths", "ProcessedDepthsLineSegments", "ProcessedDepthsTmIdx"})
        EXPECT_EQ(hex(readFile(mixed.file(name))), hex(readFile(perBeam.file(name)))) << name;
}

void add(Values &v, const ProcessedDepthsPing &p) {
    v.insert(v.end(), {double(p.status), double(p.beamCount), double(p.firstBeam), p.time, double(p.pingNumber),
                       p.latitude, p.longitude, p.heading, p.heave, p.pitch, p.roll, p.tide, p.draft, p.soundSpeed});
}
void add(Values &v, const ProcessedDepthsHeads &h) {
    v.push_back(h.count);
    for (const ProcessedDepthsHead &x : h.head)
        v.insert(v.end(), {x.x, x.y, x.z, x.roll, x.pitch, x.heading, x.latency, double(x.word)});
}
void add(Values &v, const ProcessedDepthsPingUncertainty &u) {
    v.insert(v.end(), {u.horizontal, u.vertical, u.heave, u.tide, u.draft, u.roll, u.pitch, u.heading, u.soundSpeed,
                       u.timing});
}
void add(Values &v, const ProcessedDepthsSounding &s, const ProcessedDepthsMeasurement &m,
         const ProcessedDepthsReductions &r) {
    v.insert(v.end(), {double(s.status), s.time, s.depth, s.acrossTrack, s.alongTrack, s.latitude, s.longitude,
                       s.horizontalUncertainty, s.verticalUncertainty, m.travelTime, m.acrossAngle, m.alongAngle,
                       m.slantRange, m.reflectivity, double(m.quality), double(m.detection), double(m.head), r.tide,
                       r.heave, r.draft, r.refraction});
}

// Everything the line holds, read in sequence, by number (pings backwards,
// each beam section by section) and in bulk; reads that fail add their code.
Values readEverything(const TempDir &dir) {
    Values v;
    int error = 0;
    TOVO_Sensor *h = ProcessedDepthsOpenDir(dir.wpath().c_str(), L"query", &error);
    if (!h) return {double(error)};
    ProcessedDepthsPing ping{};
    ProcessedDepthsHeads heads{};
    ProcessedDepthsPingUncertainty u{};
    ProcessedDepthsSounding s{};
    ProcessedDepthsMeasurement m{};
    ProcessedDepthsReductions r{};
    for (unsigned p = 1; p <= kPings; ++p) {
        if (const int rc = ProcessedDepthsReadProfileSeq(h, &ping, &heads, &u)) return v.push_back(rc), v;
        add(v, ping), add(v, heads), add(v, u);
        for (unsigned k = 0; k < ping.beamCount; ++k) {
            if (const int rc = ProcessedDepthsReadSeq(h, &s, p % 2 ? &m : nullptr, &r)) return v.push_back(rc), v;
            add(v, s, m, r);
        }
    }
    v.push_back(ProcessedDepthsReadProfileSeq(h, &ping, &heads, &u));
    for (unsigned p = kPings + 1; p >= 1; --p) {
        v.push_back(ProcessedDepthsReadProfile(h, p, &ping, p % 3 ? &heads : nullptr, &u));
        add(v, ping), add(v, heads), add(v, u);
        for (unsigned b = ping.firstBeam - 1; b <= ping.firstBeam + ping.beamCount; ++b) {
            v.push_back(ProcessedDepthsRead(h, p, b, &s, nullptr, nullptr));
            v.push_back(ProcessedDepthsRead(h, p, b, nullptr, &m, &r));
            add(v, s, m, r);
        }
    }
    std::vector<ProcessedDepthsPing> pings(kPings);
    std::vector<ProcessedDepthsSounding> ss(20);
    std::vector<ProcessedDepthsMeasurement> ms(20);
    std::vector<ProcessedDepthsReductions> rs(20);
    std::vector<unsigned> offsets(kPings + 1);
    v.push_back(ProcessedDepthsReadProfiles(h, 2, kPings - 1, pings.data(), nullptr, nullptr));
    v.push_back(ProcessedDepthsReadBeams(h, 1, kPings, 20, offsets.data(), ss.data(), ms.data(), rs.data()));
    for (unsigned i = 0; i < kPings; ++i) add(v, pings[i]), v.push_back(offsets[i]);
    for (unsigned k = 0; k < 20; ++k) add(v, ss[k], ms[k], rs[k]);
    v.push_back(ProcessedDepthsClose(h));
    return v;
}

TEST(ProcessedDepthsFiles, BlockReaderGivesTheDirectValues) {
    TempDir dir;
    writeLine(dir);
    Values direct;
    {
        CacheSizeSetting off(nullptr);
        direct = readEverything(dir);
    }
    ASSERT_GT(direct.size(), 1000u);
    // Only numbers outside the line fail: the sequential read past the end,
    // profile 10 and its beams (4 x 2), each profile's beams just outside (9 x 4).
    std::size_t failures = 0;
    for (double v : direct) failures += v >= 5000000 && v < 6000000;
    EXPECT_EQ(failures, 1u + 1 + 8 + 36);
    for (const char *cache : {"1", "7", "1000"}) {
        CacheSizeSetting on(cache);
        EXPECT_EQ(readEverything(dir), direct) << "VelmIOCacheSize " << cache;
    }
    // Spot checks against what was written: ping 9's time and heads, beam
    // 12 of ping 7 (its third) and the bulk layout.
    TOVO_Sensor *h = openLine(ProcessedDepthsOpenDir, dir, L"query");
    ProcessedDepthsPing ping{};
    ProcessedDepthsHeads heads{};
    ASSERT_EQ(ProcessedDepthsReadProfile(h, 9, &ping, &heads, nullptr), 0);
    EXPECT_EQ(std::vector<double>({ping.time, double(ping.pingNumber), double(heads.count), heads.head[1].z,
                                   double(heads.head[1].word)}),
              std::vector<double>({7204.5, 1009, 2, 2.0, 9}));
    ProcessedDepthsSounding s{};
    ProcessedDepthsMeasurement m{};
    ASSERT_EQ(ProcessedDepthsRead(h, 7, 12, &s, &m, nullptr), 0);
    EXPECT_EQ(std::vector<double>({double(s.status), s.depth, s.acrossTrack, m.slantRange, double(m.detection)}),
              std::vector<double>({double((7u * 16 + 2) << 20), 27.5, 0.0, 32.0, 0x82}));
    unsigned profiles, beams, segments, tool, status;
    double t0, t1, d0, d1;
    ASSERT_EQ(ProcessedDepthsSummary(h, &tool, &segments, &profiles, &beams, &t0, &t1, &d0, &d1, &status), 0);
    EXPECT_EQ(std::vector<double>({double(tool), double(segments), double(profiles), double(beams), t0, t1, d0, d1}),
              std::vector<double>({5, 2, 9, 18, 7200.5, 7204.5, 21.0, 29.25}));
    EXPECT_EQ(ProcessedDepthsClose(h), 0);
}

TEST(ProcessedDepthsFiles, StatusEditsReachTheDiskAndTheBlock) {
    TempDir dir;
    writeLine(dir);
    CacheSizeSetting on("7");
    TOVO_Sensor *h = openLine(ProcessedDepthsOpenDir, dir, L"update");
    ProcessedDepthsSounding s{};
    ASSERT_EQ(ProcessedDepthsRead(h, 3, 8, &s, nullptr, nullptr), 0);  // the block now holds ping 3
    ASSERT_EQ(ProcessedDepthsUpdateStatus(h, 3, 8, 0xABCD1234u), 0);
    EXPECT_EQ(ProcessedDepthsUpdateStatus(h, 3, 12, 1), 5000319);
    ASSERT_EQ(ProcessedDepthsRead(h, 3, 8, &s, nullptr, nullptr), 0);
    EXPECT_EQ(s.status, 0xABCD0000u);
    EXPECT_DOUBLE_EQ(s.time, 7201.5 + 0.001);
    ASSERT_EQ(ProcessedDepthsSetSummaryStatus(h, 0x41), 0);
    ASSERT_EQ(ProcessedDepthsSetLineSegmentStatus(h, 2, 0x77), 0);
    ASSERT_EQ(ProcessedDepthsSaveStatusToDisk(h), 0);
    EXPECT_EQ(ProcessedDepthsClose(h), 0);
    h = openLine(ProcessedDepthsOpenDir, dir, L"query");
    wchar_t *name = nullptr;
    unsigned first, last, status, summaryStatus;
    double t0, t1, d0, d1;
    ASSERT_EQ(ProcessedDepthsLineSegment(h, 2, &name, &first, &last, &t0, &t1, &d0, &d1, &status), 0);
    EXPECT_EQ(std::wstring(name), L"two");
    std::free(name);
    EXPECT_EQ(std::vector<double>({double(first), double(last), double(status), d0, d1}),
              std::vector<double>({5, 9, 0x77, 25.0, 29.25}));
    ASSERT_EQ(ProcessedDepthsSummary(h, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                     &summaryStatus),
              0);
    EXPECT_EQ(summaryStatus, 0x41u);
    EXPECT_EQ(ProcessedDepthsClose(h), 0);
}

// Every cut of every file, read directly and through the block reader:
// values, or codes of the family and the line store, never a crash.
TEST(ProcessedDepthsCorrupt, EveryCutOfEveryFileReadsWithACode) {
    TempDir source;
    writeLine(source);
    const char *names[] = {"ProcessedDepths", "ProcessedDepthsTmIdx", "ProcessedDepthsLineSegments"};
    for (const char *name : names) {
        const Bytes whole = readFile(source.file(name));
        for (std::size_t cut = 0; cut < whole.size(); ++cut) {
            TempDir dir;
            for (const char *other : names) writeFile(dir.file(other), readFile(source.file(other)));
            writeFile(dir.file(name), Bytes(whole.begin(), whole.begin() + cut));
            // Odd cuts are read through the block reader, even ones directly.
            CacheSizeSetting setting(cut % 2 ? "7" : "0");
            for (double code : readEverything(dir)) {
                if (code >= 5000000 && code < 6000000) {
                    EXPECT_TRUE((code > 5000300 && code < 5000400) || code < 5000100)
                        << name << " cut at " << cut << ": " << code;
                }
            }
        }
    }
}

}  // namespace
