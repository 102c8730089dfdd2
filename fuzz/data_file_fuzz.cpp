// Fuzz target of the attribute data file: one input is a data file and its
// time index, opened for reading (and as a read-only copy), for update with
// summary edits, and for reading again after the update saved.
//
// Input: byte 0 picks the class (even: VELMDataFile "Attrs" of type word
// 77; odd: VELMRawDataIndex), bytes 1..3 are unused, then the big-endian
// length of the data file, the data file and the time index file.
#include "fuzz_support.h"

#include <velmio/data_file.hpp>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

using velmio::fuzz::Bytes;
using velmio::fuzz::Part;

namespace {

constexpr unsigned int kTypeWord = 77;
constexpr unsigned int kDataVersion = 3;
const wchar_t *const kFileName = L"Attrs";
constexpr unsigned kMaxRecords = 512;

bool isRawIndex(std::uint8_t selector) { return selector & 1; }

std::unique_ptr<VELMDataFile> openFile(const std::string &dir, bool rawIndex, AccessType access, long &status) {
    const MORVAUString directory(velmio::fuzz::widen(dir));
    if (rawIndex) return std::make_unique<VELMRawDataIndex>(directory, access, status);
    return std::make_unique<VELMDataFile>(directory, MORVAUString(kFileName), MORVAUString(L"fuzz"), kTypeWord,
                                          access, kDataVersion, status);
}

void readSummary(VELMDataFile &f) {
    f.GetNumberOfRecords();
    f.GetFileVersionNumber();
    f.GetDataVersionNumber();
    f.GetSummeryRecordSize();
    f.GetDataRecordSize();
    f.GetMinimumSummaryRecordSize();
    f.GetSummaryRecordStatus();
    f.GetMinTime();
    f.GetMaxTime();

    std::vector<MORVAUString> names;
    std::vector<dataType> types;
    std::vector<dataValue> values;
    std::vector<int> counts;
    if (f.GetAllSummaryAttributes(names, types, values, counts) != 0) return;
    VELMDataFile::FreeValues(types, values);
    // One by index (with the numbers just outside) and one by name; the
    // type of a name is that of its first declaration.
    const int n = static_cast<int>(f.GetNumberOfSummaryAttributes());
    for (int i = -1; i <= n; ++i) {
        dataValue v;
        int count = 0;
        if (f.GetSummaryAttribute(i, v, &count) == 0 && i >= 0 && i < static_cast<int>(types.size()))
            VELMDataFile::FreeValue(types[i], v);
    }
    for (std::size_t i = 0; i < names.size(); ++i) {
        const std::size_t first =
            static_cast<std::size_t>(std::find(names.begin(), names.end(), names[i]) - names.begin());
        dataValue v;
        int count = 0;
        if (f.GetSummaryAttribute(names[i], v, &count) == 0) VELMDataFile::FreeValue(types[first], v);
    }
}

// The current record's values through every accessor.
void readCurrentValues(VELMDataFile &f, const std::vector<MORVAUString> &names, const std::vector<dataType> &types) {
    for (unsigned i = 0; i <= names.size(); ++i) {
        dataValue v;
        int count = 0;
        if (f.GetDataAttribute(i, v, &count) == 0 && i < types.size()) VELMDataFile::FreeValue(types[i], v);
    }
    if (!names.empty()) {
        dataValue v;
        int count = 0;
        if (f.GetDataAttribute(names.back(), v, &count) == 0) {
            const std::size_t first =
                static_cast<std::size_t>(std::find(names.begin(), names.end(), names.back()) - names.begin());
            VELMDataFile::FreeValue(types[first], v);
        }
    }
    std::vector<MORVAUString> allNames;
    std::vector<dataType> allTypes;
    std::vector<dataValue> allValues;
    std::vector<int> allCounts;
    if (f.GetAllDataAttributes(allNames, allTypes, allValues, &allCounts) == 0)
        VELMDataFile::FreeValues(allTypes, allValues);
}

void readRecords(VELMDataFile &f) {
    std::vector<MORVAUString> names;
    std::vector<dataType> types;
    if (f.GetAttributesName(names, types) != 0) names.clear(), types.clear();
    f.GetNumberOfAttributes();
    for (const MORVAUString &name : names) {
        unsigned int index = 0;
        f.GetAttributeIndex(index, name);
    }

    const unsigned records = std::min(f.GetNumberOfRecords(), kMaxRecords);
    double time = 0;
    unsigned int status = 0;
    for (unsigned r = 0; r <= records + 1; ++r) {
        std::vector<dataValue> values;
        std::vector<int> counts;
        if (f.ReadRecord(time, status, values, counts, static_cast<int>(r)) != 0) continue;
        f.GetDataRecordStatus();
        readCurrentValues(f, names, types);
        f.FreeRecordValues(values);
    }
    // Sequentially from the first record, then the other overload.
    std::vector<dataValue> values;
    std::vector<int> counts;
    int number = 1;
    for (unsigned r = 0; r <= records && f.ReadRecord(time, status, values, counts, number) == 0; ++r) {
        f.FreeRecordValues(values);
        number = -999;
    }
    if (f.ReadRecord(time, status, values, 1) == 0) f.FreeRecordValues(values);
}

// Summary edits of an update: every attribute gets a new value of its type.
void editSummary(VELMDataFile &f) {
    std::vector<MORVAUString> names;
    std::vector<dataType> types;
    std::vector<dataValue> values;
    std::vector<int> counts;
    if (f.GetAllSummaryAttributes(names, types, values, counts) == 0) {
        VELMDataFile::FreeValues(types, values);
        alignas(8) unsigned char buffer[32] = {'a', 'b', 'c', 'd'};
        for (std::size_t i = 0; i < types.size(); ++i) {
            dataValue v;
            std::memset(&v, 0, sizeof v);
            int count = 1;
            if (VELMDataFile::IsArrayType(types[i])) {
                v.ptr = buffer;
                count = 2;
            } else {
                v.i = 7;
            }
            f.SetSummaryAttribute(static_cast<int>(i), v, count);
        }
    }
    f.SetSummaryRecordStatus(0x5u);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0) return 0;
    const bool rawIndex = isRawIndex(data[0]);
    const std::vector<Part> parts = velmio::fuzz::unpack(data, size, 2);
    const std::string dir = velmio::fuzz::freshDirectory();
    const std::string path = dir + "/" + (rawIndex ? "RawDataIndex" : "Attrs");
    velmio::fuzz::writeFile(path, parts[0]);
    velmio::fuzz::writeFile(path + "TmIdx", parts[1]);

