// The raw data index: an attribute data file whose name, type word, data
// version and attributes are fixed.
#include <velmio/data_file.hpp>

#include "datafile/value_codec.h"

namespace {

struct Declaration {
    dataType type;
    const wchar_t *name;
};

const Declaration kSummary[] = {{DT_INT, L"DataType"}};
const Declaration kData[] = {
    {DT_INT, L"RecordType"},
    {DT_UINT, L"RecordByteOffset"},
    {DT_INT, L"RecordLength"},
    {DT_INT, L"VELMProfileNumber"},
};

template <std::size_t N>
bool matches(const std::vector<VELMDataFile::Attribute> &attributes, const Declaration (&expected)[N]) {
    if (attributes.size() != N) return false;
    for (std::size_t i = 0; i < N; ++i)
        if (attributes[i].type != expected[i].type || attributes[i].name != MORVAUString(expected[i].name))
            return false;
    return true;
}

}  // namespace

const wchar_t *const VELMRawDataIndex::kFileName = L"RawDataIndex";

VELMRawDataIndex::VELMRawDataIndex(const MORVAUString &directory, AccessType access, long &status,
                                   const MORVAUString &description)
    : VELMDataFile(directory, MORVAUString(kFileName), description, kTypeWord, access, kDataVersion, status) {
    if (access == ACCESS_CREATE) {
        for (const Declaration &d : kSummary) {
            int rc = AddSummaryAttribute(d.type, MORVAUString(d.name));
            if (rc != 0 && status == 0) status = rc;
        }
        for (const Declaration &d : kData) {
            int rc = AddAttribute(d.type, MORVAUString(d.name));
            if (rc != 0 && status == 0) status = rc;
        }
    } else if (status == 0 && (!matches(summaryAttributes(), kSummary) || !matches(dataAttributes(), kData))) {
        // Another file under this name: its records cannot be read as ours.
        status = velmio::datafile::kCannotRead;
    }
}
