// The attribute data file: writing and reading records.
#include <velmio/data_file.hpp>
#include <velmio/encoding.h>

#include "datafile/value_codec.h"
#include "foundation/diagnostics.h"
#include "linestore/time_index.h"
#include "platform/stdio_file.h"

#include <cstdlib>
#include <new>

using namespace velmio::datafile;
using namespace velmio::xdr;

std::uint64_t VELMDataFile::recordSize(const std::vector<dataValue> &, const std::vector<int> &counts) const {
    std::uint64_t size = fixedRecordSize();
    for (std::size_t i = 0; i < dataAttributes_.size(); ++i)
        if (IsArrayType(dataAttributes_[i].type))
            size += encodedSize(dataAttributes_[i].type, i < counts.size() ? counts[i] : 0);
    return size;
}

unsigned int VELMDataFile::CalculateSizeOfDataRecord(const std::vector<int> &counts,
                                                     const std::vector<dataValue> &values) {
    if (counts.empty() || values.empty() || dataAttributes_.empty()) return fixedRecordSize();
    std::uint64_t size = recordSize(values, counts);
    return size > 0xFFFFFFFFu ? 0xFFFFFFFFu : static_cast<unsigned int>(size);
}

int VELMDataFile::WriteRecord(double time, unsigned int status, const std::vector<dataValue> &givenValues,
                              const std::vector<int> &givenCounts) {
    if (accessType_ != ACCESS_CREATE) return kWrongAccess;
    if (!dataFile_ || !indexFile_) return kRecordNotWritten;  // a record without an index is lost
    const bool staged = givenValues.empty();
    const std::vector<dataValue> &values = staged ? currentValues_ : givenValues;
    const std::vector<int> &counts = staged ? currentCounts_ : givenCounts;

    // Values that do not match the declared attributes cannot be encoded.
    const std::size_t n = dataAttributes_.size();
    if (values.size() != n || (variableLength_ && counts.size() < n)) return kCannotWrite;
    for (std::size_t i = 0; i < n; ++i) {
        if (!IsArrayType(dataAttributes_[i].type)) continue;
        if (counts[i] < 0 || (counts[i] > 0 && !values[i].ptr)) return kCannotWrite;
    }
    const std::uint64_t size = recordSize(values, counts);
    if (size > 0x7FFFFFFFu) return kCannotWrite;

    try {
        if (attributesOpen_) {
            int rc = WriteSummary();
            if (rc != 0) return rc;
            recordBuffer_.resize(fixedRecordSize());
            referenceTime_ = ::TOVO_EncodeRefTime(time);
            attributesOpen_ = false;
            endOfData_ = 16 + std::uint64_t(summaryRecordSize_);
            reposition_ = true;
        }
        if (size > recordBuffer_.size()) recordBuffer_.resize(static_cast<std::size_t>(size));
        recordBufferCapacity_ = static_cast<unsigned int>(recordBuffer_.size());
    } catch (const std::bad_alloc &) {
        return kNoMemory;
    }
    // Offsets in the time index are 32 bits wide.
    if (endOfData_ > 0xFFFFFFFFu) {
        velmio::say("VELMDataFile::WriteRecord(): '%s' has reached 4 GiB\n", velmio::printable(dataPath_.c_str()).c_str());
        return kRecordNotWritten;
    }

    XDR x;
    xdrmem_create(&x, recordBuffer_.data(), static_cast<unsigned int>(size), XDR_ENCODE);
    unsigned int length = static_cast<unsigned int>(size);
    int encodedTime = ::TOVO_EncodeTime(time, referenceTime_, timeScale_);
    bool ok = true;
    if (fileVersion_ == 2) ok = xdr_u_int(&x, &length);
    ok = ok && xdr_u_int(&x, &status) && xdr_int(&x, &encodedTime);
    for (std::size_t i = 0; ok && i < n; ++i)
        ok = encodeValue(&x, dataAttributes_[i].type, values[i], IsArrayType(dataAttributes_[i].type) ? counts[i] : 1);
    if (!ok || xdr_getpos(&x) != size) return kCannotWrite;

    const std::uint32_t offset = static_cast<std::uint32_t>(endOfData_);
    if ((reposition_ && velmio::platform::seekFile(dataFile_, static_cast<long>(offset), SEEK_SET) != 0) ||
        velmio::platform::writeFile(recordBuffer_.data(), static_cast<std::size_t>(size), 1, dataFile_) != 1) {
        // The next record goes where this one should have gone.
        reposition_ = true;
        velmio::say("VELMDataFile::WriteRecord(): could not write record %u of '%s'\n", numberOfRecords_ + 1,
                    velmio::printable(dataPath_.c_str()).c_str());
        return kRecordNotWritten;
    }
    reposition_ = false;
    if (index_->append(encodedTime, offset) != 0) {
        reposition_ = true;
        return kNoMemory;
    }
    endOfData_ += size;
    if (time < minTime_) minTime_ = time;
    if (time > maxTime_) maxTime_ = time;
    ++numberOfRecords_;
    return 0;
}

