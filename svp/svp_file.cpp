// The profile model shared by every format, the format detection and the
// replacement of a file on writing.
#include <velmio/svp.hpp>

#include "foundation/utf8.h"
#include "platform/files.h"
#include "platform/stdio_file.h"
#include "platform/system_error.h"
#include "svp/svp_text.h"

#include <cmath>
#include <cstdlib>
#include <memory>

using velmio::svp::LineReader;

// ---- SvpSections ----

double SvpFile::SvpSections::GetLatitude() const { return LLDGStringToDouble(latitude); }
double SvpFile::SvpSections::GetLongitude() const { return LLDGStringToDouble(longitude); }

double SvpFile::LLDGStringToDouble(const MORVAUString &text) {
    std::string t = text.toUtf8();
    const bool negative = t.find('-') != std::string::npos;
    for (char &c : t)
        if (c == ':' || c == '-') c = ' ';
    std::vector<std::string> fields = velmio::svp::splitWords(t);
    double parts[3] = {0.0, 0.0, 0.0};
    for (std::size_t i = 0; i < fields.size() && i < 3; ++i)
        if (!velmio::svp::parseNumber(fields[i], parts[i])) parts[i] = 0.0;
    double value = std::fabs(parts[0]) + (std::fabs(parts[1]) + std::fabs(parts[2]) / 60.0) / 60.0;
    return negative ? -value : value;
}

// ---- life cycle ----

struct SvpFile::Impl {
    MORVAUString errorText_;
    MORVAUString fileName_;
    SvpSections *sections_ = nullptr;
    double epsilon_ = kDefaultEpsilon;
    SvpSections *tail_ = nullptr;  // sections are only ever appended
};

SvpFile::SvpFile() : d_(new Impl) {}

SvpFile::SvpFile(const MORVAUString &fileName) : d_(new Impl) { d_->fileName_ = fileName; }

SvpFile::SvpFile(const SvpFile &other) : d_(new Impl) { CopyFrom(other); }

SvpFile &SvpFile::operator=(const SvpFile &other) {
    if (this != &other) {
        // Should memory run out, the model is left empty (CopyFrom clears).
        ClearSections();
        CopyFrom(other);
    }
    return *this;
}

SvpFile::~SvpFile() { ClearSections(); }

const SvpFile::SvpSections *SvpFile::GetSections() const { return d_->sections_; }
const wchar_t *SvpFile::GetErrorText() const { return d_->errorText_.c_str(); }
const MORVAUString &SvpFile::FileName() const { return d_->fileName_; }

void SvpFile::CopyFrom(const SvpFile &other) {
    d_->errorText_ = other.d_->errorText_;
    d_->fileName_ = other.d_->fileName_;
    d_->epsilon_ = other.d_->epsilon_;
    try {
        for (const SvpSections *s = other.d_->sections_; s; s = s->next) {
            SvpSections *copy = AppendSection(s->time, s->latitude, s->longitude);
            copy->state = s->state;
            SvpValue *tail = nullptr;
            for (const SvpValue *v = s->values; v; v = v->next) {
                tail = AppendValue(copy, v->depth, v->velocity, tail);
                tail->state = v->state;
            }
        }
    } catch (...) {
        ClearSections();
        throw;
    }
}

void SvpFile::ClearSections() {
    d_->tail_ = nullptr;
    while (d_->sections_) {
        SvpSections *s = d_->sections_;
        d_->sections_ = s->next;
        while (s->values) {
            SvpValue *v = s->values;
            s->values = v->next;
            delete v;
        }
        delete s;
    }
}

SvpFile::SvpSections *SvpFile::AppendSection(double time, const MORVAUString &latitude,
                                             const MORVAUString &longitude) {
    auto *section = new SvpSections{time, latitude, longitude, kCreated, nullptr, nullptr};
    if (d_->tail_)
        d_->tail_->next = section;
    else
        d_->sections_ = section;
    d_->tail_ = section;
    return section;
}

SvpFile::SvpValue *SvpFile::AppendValue(SvpSections *section, double depth, double velocity, SvpValue *after) {
    auto *value = new SvpValue{velocity, depth, kCreated, nullptr};
    if (!after) {
        after = section->values;
        while (after && after->next) after = after->next;
    }
    if (after)
        after->next = value;
    else
        section->values = value;
    return value;
}

int SvpFile::LiveValueCount(const SvpSections *section) {
    int count = 0;
    for (const SvpValue *v = section->values; v; v = v->next)
        if (v->state != kRemoved) ++count;
    return count;
}

// ---- lookups ----

SvpFile::SvpSections *SvpFile::FindSection(double time) const {
    for (SvpSections *s = d_->sections_; s; s = s->next)
        if (s->time == time) return s;
    return nullptr;
}

SvpFile::SvpValue *SvpFile::FindValue(const SvpSections *section, double depth) const {
    for (SvpValue *v = section->values; v; v = v->next)
        if (std::fabs(v->depth - depth) <= d_->epsilon_) return v;
    return nullptr;
}

int SvpFile::GetSvpValue(double time, double depth, double &velocity) const {
    const SvpSections *s = FindSection(time);
    if (!s) return kNoSuchSection;
    if (s->state == kRemoved) return kSectionRemoved;
    const SvpValue *v = FindValue(s, depth);
    if (!v) return kNoSuchDepth;
    if (v->state == kRemoved) return kValueRemoved;
    velocity = v->velocity;
    return 0;
}

