#include <velmio/time_conversions.h>
#include <velmio/vessel_entries.hpp>

#include "support/test_support.h"
#include "vessel_test_support.h"

#include <string>
#include <utility>
#include <vector>

using namespace velmio::test;

namespace {
// A list element to store entries under, in a fresh document.
struct ListDoc {
    Doc doc = parseXml("<VELMVesselConfig Version=\"2.0\"><List/></VELMVesselConfig>");
    xmlNode *list() const { return xmlDocGetRootElement(doc.get())->children; }
};

// The first "TimeStamp" element of a hand-written list.
Doc entryDoc(const std::string &entry) { return parseXml("<List>" + entry + "</List>"); }
xmlNode *firstEntry(const Doc &doc) { return xmlDocGetRootElement(doc.get())->children; }

// Computed when called: the time conversions are not ready during static
// initialisation of another file.
double day32Noon() { return TmYDStoUTCs80(1995, 32, 43200.0); }
}  // namespace

// The time texts' own messages are checked where they are decoded.
TEST(VesselEntries, MalformedTimeStampsFailAndLeaveTheEntryUnbound) {
    for (auto [entry, status] : {std::pair<const char *, int>{"<TimeStamp value=\"1995-367 12:00:00\"/>", 5100010},
                                 {"<TimeStamp/>", -1}}) {
        Doc doc = entryDoc(entry);
        VELMGyroConfig gyro;
        EXPECT_EQ(silently([&] { return gyro.load(firstEntry(doc)); }), status) << entry;
        EXPECT_EQ(gyro.getNode(), nullptr);
    }
}

// The time stamp is written without its fraction.
TEST(VesselEntries, HeaveEntryWritesTheElementsOfItsKindInOrderAndReadsBack) {
    ListDoc d;
    VELMHeaveConfig heave(day32Noon() + 0.75);
    heave.setManufacturer(L"Maker");
    heave.setSerialNumber(L"S-1");
    heave.setComment(L"checked");
    heave.setLatency(0.25);
    heave.setApplyFlag(true);
    heave.setOffsets(1.5, -2.0, 0.125);
    heave.setHeaveOffset(3.0);
    ASSERT_EQ(heave.store(d.list()), 0);
    ASSERT_EQ(heave.store(d.list()), 0);  // a second store updates in place
    EXPECT_EQ(dump(d.list()),
              "<List>\n"
              "  <TimeStamp value=\"1995-032 12:00:00\">\n"
              "    <Comment value=\"checked\"/>\n"
              "    <Latency value=\"0.250000\"/>\n"
              "    <Manufacturer value=\"Maker\"/>\n"
              "    <SerialNumber value=\"S-1\"/>\n"
              "    <ApplyFlag value=\"Yes\"/>\n"
              "    <Offsets X=\"1.500000\" Y=\"-2.000000\" Z=\"0.125000\" Heave=\"3.000000\"/>\n"
              "  </TimeStamp>\n"
              "</List>");
    heave.setComment(nullptr);  // an unset text leaves the document
    heave.store(d.list());
    EXPECT_EQ(dump(d.list()).find("Comment"), std::string::npos);

    // Read from a copy: each entry frees the element it is bound to.
    xmlNode *copy = xmlAddChild(d.list(), VELM::CopyNode(heave.getNode(), 1));
    VELMHeaveConfig back;
    ASSERT_EQ(back.load(copy), 0);
    EXPECT_EQ(back.getTimeStamp(), day32Noon());
    EXPECT_EQ(back.getNode(), copy);
    EXPECT_STREQ(back.getSerialNumber(), L"S-1");
}

