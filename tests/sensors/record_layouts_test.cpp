// The side scan and processed depths records against units written by hand
// from docs/formats.md; decoding the units and encoding again gives them
// back, so both directions are checked field by field.
#include "sensors/processed_depths_records.h"
#include "sensors/side_scan_records.h"

#include <gtest/gtest.h>

#include <vector>

using namespace velmio;

namespace {

using Units = std::vector<std::uint32_t>;

// Encodes value, compares with units, then decodes units and encodes again.
template <class T, class Encode, class Decode>
void expectUnits(const T &value, const Units &units, Encode encode, Decode decode) {
    Units out(units.size(), 0xDEADBEEFu);
    encode(value, out.data());
    EXPECT_EQ(out, units);
    T back{};
    ASSERT_TRUE(decode(units.data(), back));
    Units again(units.size(), 0xDEADBEEFu);
    encode(back, again.data());
    EXPECT_EQ(again, units);
}

// Units with one word replaced.
Units with(Units u, unsigned index, std::uint32_t word) {
    u[index] = word;
    return u;
}

const ProcessedDepthsFrame kFrame = {1000, 1000, 1, 100, 5000000, -1000000};  // 6000 s, 0.5 rad, -0.1 rad
const ProcessedDepthsPing kPing = {0x04000000u, 2, 1, 6001.5, 77, 0.5000001, -0.0999998,
                                   1.0, -0.25, 0.01, -0.02, 1.5, 4.2, 1500.0};

TEST(SideScanRecords, UnitsWrittenByHand) {

    const SideScanHeader p = {0x10000, 3, 7, 6001.5, 0.000125, 18, -30, -10};
    const Units header = {0x10000, 3, 7, 0x5DC, 0x7D, 0x12, 0xFFFFFFE2, 0xFFFFFFF6};
    const auto encode = [](const SideScanHeader &v, std::uint32_t *w) { encodeSideScanHeader(v, 100, 1000, w); };
    const auto decode = [](const std::uint32_t *w, SideScanHeader &v) { return decodeSideScanHeader(w, 100, 1000, v); };
    expectUnits(p, header, encode, decode);
    EXPECT_EQ(sideScanPayloadBytes(p), 24u);
    // Counts no profile can hold are refused before anything is sized by them.
    SideScanHeader q;
    EXPECT_FALSE(decode(with(header, 1, kSideScanMaxSamples + 1).data(), q));
    EXPECT_FALSE(decode(with(header, 2, 0).data(), q));

    const auto decodeTrace = [](const std::uint32_t *w, SideScanTrace &t) { return decodeSideScanTrace(w, t), true; };
    expectUnits(SideScanTrace{4, 120, 12.345}, {4, 0x78, 0x3039}, encodeSideScanTrace, decodeTrace);
}

TEST(ProcessedDepthsRecords, HeaderUnitsWrittenByHand) {

    const Units ping = {0x04000000, 0x20001, 0x5DC, 0x4D, 0x64, 0xC8, 0x989680, 0xFFFFFF06,
                        0x186A0, 0xFFFCF2C0, 0x5DC, 0x1068, 0x16E360};
    const auto encode = [](const ProcessedDepthsPing &v, std::uint32_t *w) { encodePing(v, kFrame, w); };
    const auto decode = [](const std::uint32_t *w, ProcessedDepthsPing &v) { return decodePing(w, kFrame, v); };
    expectUnits(kPing, ping, encode, decode);
    ProcessedDepthsPing q;
    EXPECT_FALSE(decode(with(ping, 1, 0x20000).data(), q));  // first beam 0

    ProcessedDepthsHeads h{};
    h.count = 1;
    h.head[0] = {0.1, -0.2, 0.3, 0.001, 0.0, -0.001, 0.002, 0xABCD};
    const Units heads = {1, 0x64, 0xFFFFFF38, 0x12C, 0x2710, 0, 0xFFFFD8F0, 0x7D0, 0xABCD, 0, 0, 0, 0, 0, 0, 0, 0};
    expectUnits(h, heads, encodeHeads, decodeHeads);
    EXPECT_FALSE(decodeHeads(with(heads, 0, 3).data(), h));

    const auto decodeU = [](const std::uint32_t *w, ProcessedDepthsPingUncertainty &u) {
        return decodePingUncertainty(w, u), true;
    };
    expectUnits(ProcessedDepthsPingUncertainty{0.5, 0.25, 0.05, 0.1, 0.02, 0.0001, 0.0002, 0.0003, 0.5, 0.001},
                {0x1F4, 0xFA, 0x32, 0x64, 0x14, 0x3E8, 0x7D0, 0xBB8, 0x1F4, 0x3E8}, encodePingUncertainty, decodeU);
}

TEST(ProcessedDepthsRecords, BeamUnitsWrittenByHand) {
    // 0.25 s after the ping; positions 100 and -50 nanoradians from the ping's.
    const ProcessedDepthsSounding s = {0x80000000u, 6001.75, 25.5, -12.25, 0.75, 0.5000002, -0.09999985, 0.3, 0.15};
    const auto encode = [](const ProcessedDepthsSounding &v, std::uint32_t *w) { encodeSounding(v, kPing, kFrame, w); };
    const auto decode = [](const std::uint32_t *w, ProcessedDepthsSounding &v) {
        return decodeSounding(w, kPing, kFrame, v), true;
    };
    expectUnits(s, {0x800000FA, 0x639C, 0xFFFFD026, 0x2EE, 0x64, 0xFFFFFFCE, 0x12C, 0x96}, encode, decode);

    const auto decodeM = [](const std::uint32_t *w, ProcessedDepthsMeasurement &m) { return decodeMeasurement(w, m), true; };
    expectUnits(ProcessedDepthsMeasurement{0.0345, -0.5, 0.01, 30.25, -35.5, 3, 0x81, 1},
                {0x86C4, 0xFFB3B4C0, 0x186A0, 0x762A, 0xFFFF7554, 3, 0x81, 1}, encodeMeasurement, decodeM);

    const auto decodeR = [](const std::uint32_t *w, ProcessedDepthsReductions &r) { return decodeReductions(w, r), true; };
    expectUnits(ProcessedDepthsReductions{1.5, -0.25, 4.2, 0.012}, {0x5DC, 0xFFFFFF06, 0x1068, 0xC}, encodeReductions,
                decodeR);
}

}  // namespace
