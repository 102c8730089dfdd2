// velmio export: the navigation tracks under a path as GIS features through
// GDAL/OGR, so any of its vector drivers can be the target: one line string
// per segment and, on request, one point per fix, in WGS84 degrees.
#include "command.h"
#include "families.h"
#include "format.h"
#include "survey.h"

#include <velmio/linestore.h>

#include <gdal.h>
#include <ogr_api.h>
#include <ogr_srs_api.h>

#include <cstdio>
#include <memory>

namespace velmio::tool {
namespace {

struct Layer {
    OGRLayerH layer = nullptr;
    bool addField(const char *name, OGRFieldType type) {
        OGRFieldDefnH field = OGR_Fld_Create(name, type);
        const bool ok = OGR_L_CreateField(layer, field, TRUE) == OGRERR_NONE;
        OGR_Fld_Destroy(field);
        return ok;
    }
};

struct Writer {
    GDALDatasetH dataset = nullptr;
    Layer tracks, fixes;
    int failures = 0;
    long long tracksWritten = 0;  // counted here: streaming drivers cannot count before closing
    ~Writer() {
        if (dataset) GDALClose(dataset);
    }
};

void setCommon(OGRFeatureH f, const LineName &n, const std::string &segment) {
    OGR_F_SetFieldString(f, OGR_F_GetFieldIndex(f, "project"), n.project.c_str());
    OGR_F_SetFieldString(f, OGR_F_GetFieldIndex(f, "vessel"), n.vessel.c_str());
    OGR_F_SetFieldString(f, OGR_F_GetFieldIndex(f, "day"), n.day.c_str());
    OGR_F_SetFieldString(f, OGR_F_GetFieldIndex(f, "line"), n.line.c_str());
    OGR_F_SetFieldString(f, OGR_F_GetFieldIndex(f, "segment"), segment.c_str());
}

bool create(OGRLayerH layer, OGRFeatureH f) {
    const bool ok = OGR_L_CreateFeature(layer, f) == OGRERR_NONE;
    OGR_F_Destroy(f);
    return ok;
}

// Writes the segments of one line; 0 or the library's code (-2: GDAL failed).
int exportLine(Writer &w, const std::string &path, bool withFixes) {
    const Family &nav = *findFamily("Navigation");
    const std::wstring line = widen(path);
    int error = 0;
    TOVO_Sensor *h = nav.open(line.c_str(), L"query", &error);
    if (!h) return error == kSensorMissing ? 0 : (error ? error : -1);
    const LineName name = lineName(path);
    Summary summary;
    int rc = nav.summarise(h, summary);
    for (unsigned int s = 1; rc == 0 && s <= summary.segments; ++s) {
        Segment seg;
        if ((rc = nav.segment(h, static_cast<int>(s), seg)) != 0) break;
        OGRGeometryH track = OGR_G_CreateGeometry(wkbLineString);
        auto reader = nav.reader(h, seg.first, seg.last);
        std::vector<double> rows;  // record, time, latitude, longitude, metres, status
        while ((rc = reader->next(rows, 65536)) == 0 && !rows.empty()) {
            for (std::size_t r = 0; r < rows.size(); r += 6) {
                const double lat = rows[r + 2] / kDegree, lon = rows[r + 3] / kDegree;
                OGR_G_AddPoint_2D(track, lon, lat);
                if (!withFixes) continue;
                OGRFeatureH f = OGR_F_Create(OGR_L_GetLayerDefn(w.fixes.layer));
                setCommon(f, name, seg.name);
                OGR_F_SetFieldInteger64(f, OGR_F_GetFieldIndex(f, "record"), static_cast<GIntBig>(rows[r]));
                OGR_F_SetFieldString(f, OGR_F_GetFieldIndex(f, "time"), isoText(rows[r + 1]).c_str());
                OGR_F_SetFieldDouble(f, OGR_F_GetFieldIndex(f, "metres"), rows[r + 4]);
                OGR_F_SetFieldInteger64(f, OGR_F_GetFieldIndex(f, "status"), static_cast<GIntBig>(rows[r + 5]));
                OGRGeometryH point = OGR_G_CreateGeometry(wkbPoint);
                OGR_G_SetPoint_2D(point, 0, lon, lat);
                OGR_F_SetGeometryDirectly(f, point);
                if (!create(w.fixes.layer, f)) rc = -2;
            }
        }
        OGRFeatureH f = OGR_F_Create(OGR_L_GetLayerDefn(w.tracks.layer));
        setCommon(f, name, seg.name);
        OGR_F_SetFieldString(f, OGR_F_GetFieldIndex(f, "start"), isoText(seg.minTime).c_str());
        OGR_F_SetFieldString(f, OGR_F_GetFieldIndex(f, "end"), isoText(seg.maxTime).c_str());
        OGR_F_SetFieldInteger64(f, OGR_F_GetFieldIndex(f, "status"), seg.status);
        OGR_F_SetFieldInteger64(f, OGR_F_GetFieldIndex(f, "fixes"), seg.last - seg.first + 1);
        OGR_F_SetGeometryDirectly(f, track);
        if (rc != 0)
            OGR_F_Destroy(f);
        else if (!create(w.tracks.layer, f))
            rc = -2;
        else
            ++w.tracksWritten;
    }
    nav.close(h);
    return rc;
}

OGRLayerH makeLayer(GDALDatasetH ds, const char *name, OGRwkbGeometryType type, const std::string &driver) {
    OGRSpatialReferenceH wgs84 = OSRNewSpatialReference(nullptr);
    OSRSetWellKnownGeogCS(wgs84, "WGS84");
    OSRSetAxisMappingStrategy(wgs84, OAMS_TRADITIONAL_GIS_ORDER);
    // CSV keeps geometries only when asked to.
    const char *csv[] = {"GEOMETRY=AS_WKT", nullptr};
    OGRLayerH layer = GDALDatasetCreateLayer(ds, name, wgs84, type, driver == "CSV" ? const_cast<char **>(csv) : nullptr);
    OSRRelease(wgs84);
    return layer;
}

bool gdalFailure(const std::string &what) {
    std::fprintf(stderr, "velmio export: %s: %s\n", what.c_str(), CPLGetLastErrorMsg());
    return false;
}

// A GDAL driver that can create vector data sets, or null.
GDALDriverH vectorDriver(const std::string &name) {
    GDALAllRegister();
    GDALDriverH driver = GDALGetDriverByName(name.c_str());
    if (!driver || !GDALGetMetadataItem(driver, GDAL_DCAP_VECTOR, nullptr) ||
        !GDALGetMetadataItem(driver, GDAL_DCAP_CREATE, nullptr))
        return nullptr;
    return driver;
}

bool open(Writer &w, const std::string &file, GDALDriverH driver, const std::string &driverName, bool withFixes) {
    w.dataset = GDALCreate(driver, file.c_str(), 0, 0, 0, GDT_Unknown, nullptr);
    if (!w.dataset) return gdalFailure(file);
    if (!(w.tracks.layer = makeLayer(w.dataset, "tracks", wkbLineString, driverName))) return gdalFailure("tracks");
    const std::pair<const char *, OGRFieldType> common[] = {
        {"project", OFTString}, {"vessel", OFTString}, {"day", OFTString}, {"line", OFTString}, {"segment", OFTString}};
    for (const auto &[name, type] : common)
        if (!w.tracks.addField(name, type)) return gdalFailure(name);
    for (const auto &[name, type] : {std::pair<const char *, OGRFieldType>{"start", OFTString},
                                     {"end", OFTString}, {"status", OFTInteger64}, {"fixes", OFTInteger64}})
        if (!w.tracks.addField(name, type)) return gdalFailure(name);
    if (!withFixes) return true;
    if (!(w.fixes.layer = makeLayer(w.dataset, "fixes", wkbPoint, driverName))) return gdalFailure("fixes");
    for (const auto &[name, type] : common)
        if (!w.fixes.addField(name, type)) return gdalFailure(name);
    for (const auto &[name, type] : {std::pair<const char *, OGRFieldType>{"record", OFTInteger64},
                                     {"time", OFTString}, {"metres", OFTReal}, {"status", OFTInteger64}})
        if (!w.fixes.addField(name, type)) return gdalFailure(name);
    return true;
}

}  // namespace

int runExport(const Args &args) {
    const Parsed p = parseArgs(args, {"--fixes"}, {"--to", "--format"});
    if (!p.error.empty() || p.positional.size() != 1 || !p.has("--to")) return usageError("export", p.error);
    const std::string &path = p.positional[0];
    if (!LineExists(widen(path).c_str())) return reportError(path.c_str(), 5000010);
    CPLSetErrorHandler(CPLQuietErrorHandler);
    Writer w;
    const std::string driverName = p.get("--format", "GPKG");
    GDALDriverH driver = vectorDriver(driverName);
    if (!driver)
        return usageError("export", "--format " + driverName + ": " +
                                        text("ToolExportNoDriver", "not a vector driver of GDAL that can write"));
    if (!open(w, p.get("--to"), driver, driverName, p.has("--fixes"))) return kExitData;
    // One transaction: GeoPackage writes a feature at a time otherwise.
    const bool transaction = GDALDatasetStartTransaction(w.dataset, FALSE) == OGRERR_NONE;
    std::size_t lines = 0;
    bool gdalFailed = false;
    forEachLine(path, [&](const std::string &line) {
        const int rc = exportLine(w, line, p.has("--fixes"));
        if (rc == -2) {
            gdalFailed = !gdalFailure(line);
            return false;
        }
        if (rc) w.failures += reportError((line + ": Navigation").c_str(), rc);
        ++lines;
        return true;
    });
    if (transaction && GDALDatasetCommitTransaction(w.dataset) != OGRERR_NONE) gdalFailed = !gdalFailure("commit");
    GDALClose(w.dataset);
    w.dataset = nullptr;
    if (gdalFailed) return kExitData;
    std::printf(text("ToolExportWritten", "%lld tracks of %zu lines written to %s").c_str(),
                w.tracksWritten, lines, p.get("--to").c_str());
    std::printf("\n");
    return w.failures ? kExitData : 0;
}

}  // namespace velmio::tool
