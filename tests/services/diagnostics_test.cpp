// Redirection of the library's diagnostics by "CONSOLE". These tests change
// the process's standard output; the fixture puts it back on every path.
#include <velmio/console.h>
#include <velmio/log_file.h>

#include "foundation/diagnostics.h"
#include "support/test_support.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

using namespace velmio::test;

namespace {

// What a descriptor is open on: device and inode.
using Identity = std::pair<dev_t, ino_t>;
Identity identityOf(int fd) {
    struct stat st {};
    return fstat(fd, &st) == 0 ? Identity(st.st_dev, st.st_ino) : Identity();
}

class Diagnostics : public ::testing::Test {
protected:
    void SetUp() override {
        const char *previous = std::getenv("CONSOLE");
        hadConsole_ = previous != nullptr;
        if (previous) previous_ = previous;
        stdout_ = identityOf(1);
        stderr_ = identityOf(2);
    }
    void TearDown() override {
        VELM_IO_StopDiagnostics();
        if (hadConsole_) {
            setenv("CONSOLE", previous_.c_str(), 1);
        } else {
            unsetenv("CONSOLE");
        }
        EXPECT_TRUE(identityOf(1) == stdout_) << "standard output was not restored";
        EXPECT_TRUE(identityOf(2) == stderr_) << "standard error was not restored";
    }
    bool stdoutUnchanged() const { return identityOf(1) == stdout_; }

    Identity stdout_, stderr_;

private:
    bool hadConsole_ = false;
    std::string previous_;
};

}  // namespace

TEST_F(Diagnostics, FileCapturesTheLibrarysMessagesWhileOnAndASecondStartClosesItUntilStop) {
    TempDir dir;
    setenv("CONSOLE", dir.file("one.txt").c_str(), 1);
    ASSERT_EQ(0, VELM_IO_StartDiagnostics());
    EXPECT_FALSE(stdoutUnchanged());
    int status = 0;
    EXPECT_EQ(nullptr, LogFileOpen(dir.wfile("missing").c_str(), L"a", &status));
    EXPECT_EQ(5017202, status);
    // Switched off, a failure is still reported by its code but not written;
    // the switch reports its previous state.
    EXPECT_EQ(1, VELM_IO_SetDiagnostics(0));
    EXPECT_EQ(nullptr, LogFileOpen(dir.wfile("other").c_str(), L"a", &status));
    EXPECT_EQ(5017202, status);
    EXPECT_EQ(0, VELM_IO_SetDiagnostics(1));
    setenv("CONSOLE", dir.file("two.txt").c_str(), 1);
    ASSERT_EQ(0, VELM_IO_StartDiagnostics());
    velmio::say("second %d\n", 2);
    EXPECT_EQ(0, VELM_IO_StopDiagnostics());
    EXPECT_TRUE(stdoutUnchanged());
    EXPECT_EQ(0, VELM_IO_StopDiagnostics());  // nothing left to stop
    EXPECT_EQ("VELM IO was unable to find the data file '" + dir.file("missing/LogFile") + "'\n",
              readText(dir.file("one.txt")));
    EXPECT_EQ("second 2\n", readText(dir.file("two.txt")));
}

TEST_F(Diagnostics, NoUnsetEmptyOrAnUnopenableFileLeavesOutputAlone) {
    for (const char *value : {"no", "No", "nO", "NO", ""}) {
        setenv("CONSOLE", value, 1);
        EXPECT_EQ(0, VELM_IO_StartDiagnostics()) << value;
        EXPECT_TRUE(stdoutUnchanged()) << value;
        EXPECT_EQ(0, VELM_IO_StopDiagnostics()) << value;
    }
    EXPECT_FALSE(fileExists("no"));
    EXPECT_FALSE(fileExists("NO"));
    unsetenv("CONSOLE");
    EXPECT_EQ(0, VELM_IO_StartDiagnostics());
    EXPECT_TRUE(stdoutUnchanged());

    TempDir dir;
    setenv("CONSOLE", dir.file("no/such/dir/diagnostics.txt").c_str(), 1);
    EXPECT_EQ(5017203, VELM_IO_StartDiagnostics());
    EXPECT_TRUE(stdoutUnchanged());
}

TEST_F(Diagnostics, ConsoleAttachesToTheTerminalOnlyWhenThereIsOne) {
    const int tty = open("/dev/tty", O_RDWR | O_NOCTTY);
    const bool haveTerminal = tty >= 0;
    const Identity terminal = haveTerminal ? identityOf(tty) : Identity{};
    if (haveTerminal) close(tty);
    for (const char *value : {"YES", "console"}) {
        setenv("CONSOLE", value, 1);
        EXPECT_EQ(0, VELM_IO_StartDiagnostics());
        if (haveTerminal) {
            EXPECT_TRUE(identityOf(0) == terminal);
            EXPECT_TRUE(identityOf(1) == terminal);
            EXPECT_TRUE(identityOf(2) == terminal);
        } else {
            EXPECT_TRUE(stdoutUnchanged());
        }
        EXPECT_EQ(0, VELM_IO_StopDiagnostics());
        EXPECT_TRUE(stdoutUnchanged());
        EXPECT_FALSE(fileExists(value));
    }
}
