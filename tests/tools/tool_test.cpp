// The velmio command end to end on a demo survey with non-ASCII directory
// names and two damaged lines, checked against the C API and, for export,
// against what GDAL reads back.
#include "command.h"
#include "families.h"
#include "format.h"
#include "progress.h"
#include "support/test_support.h"

#include <velmio/navigation.h>
#include <velmio/observed_depths.h>
#include <velmio/simple_sensor.h>

#include <gdal.h>
#include <ogr_api.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <vector>
#include <fstream>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

using velmio::test::readText;
using velmio::test::TempDir;

namespace {

struct Result {
    int rc;
    std::string out, err;
};

std::string sq(const std::string &s) { return "'" + s + "'"; }

Result shell(const std::string &command, const TempDir &scratch) {
    const std::string out = scratch.file("stdout"), err = scratch.file("stderr");
    const int status = std::system((command + " >" + sq(out) + " 2>" + sq(err)).c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, readText(out), readText(err)};
}

Result tool(const std::string &args, const TempDir &scratch) { return shell(sq(VELMIO_TOOL) + " " + args, scratch); }

// Runs a Python expression over a JSON document (bound to d); its printed
// result, or the parser's complaint.
std::string python(const std::string &json, const std::string &expression, const TempDir &scratch) {
    std::ofstream(scratch.file("doc.json")) << json;
    std::ofstream(scratch.file("query.py"))
        << "import json, sys\nd = json.load(open(sys.argv[1], encoding='utf-8'))\nprint(repr((" << expression << ")))\n";
    const Result r = shell("/usr/bin/python3 " + sq(scratch.file("query.py")) + " " + sq(scratch.file("doc.json")), scratch);
    return r.out + r.err;
}

class Survey : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        dir_ = new TempDir;
        root_ = dir_->path() + "/Relevé ünïcode";
        ASSERT_EQ(tool("demo " + sq(root_), *dir_).rc, 0);
        // A line whose gyro file is cut short, and one with a directory where
        // its heave file should be: unreadable even for root.
        std::filesystem::resize_file(line("Surveyor", 123, 2) + "/Gyro", 60);
        std::filesystem::remove(line("Tender", 124, 1) + "/Heave");
        std::filesystem::create_directory(line("Tender", 124, 1) + "/Heave");
    }
    static void TearDownTestSuite() { delete dir_; }
    static std::string line(const char *vessel, int day, int n) {
        char buf[64];
        std::snprintf(buf, sizeof buf, "/DemoProject/%s/2004-%03d/Line%03d", vessel, day, n);
        return root_ + buf;
    }
    TempDir scratch_;
    static TempDir *dir_;
    static std::string root_;
};
TempDir *Survey::dir_ = nullptr;
std::string Survey::root_;

