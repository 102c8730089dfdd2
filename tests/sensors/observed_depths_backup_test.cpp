#include <velmio/observed_depths.h>

#include "tests/sensors/sensor_test_support.h"

#include <filesystem>

using namespace velmio::test;

namespace {

const char *const kSuffixes[] = {"", "LineSegments", "TmIdx"};

// A set of three small files whose contents name them.
void writeSet(const std::string &dir, const std::string &name, const std::string &tag = "") {
    for (const char *suffix : kSuffixes) writeText(dir + "/" + name + suffix, tag + name + suffix);
}

void expectSet(const std::string &dir, const std::string &name, const std::string &tag = "") {
    for (const char *suffix : kSuffixes) EXPECT_EQ(readText(dir + "/" + name + suffix), tag + name + suffix);
}

void expectNoSet(const std::string &dir, const std::string &name) {
    for (const char *suffix : kSuffixes) EXPECT_FALSE(fileExists(dir + "/" + name + suffix)) << name << suffix;
}

TEST(ObservedDepthsBackup, BackupMovesBothSetsAndEachRestoreBringsItsOwnBack) {
    TempDir dir;
    const std::string backup = dir.file(".backup");
    writeSet(dir.path(), "ObservedDepths");
    writeSet(dir.path(), "ObservedDepthsNew");
    ASSERT_EQ(ObservedDepthsBackupDir(dir.wpath().c_str()), 0);
    expectNoSet(dir.path(), "ObservedDepths");
    expectNoSet(dir.path(), "ObservedDepthsNew");
    expectSet(backup, "ObservedDepths");
    expectSet(backup, "ObservedDepthsNew");

    // Restoring replaces the files edited since the backup.
    writeSet(dir.path(), "ObservedDepths", "edited ");
    ASSERT_EQ(ObservedDepthsRestoreBackupDir(dir.wpath().c_str()), 0);
    expectSet(dir.path(), "ObservedDepths");
    expectNoSet(backup, "ObservedDepths");
    expectNoSet(dir.path(), "ObservedDepthsNew");
    ASSERT_EQ(ObservedDepthsNewRestoreBackupDir(dir.wpath().c_str()), 0);
    expectSet(dir.path(), "ObservedDepthsNew");
    // Nothing left to restore, and no stray parked files.
    EXPECT_EQ(ObservedDepthsRestoreBackupDir(dir.wpath().c_str()), 5000228);
    EXPECT_TRUE(std::filesystem::is_empty(backup));
}

TEST(ObservedDepthsBackup, NeedsADataFileAndRemoveDeletesBackedUpFiles) {
    TempDir dir;
    EXPECT_EQ(ObservedDepthsBackupDir(dir.wpath().c_str()), 5000228);
    EXPECT_FALSE(fileExists(dir.file(".backup")));
    EXPECT_EQ(ObservedDepthsBackupDir(nullptr), 5000228);
    writeSet(dir.path(), "ObservedDepthsNew");
    ASSERT_EQ(ObservedDepthsBackupDir(dir.wpath().c_str()), 0);
    writeText(dir.file(".backup/Other"), "kept");
    ASSERT_EQ(ObservedDepthsRemoveBackupDir(dir.wpath().c_str()), 0);
    expectNoSet(dir.file(".backup"), "ObservedDepthsNew");
    EXPECT_EQ(readText(dir.file(".backup/Other")), "kept");
}

}  // namespace