TEST(VesselEntries, GyroAndDraftTablesAreWrittenAsEntryRows) {
    ListDoc d;
    VELMGyroConfig gyro(day32Noon());
    gyro.setGyroOffset(3.0, 270.0);
    gyro.setGyroOffset(1.0, 90.0);
    VELMDraftConfig draft(day32Noon());
    draft.setDraft(5.0, 0.2);
    draft.setDraft(2.0, 0.1);
    draft.setDraft(5.0, 0.3);  // replaces
    ASSERT_EQ(gyro.store(d.list()), 0);
    ASSERT_EQ(draft.store(d.list()), 0);
    ASSERT_EQ(draft.store(d.list()), 0);  // rows are rewritten, not appended
    EXPECT_EQ(dump(gyro.getNode()),
              "<TimeStamp value=\"1995-032 12:00:00\">\n"
              "  <Latency value=\"0.000000\"/>\n"
              "  <ApplyFlag value=\"No\"/>\n"
              "  <Offsets>\n"
              "    <Gyro>\n"
              "      <Entry Azimuth=\"90.000000\" Offset=\"1.000000\"/>\n"
              "      <Entry Azimuth=\"270.000000\" Offset=\"3.000000\"/>\n"
              "    </Gyro>\n"
              "  </Offsets>\n"
              "</TimeStamp>");
    EXPECT_EQ(dump(draft.getNode()),
              "<TimeStamp value=\"1995-032 12:00:00\">\n"
              "  <Latency value=\"0.000000\"/>\n"
              "  <ApplyFlag value=\"No\"/>\n"
              "  <DraftEntries>\n"
              "    <Entry Speed=\"2.000000\" Draft=\"0.100000\"/>\n"
              "    <Entry Speed=\"5.000000\" Draft=\"0.300000\"/>\n"
              "  </DraftEntries>\n"
              "</TimeStamp>");
    EXPECT_EQ(draft.removeDraft(7.0), 5100009);
}

TEST(VesselEntries, SweepDepthEntryWritesBoomOffsetsAndSweepFiguresSwathDoesNot) {
    ListDoc d;
    VELMDepthConfig depth(day32Noon());
    ASSERT_EQ(depth.setSensorClass(L"Sweep"), 0);
    depth.setNavToBoomOffset(1, 2, 3);
    VELMTransducerConfig t(1, 1, false);
    t.setSweepTPEParameters(false, 0.5, 0.25, 90.0, 80.0);
    t.setManufacturer(L"M");
    depth.addTransducer(t);
    ASSERT_EQ(depth.store(d.list()), 0);
    EXPECT_EQ(dump(depth.getNode()),
              "<TimeStamp value=\"1995-032 12:00:00\">\n"
              "  <Latency value=\"0.000000\"/>\n"
              "  <SensorClass value=\"Sweep\"/>\n"
              "  <TPENavigationToBoomOffset X=\"1.000000\" Y=\"2.000000\" Z=\"3.000000\"/>\n"
              "  <TPEMRUToBoomOffset X=\"0.000000\" Y=\"0.000000\" Z=\"0.000000\"/>\n"
              "  <TransducerEntries>\n"
              "    <Transducer Number=\"1\" StartBeam=\"1\" Model=\"Unknown\">\n"
              "      <Manufacturer value=\"M\"/>\n"
              "      <Offsets X=\"0.000000\" Y=\"0.000000\" Z=\"0.000000\" Latency=\"0.000000\"/>\n"
              "      <MountAngle Pitch=\"0.000000\" Roll=\"0.000000\" Azimuth=\"0.000000\"/>\n"
              "      <TransducerFixed value=\"No\"/>\n"
              "      <SquatPercFactor value=\"90.000000\"/>\n"
              "      <HeavePercAmplitude value=\"80.000000\"/>\n"
              "      <MRUAlignment Gyro=\"0.500000\" Roll=\"0.250000\"/>\n"
              "    </Transducer>\n"
              "  </TransducerEntries>\n"
              "</TimeStamp>");

    // Turned to "Swath", the same entry takes its sweep-only elements away.
    ASSERT_EQ(depth.setSensorClass(L"Swath"), 0);
    ASSERT_EQ(depth.store(d.list()), 0);
    const std::string swath = dump(depth.getNode());
    for (const char *name : {"TPEMRUToBoomOffset", "TPENavigationToBoomOffset", "TransducerFixed", "SquatPercFactor",
                             "HeavePercAmplitude", "MRUAlignment"})
        EXPECT_EQ(swath.find(name), std::string::npos) << name;
    EXPECT_EQ(depth.setSensorClass(L"Multibeam"), -1);
    EXPECT_STREQ(depth.getSensorClass(), L"Swath");
}