// The code the C API gives for a family of a line: open, then summary.
int apiCode(const std::string &line, TOVO_Sensor *(*open)(const wchar_t *, const wchar_t *, int *)) {
    int error = 0;
    TOVO_Sensor *h = open(velmio::tool::widen(line).c_str(), L"query", &error);
    if (!h) return error;
    const int rc = SimpleSensorSummary(h, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    SimpleSensorClose(h);
    return rc;
}

TEST_F(Survey, InfoReportsEveryLineTheDamagedOnesWithTheirCodes) {
    const Result r = tool("info " + sq(root_) + " --json", scratch_);
    EXPECT_EQ(r.rc, 1);
    EXPECT_EQ(python(r.out, "d['totals']['all']['lines'], d['totals']['all']['damaged'], len(d['totals']['days'])",
                     scratch_),
              "(8, 2, 4)\n");
    const int gyro = apiCode(line("Surveyor", 123, 2), GyroOpenDir), heave = apiCode(line("Tender", 124, 1), HeaveOpenDir);
    ASSERT_NE(gyro, 0);
    ASSERT_NE(heave, 0);
    EXPECT_EQ(python(r.out, "[(l['vessel'], l['day'], l['line'], s['error']['code']) for l in d['lines'] for s in "
                          "l['sensors'] if 'error' in s]",
                     scratch_),
              "[('Surveyor', '2004-123', 'Line002', " + std::to_string(gyro) + "), ('Tender', '2004-124', 'Line001', " +
                  std::to_string(heave) + ")]\n");
    // The undamaged sensors of a damaged line are still reported.
    EXPECT_EQ(python(r.out, "[(s['records'], s['segments'][1]['first'], round(s['extents']['lat']['min'], 6)) for l in d['lines'] "
                          "for s in l['sensors'] if l['line'] == 'Line002' and l['vessel'] == 'Surveyor' and "
                          "l['day'] == '2004-123' and s['name'] == 'Navigation']",
                     scratch_),
              "[(300, 151, 43.01)]\n");
    EXPECT_NE(r.err.find(std::to_string(gyro) + ": " + velmio::tool::sentence(gyro)), std::string::npos) << r.err;
    EXPECT_NE(r.err.find("Relevé ünïcode"), std::string::npos);
}

// Root reads whatever the permissions say, so as root the tool runs as
// nobody here; the directory standing in for a file covers root itself.
TEST_F(Survey, InfoReportsAFileItMayNotRead) {
    std::string as;
    if (geteuid() == 0) {
        if (std::system("command -v setpriv >/dev/null 2>&1") != 0) GTEST_SKIP() << "root without setpriv";
        as = "setpriv --reuid=65534 --regid=65534 --clear-groups ";
        std::filesystem::permissions(scratch_.path(), std::filesystem::perms::all);
    }
    const std::string path = scratch_.file("P/V/2004-123/L1");
    ASSERT_EQ(tool("demo --line " + sq(path), scratch_).rc, 0);
    std::filesystem::permissions(path + "/Tide", std::filesystem::perms::none);
    const Result r = shell(as + sq(VELMIO_TOOL) + " info " + sq(scratch_.file("P")), scratch_);
    EXPECT_EQ(r.rc, 1) << r.err;
    EXPECT_NE(r.out.find("Tide               error"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("Gyro                   3000 records"), std::string::npos) << r.out;
}

TEST_F(Survey, InfoOnOneDayAndOnPathsThatHoldNoLines) {
    Result r = tool("info " + sq(root_ + "/DemoProject/Surveyor/2004-124"), scratch_);
    EXPECT_EQ(r.rc, 0) << r.err;
    EXPECT_NE(r.out.find("day     DemoProject/Surveyor/2004-124             2 lines    0 damaged"), std::string::npos)
        << r.out;
    std::filesystem::create_directory(scratch_.file("empty"));
    r = tool("info " + sq(scratch_.file("empty")) + " --json", scratch_);
    EXPECT_EQ(r.rc, 0);
    EXPECT_EQ(python(r.out, "len(d['lines']), d['totals']['all']['lines']", scratch_), "(0, 0)\n");
    r = tool("info " + sq(scratch_.file("nowhere")), scratch_);
    EXPECT_EQ(r.rc, 1);
    EXPECT_NE(r.err.find("error 5000010"), std::string::npos) << r.err;
    EXPECT_EQ(tool("info", scratch_).rc, 2);
    EXPECT_EQ(tool("info " + sq(root_) + " --bogus", scratch_).rc, 2);
}

// Splits CSV without quoted fields (dump quotes none of these).
std::vector<std::vector<std::string>> csv(const std::string &text) {
    std::vector<std::vector<std::string>> rows;
    std::istringstream in(text);
    for (std::string l; std::getline(in, l);) {
        rows.emplace_back();
        std::istringstream fields(l);
        for (std::string f; std::getline(fields, f, ',');) rows.back().push_back(f);
    }
    return rows;
}

TEST_F(Survey, DumpWritesTheValuesTheApiReads) {
    const std::string path = line("Tender", 123, 2);
    Result r = tool("dump " + sq(path) + " Navigation --records 149:152", scratch_);
    ASSERT_EQ(r.rc, 0) << r.err;
    const auto rows = csv(r.out);
    ASSERT_EQ(rows.size(), 5u);
    EXPECT_EQ(rows[0], (std::vector<std::string>{"record", "time_iso", "time_s80", "latitude_deg", "longitude_deg",
                                                 "metres", "status", "status_text"}));
    int error = 0;
    TOVO_Sensor *h = NavigationOpenDir(velmio::tool::widen(path).c_str(), L"query", &error);
    ASSERT_NE(h, nullptr);
    for (unsigned int n = 149; n <= 152; ++n) {
        double t, lat, lon, m;
        unsigned int status;
        ASSERT_EQ(NavigationRead(h, n, &t, &lat, &lon, &m, &status), 0);
        const auto &row = rows[n - 148];
        EXPECT_EQ(row[0], std::to_string(n));
        EXPECT_EQ(row[1], velmio::tool::isoText(t));
        EXPECT_EQ(std::stod(row[2]), t);
        EXPECT_NEAR(std::stod(row[3]) * velmio::tool::kDegree, lat, 1e-15);
        EXPECT_NEAR(std::stod(row[4]) * velmio::tool::kDegree, lon, 1e-15);
        EXPECT_EQ(row[6], std::to_string(status));
    }
    NavigationClose(h);
    EXPECT_EQ(rows[1][1], "2004-05-02T15:02:28.000Z");

    r = tool("dump " + sq(path) + " ObservedDepths --profiles 75:76 --format json", scratch_);
    ASSERT_EQ(r.rc, 0) << r.err;
    h = ObservedDepthsOpenDir(velmio::tool::widen(path).c_str(), L"query", &error);
    ASSERT_NE(h, nullptr);
    double t, y, x, depth, extra;
    unsigned int status;
    ASSERT_EQ(ObservedDepthsRead(h, 76, 101, &t, &y, &x, &depth, &extra, &status), 0);
    ObservedDepthsClose(h);
    EXPECT_EQ(python(r.out,
                     "len(d['records']), d['records'][-1]['profile'], d['records'][-1]['beam'], "
                     "d['records'][-1]['depth'], d['records'][-1]['status_text']",
                     scratch_),
              "(202, 76, 101, " + velmio::tool::number(depth) + ", 'Accept')\n");

    EXPECT_EQ(tool("dump " + sq(path) + " Gyro --profiles 1:2", scratch_).rc, 2);
    EXPECT_EQ(tool("dump " + sq(path) + " Nonsense", scratch_).rc, 2);
    EXPECT_EQ(tool("dump " + sq(path) + " Gyro --records 9:x", scratch_).rc, 2);
    EXPECT_EQ(tool("dump " + sq(line("Surveyor", 123, 2)) + " Gyro", scratch_).rc, 1);
}

// Chunks never lose or repeat a row, whatever their size against the range.
TEST_F(Survey, ReadersCoverTheirRangeInAnyChunkSize) {
    const std::wstring path = velmio::tool::widen(line("Surveyor", 124, 1));
    for (const char *name : {"Gyro", "TPE"}) {
        const velmio::tool::Family &f = *velmio::tool::findFamily(name);
        int error = 0;
        TOVO_Sensor *h = f.open(path.c_str(), L"query", &error);
        ASSERT_NE(h, nullptr);
        auto reader = f.reader(h, 5, 20);
        std::vector<double> rows, firsts;
        while (reader->next(rows, 7) == 0 && !rows.empty())
            for (std::size_t r = 0; r < rows.size(); r += reader->columns().size()) firsts.push_back(rows[r]);
        const std::size_t perRecord = f.kind == velmio::tool::Kind::Profile ? 101 : 1;
        ASSERT_EQ(firsts.size(), 16 * perRecord) << name;
        for (std::size_t i = 0; i < firsts.size(); ++i) ASSERT_EQ(firsts[i], 5.0 + i / perRecord) << name;
        reader.reset();
        f.close(h);
    }
}

struct Dataset {
    GDALDatasetH h;
    ~Dataset() {
        if (h) GDALClose(h);
    }
};

TEST_F(Survey, ExportRoundTripsThroughGdal) {
    GDALAllRegister();
    for (const char *format : {"GPKG", "GeoJSON"}) {
        const std::string out = scratch_.file(std::string("tracks.") + format);
        const Result r = tool("export " + sq(root_) + " --to " + sq(out) + " --format " + format +
                               (std::string(format) == "GPKG" ? " --fixes" : ""),
                           scratch_);
        EXPECT_EQ(r.rc, 0) << format << r.err;
        // GeoJSON would read the times back as dates; the text is what was written.
        const char *asText[] = {"DATE_AS_STRING=YES", nullptr};
        Dataset ds{GDALOpenEx(out.c_str(), GDAL_OF_VECTOR, nullptr,
                              std::string(format) == "GeoJSON" ? asText : nullptr, nullptr)};
        ASSERT_NE(ds.h, nullptr) << format;
        // GeoJSON holds one layer, named after the file.
        OGRLayerH tracks = std::string(format) == "GPKG" ? GDALDatasetGetLayerByName(ds.h, "tracks")
                                                         : GDALDatasetGetLayer(ds.h, 0);
        ASSERT_NE(tracks, nullptr) << format;
        EXPECT_EQ(OGR_L_GetFeatureCount(tracks, TRUE), 16) << format;
        OGR_L_SetAttributeFilter(tracks, "vessel = 'Tender' AND day = '2004-124' AND line = 'Line002' AND "
                                         "segment = 'demo_0002.raw'");
        OGRFeatureH f = OGR_L_GetNextFeature(tracks);
        ASSERT_NE(f, nullptr) << format;
        EXPECT_STREQ(OGR_F_GetFieldAsString(f, OGR_F_GetFieldIndex(f, "start")), "2004-05-03T15:02:30.000Z");
        EXPECT_EQ(OGR_F_GetFieldAsInteger64(f, OGR_F_GetFieldIndex(f, "status")), 0);
        OGRGeometryH g = OGR_F_GetGeometryRef(f);
        ASSERT_EQ(OGR_G_GetPointCount(g), 150);
        // Fix 151 of the line, in degrees, longitude first.
        int error = 0;
        TOVO_Sensor *h = NavigationOpenDir(velmio::tool::widen(line("Tender", 124, 2)).c_str(), L"query", &error);
        double t, lat, lon, m;
        unsigned int status;
        ASSERT_EQ(NavigationRead(h, 151, &t, &lat, &lon, &m, &status), 0);
        NavigationClose(h);
        EXPECT_NEAR(OGR_G_GetX(g, 0), lon / velmio::tool::kDegree, 1e-9);
        EXPECT_NEAR(OGR_G_GetY(g, 0), lat / velmio::tool::kDegree, 1e-9);
        OGR_F_Destroy(f);
        if (std::string(format) == "GPKG") {
            EXPECT_EQ(OGR_L_GetFeatureCount(GDALDatasetGetLayerByName(ds.h, "fixes"), TRUE), 2400);
        }
    }
    EXPECT_EQ(tool("export " + sq(root_) + " --to " + sq(scratch_.file("x")) + " --format NoSuchDriver", scratch_).rc, 2);
    EXPECT_EQ(tool("export " + sq(root_), scratch_).rc, 2);
}

TEST_F(Survey, VesselShowsOffsetsAndDegreesAtATime) {
    const std::string file = root_ + "/VesselConfig/Tender.tvc";
    Result r = tool("vessel " + sq(file) + " --json --at '2004-124 00:00:00'", scratch_);
    ASSERT_EQ(r.rc, 0) << r.err;
    EXPECT_EQ(python(r.out,
                     "d['sensors']['Navigation']['offsetX'], d['sensors']['Gyro']['gyroOffset_deg'], "
                     "d['sensors']['Depth']['mountPitch_deg'], d['sensors']['Draft']['error']['code']",
                     scratch_),
              "(1.25, 0.4, 0.5, 5000422)\n");
    r = tool("vessel " + sq(file) + " --json --at '2004-100 00:00:00'", scratch_);
    EXPECT_EQ(python(r.out, "d['sensors']['Gyro']['error']['code']", scratch_), "5000413\n");
    EXPECT_EQ(tool("vessel " + sq(scratch_.file("none.tvc")), scratch_).rc, 1);
}

TEST_F(Survey, SvpConvertsBetweenFormatsWithoutLosingACast) {
    const std::string svp = line("Surveyor", 123, 1) + "/Svp";
    const Result shown = tool("svp " + sq(svp), scratch_);
    ASSERT_EQ(shown.rc, 0) << shown.err;
    ASSERT_EQ(tool("svp " + sq(svp) + " --to " + sq(scratch_.file("cast.chs")) + " --format chs", scratch_).rc, 0);
    ASSERT_EQ(tool("svp " + sq(scratch_.file("cast.chs")) + " --to " + sq(scratch_.file("back")) +
                       " --format native",
                   scratch_)
                  .rc,
              0);
    const Result back = tool("svp " + sq(scratch_.file("back")), scratch_);
    // The CHS form keeps minutes of position; the values and time come back.
    auto table = [](const std::string &s) { return s.substr(s.find('\n')); };
    EXPECT_EQ(table(back.out), table(shown.out));
    EXPECT_NE(shown.out.find("cast 1  2004-123 12:00:00.000"), std::string::npos) << shown.out;
    EXPECT_EQ(tool("svp " + sq(svp) + " --to x", scratch_).rc, 2);
    EXPECT_EQ(tool("svp " + sq(scratch_.file("missing")), scratch_).rc, 1);
}

// Every family of a line cut inside its last record, its time indexes lost
// (the side scan trace cut inside its last record too):
// check flags the line, repair salvages each sensor and check is clean after.
TEST_F(Survey, RepairSalvagesEveryFamilyOfAnInterruptedLine) {
    namespace fs = std::filesystem;
    const std::string copy = scratch_.file("line");
    fs::copy(line("Tender", 123, 1), copy);
    std::vector<fs::path> files(fs::directory_iterator(copy), fs::directory_iterator{});
    for (const fs::path &f : files) {
        const std::string name = f.filename().string();
        if (name.find("TmIdx") != std::string::npos)
            fs::remove(f);
        else if (name.find("LineSegments") == std::string::npos && name != "Svp")
            fs::resize_file(f, fs::file_size(f) - 3);
    }
    EXPECT_EQ(tool("check " + sq(copy), scratch_).rc, 1);
    const Result r = tool("repair " + sq(copy), scratch_);
    EXPECT_EQ(r.rc, 0) << r.err;
    std::size_t kept = 0;
    for (std::size_t at = r.out.find(": kept "); at != std::string::npos; at = r.out.find(": kept ", at + 1)) ++kept;
    EXPECT_EQ(kept, 21u) << r.out;
    EXPECT_EQ(tool("check " + sq(copy), scratch_).rc, 0);
}

TEST_F(Survey, HelpForEveryCommandAndTheProgressBarOnlyOnATerminal) {
    const Result a = tool("help info", scratch_), b = tool("info --help", scratch_);
    EXPECT_EQ(a.rc, 0);
    EXPECT_EQ(a.out, b.out);
    EXPECT_EQ(a.out.rfind("usage: velmio info PATH", 0), 0u) << a.out;
    EXPECT_EQ(tool("help nonsense", scratch_).rc, 2);
    EXPECT_EQ(tool("nonsense", scratch_).rc, 2);
    EXPECT_NE(tool("help --man", scratch_).out.find(".SH EXIT STATUS"), std::string::npos);

    const std::string day = "\"" + root_ + "/DemoProject/Surveyor/2004-124\"";
    EXPECT_EQ(tool("info " + day, scratch_).err, "");
    if (std::system("command -v script >/dev/null 2>&1") != 0) GTEST_SKIP() << "no script(1) to make a terminal";
    const std::string viaTerminal = "script -qec " + sq(std::string(VELMIO_TOOL) + " info " + day);
    EXPECT_NE(shell(viaTerminal + " /dev/null", scratch_).out.find("2/2 lines"), std::string::npos);
    EXPECT_EQ(shell("script -qec " + sq(std::string(VELMIO_TOOL) + " info --quiet " + day) + " /dev/null", scratch_)
                  .out.find("lines/s"),
              std::string::npos);
}

TEST(Progress, ShowsDoneTotalRateAndTimeLeft) {
    EXPECT_EQ(velmio::tool::progressText(25, 100, 5.0, 10), "[##        ] 25/100 lines  5.0 lines/s  15s left");
    EXPECT_EQ(velmio::tool::progressText(100, 100, 4.0, 4), "[####] 100/100 lines  25.0 lines/s");
    EXPECT_EQ(velmio::tool::progressText(0, 0, 0.0, 2), "[##] 0/0 lines  0.0 lines/s");
}

}  // namespace
