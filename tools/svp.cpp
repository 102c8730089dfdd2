// velmio svp: the casts of a sound velocity file in any known format, and
// conversion between the formats through the shared model.
#include "command.h"
#include "format.h"

#include <velmio/svp.hpp>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

namespace velmio::tool {
namespace {

std::unique_ptr<SvpFile> makeFormat(const std::string &name, const MORVAUString &path) {
    if (name == "native") return std::make_unique<VelmSvpFile>(path);
    if (name == "chs") return std::make_unique<CHSSvpFile>(path);
    if (name == "dat") return std::make_unique<RANSvpFile_Dat>(path);
    if (name == "edf") return std::make_unique<RANSvpFile_Edf>(path);
    return nullptr;
}

}  // namespace

int runSvp(const Args &args) {
    const Parsed p = parseArgs(args, {}, {"--to", "--format", "--from"});
    if (!p.error.empty() || p.positional.size() != 1 || p.has("--to") != p.has("--format"))
        return usageError("svp", p.error);
    const std::string &file = p.positional[0];
    if (std::FILE *probe = std::fopen(file.c_str(), "rb")) {
        std::fclose(probe);
    } else {
        return reportError(file.c_str(), SvpFile::kCannotOpen);
    }
    int status = 0;
    // Detection reads the first rows; --from names the format when they mislead it.
    std::unique_ptr<SvpFile> in = p.has("--from") ? makeFormat(p.get("--from"), MORVAUString(widen(file)))
                                                  : std::unique_ptr<SvpFile>(SvpFile::GetSvpFormat(MORVAUString(widen(file)), status));
    if (!in && p.has("--from")) return usageError("svp", "--from " + p.get("--from"));
    if (!in) return reportError(file.c_str(), status ? status : SvpFile::kCannotOpen);
    if (int rc = in->ReadInData()) return reportError(file.c_str(), rc);

    if (p.has("--to")) {
        std::unique_ptr<SvpFile> out = makeFormat(p.get("--format"), MORVAUString(widen(p.get("--to"))));
        if (!out) return usageError("svp", "--format " + p.get("--format"));
        for (const SvpFile::SvpSections *s = in->GetSections(); s; s = s->next) {
            if (s->state == SvpFile::kRemoved) continue;
            if (int rc = out->SetSvpSection(s->time, s->latitude, s->longitude)) return reportError("svp", rc);
            for (const SvpFile::SvpValue *v = s->values; v; v = v->next)
                if (v->state != SvpFile::kRemoved)
                    if (int rc = out->AddSvpValue(s->time, v->depth, v->velocity)) return reportError("svp", rc);
        }
        if (out->UpdateDataFile() != 0) {
            std::fprintf(stderr, "velmio: %s: %s\n", p.get("--to").c_str(), narrow(out->GetErrorText()).c_str());
            return kExitData;
        }
        std::printf(text("ToolSvpWritten", "written: %s").c_str(), p.get("--to").c_str());
        std::printf("\n");
        return 0;
    }
    int casts = 0;
    for (const SvpFile::SvpSections *s = in->GetSections(); s; s = s->next) {
        if (s->state == SvpFile::kRemoved) continue;
        ++casts;
        std::printf("cast %d  %s  lat %s  lon %s\n", casts, dayOfYearText(s->time).c_str(),
                    s->latitude.toUtf8().c_str(), s->longitude.toUtf8().c_str());
        std::printf("  %10s %12s\n", "depth m", "velocity m/s");
        for (const SvpFile::SvpValue *v = s->values; v; v = v->next)
            if (v->state != SvpFile::kRemoved) std::printf("  %10.2f %12.2f\n", v->depth, v->velocity);
    }
    std::printf("%d casts\n", casts);
    return 0;
}

}  // namespace velmio::tool
