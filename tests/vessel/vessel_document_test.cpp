#include <velmio/time_conversions.h>
#include <velmio/vessel.hpp>

#include "support/test_support.h"
#include "vessel_test_support.h"

#include <memory>
#include <string>

using namespace velmio::test;

namespace {
// 2004-100 00:00:00, computed when called: the time conversions are not
// ready during static initialisation of another file.
double t0() { return TmYDStoUTCs80(2004, 100, 0.0); }

template <typename Entry, typename Settings>
void add(VELMVessel &vessel, Settings settings) {
    auto entry = std::make_shared<Entry>(t0());
    settings(*entry);
    ASSERT_EQ(vessel.addSensor(entry), 0);
}

// One entry of every kind, each with settings away from their defaults,
// added against kind name order so that the file's order is the library's.
void addEveryKind(VELMVessel &v) {
    add<VELMWaterlineHeight>(v, [](auto &e) { e.setWaterLine(1.75), e.setAuthorization(L"chief"); });
    add<VELMTPEConfig>(v, [](auto &e) {
        e.setOffsetMRUToTrans(1, 2, 3, 4, 5, 6), e.setMRUAlignmentStdDev(0.1, 0.2, 0.3);
        e.setDeltaDraftStdDev(0.9), e.setStDevComment(L"figures");
    });
    add<VELMTowedSSSConfig>(v, [](auto &e) { e.setLayback(25.0); });
    add<VELMSideScanRollConfig>(v, [](auto &e) { e.setRollOffset(0.8); });
    add<VELMSideScanPitchConfig>(v, [](auto &e) { e.setPitchOffset(0.7); });
    add<VELMSideScanNavConfig>(v, [](auto &e) { e.setOffsets(4, 5, 6); });
    add<VELMSideScanHeaveConfig>(v, [](auto &e) { e.setApplyFlag(true); });
    add<VELMSideScanGyroConfig>(v, [](auto &e) { e.setGyroStdDev(0.05), e.setGyroOffset(1.0, 180.0); });
    add<VELMSideScanConfig>(v, [](auto &e) { e.setManufacturer(L"SS"); });
    add<VELMSVPConfig>(v, [](auto &e) { e.setDualHead(true), e.setMountAngle(2, 1, 2, 3); });
    add<VELMRollConfig>(v, [](auto &e) { e.setRollOffset(-1.5); });
    add<VELMPitchConfig>(v, [](auto &e) { e.setPitchOffset(1.5); });
    add<VELMNavConfig>(v, [](auto &e) { e.setEllipseName(L"WGS84"); });
    add<VELMHeaveConfig>(v, [](auto &e) { e.setHeaveOffset(0.3); });
    add<VELMGyroConfig>(v, [](auto &e) { e.setGyroOffset(2.0, 0.0), e.setModel(L"G\u00fc"); });
    add<VELMDraftConfig>(v, [](auto &e) { e.setDraft(3.0, 0.4); });
    add<VELMDepthConfig>(v, [](auto &e) {
        e.setSensorClass(L"Sweep"), e.setMRUToBoomOffset(0.5, 0.25, 0.125);
        VELMTransducerConfig t(1, 1);
        t.setPositionOffset(1, 2, 3), t.setSerialNumber(L"T1");
        e.addTransducer(t);
        e.addTransducer(VELMTransducerConfig(2, 101, false));
    });
}

std::unique_ptr<VELMVessel> open(const std::wstring &path, int &error) {
    return std::make_unique<VELMVessel>(path.c_str(), error);
}
}  // namespace

