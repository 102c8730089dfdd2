// The attribute data file: declaring, querying and setting attributes.
#include <velmio/data_file.hpp>

#include "datafile/data_file_state.h"
#include "datafile/value_codec.h"

#include <cstdlib>
#include <new>

using namespace velmio::datafile;

unsigned int VELMDataFile::GetNumberOfAttributes() { return static_cast<unsigned int>(d_->dataAttributes_.size()); }
unsigned int VELMDataFile::GetNumberOfSummaryAttributes() {
    return static_cast<unsigned int>(d_->summaryAttributes_.size());
}
unsigned int VELMDataFile::GetNumberOfRecords() { return d_->numberOfRecords_; }
unsigned int VELMDataFile::GetFileVersionNumber() { return d_->fileVersion_; }
unsigned int VELMDataFile::GetDataVersionNumber() { return d_->dataVersion_; }
unsigned int VELMDataFile::GetSummeryRecordSize() { return d_->summaryRecordSize_; }
unsigned int VELMDataFile::GetDataRecordSize() { return d_->dataRecordSize_; }
unsigned int VELMDataFile::GetSummaryRecordStatus() { return d_->summaryStatus_; }
unsigned int VELMDataFile::GetDataRecordStatus() { return d_->dataStatus_; }
double VELMDataFile::GetMinTime() { return d_->minTime_; }
double VELMDataFile::GetMaxTime() { return d_->maxTime_; }

unsigned int VELMDataFile::GetMinimumSummaryRecordSize() {
    return 52 + 4 + static_cast<unsigned int>(pad4(d_->description_.toUtf8().size()));
}

// ---- freeing what was handed out ----

void VELMDataFile::FreeValue(dataType type, dataValue &value) {
    if (!IsArrayType(type)) return;
    std::free(value.ptr);
    value.ptr = nullptr;
}

void VELMDataFile::FreeValues(const std::vector<dataType> &types, std::vector<dataValue> &values) {
    for (std::size_t i = 0; i < types.size() && i < values.size(); ++i) FreeValue(types[i], values[i]);
}

void VELMDataFile::FreeRecordValues(std::vector<dataValue> &values) {
    for (std::size_t i = 0; i < d_->dataAttributes_.size() && i < values.size(); ++i)
        FreeValue(d_->dataAttributes_[i].type, values[i]);
}

// ---- lookups ----

int VELMDataFile::summaryIndex(int index) const {
    const int count = static_cast<int>(d_->summaryAttributes_.size());
    if (index < 0 || index > count) return kBadArgument;
    // An index equal to the count passes the test above on purpose and is
    // caught by the list's own bounds check.
    if (index == count) return kNoSuchAttribute;
    return 0;
}

int VELMDataFile::findSummary(const MORVAUString &name) const {
    for (std::size_t i = 0; i < d_->summaryAttributes_.size(); ++i)
        if (d_->summaryAttributes_[i].name == name) return static_cast<int>(i);
    return -1;
}

int VELMDataFile::findData(const MORVAUString &name) const {
    for (std::size_t i = 0; i < d_->dataAttributes_.size(); ++i)
        if (d_->dataAttributes_[i].name == name) return static_cast<int>(i);
    return -1;
}

// ---- summary attributes ----

int VELMDataFile::GetSummaryAttribute(int index, dataValue &value, int *count) {
    int rc = summaryIndex(index);
    if (rc != 0) return rc;
    dataValue copy;
    if (!copyValue(d_->summaryAttributes_[index].type, d_->summaryValues_[index], d_->summaryCounts_[index], copy))
        return kNoMemory;
    value = copy;
    if (count) *count = d_->summaryCounts_[index];
    return 0;
}

int VELMDataFile::GetSummaryAttribute(const MORVAUString &name, dataValue &value, int *count) {
    int index = findSummary(name);
    if (index < 0) return kNoSuchAttribute;
    return GetSummaryAttribute(index, value, count);
}