    // A failed open still gives an object, which must refuse safely.
    long status = 0;
    {
        auto f = openFile(dir, rawIndex, ACCESS_READ, status);
        readSummary(*f);
        readRecords(*f);
        VELMDataFile copy(*f);
        readRecords(copy);
    }
    {
        auto f = openFile(dir, rawIndex, ACCESS_UPDATE, status);
        readSummary(*f);
        readRecords(*f);
        editSummary(*f);
    }
    {
        auto f = openFile(dir, rawIndex, ACCESS_READ, status);
        readSummary(*f);
        readRecords(*f);
    }
    return 0;
}

// ---- seeds ---------------------------------------------------------------

namespace {

dataValue scalar(std::int32_t i) {
    dataValue v;
    std::memset(&v, 0, sizeof v);
    v.i = i;
    return v;
}

dataValue pointer(const void *p) {
    dataValue v;
    std::memset(&v, 0, sizeof v);
    v.ptr = const_cast<void *>(p);
    return v;
}

// A value of each type; arrays hold `count` elements from fixed buffers.
struct Values {
    std::int32_t ints[3] = {-1, 2, 0x7FFFFFFF};
    std::uint32_t uints[3] = {1, 0xFFFFFFFFu, 3};
    float floats[3] = {0.5f, -1.25f, 3.0f};
    double doubles[3] = {1e-3, -2.5, 1e300};
    char chars[4] = "xyz";
    std::int16_t shorts[3] = {-7, 8, 9};
    std::uint16_t ushorts[3] = {7, 65535, 9};
    unsigned char opaque[3] = {0x00, 0xFF, 0x80};