TEST(VesselDocument, EveryKindIsStoredWellFormedAndReadsBackUnchanged) {
    TempDir dir;
    VELMVessel vessel;
    ASSERT_EQ(vessel.setFileName(dir.wfile("boat").c_str()), 0);
    addEveryKind(vessel);
    VELMVesselShape shape;
    shape.addPlanViewCoord(0, 1);
    shape.addProfileViewCoord(2, 3);
    shape.setRP(30, 8, 4);
    vessel.setVesselShape(shape);
    ASSERT_EQ(vessel.store(), 0);
    EXPECT_TRUE(vessel.isModified());

    Doc parsed(xmlReadFile(dir.file("boat.tvc").c_str(), nullptr, XML_PARSE_NOERROR));
    ASSERT_TRUE(parsed) << "not well-formed";
    const std::string first = readText(dir.file("boat.tvc"));
    EXPECT_EQ(first.rfind("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<VELMVesselConfig Version=\"2.0\">\n"
                          "  <VesselShape>\n    <PlanCoordinates>\n      <Entry X=\"0.000000\" Y=\"1.000000\"/>\n",
                          0),
              0u);
    // Lists in kind name order, code unit by code unit.
    std::string order;
    for (xmlNode *n = xmlDocGetRootElement(parsed.get())->children; n; n = n->next)
        if (n->type == XML_ELEMENT_NODE) order += std::string(reinterpret_cast<const char *>(n->name)) + " ";
    EXPECT_EQ(order,
              "VesselShape DepthSensor DraftSensor GyroSensor HeaveSensor NavSensor PitchSensor RollSensor SVPSensor "
              "SideScanGyroSensor SideScanHeaveSensor SideScanNavSensor SideScanPitchSensor SideScanRollSensor "
              "SideScanSensor TPEConfiguration TowedSensor WaterlineHeight ");

    // Everything read back writes the same bytes again: no setting is lost.
    int error = -1;
    auto back = open(dir.wfile("boat.tvc"), error);
    ASSERT_EQ(error, 0);
    EXPECT_FALSE(back->isModified());
    ASSERT_EQ(back->setFileName(dir.wfile("copy.tvc").c_str()), 0);
    ASSERT_EQ(back->store(), 0);
    EXPECT_EQ(readText(dir.file("copy.tvc")), first);

    // And the values themselves, in case writing and reading are wrong alike.
    EXPECT_STREQ(back->getSensor<VELMGyroConfig>(t0(), error)->getModel(), L"G\u00fc");
    EXPECT_EQ(back->getSensor<VELMDepthConfig>(t0(), error)->getTransducer(1)->getStartBeam(), 101u);
    double l, w, h;
    back->getVesselShape().getRP(l, w, h);
    EXPECT_EQ(w, 8.0);
}

TEST(VesselDocument, HandWrittenMixedCaseDocumentReadsTheSameValues) {
    TempDir dir;
    writeText(dir.file("mixed.tvc"),
              "<?xml version=\"1.0\"?>\n<velmvesselconfig VERSION=\"2.5\">\n"
              "  <metadata><anything/></metadata>\n"
              "  <heavesensor>\n"
              "    <timestamp value=\"2004-100 00:00:00\">\n"
              "      <OFFSETS x=\"1.5\" y=\"2\" Z=\"-3\" heave=\"0.5\"/>\n"
              "      <applyflag Value=\"yes\"/>\n"
              "    </timestamp>\n"
              "  </heavesensor>\n"
              "  <vesselshape><rp length=\"12\"/></vesselshape>\n"
              "</velmvesselconfig>\n");
    int error = -1;
    auto vessel = open(dir.wfile("mixed.tvc"), error);
    ASSERT_EQ(error, 0);
    EXPECT_EQ(vessel->getFileVersion(), 2.5f);
    // Entries' own settings in any case are the entry tests' part.
    ASSERT_NE(vessel->getSensor<VELMHeaveConfig>(t0(), error), nullptr);
    double l, w, h;
    vessel->getVesselShape().getRP(l, w, h);
    EXPECT_EQ(l, 12.0);
    // The list takes the registered name whatever the file's spelling.
    ASSERT_EQ(vessel->getSensors().size(), 1u);
    EXPECT_STREQ(vessel->getSensors()[0]->getName(), L"HeaveSensor");
}

