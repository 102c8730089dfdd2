// VELMAmplitudeIO: one side scan profile at a time, converted to bytes when
// the profile changes and served from memory for every sample of it.
#include <velmio/amplitude_io.hpp>

#include "sensors/amplitude_bytes.h"
#include "sensors/side_scan_access.h"

#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

using namespace velmio;

namespace {
constexpr long kNoMemory = 5000009;
constexpr long kNothingOpen = -2;
}  // namespace

struct VELMAmplitudeIO::Impl {
    const SideScanAccess *access = &sideScanFamilyAccess();
    unsigned int profile = 0;  // 0: none current
    unsigned int sample = 0;
    TOVO_Sensor *sensor = nullptr;
    double minTime = 0.0;
    double maxTime = 0.0;
    std::wstring path;
    unsigned int summaryStatus = 0;
    SideScanPing ping;  // sampleCount 0 until a profile with samples is read
    // Grown when a profile needs more room, never shrunk.
    std::vector<unsigned char> bytes;
    std::vector<std::int32_t> amplitudes;
    std::vector<std::uint32_t> detections;

    Impl() = default;
    // A copy shares no handle: an open original is opened again.
    Impl(const Impl &o)
        : access(o.access), profile(o.profile), sample(o.sample), minTime(o.minTime), maxTime(o.maxTime),
          path(o.path), summaryStatus(o.summaryStatus), ping(o.ping), bytes(o.bytes), amplitudes(o.amplitudes),
          detections(o.detections) {
        if (o.sensor && !openSensor()) forget();
    }
    Impl &operator=(const Impl &) = delete;
    ~Impl() { closeSensor(); }

    bool openSensor() {
        for (SideScanAccess::Opener opener : access->openers) {
            int error = 0;
            if (opener && (sensor = opener(path.c_str(), L"query", &error))) return true;
        }
        return false;
    }
    void closeSensor() {
        if (sensor) access->close(sensor);
        sensor = nullptr;
    }
    void forget() {
        profile = sample = 0;
        ping = SideScanPing();
        path.clear();
        minTime = maxTime = 0.0;
        summaryStatus = 0;
    }
    bool samplePresent() const { return ping.sampleCount != 0 && sample != 0 && sample - ping.firstSample < ping.sampleCount; }

    long loadProfile(unsigned int number);
};

long VELMAmplitudeIO::Impl::loadProfile(unsigned int number) {
    ping = SideScanPing();
    profile = 0;  // until it is read whole
    const std::uint32_t sonar = access->sonarType(sensor);
    SideScanPing header;
    if (sonar == kEM100 || sonar == kEM1000 || sonar == kELAC) {
        if (const int rc = access->readPing(sensor, number, &header)) return rc;
        try {
            if (amplitudes.size() < header.sampleCount) {
                amplitudes.resize(header.sampleCount);
                detections.resize(header.sampleCount);
                bytes.resize(header.sampleCount);
            }
        } catch (const std::bad_alloc &) {
            return kNoMemory;
        }
        if (const int rc = access->readSamples(sensor, number, amplitudes.data(), detections.data())) return rc;
        amplitudeBytes(sonar, header, amplitudes.data(), header.sampleCount, bytes.data());
        ping = header;
    }
    profile = number;
    return 0;
}

VELMAmplitudeIO::VELMAmplitudeIO() : d_(std::make_unique<Impl>()) {}

VELMAmplitudeIO::VELMAmplitudeIO(const VELMAmplitudeIO &other) : d_(std::make_unique<Impl>(*other.d_)) {}

VELMAmplitudeIO &VELMAmplitudeIO::operator=(const VELMAmplitudeIO &other) {
    if (this != &other) d_ = std::make_unique<Impl>(*other.d_);
    return *this;
}

VELMAmplitudeIO::~VELMAmplitudeIO() = default;

long VELMAmplitudeIO::open(const wchar_t *linePath) {
    close();
    if (!linePath) return -1;
    try {
        d_->path = linePath;
    } catch (const std::bad_alloc &) {
        return kNoMemory;
    }
    if (!d_->openSensor()) {
        d_->forget();
        return -1;
    }
    if (const int rc = d_->access->summary(d_->sensor, &d_->minTime, &d_->maxTime, &d_->summaryStatus)) {
        close();
        return rc;
    }
    return 0;
}

long VELMAmplitudeIO::read(unsigned int profile, unsigned int sample) {
    Impl &m = *d_;
    if (!m.sensor) return kNothingOpen;
    if (profile == m.profile && sample == m.sample) return 0;
    m.sample = sample;
    if (profile == m.profile) return 0;
    return m.loadProfile(profile);
}

unsigned char VELMAmplitudeIO::getAmplitude(long &status) const {
    status = 0;
    if (!d_->samplePresent()) {
        status = -1;
        return 0;
    }
    return d_->bytes[d_->sample - d_->ping.firstSample];
}

VELMAmplitudeIO::DetectType VELMAmplitudeIO::getDetectType() const {
    const Impl &m = *d_;
    if (!m.sensor || m.access->sonarType(m.sensor) == kNoDetection || !m.samplePresent()) return DETECT_NONE;
    return m.detections[m.sample - m.ping.firstSample] < 128 ? DETECT_WORD_LOW : DETECT_WORD_HIGH;
}

long VELMAmplitudeIO::close() {
    d_->closeSensor();
    d_->forget();
    return 0;
}

void VELMAmplitudeIOAccess::use(VELMAmplitudeIO &reader, const SideScanAccess &access) {
    reader.close();
    reader.d_->access = &access;
}
