// VELMAmplitudeIO: the amplitude of any side scan sample as a byte 0-255,
// whatever the sonar.
//
// open finds the line's side scan by trying the EM100, the EM1000 and the
// ELAC opener in turn; read makes a profile and a sample current, reading
// and converting the whole profile only when the profile changes; a new
// sample of the current profile is served from memory. The conversion goes
// by the sonar (docs/formats.md gives the three formulas): EM100 from the
// gain and the two attenuation settings of the ping, EM1000 from the sample
// in half decibels above -64 dB, ELAC the sample's low byte. Other side scan
// kinds have no amplitude bytes: read succeeds and getAmplitude reports no
// sample.
//
// A copy of an open reader opens the line again with a sensor handle of
// its own, so that the two read and close independently. The copy
// constructor and assignment throw std::bad_alloc when memory runs out;
// every other member reports failures through its result.
#ifndef VELMIO_AMPLITUDE_IO_HPP
#define VELMIO_AMPLITUDE_IO_HPP

#include <velmio/export.h>

#include <memory>

class VELMIO_API VELMAmplitudeIO {
public:
    // What the detection word of the current sample says.
    enum DetectType {
        DETECT_WORD_HIGH = 0,  // the word is 128 or more
        DETECT_WORD_LOW = 1,   // the word is below 128
        DETECT_NONE = 2,       // nothing open, no current sample, or a side scan without detection words
    };

    VELMAmplitudeIO();
    VELMAmplitudeIO(const VELMAmplitudeIO &other);
    VELMAmplitudeIO &operator=(const VELMAmplitudeIO &other);
    ~VELMAmplitudeIO();

    // Opens the side scan of the line directory for reading (closing what
    // was open) and reads its summary. 0; -1 when the line has none of the
    // three sonars' side scan; the summary's code when it cannot be read
    // (nothing stays open); 5000009 out of memory.
    long open(const wchar_t *linePath);
    // Makes sample `sample` of profile `profile` current (both as the file
    // numbers them). 0; -2 when nothing is open; the family's code when the
    // profile cannot be read (no profile is current afterwards); 5000009.
    long read(unsigned int profile, unsigned int sample);
    // The current sample's byte. status is 0, or -1 with the result 0 when
    // the profile has no samples, the sample number is 0 or lies outside
    // the profile.
    unsigned char getAmplitude(long &status) const;
    DetectType getDetectType() const;
    // Closes the side scan and forgets the line; always 0.
    long close();

private:
    struct Impl;
    std::unique_ptr<Impl> d_;
    friend struct VELMAmplitudeIOAccess;
};

#endif