TEST(VesselDocument, EntryIsValidFromItsTimeUntilTheNext) {
    VELMVessel vessel;
    ASSERT_EQ(vessel.addSensor(std::make_shared<VELMPitchConfig>(200.0)), 0);
    ASSERT_EQ(vessel.addSensor(std::make_shared<VELMPitchConfig>(100.0)), 0);
    int error = -1;
    EXPECT_EQ(vessel.getSensor(L"PitchSensor", 50.0, error), nullptr);
    EXPECT_EQ(error, 5100006);
    const std::pair<double, double> cases[] = {{100, 100}, {150, 100}, {200, 200}, {10000, 200}};
    for (auto [at, expected] : cases) {
        auto e = vessel.getSensor(L"PitchSensor", at, error);
        ASSERT_TRUE(e);
        EXPECT_EQ(error, 0);
        EXPECT_EQ(e->getTimeStamp(), expected) << at;
    }
    EXPECT_EQ(vessel.getSensor(L"RollSensor", 150.0, error), nullptr);
    EXPECT_EQ(error, 5100003);
    EXPECT_EQ(vessel.getFirstSensor<VELMPitchConfig>()->getTimeStamp(), 100.0);
    EXPECT_EQ(vessel.getLastSensor<VELMPitchConfig>()->getTimeStamp(), 200.0);
}

TEST(VesselDocument, AddRetimeAndRemoveKeepOneEntryPerTime) {
    TempDir dir;
    VELMVessel vessel;
    vessel.setFileName(dir.wfile("boat.tvc").c_str());
    EXPECT_EQ(vessel.addSensor(nullptr), 5100007);
    auto first = std::make_shared<VELMRollConfig>(t0());
    ASSERT_EQ(vessel.addSensor(first), 0);
    EXPECT_EQ(vessel.addSensor(std::make_shared<VELMRollConfig>(t0())), 5100008);
    ASSERT_EQ(vessel.addSensor(std::make_shared<VELMRollConfig>(t0() + 300.0)), 0);
    ASSERT_EQ(vessel.addSensor(std::make_shared<VELMHeaveConfig>(t0())), 0);
    ASSERT_EQ(vessel.store(), 0);
    VELMVesselSensorList *list = vessel.getSensorList<VELMRollConfig>();
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->getCount(), 2u);

    ASSERT_EQ(list->updateTimeStamp(first.get(), t0() + 400.0), 0);  // moves after the other
    EXPECT_EQ(list->getFirstConfig()->getTimeStamp(), t0() + 300.0);
    EXPECT_EQ(list->getNextConfig(list->getFirstConfig().get()), first);
    EXPECT_EQ(list->updateTimeStamp(first.get(), t0() + 300.0), 5100008);  // collides: dropped
    EXPECT_EQ(list->getCount(), 1u);
    EXPECT_EQ(list->updateTimeStamp(nullptr, 1.0), -1);

    EXPECT_EQ(vessel.removeSensor(999.0, L"RollSensor"), 5100009);
    EXPECT_EQ(vessel.removeSensor(t0() + 300.0, L"GyroSensor"), 5100003);
    ASSERT_EQ(vessel.removeSensor(t0() + 300.0, L"RollSensor"), 0);
    EXPECT_EQ(vessel.getSensorList(L"RollSensor"), nullptr);  // emptied list goes, from the file too
    EXPECT_EQ(vessel.removeAllSensors(L"RollSensor"), 5100003);
    ASSERT_EQ(vessel.store(), 0);
    const std::string text = readText(dir.file("boat.tvc"));
    EXPECT_EQ(text.find("RollSensor"), std::string::npos);
    EXPECT_NE(text.find("<HeaveSensor>"), std::string::npos);
}

