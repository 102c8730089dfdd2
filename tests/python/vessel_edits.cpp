// The C++ half of the vessel edit comparison: the same edits as
// test_vessel.py makes from Python, through the entry classes' setters.
//   vessel_edits NEW.tvc EDITED.tvc
// writes NEW from nothing, then loads it, edits it and writes EDITED.
#include <velmio/vessel.hpp>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

namespace {

std::wstring wide(const char *s) { return std::wstring(s, s + std::string(s).size()); }

void require(int status, const char *what) {
    if (status == 0) return;
    std::fprintf(stderr, "%s failed: %d\n", what, status);
    std::exit(1);
}

template <class E>
std::shared_ptr<E> add(VELMVessel &v, double time) {
    auto e = std::make_shared<E>(time);
    require(v.addSensor(e), "add");
    return e;
}

void writeNew(const std::wstring &path) {
    VELMVessel v;
    auto gyro = add<VELMGyroConfig>(v, 100.0);
    gyro->setManufacturer(L"Acme");
    gyro->setLatency(0.25);
    gyro->setApplyFlag(true);
    gyro->setGyroOffset(0.5, 90.0);
    gyro->setGyroOffset(-0.25, 270.0);

    auto depth = add<VELMDepthConfig>(v, 100.0);
    require(depth->setSensorClass(L"Sweep"), "class");
    depth->setNavToBoomOffset(1.0, 2.0, 3.0);
    VELMTransducerConfig first(1, 0);
    first.setPositionOffset(0.1, 0.2, 0.3);
    first.setMountAngle(1.0, 2.0, 3.0);
    first.setLatency(0.01);
    first.setSweepTPEParameters(false, 0.5, 0.25, 95.0, 90.0);
    first.setSerialNumber(L"S1");
    depth->addTransducer(first);
    VELMTransducerConfig second(2, 64);
    second.setModel(L"M2");
    depth->addTransducer(second);

    auto draft = add<VELMDraftConfig>(v, 100.0);
    draft->setApplyFlag(true);
    draft->setDraft(2.0, 0.1);
    draft->setDraft(1.0, 0.05);

    auto svp = add<VELMSVPConfig>(v, 100.0);
    svp->setDualHead(true);
    require(svp->setPositionOffsets(2, 4.0, 5.0, 6.0), "head 2");
    require(svp->setMountAngle(1, 0.5, 0.25, 180.0), "head 1");

    auto tpe = add<VELMTPEConfig>(v, 100.0);
    tpe->setOffsetMRUToTrans(1.0, 2.0, 3.0, 4.0, 5.0, 6.0);
    tpe->setHeaveStdDev(0.05, 5.0);
    tpe->setStDevComment(L"estimated");

    auto waterline = add<VELMWaterlineHeight>(v, 100.0);
    waterline->setWaterLine(1.25);
    waterline->setWaterlineStdDev(0.05);

    require(v.setFileName(path.c_str()), "file name");
    require(v.store(), "store");
}

void editExisting(const std::wstring &from, const std::wstring &to) {
    int error = 0;
    VELMVessel v(from.c_str(), error);
    require(error, "load");
    auto gyro = v.getFirstSensor<VELMGyroConfig>();
    gyro->setComment(L"refit");
    require(v.getSensorList<VELMGyroConfig>()->updateTimeStamp(gyro.get(), 150.0), "move");
    auto nav = add<VELMNavConfig>(v, 200.0);
    nav->setEllipseName(L"WGS84");
    nav->setOffsets(1.0, -1.0, 0.5);
    require(v.removeSensor(100.0, VELMDraftConfig::kSensorName), "remove");
    require(v.setFileName(to.c_str()), "file name");
    require(v.store(), "store");
}

}  // namespace

int main(int argc, char **argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: vessel_edits NEW.tvc EDITED.tvc\n");
        return 2;
    }
    writeNew(wide(argv[1]));
    editExisting(wide(argv[1]), wide(argv[2]));
    return 0;
}
