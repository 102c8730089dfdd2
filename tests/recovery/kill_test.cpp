// A writer killed part way through a long create (SIGKILL, as a power loss
// or a crash would stop it): the check must never call such a line whole,
// and the repair must give back every whole record that reached the disk,
// exactly as a clean write of that many records lays them down.
#include <velmio/line_check.h>

#include "support/test_support.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace velmio::test;
namespace fs = std::filesystem;

namespace {

// Runs the writer to its end, or kills it once the data file has grown
// past killAt bytes (0: never).
void runWriter(const char *family, const std::string &line, long count, std::uintmax_t killAt,
               const std::string &dataFile) {
    fs::create_directories(line);
    const std::string records = std::to_string(count);
    const pid_t pid = ::fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) {
        // A cross build's writer runs under its emulator, which the shell's
        // exec makes the process that is killed.
        if (*VELMIO_EMULATOR)
            ::execl("/bin/sh", "sh", "-c", "exec " VELMIO_EMULATOR " \"$0\" \"$@\"", VELMIO_LINE_WRITER, family,
                    line.c_str(), records.c_str(), nullptr);
        else
            ::execl(VELMIO_LINE_WRITER, VELMIO_LINE_WRITER, family, line.c_str(), records.c_str(), nullptr);
        ::_exit(127);
    }
    if (killAt) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        std::error_code ec;
        while (fs::file_size(dataFile, ec) < killAt || ec) {
            ASSERT_LT(std::chrono::steady_clock::now(), deadline) << "the writer did not get far enough";
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        ::kill(pid, SIGKILL);
    }
    int status = 0;
    ::waitpid(pid, &status, 0);
    if (!killAt) {
        ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
}

unsigned int problemsIn(const std::string &line) {
    VELMCheckProblem *problems = nullptr;
    unsigned int count = 0;
    EXPECT_EQ(silently([&] { return VELMCheckPath(widen(line).c_str(), &problems, &count, nullptr); }), 0);
    VELMCheckFree(problems, count);
    return count;
}

TEST(KillTest, KilledCreatesAreFlaggedAndRepairedToEveryWholeRecord) {
    const struct {
        const char *family, *dataFile;
    } kFamilies[] = {{"gyro", "Gyro"}, {"navigation", "Navigation"}, {"depths", "ObservedDepths"}};
    for (const auto &f : kFamilies) {
        SCOPED_TRACE(f.family);
        TempDir dir;
        // The layout from two finished lines: what precedes the records, and
        // the size of one.
        runWriter(f.family, dir.file("one"), 1, 0, dir.file("one/") + f.dataFile);
        runWriter(f.family, dir.file("two"), 2, 0, dir.file("two/") + f.dataFile);
        const std::uintmax_t one = fs::file_size(dir.file("one/") + f.dataFile);
        const std::uintmax_t record = fs::file_size(dir.file("two/") + f.dataFile) - one, header = one - record;
        EXPECT_EQ(problemsIn(dir.file("two")), 0u);

        for (std::uintmax_t killAt : {std::uintmax_t(1) << 12, std::uintmax_t(1) << 16, std::uintmax_t(1) << 21}) {
            SCOPED_TRACE(killAt);
            const std::string line = dir.file("killed" + std::to_string(killAt)), data = line + "/" + f.dataFile;
            runWriter(f.family, line, 10000000, killAt, data);
            const std::uintmax_t size = fs::file_size(data), whole = (size - header) / record;
            EXPECT_GE(problemsIn(line), 1u) << whole << " whole records, " << size << " bytes";
            ASSERT_GT(whole, 0u);

            VELMRepairReport *reports = nullptr;
            unsigned int count = 0;
            ASSERT_EQ(VELMRepairPath(widen(line).c_str(), nullptr, 0, &reports, &count), 0);
            ASSERT_EQ(count, 1u);
            EXPECT_EQ(reports[0].records, whole);
            VELMRepairFree(reports, count);
            EXPECT_EQ(problemsIn(line), 0u);
            EXPECT_EQ(readFile(data + ".damaged").size(), size);

            // Records and time index as a clean write of the same records.
            const std::string clean = dir.file("clean" + std::to_string(killAt)), cleanData = clean + "/" + f.dataFile;
            runWriter(f.family, clean, static_cast<long>(whole), 0, cleanData);
            const Bytes repaired = readFile(data), expected = readFile(cleanData);
            ASSERT_EQ(repaired.size(), expected.size());
            EXPECT_TRUE(std::equal(repaired.begin() + header, repaired.end(), expected.begin() + header));
            EXPECT_EQ(readFile(data + "TmIdx"), readFile(cleanData + "TmIdx"));
        }
    }
}

}  // namespace