TEST(VesselEntries, LoadKeepsDefaultsForMissingSettingsAndReadsFlagsLeniently) {
    Doc doc = entryDoc(
        "<TimeStamp value=\"2004-123 01:02:03\"><applyflag value=\"TRUE\"/><OFFSETS x=\"12abc\" Heave=\"x\"/>"
        "<Manufacturer value=\"\xC3\x85sa\"/></TimeStamp>"
        "<TimeStamp value=\"2004-123 01:02:04\"><ApplyFlag value=\"1\"/></TimeStamp>"
        "<TimeStamp value=\"2004-123 01:02:05\"><SensorClass value=\"SWEEP\"/><TransducerEntries>"
        "<Transducer Number=\"2\"><MountAngle Azimuth=\"45\"/></Transducer></TransducerEntries></TimeStamp>");
    xmlNode *first = firstEntry(doc);
    VELMHeaveConfig heave, other;
    ASSERT_EQ(heave.load(first), 0);
    ASSERT_EQ(other.load(first->next), 0);
    double x, y, z;
    heave.getOffsets(x, y, z);
    EXPECT_EQ(x, 12.0);  // what atof makes of "12abc"
    EXPECT_EQ(heave.getHeaveOffset(), 0.0);
    EXPECT_TRUE(heave.getApplyFlag());
    EXPECT_FALSE(other.getApplyFlag());  // only "yes" and "true" in any case are set
    EXPECT_STREQ(heave.getManufacturer(), L"\u00c5sa");
    EXPECT_EQ(heave.getModel(), nullptr);

    VELMDepthConfig depth;
    ASSERT_EQ(depth.load(first->next->next), 0);
    EXPECT_TRUE(depth.isSweep());
    ASSERT_EQ(depth.getNumTransducers(), 1u);
    const VELMTransducerConfig *t = depth.getTransducer(0);
    EXPECT_EQ(t->getNumber(), 2u);
    EXPECT_STREQ(t->getModel(), L"Unknown");
    bool fixed = false;
    double gyro, roll, squat, heavePerc, pitch, azimuth;
    t->getSweepTPEParameters(fixed, gyro, roll, squat, heavePerc);
    t->getMountAngle(pitch, roll, azimuth);
    EXPECT_TRUE(fixed);
    EXPECT_EQ(std::vector<double>({squat, heavePerc, azimuth}), std::vector<double>({100.0, 100.0, 45.0}));
    EXPECT_EQ(depth.getTransducer(1), nullptr);
}

TEST(VesselEntries, GyroOffsetInterpolatesAndWrapsFromTheFirstRow) {
    VELMGyroConfig gyro;
    EXPECT_EQ(gyro.getGyroOffset(10.0), 0.0);  // empty table
    gyro.setGyroOffset(1.0, 90.0);
    EXPECT_EQ(gyro.getGyroOffset(300.0), 1.0);  // one row
    gyro.setGyroOffset(3.0, 270.0);
    EXPECT_DOUBLE_EQ(gyro.getGyroOffset(180.0), 2.0);
    EXPECT_EQ(gyro.getGyroOffset(90.0), 1.0);
    EXPECT_EQ(gyro.getGyroOffset(270.0), 3.0);
    // Across the wrap the first row's offset is added, not the last row's.
    EXPECT_DOUBLE_EQ(gyro.getGyroOffset(0.0), (1.0 - 3.0) / 180.0 * 90.0 + 1.0);
    EXPECT_DOUBLE_EQ(gyro.getGyroOffset(300.0), (1.0 - 3.0) / 180.0 * 30.0 + 1.0);
    EXPECT_EQ(gyro.getGyroOffset(360.5), 0.0);
    EXPECT_EQ(gyro.getGyroOffset(-0.5), 0.0);
    gyro.setGyroOffset(5.0, 90.0);  // one row per azimuth
    ASSERT_EQ(gyro.getAllGyroOffsets().size(), 2u);
    EXPECT_EQ(gyro.getAllGyroOffsets()[0].offset, 5.0);
}

TEST(VesselEntries, DestroyingAnEntryRemovesItsElementAndStoreRefusesWhatItCannotWrite) {
    ListDoc d;
    {
        VELMRollConfig roll(day32Noon());
        ASSERT_EQ(roll.store(d.list()), 0);
        EXPECT_NE(d.list()->children, nullptr);
    }
    EXPECT_EQ(d.list()->children, nullptr);
    EXPECT_EQ(VELMNavConfig(-1e12).store(d.list()), -1);  // a time without a calendar form
    EXPECT_EQ(VELMNavConfig(0.0).store(nullptr), -1);
}