// Fresh copies of a list of attributes with their values: all of them, or
// nothing and 5000009 when memory runs out.
int VELMDataFile::CopyAttributes(const std::vector<Attribute> &attributes, const std::vector<dataValue> &values,
                                 const std::vector<int> &counts, std::vector<MORVAUString> &outNames,
                                 std::vector<dataType> &outTypes, std::vector<dataValue> &outValues,
                                 std::vector<int> *outCounts) {
    std::vector<dataValue> copies;
    try {
        std::vector<MORVAUString> names;
        std::vector<dataType> types;
        std::vector<int> countCopies(counts);
        copies.reserve(attributes.size());
        for (std::size_t i = 0; i < attributes.size(); ++i) {
            names.push_back(attributes[i].name);
            types.push_back(attributes[i].type);
            dataValue copy;
            if (!copyValue(attributes[i].type, values[i], counts[i], copy)) {
                FreeValues(types, copies);
                return kNoMemory;
            }
            copies.push_back(copy);
        }
        outNames.swap(names);
        outTypes.swap(types);
        outValues.swap(copies);
        if (outCounts) outCounts->swap(countCopies);
        return 0;
    } catch (const std::bad_alloc &) {
        for (std::size_t i = 0; i < copies.size(); ++i) FreeValue(attributes[i].type, copies[i]);
        return kNoMemory;
    }
}

int VELMDataFile::GetAllSummaryAttributes(std::vector<MORVAUString> &names, std::vector<dataType> &types,
                                          std::vector<dataValue> &values, std::vector<int> &counts) {
    return CopyAttributes(d_->summaryAttributes_, d_->summaryValues_, d_->summaryCounts_, names, types, values, &counts);
}

int VELMDataFile::GetAllSummaryAttributes(std::vector<MORVAUString> &names, std::vector<dataType> &types,
                                          std::vector<dataValue> &values, int *counts) {
    try {
        std::vector<int> all;
        int rc = GetAllSummaryAttributes(names, types, values, all);
        if (rc == 0 && counts)
            for (std::size_t i = 0; i < all.size(); ++i) counts[i] = all[i];
        return rc;
    } catch (const std::bad_alloc &) {
        return kNoMemory;
    }
}

int VELMDataFile::SetSummaryAttribute(int index, dataValue value, int count) {
    if (d_->accessType_ != ACCESS_CREATE && d_->accessType_ != ACCESS_UPDATE) return kWrongAccess;
    int rc = summaryIndex(index);
    if (rc != 0) return rc;
    const dataType type = d_->summaryAttributes_[index].type;
    if (IsArrayType(type) && (count < 0 || (count > 0 && !value.ptr))) return kBadArgument;
    dataValue copy;
    if (!copyValue(type, value, count, copy)) return kNoMemory;
    FreeValue(type, d_->summaryValues_[index]);
    d_->summaryValues_[index] = copy;
    d_->summaryCounts_[index] = IsArrayType(type) ? count : 1;
    d_->summaryDirty_ = true;
    return 0;
}

int VELMDataFile::SetSummaryAttribute(const MORVAUString &name, dataValue value, int count) {
    if (d_->accessType_ != ACCESS_CREATE && d_->accessType_ != ACCESS_UPDATE) return kWrongAccess;
    int index = findSummary(name);
    if (index < 0) return kNoSuchAttribute;
    return SetSummaryAttribute(index, value, count);
}

int VELMDataFile::SetSummaryRecordStatus(unsigned int status) {
    if (d_->accessType_ != ACCESS_CREATE && d_->accessType_ != ACCESS_UPDATE) return kWrongAccess;
    d_->summaryStatus_ = status;
    d_->summaryDirty_ = true;
    return 0;
}

// ---- data attributes ----

int VELMDataFile::GetDataAttribute(unsigned int index, dataValue &value, int *count) {
    if (index >= d_->dataAttributes_.size()) return kBadArgument;
    dataValue copy;
    if (!copyValue(d_->dataAttributes_[index].type, d_->currentValues_[index], d_->currentCounts_[index], copy))
        return kNoMemory;
    value = copy;
    if (count) *count = d_->currentCounts_[index];
    return 0;
}

int VELMDataFile::GetDataAttribute(const MORVAUString &name, dataValue &value, int *count) {
    int index = findData(name);
    if (index < 0) return kNoSuchAttribute;
    return GetDataAttribute(static_cast<unsigned int>(index), value, count);
}

int VELMDataFile::GetAllDataAttributes(std::vector<MORVAUString> &names, std::vector<dataType> &types,
                                       std::vector<dataValue> &values, std::vector<int> *counts) {
    return CopyAttributes(d_->dataAttributes_, d_->currentValues_, d_->currentCounts_, names, types, values, counts);
}