TEST(VesselDocument, OnlyTheFirstListOfAKindAndOfATimeIsKept) {
    TempDir dir;
    writeText(dir.file("twice.tvc"),
              "<VELMVesselConfig Version=\"2.0\">"
              "<HeaveSensor><TimeStamp value=\"2004-100 00:00:00\"><Offsets Heave=\"1\"/></TimeStamp>"
              "<TimeStamp value=\"2004-100 00:00:00\"><Offsets Heave=\"9\"/></TimeStamp></HeaveSensor>"
              "<HeaveSensor><TimeStamp value=\"2004-100 00:00:00\"><Offsets Heave=\"2\"/></TimeStamp></HeaveSensor>"
              "<UnknownSensor><TimeStamp value=\"2004-100 00:00:00\"/></UnknownSensor>"
              "</VELMVesselConfig>");
    int error = -1;
    auto vessel = open(dir.wfile("twice.tvc"), error);
    ASSERT_EQ(error, 0);
    ASSERT_EQ(vessel->getSensors().size(), 1u);
    EXPECT_EQ(vessel->getSensors()[0]->getCount(), 1u);
    EXPECT_EQ(vessel->getSensor<VELMHeaveConfig>(t0(), error)->getHeaveOffset(), 1.0);
    ASSERT_EQ(vessel->store(), 0);
    const std::string text = readText(dir.file("twice.tvc"));
    EXPECT_EQ(text.find("Heave=\"2"), std::string::npos);
    EXPECT_EQ(text.find("Heave=\"9"), std::string::npos);
    EXPECT_EQ(text.find("UnknownSensor"), std::string::npos);
}

TEST(VesselDocument, FileNamesTakeTheTvcExtension) {
    VELMVessel vessel;
    ASSERT_EQ(vessel.setFileName(L"boat"), 0);
    EXPECT_STREQ(vessel.getFileName(), L"boat.tvc");
    ASSERT_EQ(vessel.setFileName(L"dir\\boat.TVC"), 0);
    EXPECT_STREQ(vessel.getFileName(), L"dir\\boat.TVC");
    EXPECT_EQ(vessel.setFileName(nullptr), 5100002);
    EXPECT_EQ(VELMVessel().store(), 5100002);
}

TEST(VesselDocument, BadDocumentsFailWithTheirCodes) {
    TempDir dir;
    const struct {
        const char *name;
        const char *text;
        int error;
    } cases[] = {
        {"root", "<VesselConfig Version=\"2.0\"/>", 5100001},
        {"noversion", "<VELMVesselConfig/>", 5100001},
        {"emptyversion", "<VELMVesselConfig Version=\"\"/>", 5100001},
        {"novalue", "<VELMVesselConfig Version=\"2\"><GyroSensor><TimeStamp/></GyroSensor></VELMVesselConfig>", -1},
        {"badtime",
         "<VELMVesselConfig Version=\"2\"><GyroSensor><TimeStamp value=\"2004-100 25:00:00\"/></GyroSensor>"
         "</VELMVesselConfig>",
         5100010},
    };
    for (const auto &c : cases) {
        writeText(dir.file(std::string(c.name) + ".tvc"), c.text);
        int error = 0;
        silently([&] { return open(dir.wfile(std::string(c.name) + ".tvc"), error); });
        EXPECT_EQ(error, c.error) << c.name;
    }
}

TEST(VesselDocument, HostileDocumentsNeverCrash) {
    TempDir dir;
    std::string deep = "<VELMVesselConfig Version=\"2\"><GyroSensor>";
    for (int i = 0; i < 20000; ++i) deep += "<a>";
    writeText(dir.file("deep.tvc"), deep);
    const std::string huge(2 * 1024 * 1024, 'c');
    writeText(dir.file("huge.tvc"),
              "<VELMVesselConfig Version=\"2\"><NavSensor><TimeStamp value=\"2004-100 00:00:00\">"
              "<Comment value=\"" + huge + "\"/><Offsets X=\"1e999\" Y=\"nonsense\"/></TimeStamp></NavSensor>"
              "</VELMVesselConfig>");
    int error = 0;
    silently([&] { return open(dir.wfile("deep.tvc"), error); });
    EXPECT_EQ(error, 5000401);  // libxml2 refuses the nesting: not XML

    auto hugeVessel = open(dir.wfile("huge.tvc"), error);
    ASSERT_EQ(error, 0);
    auto nav = hugeVessel->getSensor<VELMNavConfig>(t0(), error);
    ASSERT_TRUE(nav);
    EXPECT_EQ(std::wcslen(nav->getComment()), huge.size());
    double x, y, z;
    nav->getOffsets(x, y, z);
    EXPECT_EQ(y, 0.0);
}
