// velmio info over surveys of many small lines: wall time per scan and the
// peak memory of the scanning process, which must not grow with the lines.
// The tool is found beside this program's build directory, or in VELMIO_TOOL.
#include <velmio/navigation.h>
#include <velmio/simple_sensor.h>
#include <velmio/linestore.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

std::string toolPath() {
    if (const char *env = std::getenv("VELMIO_TOOL")) return env;
    char self[PATH_MAX] = "";
    const ssize_t n = readlink("/proc/self/exe", self, sizeof self - 1);
    if (n > 0) self[n] = '\0';
    return (std::filesystem::path(self).parent_path().parent_path() / "tools" / "velmio").string();
}

std::wstring wide(const std::string &s) { return std::wstring(s.begin(), s.end()); }

// count lines of 20 fixes and 20 headings, 100 lines a day.
bool makeSurvey(const std::string &root, int count) {
    for (int i = 0; i < count; ++i) {
        char rel[96];
        std::snprintf(rel, sizeof rel, "/Proj/Boat/2004-%03d/Line%04d", 1 + i / 100, i);
        const std::wstring line = wide(root + rel);
        if (LineCreateHierarchy(line.c_str()) != 0) return false;
        int err = 0;
        TOVO_Sensor *nav = NavigationOpenDir(line.c_str(), L"create", &err);
        TOVO_Sensor *gyro = GyroOpenDir(line.c_str(), L"create", &err);
        if (!nav || !gyro) return false;
        NavigationBgnSeqWriteSummary(nav, 1);
        NavigationBgnSeqWriteLineSegment(nav, L"raw");
        GyroBgnSeqWriteSummary(gyro);
        GyroBgnSeqWriteLineSegment(gyro, L"raw");
        for (int k = 0; k < 20; ++k) {
            const double t = 7.68e8 + i * 100.0 + k;
            NavigationSeqWrite(nav, t, 0.75 + k * 1e-6, -1.13, 0.0, 0);
            GyroSeqWrite(gyro, t, 0.5, 0);
        }
        NavigationEndSeqWriteLineSegment(nav, 0);
        NavigationEndSeqWriteSummary(nav, 0);
        GyroEndSeqWriteLineSegment(gyro, 0);
        GyroEndSeqWriteSummary(gyro, 0);
        if (NavigationClose(nav) != 0 || GyroClose(gyro) != 0) return false;
    }
    return true;
}

struct Child {
    long peakKilobytes = -1;
    double cpuSeconds = 0;  // user + system: wall time suffers on a shared machine
};

// Runs the tool once.
Child runInfo(const std::string &tool, const std::string &root, bool json) {
    const pid_t pid = fork();
    if (pid == 0) {
        std::freopen("/dev/null", "w", stdout);
        std::freopen("/dev/null", "w", stderr);
        if (json)
            execl(tool.c_str(), tool.c_str(), "info", root.c_str(), "--json", "--quiet", static_cast<char *>(nullptr));
        else
            execl(tool.c_str(), tool.c_str(), "info", root.c_str(), "--quiet", static_cast<char *>(nullptr));
        _exit(127);
    }
    int status = 0;
    struct rusage usage {};
    if (pid < 0 || wait4(pid, &status, 0, &usage) != pid || !WIFEXITED(status) || WEXITSTATUS(status) != 0)
        return {};
    auto seconds = [](const timeval &t) { return static_cast<double>(t.tv_sec) + t.tv_usec / 1e6; };
    return {usage.ru_maxrss, seconds(usage.ru_utime) + seconds(usage.ru_stime)};
}

void BM_InfoOnLines(benchmark::State &state) {
    char pattern[] = "/tmp/velmio-info-bench-XXXXXX";
    const std::string root = mkdtemp(pattern) ? pattern : "";
    const std::string tool = toolPath();
    if (root.empty() || !makeSurvey(root, static_cast<int>(state.range(0)))) {
        state.SkipWithError("could not write the survey");
        return;
    }
    long peak = 0;
    double cpu = 0;
    for (auto _ : state) {
        const Child run = runInfo(tool, root, state.range(1) != 0);
        if (run.peakKilobytes < 0) {
            state.SkipWithError(("velmio info failed: " + tool).c_str());
            break;
        }
        peak = std::max(peak, run.peakKilobytes);
        cpu += run.cpuSeconds;
    }
    state.counters["peak_rss_kB"] = static_cast<double>(peak);
    state.counters["child_cpu_ms"] = 1000.0 * cpu / std::max<double>(1.0, static_cast<double>(state.iterations()));
    std::error_code ec;
    std::filesystem::remove_all(root, ec);
}

}  // namespace

BENCHMARK(BM_InfoOnLines)
    ->ArgsProduct({{10, 100, 1000}, {0, 1}})
    ->ArgNames({"lines", "json"})
    ->Iterations(3)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