int VELMDataFile::GetAttributesName(std::vector<MORVAUString> &names, std::vector<dataType> &types) {
    try {
        std::vector<MORVAUString> outNames;
        std::vector<dataType> outTypes;
        for (const Attribute &a : d_->dataAttributes_) {
            outNames.push_back(a.name);
            outTypes.push_back(a.type);
        }
        names.swap(outNames);
        types.swap(outTypes);
        return 0;
    } catch (const std::bad_alloc &) {
        return kNoMemory;
    }
}

int VELMDataFile::GetAttributeIndex(unsigned int &index, const MORVAUString &name) {
    int found = findData(name);
    index = found < 0 ? 0xFFFFFFFFu : static_cast<unsigned int>(found);
    return 0;
}

int VELMDataFile::SetDataAttribute(unsigned int index, dataValue value, int count) {
    if (d_->accessType_ != ACCESS_CREATE) return kWrongAccess;
    if (index >= d_->dataAttributes_.size()) return kBadArgument;
    const dataType type = d_->dataAttributes_[index].type;
    if (IsArrayType(type) && (count < 0 || (count > 0 && !value.ptr))) return kBadArgument;
    dataValue copy;
    if (!copyValue(type, value, count, copy)) return kNoMemory;
    FreeValue(type, d_->currentValues_[index]);
    d_->currentValues_[index] = copy;
    d_->currentCounts_[index] = IsArrayType(type) ? count : 1;
    return 0;
}

int VELMDataFile::SetDataAttribute(const MORVAUString &name, dataValue value, int count) {
    if (d_->accessType_ != ACCESS_CREATE) return kWrongAccess;
    int index = findData(name);
    if (index < 0) return kNoSuchAttribute;
    return SetDataAttribute(static_cast<unsigned int>(index), value, count);
}

// ---- declarations ----

int VELMDataFile::AddAttribute(dataType type, const MORVAUString &name) {
    if (d_->accessType_ != ACCESS_CREATE) return kWrongAccess;
    if (!d_->attributesOpen_) return kAttributesClosed;
    if (!validType(type)) return kBadArgument;
    try {
        if (name.toUtf8().size() > kMaxNameBytes) return kBadArgument;
        d_->dataAttributes_.reserve(d_->dataAttributes_.size() + 1);
        d_->currentValues_.reserve(d_->dataAttributes_.size() + 1);
        d_->currentCounts_.reserve(d_->dataAttributes_.size() + 1);
        d_->dataAttributes_.push_back({type, name});
    } catch (const std::bad_alloc &) {
        return kNoMemory;
    }
    dataValue empty;
    empty.d = 0;
    d_->currentValues_.push_back(empty);
    d_->currentCounts_.push_back(IsArrayType(type) ? 0 : 1);
    if (IsArrayType(type)) d_->variableLength_ = true;
    d_->dataRecordSize_ = fixedRecordSize();
    return 0;
}

int VELMDataFile::AddSummaryAttribute(dataType type, const MORVAUString &name) {
    if (d_->accessType_ != ACCESS_CREATE) return kWrongAccess;
    if (!d_->attributesOpen_) return kAttributesClosed;
    if (!validType(type)) return kBadArgument;
    try {
        if (name.toUtf8().size() > kMaxNameBytes) return kBadArgument;
        d_->summaryAttributes_.reserve(d_->summaryAttributes_.size() + 1);
        d_->summaryValues_.reserve(d_->summaryAttributes_.size() + 1);
        d_->summaryCounts_.reserve(d_->summaryAttributes_.size() + 1);
        d_->summaryAttributes_.push_back({type, name});
    } catch (const std::bad_alloc &) {
        return kNoMemory;
    }
    dataValue empty;
    empty.d = 0;
    d_->summaryValues_.push_back(empty);
    d_->summaryCounts_.push_back(0);
    return 0;
}

const std::vector<VELMDataFile::Attribute> &VELMDataFile::dataAttributes() const { return d_->dataAttributes_; }
const std::vector<VELMDataFile::Attribute> &VELMDataFile::summaryAttributes() const { return d_->summaryAttributes_; }