// Reads the bytes of record recordNumber after its length word (or all of
// it in a file without length words) into bytes.
int VELMDataFile::readRecordBytes(unsigned int recordNumber, unsigned int offset, std::vector<char> &bytes) {
    if (reposition_ || recordNumber != currentRecord_ + 1) {
        if (velmio::platform::seekFile(dataFile_, static_cast<long>(offset), SEEK_SET) != 0) return kRecordUnreadable;
    }
    reposition_ = true;
    std::uint64_t extent;
    if (fileVersion_ == 2) {
        char unit[4];
        if (velmio::platform::readFile(unit, 4, 1, dataFile_) != 1) return kRecordUnreadable;
        XDR x;
        xdrmem_create(&x, unit, 4, XDR_DECODE);
        unsigned int length;
        xdr_u_int(&x, &length);
        if (length < dataRecordSize_ || std::uint64_t(offset) + length > fileSize_) return kRecordUnreadable;
        extent = length - 4;
    } else if (variableLength_) {
        // Without length words a record runs to the next record or the end.
        std::uint32_t next = 0;
        std::uint64_t end = fileSize_;
        if (recordNumber < numberOfRecords_ && index_->map(recordNumber + 1, next) == 0) end = next;
        if (end < std::uint64_t(offset) + dataRecordSize_ || end > fileSize_) return kRecordUnreadable;
        extent = end - offset;
    } else {
        if (std::uint64_t(offset) + dataRecordSize_ > fileSize_) return kRecordUnreadable;
        extent = dataRecordSize_;
    }
    if (extent > 0x7FFFFFFFu) return kRecordUnreadable;
    bytes.resize(static_cast<std::size_t>(extent));
    if (extent > 0 && velmio::platform::readFile(bytes.data(), bytes.size(), 1, dataFile_) != 1) return kRecordUnreadable;
    reposition_ = false;
    return 0;
}

int VELMDataFile::ReadRecord(double &time, unsigned int &status, std::vector<dataValue> &values,
                             std::vector<int> &counts, int recordNumber) {
    if (accessType_ != ACCESS_READ && accessType_ != ACCESS_UPDATE) return kWrongAccess;
    const long long wanted = recordNumber == -999 ? static_cast<long long>(currentRecord_) + 1 : recordNumber;
    if (wanted < 1 || wanted > numberOfRecords_) return kRecordOutOfRange;
    const unsigned int number = static_cast<unsigned int>(wanted);
    unsigned int offset;
    if (TmIdxMapIndexToByteOffset(number, offset) != 0) return kRecordOutOfRange;
    if (!dataFile_) return kRecordUnreadable;

    const std::size_t n = dataAttributes_.size();
    std::vector<dataValue> decoded;
    std::vector<int> decodedCounts;
    std::vector<dataValue> kept;
    auto fail = [&](int code) {
        for (std::size_t i = 0; i < decoded.size(); ++i) FreeValue(dataAttributes_[i].type, decoded[i]);
        for (std::size_t i = 0; i < kept.size(); ++i) FreeValue(dataAttributes_[i].type, kept[i]);
        if (code == kRecordUnreadable)
            velmio::say("VELMDataFile::ReadRecord(): record %u of '%s' cannot be read\n", number,
                        velmio::printable(dataPath_.c_str()).c_str());
        return code;
    };
    try {
        decoded.reserve(n);
        decodedCounts.reserve(n);
        kept.reserve(n);
        int rc = readRecordBytes(number, offset, recordBuffer_);
        if (rc != 0) return fail(rc);
        XDR x;
        xdrmem_create(&x, recordBuffer_.data(), static_cast<unsigned int>(recordBuffer_.size()), XDR_DECODE);
        unsigned int recordStatus;
        int encodedTime;
        if (!xdr_u_int(&x, &recordStatus) || !xdr_int(&x, &encodedTime)) return fail(kRecordUnreadable);
        for (std::size_t i = 0; i < n; ++i) {
            dataValue v;
            int count;
            if (!decodeValue(&x, dataAttributes_[i].type, v, count)) return fail(kRecordUnreadable);
            decoded.push_back(v);
            decodedCounts.push_back(count);
        }
        // The object keeps its own copy as the current record.
        for (std::size_t i = 0; i < n; ++i) {
            dataValue copy;
            if (!copyValue(dataAttributes_[i].type, decoded[i], decodedCounts[i], copy)) return fail(kNoMemory);
            kept.push_back(copy);
        }
        std::vector<int> keptCounts(decodedCounts);
        // Nothing below can fail: the caller's vectors change only now.
        values.swap(decoded);
        counts.swap(decodedCounts);
        for (std::size_t i = 0; i < n; ++i) FreeValue(dataAttributes_[i].type, currentValues_[i]);
        currentValues_.swap(kept);
        currentCounts_.swap(keptCounts);
        time = ::TOVO_DecodeTime(referenceTime_, timeScale_, encodedTime);
        status = recordStatus;
        dataStatus_ = recordStatus;
        currentRecord_ = number;
        return 0;
    } catch (const std::bad_alloc &) {
        return fail(kNoMemory);
    }
}

int VELMDataFile::ReadRecord(double &time, unsigned int &status, std::vector<dataValue> &values, int recordNumber) {
    try {
        std::vector<int> counts;
        return ReadRecord(time, status, values, counts, recordNumber);
    } catch (const std::bad_alloc &) {
        return kNoMemory;
    }
}