int SvpFile::SetSvpValue(double time, double depth, double velocity) {
    SvpSections *s = FindSection(time);
    if (!s) return kNoSuchSection;
    if (s->state == kRemoved) return kSectionRemoved;
    SvpValue *v = FindValue(s, depth);
    if (!v) return kNoSuchDepth;
    if (v->state == kRemoved) return kValueRemoved;
    v->velocity = velocity;
    return 0;
}

int SvpFile::RemoveSvpValue(double time, double depth) {
    SvpSections *s = FindSection(time);
    if (!s) return kNoSuchSection;
    SvpValue *v = FindValue(s, depth);
    if (!v) return kNoSuchDepth;
    v->state = kRemoved;
    return 0;
}

int SvpFile::RemoveSection(double time) {
    SvpSections *s = FindSection(time);
    if (!s) return kNoSuchSection;
    s->state = kRemoved;
    return 0;
}

int SvpFile::SetSvpSection(double time, const MORVAUString &latitude, const MORVAUString &longitude) {
    try {
        SvpSections *s = FindSection(time);
        if (!s) {
            AppendSection(time, latitude, longitude);
            return 0;
        }
        s->latitude = latitude;
        s->longitude = longitude;
        if (s->state == kRemoved) {
            // The values went with the section; a revived cast starts empty.
            while (s->values) {
                SvpValue *v = s->values;
                s->values = v->next;
                delete v;
            }
            s->state = kCreated;
        }
        return 0;
    } catch (...) {
        return kOutOfMemory;
    }
}

int SvpFile::GetSvpSection(double time, MORVAUString &latitude, MORVAUString &longitude) const {
    const SvpSections *s = FindSection(time);
    if (!s) return kNoSuchSection;
    if (s->state == kRemoved) return kSectionRemoved;
    try {
        latitude = s->latitude;
        longitude = s->longitude;
    } catch (...) {
        return kOutOfMemory;
    }
    return 0;
}

int SvpFile::AddSvpValue(double time, double depth, double velocity) {
    SvpSections *s = FindSection(time);
    if (!s) return kNoSuchSection;
    if (s->state == kRemoved) return kSectionRemoved;
    if (SvpValue *v = FindValue(s, depth)) {
        v->velocity = velocity;
        v->state = kCreated;
        return 0;
    }
    try {
        AppendValue(s, depth, velocity);
    } catch (...) {
        return kOutOfMemory;
    }
    return 0;
}

int SvpFile::SetFileName(const MORVAUString &fileName) {
    try {
        d_->fileName_ = fileName;
    } catch (...) {
        return kOutOfMemory;
    }
    return 0;
}

int SvpFile::GetFileName(MORVAUString &fileName) const {
    try {
        fileName = d_->fileName_;
    } catch (...) {
        return kOutOfMemory;
    }
    return 0;
}

int SvpFile::SetEpsilon(double tolerance) {
    if (!std::isfinite(tolerance) || tolerance < 0.0) return -1;
    d_->epsilon_ = tolerance;
    return 0;
}

double SvpFile::GetEpsilon() const { return d_->epsilon_; }

// ---- writing ----

void SvpFile::SetErrorText(int errnum) {
    try {
        d_->errorText_ = MORVAUString(velmio::fromUtf8(velmio::platform::systemMessage(errnum)));
    } catch (...) {
        // Keeping the text is best effort; the -1 already tells the failure.
    }
}

int SvpFile::ReplaceFile(const std::string &text) {
    int error = velmio::svp::replaceFile(d_->fileName_.str(), text);
    if (error == 0) return 0;
    SetErrorText(error);
    return -1;
}

// ---- detection ----

namespace {
struct FileCloser {
    void operator()(std::FILE *f) const {
        if (f) velmio::platform::closeFile(f);
    }
};
using File = std::unique_ptr<std::FILE, FileCloser>;
}  // namespace

bool SvpFile::isRANEdfFormat(const MORVAUString &fileName) { return fileName.endsWithIgnoreCase(L".edf"); }

bool SvpFile::isCHSFormat(const MORVAUString &fileName) {
    File in(velmio::platform::openFile(fileName.c_str(), "rb"));
    bool failed = false;
    return in && velmio::platform::readChar(in.get(), failed) == '(';
}

bool SvpFile::isRANDatFormat(const MORVAUString &fileName) {
    try {
        File in(velmio::platform::openFile(fileName.c_str(), "rb"));
        if (!in) return false;
        LineReader lines(in.get());
        std::string line;
        if (!lines.next(line) || !lines.next(line)) return false;
        RANSvpFile_Dat::DataLine data;
        return RANSvpFile_Dat::DecodeData(line, data);
    } catch (...) {
        return false;
    }
}

SvpFile *SvpFile::GetSvpFormat(const MORVAUString &fileName, int &status) {
    status = 0;
    try {
        if (isRANEdfFormat(fileName)) return new RANSvpFile_Edf(fileName);
        if (isCHSFormat(fileName)) return new CHSSvpFile(fileName);
        if (isRANDatFormat(fileName)) return new RANSvpFile_Dat(fileName);
        return new VelmSvpFile(fileName);
    } catch (...) {
        status = kOutOfMemory;
        return nullptr;
    }
}
