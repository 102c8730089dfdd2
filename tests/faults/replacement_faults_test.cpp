// Files replaced through a temporary: whichever operation fails, the target
// is the old file or the new one, whole, and no temporary is left behind.
#include <velmio/observed_depths.h>
#include <velmio/svp.hpp>
#include <velmio/vessel.hpp>

#include "fault_sweep.h"
#include "support/test_support.h"

#include <filesystem>
#include <memory>

using namespace velmio::test;
namespace fs = std::filesystem;

namespace {

std::size_t entries(const std::string &dir) {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(dir), fs::directory_iterator()));
}

// Old or new: a failure may strike after the rename, never before a whole
// file is in place.
void expectOldOrNew(int code, int failure, const std::string &now, const std::string &older, const std::string &newer) {
    if (code == 0) {
        EXPECT_EQ(now, newer);
    } else {
        EXPECT_EQ(code, failure);
        EXPECT_TRUE(now == older || now == newer) << now;
    }
}

int storeVessel(const std::string &path, double gyroOffset) {
    VELMVessel vessel;
    vessel.setFileName(widen(path).c_str());
    auto gyro = std::make_shared<VELMGyroConfig>(0.0);
    gyro->setGyroOffset(gyroOffset, 0.0);
    vessel.addSensor(gyro);
    return vessel.store();
}

int writeCast(const std::string &path, double velocity) {
    VelmSvpFile cast(widen(path).c_str());
    cast.SetSvpSection(0.0, L"", L"");
    cast.AddSvpValue(0.0, 5.0, velocity);
    return cast.UpdateDataFile();
}

// Replaces a file written by write(path, 1) by write(path, 2) under every fault.
template <class Write>
void sweepReplacement(Write write, int failure, const std::string &extension) {
    TempDir dir;
    // Both made at the target's path: a cast file holds its own path.
    const std::string target = dir.file("target" + extension);
    ASSERT_EQ(write(target, 2), 0);
    const std::string newer = readText(target);
    ASSERT_EQ(write(target, 1), 0);
    const std::string older = readText(target);
    ASSERT_NE(older, newer);
    sweepFaults([&] { writeText(target, older); }, [&] { return write(target, 2); },
                [&](int code) {
                    expectOldOrNew(code, failure, readText(target), older, newer);
                    EXPECT_EQ(entries(dir.path()), 1u) << "a temporary was left";
                });
}

TEST(ReplacementFaults, VesselStoreAndCastWriteLeaveTheOldFileOrTheNew) {
    sweepReplacement([](const std::string &path, int n) { return storeVessel(path, n); }, -1, ".tvc");
    sweepReplacement([](const std::string &path, int n) { return writeCast(path, 1480.0 + n); }, -1, ".svp");
}

const char *const kSuffixes[] = {"", "LineSegments", "TmIdx"};

void writeSet(const std::string &dir, const std::string &name, const std::string &tag) {
    for (const char *suffix : kSuffixes) writeText(dir + "/" + name + suffix, tag);
}

// The set is whole in dir with this tag, or absent altogether.
bool setIs(const std::string &dir, const std::string &name, const std::string &tag) {
    int found = 0;
    for (const char *suffix : kSuffixes) {
        const std::string path = dir + "/" + name + suffix;
        if (!fileExists(path)) continue;
        if (readText(path) != tag) return false;
        ++found;
    }
    return tag.empty() ? found == 0 : found == 3;
}

// Backups and restores move whole sets: after a failure everything is where
// it was, a backup that was replaced included.
TEST(ReplacementFaults, ObservedDepthsBackupAndRestoreMoveWholeSetsOrNothing) {
    TempDir dir;
    const std::string line = dir.file("line"), backup = line + "/.backup";
    const auto prepare = [&] {
        fs::remove_all(line);
        fs::create_directories(backup);
        writeSet(line, "ObservedDepths", "current");
        writeSet(line, "ObservedDepthsNew", "current");
        writeSet(backup, "ObservedDepths", "older");
    };
    sweepFaults(prepare, [&] { return ObservedDepthsBackupDir(widen(line).c_str()); },
                [&](int code) {
                    const bool moved = code == 0;
                    if (!moved) {
                        EXPECT_EQ(code, 5000228);
                    }
                    EXPECT_TRUE(setIs(line, "ObservedDepths", moved ? "" : "current"));
                    EXPECT_TRUE(setIs(line, "ObservedDepthsNew", moved ? "" : "current"));
                    EXPECT_TRUE(setIs(backup, "ObservedDepths", moved ? "current" : "older"));
                    EXPECT_TRUE(setIs(backup, "ObservedDepthsNew", moved ? "current" : ""));
                    EXPECT_EQ(entries(line), moved ? 1u : 7u);
                    EXPECT_EQ(entries(backup), moved ? 6u : 3u);
                });
    sweepFaults(prepare, [&] { return ObservedDepthsRestoreBackupDir(widen(line).c_str()); },
                [&](int code) {
                    const bool moved = code == 0;
                    if (!moved) {
                        EXPECT_EQ(code, 5000228);
                    }
                    EXPECT_TRUE(setIs(line, "ObservedDepths", moved ? "older" : "current"));
                    EXPECT_TRUE(setIs(backup, "ObservedDepths", moved ? "" : "older"));
                    EXPECT_EQ(entries(line), 7u);
                    EXPECT_EQ(entries(backup), moved ? 0u : 3u);
                });
}

}  // namespace