    dataValue of(dataType t, int salt) const {
        dataValue v = scalar(salt);
        switch (t) {
        case DT_FLOAT: v.f = 1.5f * salt; break;
        case DT_DOUBLE: v.d = 0.25 * salt; break;
        case DT_CHAR: v.c = static_cast<char>('a' + salt); break;
        case DT_SHORT: v.s = static_cast<std::int16_t>(-salt); break;
        case DT_USHORT: v.us = static_cast<std::uint16_t>(salt); break;
        case DT_INT_ARRAY: v = pointer(ints); break;
        case DT_UINT_ARRAY: v = pointer(uints); break;
        case DT_FLOAT_ARRAY: v = pointer(floats); break;
        case DT_DOUBLE_ARRAY: v = pointer(doubles); break;
        case DT_CHAR_ARRAY:
        case DT_STRING: v = pointer(chars); break;
        case DT_SHORT_ARRAY: v = pointer(shorts); break;
        case DT_USHORT_ARRAY: v = pointer(ushorts); break;
        case DT_OPAQUE: v = pointer(opaque); break;
        default: break;
        }
        return v;
    }
};

const char *const kTypeNames[16] = {"int", "uint", "float", "double", "char", "short", "ushort", "ints",
                                    "uints", "floats", "doubles", "chars", "shorts", "ushorts", "string", "opaque"};

Bytes packFile(const std::string &path, std::uint8_t selector) {
    return velmio::fuzz::pack({selector}, {velmio::fuzz::requireFile(path), velmio::fuzz::requireFile(path + "TmIdx")});
}

// Every type as a summary and as a data attribute (lastType DT_OPAQUE), or
// only the scalar types (DT_USHORT) for fixed-size records.
Bytes attributeFile(dataType lastType) {
    const std::string dir = velmio::fuzz::freshDirectory();
    long status = 0;
    {
        VELMDataFile f(MORVAUString(velmio::fuzz::widen(dir)), MORVAUString(kFileName), MORVAUString(L"seed file"),
                       kTypeWord, ACCESS_CREATE, kDataVersion, status);
        const Values values;
        for (int t = DT_INT; t <= lastType; ++t) {
            f.AddSummaryAttribute(static_cast<dataType>(t), MORVAUString::fromUtf8(kTypeNames[t]));
            f.AddAttribute(static_cast<dataType>(t), MORVAUString::fromUtf8(kTypeNames[t]));
        }
        for (int t = DT_INT; t <= lastType; ++t)
            f.SetSummaryAttribute(t, values.of(static_cast<dataType>(t), t), VELMDataFile::IsArrayType(static_cast<dataType>(t)) ? 3 : 1);
        f.SetSummaryRecordStatus(0x1u);
        for (int r = 0; r < 3; ++r) {
            std::vector<dataValue> record;
            std::vector<int> counts;
            for (int t = DT_INT; t <= lastType; ++t) {
                record.push_back(values.of(static_cast<dataType>(t), r + t));
                // The second record has empty arrays.
                counts.push_back(VELMDataFile::IsArrayType(static_cast<dataType>(t)) ? (r == 1 ? 0 : 1 + r) : 1);
            }
            f.WriteRecord(1000.0 + r * 0.125, static_cast<unsigned>(r) << 30, record, counts);
        }
    }
    return packFile(dir + "/Attrs", 0);
}

Bytes rawIndexFile() {
    const std::string dir = velmio::fuzz::freshDirectory();
    long status = 0;
    {
        VELMRawDataIndex f(MORVAUString(velmio::fuzz::widen(dir)), ACCESS_CREATE, status, MORVAUString(L"raw"));
        f.SetSummaryAttribute(0, scalar(3), 1);
        for (int r = 0; r < 3; ++r)
            f.WriteRecord(2000.0 + r, 0, {scalar(r), scalar(r * 100), scalar(100), scalar(r + 1)}, {1, 1, 1, 1});
    }
    return packFile(dir + "/RawDataIndex", 1);
}

}  // namespace

std::vector<std::vector<std::uint8_t>> velmioFuzzSeeds() {
    return {attributeFile(DT_OPAQUE), attributeFile(DT_USHORT), rawIndexFile()};
}
