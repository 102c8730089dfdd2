// Fuzz target of the vessel configuration: one input is a vessel document,
// opened with VELMGetVesselConfiguration, asked every flat query at a few
// times, stored to another file, and that file read again and walked.
#include "fuzz_support.h"

#include <velmio/time_conversions.h>
#include <velmio/vessel.hpp>
#include <velmio/vessel_queries.h>

#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>
#include <string>

using velmio::fuzz::Bytes;

namespace {

// Outputs of the queries; every pointer handed out is freed after each call.
struct Outputs {
    double d[24];
    int i[4];
    wchar_t *s[8];
    double *a[8];

    void reset() {
        for (double &x : d) x = 0;
        for (int &x : i) x = 0;
        for (auto &x : s) x = nullptr;
        for (auto &x : a) x = nullptr;
    }
    void release() {
        for (auto &x : s) std::free(x), x = nullptr;
        for (auto &x : a) std::free(x), x = nullptr;
    }
};

double entryTime() { return TmYDStoUTCs80(2004, 100, 0.0); }

void queryAt(VELMVesselHandle *v, double t) {
    Outputs o;
    o.reset();
    VesselGyroSensorTmIdxConfig(v, t, &o.d[0], &o.s[0], &o.s[1], &o.s[2], &o.d[1], &o.d[2], &o.d[3], &o.d[4], &o.d[5],
                                &o.i[0], &o.s[3], &o.s[4]);
    o.release();
    VesselHeaveSensorTmIdxConfig(v, t, &o.d[0], &o.s[0], &o.s[1], &o.s[2], &o.d[1], &o.d[2], &o.d[3], &o.d[4],
                                 &o.d[5], &o.i[0], &o.s[3], &o.s[4]);
    o.release();
    VesselNavigationSensorTmIdxConfig(v, t, &o.d[0], &o.s[0], &o.s[1], &o.s[2], &o.s[3], &o.d[1], &o.d[2], &o.d[3],
                                      &o.d[4], &o.s[4], &o.s[5]);
    o.release();
    VesselPitchSensorTmIdxConfig(v, t, &o.d[0], &o.s[0], &o.s[1], &o.s[2], &o.d[1], &o.d[2], &o.i[0], &o.s[3],
                                 &o.s[4]);
    o.release();
    VesselRollSensorTmIdxConfig(v, t, &o.d[0], &o.s[0], &o.s[1], &o.s[2], &o.d[1], &o.d[2], &o.i[0], &o.s[3],
                                &o.s[4]);
    o.release();
    VesselSVPTmIdxConfig(v, t, &o.d[0], &o.d[1], &o.d[2], &o.d[3], &o.d[4], &o.d[5], &o.d[6], &o.d[7], &o.d[8],
                         &o.d[9], &o.d[10], &o.d[11], &o.d[12], &o.i[0], &o.s[0], &o.s[1]);
    o.release();
    VesselTowedTmIdxConfig(v, t, &o.d[0], &o.s[0], &o.s[1], &o.s[2], &o.d[1], &o.d[2], &o.d[3], &o.d[4], &o.d[5]);
    o.release();
    VesselRPTmIdxConfig(v, t, &o.d[0], &o.d[1], &o.d[2], &o.s[0], &o.s[1]);
    o.release();
    VesselDepthSensorTmIdxConfig(v, t, &o.d[0], &o.s[0], &o.i[0], &o.i[1], &o.i[2], &o.s[1], &o.s[2], &o.s[3],
                                 &o.d[1], &o.d[2], &o.d[3], &o.d[4], &o.d[5], &o.d[6], &o.d[7], &o.d[8], &o.d[9],
                                 &o.d[10], &o.d[11], &o.d[12], &o.d[13], &o.d[14], &o.a[0], &o.a[1], &o.a[2],
                                 &o.a[3], &o.a[4], &o.a[5], &o.a[6], &o.s[4], &o.s[5]);
    o.release();
    VesselDraftTmIdxConfig(v, t, &o.d[0], &o.i[0], &o.a[0], &o.a[1], &o.i[1], &o.s[0], &o.s[1]);
    o.release();
    VesselSweepTPETmIdxConfig(v, t, &o.i[0], &o.a[0], &o.a[1], &o.a[2], &o.a[3], &o.a[4]);
    o.release();
    VesselDepthSensorOrientationTmIdxConfig(v, t, &o.i[0], &o.a[0], &o.a[1], &o.a[2]);
    o.release();
    VesselDepthSensorLatencyTmIdxConfig(v, t, &o.i[0], &o.a[0]);
    o.release();
}

// Every list from first to last entry, and every registered kind by time.
void walk(const VELMVessel &v) {
    for (const auto &list : v.getSensors()) {
        for (auto e = list->getFirstConfig(); e; e = list->getNextConfig(e.get())) {
            e->getTimeStamp();
            e->getComment();
        }
        list->getLastConfig();
    }
    for (std::size_t k = 0; k < VELM::VesselRegistry::count(); ++k) {
        int error = 0;
        v.getSensor(VELM::VesselRegistry::name(k), entryTime(), error);
    }
    double length, width, height;
    v.getVesselShape().getRP(length, width, height);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string dir = velmio::fuzz::freshDirectory();
    velmio::fuzz::writeFile(dir + "/boat.tvc", data, size);

    int error = 0;
    VELMVesselHandle *vessel = VELMGetVesselConfiguration(velmio::fuzz::widen(dir + "/boat.tvc").c_str(), &error);
    if (!vessel) return 0;
    const double t0 = entryTime();
    for (double t : {0.0, t0 - 1, t0, t0 + 3.0e7, std::numeric_limits<double>::infinity()}) queryAt(vessel, t);
    walk(*vessel);
    const std::wstring copy = velmio::fuzz::widen(dir + "/copy.tvc");
    if (vessel->setFileName(copy.c_str()) == 0 && vessel->store() == 0) {
        int again = 0;
        VELMVessel stored(copy.c_str(), again);
        walk(stored);
        queryAt(&stored, t0);
    }
    VesselConfigFree(vessel);
    return 0;
}

// ---- seeds ---------------------------------------------------------------

namespace {

// Several kinds, some with two entries, written by the library's own store.
Bytes storedDocument() {
    const std::string dir = velmio::fuzz::freshDirectory();
    const double t0 = entryTime();
    {
        VELMVessel vessel;
        vessel.setFileName(velmio::fuzz::widen(dir + "/seed").c_str());
        VELMVesselShape shape;
        shape.addPlanViewCoord(0, 1);
        shape.addPlanViewCoord(2, -1);
        shape.addProfileViewCoord(0.5, 3);
        shape.setRP(30, 8, 4);
        vessel.setVesselShape(shape);

        auto sweep = std::make_shared<VELMDepthConfig>(t0);
        sweep->setSensorClass(L"Sweep");
        sweep->setMRUToBoomOffset(0.5, 0.25, 0.125);
        for (unsigned n = 1; n <= 3; ++n) {
            VELMTransducerConfig t(n, 1 + (n - 1) * 16, n != 2);
            t.setPositionOffset(n, -1.0 * n, 0.5);
            t.setMountAngle(1.0, -2.0, 90.0 * n);
            t.setLatency(0.001 * n);
            t.setSerialNumber(L"T-1");
            t.setSweepTPEParameters(true, 0.1, 0.2, 1.5, 5.0);
            sweep->addTransducer(t);
        }
        auto swath = std::make_shared<VELMDepthConfig>(t0 + 86400);
        swath->addTransducer(VELMTransducerConfig(1, 1));
        swath->addTransducer(VELMTransducerConfig(2, 128));
        auto gyro = std::make_shared<VELMGyroConfig>(t0);
        gyro->setGyroOffset(2.0, 0.0);
        gyro->setGyroOffset(-1.0, 180.0);
        gyro->setModel(L"G\u00fcro");
        gyro->setComment(L"installed & aligned");
        auto gyro2 = std::make_shared<VELMGyroConfig>(t0 + 3600);
        gyro2->setApplyFlag(true);
        auto draft = std::make_shared<VELMDraftConfig>(t0);
        draft->setDraft(0.0, 0.1);
        draft->setDraft(3.0, 0.4);
        auto heave = std::make_shared<VELMHeaveConfig>(t0);
        heave->setOffsets(1, 2, 3);
        auto nav = std::make_shared<VELMNavConfig>(t0);
        nav->setEllipseName(L"WGS84");
        nav->setLatency(0.25);
        auto pitch = std::make_shared<VELMPitchConfig>(t0);
        pitch->setPitchOffset(1.5);
        auto roll = std::make_shared<VELMRollConfig>(t0);
        roll->setRollOffset(-1.5);
        auto svp = std::make_shared<VELMSVPConfig>(t0);
        svp->setDualHead(true);
        svp->setPositionOffsets(2, 1, 2, 3);
        svp->setMountAngle(2, 1, 2, 3);
        auto towed = std::make_shared<VELMTowedSSSConfig>(t0);
        towed->setLayback(25.0);
        auto tpe = std::make_shared<VELMTPEConfig>(t0);
        tpe->setOffsetMRUToTrans(1, 2, 3, 4, 5, 6);
        tpe->setMRUAlignmentStdDev(0.1, 0.2, 0.3);
        auto waterline = std::make_shared<VELMWaterlineHeight>(t0);
        waterline->setWaterLine(1.75);
        waterline->setAuthorization(L"chief");
        for (std::shared_ptr<VELMVesselSensorConfig> e :
             {std::shared_ptr<VELMVesselSensorConfig>(sweep), std::shared_ptr<VELMVesselSensorConfig>(swath),
              std::shared_ptr<VELMVesselSensorConfig>(gyro), std::shared_ptr<VELMVesselSensorConfig>(gyro2),
              std::shared_ptr<VELMVesselSensorConfig>(draft), std::shared_ptr<VELMVesselSensorConfig>(heave),
              std::shared_ptr<VELMVesselSensorConfig>(nav), std::shared_ptr<VELMVesselSensorConfig>(pitch),
              std::shared_ptr<VELMVesselSensorConfig>(roll), std::shared_ptr<VELMVesselSensorConfig>(svp),
              std::shared_ptr<VELMVesselSensorConfig>(towed), std::shared_ptr<VELMVesselSensorConfig>(tpe),
              std::shared_ptr<VELMVesselSensorConfig>(waterline)})
            vessel.addSensor(e);
        if (vessel.store() != 0) {
            std::fprintf(stderr, "vessel_fuzz: the seed document was not stored\n");
            std::abort();
        }
    }
    return velmio::fuzz::requireFile(dir + "/seed.tvc");
}

// Written by hand: names in other letter cases, an unknown list, a
// duplicate time, entities, a comment and blank text between elements.
const char kHandWritten[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<velmvesselconfig Version=\"2.0\">\n"
    "  <!-- edited by hand -->\n"
    "  <VesselShape><RP Length=\"12.5\" Width=\"4\" Height=\"-1e2\"/>\n"
    "    <PlanCoordinates><Entry X=\"1\" Y=\"2\"/><Entry X=\"x\" Y=\"\"/></PlanCoordinates></VesselShape>\n"
    "  <GYROSENSOR>\n"
    "    <TimeStamp value=\"2004-100 00:00:00\"><Comment value=\"a &amp; b &#x263A;\"/>"
    "<Latency value=\"0.5\"/><Model value=\"G\xc3\xbc\"/><ApplyFlag value=\"yes\"/><Offsets><gyro>"
    "<Entry Azimuth=\"90\" Offset=\"1.5\"/><Entry Azimuth=\"x\" Offset=\"2\"/></gyro></Offsets></TimeStamp>\n"
    "    <TimeStamp value=\"2004-100 00:00:00\"><Latency value=\"9\"/></TimeStamp>\n"
    "    <TimeStamp value=\"2005-001 12:30:15\"/>\n"
    "  </GYROSENSOR>\n"
    "  <DepthSensor><TimeStamp value=\"2004-099 23:59:59\">"
    "<SensorClass value=\"sweep\"/><TransducerEntries>"
    "<Transducer Number=\"1\" StartBeam=\"1\" Model=\"M\"><Offsets X=\"1\" Y=\"2\" Z=\"3\" Latency=\"0.01\"/>"
    "<TransducerFixed value=\"No\"/><MountAngle Pitch=\"1\" Roll=\"2\" "
    "Azimuth=\"3\"/></Transducer>"
    "<Transducer Number=\"2\" StartBeam=\"65\"/></TransducerEntries></TimeStamp></DepthSensor>\n"
    "  <DraftSensor><TimeStamp value=\"2004-100 00:00:00\"><DraftEntries><Entry Speed=\"2\" Draft=\"0.2\"/>"
    "<Entry Speed=\"1\" Draft=\"0.1\"/></DraftEntries></TimeStamp></DraftSensor>\n"
    "  <WaterlineHeight><TimeStamp value=\"2004-100 00:00:00\"><WaterLine value=\"1.25\"/></TimeStamp>"
    "</WaterlineHeight>\n"
    "  <UnknownSensor><TimeStamp value=\"2004-100 00:00:00\"/></UnknownSensor>\n"
    "</velmvesselconfig>\n";

}  // namespace

std::vector<std::vector<std::uint8_t>> velmioFuzzSeeds() {
    const std::string hand(kHandWritten);
    return {storedDocument(), Bytes(hand.begin(), hand.end())};
}
