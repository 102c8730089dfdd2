// Processed and observed depth status words: translation and names.
#include <velmio/utils.hpp>

#include "foundation/wide_copy.h"

namespace VELMIOUtils {
namespace {

constexpr unsigned int kSign = 0x80000000u;
constexpr unsigned int bit(int n) { return 1u << n; }

struct Row {
    unsigned int from;
    unsigned int to;
};

// Sign bit set: the first matching row gives the starting word; the extra
// bits are added independently of the sign. The row orders of the two
// directions differ on purpose, so they are not inverse for several bits.
unsigned int translate(unsigned int status, const Row *rows, int rowCount, const Row *extras, int extraCount) {
    unsigned int out = 0;
    if (status & kSign) {
        out = kSign;
        for (int i = 0; i < rowCount; ++i) {
            if (status & rows[i].from) {
                out = rows[i].to;
                break;
            }
        }
    }
    for (int i = 0; i < extraCount; ++i)
        if (status & extras[i].from) out |= extras[i].to;
    return out;
}

struct Text {
    unsigned int bit;
    const wchar_t *text;
};

const wchar_t *firstText(unsigned int status, const Text *table, int count) {
    for (int i = 0; i < count; ++i)
        if (status & table[i].bit) return table[i].text;
    return nullptr;
}

const Text kProcessedRejected[] = {
    {bit(30), L"Reject (Subset - Hydrographer)"}, {bit(29), L"Reject (Conversion - Disabled Beam)"},
    {bit(28), L"Reject (Conversion - Depth Filter)"}, {bit(27), L"Reject (TPU Filter)"},
    {bit(24), L"Reject (Swath Editor)"}, {bit(20), L"Reject (Surface Cleaning)"},
    {bit(18), L"Reject (CUBE Filter)"},
};
const Text kProcessedAccepted[] = {
    {bit(26), L"Outstanding"}, {bit(25), L"Examined"}, {bit(21), L"Decimated"}, {bit(19), L"Designated"},
};
// "Surface cleaning" with a small c is how the observed table spells it.
const Text kObservedRejected[] = {
    {bit(30), L"Reject (Swath Editor)"}, {bit(29), L"Reject (Conversion - Disabled Beam)"},
    {bit(28), L"Reject (Conversion - Depth Filter)"}, {bit(22), L"Reject (Subset - Hydrographer)"},
    {bit(23), L"Reject (TPU Filter)"}, {bit(21), L"Reject (Surface cleaning)"},
    {bit(19), L"Reject (CUBE Filter)"},
};
const Text kObservedAccepted[] = {{bit(20), L"Designated"}};

template <int R, int A>
void statusText(unsigned int status, wchar_t *buffer, std::size_t capacity, const Text (&rejected)[R],
                const Text (&accepted)[A]) {
    if (!buffer) return;
    const wchar_t *text = (status & kSign) ? firstText(status, rejected, R) : firstText(status, accepted, A);
    if (!(status & kSign) && !text) text = L"Accept";
    if (text) velmio::copyBounded(buffer, capacity, text);
}

}  // namespace

unsigned int processedStatusToObservedStatus(unsigned int status) {
    static const Row rows[] = {{bit(30), 0x80400000u}, {bit(29), 0xA0000000u}, {bit(28), 0x90000000u},
                               {bit(27), 0x80800000u}, {bit(24), 0xC0000000u}, {bit(20), 0x80200000u},
                               {bit(18), 0x80080000u}};
    static const Row extras[] = {
        {bit(21), 0x02000000u}, {bit(19), 0x00100000u}, {bit(23), 0x08000000u}, {bit(22), 0x04000000u}};
    return translate(status, rows, 7, extras, 4);
}

unsigned int observedStatusToProcessedStatus(unsigned int status) {
    static const Row rows[] = {{bit(30), 0x81000000u}, {bit(29), 0xA0000000u}, {bit(28), 0x90000000u},
                               {bit(22), 0xC0000000u}, {bit(23), 0x88000000u}, {bit(21), 0x80100000u},
                               {bit(19), 0x80040000u}};
    static const Row extras[] = {{bit(27), 0x00800000u}, {bit(26), 0x00400000u}, {bit(20), 0x00080000u}};
    return translate(status, rows, 7, extras, 3);
}

void processedStatusToString(unsigned int status, wchar_t *buffer, std::size_t capacity) {
    statusText(status, buffer, capacity, kProcessedRejected, kProcessedAccepted);
}
void observedStatusToString(unsigned int status, wchar_t *buffer, std::size_t capacity) {
    statusText(status, buffer, capacity, kObservedRejected, kObservedAccepted);
}
void processedStatusToString(unsigned int status, wchar_t *buffer) {
    processedStatusToString(status, buffer, kStatusTextLength);
}
void observedStatusToString(unsigned int status, wchar_t *buffer) {
    observedStatusToString(status, buffer, kStatusTextLength);
}

}  // namespace VELMIOUtils
