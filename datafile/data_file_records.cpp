// The attribute data file: writing and reading records.
#include <velmio/data_file.hpp>
#include <velmio/encoding.h>

#include "datafile/data_file_state.h"
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
    for (std::size_t i = 0; i < d_->dataAttributes_.size(); ++i)
        if (IsArrayType(d_->dataAttributes_[i].type))
            size += encodedSize(d_->dataAttributes_[i].type, i < counts.size() ? counts[i] : 0);
    return size;
}

unsigned int VELMDataFile::CalculateSizeOfDataRecord(const std::vector<int> &counts,
                                                     const std::vector<dataValue> &values) {
    if (counts.empty() || values.empty() || d_->dataAttributes_.empty()) return fixedRecordSize();
    std::uint64_t size = recordSize(values, counts);
    return size > 0xFFFFFFFFu ? 0xFFFFFFFFu : static_cast<unsigned int>(size);
}

int VELMDataFile::WriteRecord(double time, unsigned int status, const std::vector<dataValue> &givenValues,
                              const std::vector<int> &givenCounts) {
    if (d_->accessType_ != ACCESS_CREATE) return kWrongAccess;
    if (!d_->dataFile_ || !d_->indexFile_) return kRecordNotWritten;  // a record without an index is lost
    const bool staged = givenValues.empty();
    const std::vector<dataValue> &values = staged ? d_->currentValues_ : givenValues;
    const std::vector<int> &counts = staged ? d_->currentCounts_ : givenCounts;

    // Values that do not match the declared attributes cannot be encoded.
    const std::size_t n = d_->dataAttributes_.size();
    if (values.size() != n || (d_->variableLength_ && counts.size() < n)) return kCannotWrite;
    for (std::size_t i = 0; i < n; ++i) {
        if (!IsArrayType(d_->dataAttributes_[i].type)) continue;
        if (counts[i] < 0 || (counts[i] > 0 && !values[i].ptr)) return kCannotWrite;
    }
    const std::uint64_t size = recordSize(values, counts);
    if (size > 0x7FFFFFFFu) return kCannotWrite;

    try {
        if (d_->attributesOpen_) {
            int rc = WriteSummary();
            if (rc != 0) return rc;
            d_->recordBuffer_.resize(fixedRecordSize());
            d_->referenceTime_ = ::TOVO_EncodeRefTime(time);
            d_->attributesOpen_ = false;
            d_->endOfData_ = 16 + std::uint64_t(d_->summaryRecordSize_);
            d_->reposition_ = true;
        }
        if (size > d_->recordBuffer_.size()) d_->recordBuffer_.resize(static_cast<std::size_t>(size));
        d_->recordBufferCapacity_ = static_cast<unsigned int>(d_->recordBuffer_.size());
    } catch (const std::bad_alloc &) {
        return kNoMemory;
    }
    // Offsets in the time index are 32 bits wide.
    if (d_->endOfData_ > 0xFFFFFFFFu) {
        velmio::say("VELMDataFile::WriteRecord(): '%s' has reached 4 GiB\n", velmio::printable(d_->dataPath_.c_str()).c_str());
        return kRecordNotWritten;
    }

    XDR x;
    xdrmem_create(&x, d_->recordBuffer_.data(), static_cast<unsigned int>(size), XDR_ENCODE);
    unsigned int length = static_cast<unsigned int>(size);
    int encodedTime = ::TOVO_EncodeTime(time, d_->referenceTime_, d_->timeScale_);
    bool ok = true;
    if (d_->fileVersion_ == 2) ok = xdr_u_int(&x, &length);
    ok = ok && xdr_u_int(&x, &status) && xdr_int(&x, &encodedTime);
    for (std::size_t i = 0; ok && i < n; ++i)
        ok = encodeValue(&x, d_->dataAttributes_[i].type, values[i], IsArrayType(d_->dataAttributes_[i].type) ? counts[i] : 1);
    if (!ok || xdr_getpos(&x) != size) return kCannotWrite;

    const std::uint32_t offset = static_cast<std::uint32_t>(d_->endOfData_);
    if ((d_->reposition_ && velmio::platform::seekFile(d_->dataFile_, static_cast<long>(offset), SEEK_SET) != 0) ||
        velmio::platform::writeFile(d_->recordBuffer_.data(), static_cast<std::size_t>(size), 1, d_->dataFile_) != 1) {
        // The next record goes where this one should have gone.
        d_->reposition_ = true;
        velmio::say("VELMDataFile::WriteRecord(): could not write record %u of '%s'\n", d_->numberOfRecords_ + 1,
                    velmio::printable(d_->dataPath_.c_str()).c_str());
        return kRecordNotWritten;
    }
    d_->reposition_ = false;
    if (d_->index_->append(encodedTime, offset) != 0) {
        d_->reposition_ = true;
        return kNoMemory;
    }
    d_->endOfData_ += size;
    if (time < d_->minTime_) d_->minTime_ = time;
    if (time > d_->maxTime_) d_->maxTime_ = time;
    ++d_->numberOfRecords_;
    return 0;
}

// Reads the bytes of record recordNumber after its length word (or all of
// it in a file without length words) into bytes.
int VELMDataFile::readRecordBytes(unsigned int recordNumber, unsigned int offset, std::vector<char> &bytes) {
    if (d_->reposition_ || recordNumber != d_->currentRecord_ + 1) {
        if (velmio::platform::seekFile(d_->dataFile_, static_cast<long>(offset), SEEK_SET) != 0) return kRecordUnreadable;
    }
    d_->reposition_ = true;
    std::uint64_t extent;
    if (d_->fileVersion_ == 2) {
        char unit[4];
        if (velmio::platform::readFile(unit, 4, 1, d_->dataFile_) != 1) return kRecordUnreadable;
        XDR x;
        xdrmem_create(&x, unit, 4, XDR_DECODE);
        unsigned int length;
        xdr_u_int(&x, &length);
        if (length < d_->dataRecordSize_ || std::uint64_t(offset) + length > d_->fileSize_) return kRecordUnreadable;
        extent = length - 4;
    } else if (d_->variableLength_) {
        // Without length words a record runs to the next record or the end.
        std::uint32_t next = 0;
        std::uint64_t end = d_->fileSize_;
        if (recordNumber < d_->numberOfRecords_ && d_->index_->map(recordNumber + 1, next) == 0) end = next;
        if (end < std::uint64_t(offset) + d_->dataRecordSize_ || end > d_->fileSize_) return kRecordUnreadable;
        extent = end - offset;
    } else {
        if (std::uint64_t(offset) + d_->dataRecordSize_ > d_->fileSize_) return kRecordUnreadable;
        extent = d_->dataRecordSize_;
    }
    if (extent > 0x7FFFFFFFu) return kRecordUnreadable;
    bytes.resize(static_cast<std::size_t>(extent));
    if (extent > 0 && velmio::platform::readFile(bytes.data(), bytes.size(), 1, d_->dataFile_) != 1) return kRecordUnreadable;
    d_->reposition_ = false;
    return 0;
}

int VELMDataFile::ReadRecord(double &time, unsigned int &status, std::vector<dataValue> &values,
                             std::vector<int> &counts, int recordNumber) {
    if (d_->accessType_ != ACCESS_READ && d_->accessType_ != ACCESS_UPDATE) return kWrongAccess;
    const long long wanted = recordNumber == -999 ? static_cast<long long>(d_->currentRecord_) + 1 : recordNumber;
    if (wanted < 1 || wanted > d_->numberOfRecords_) return kRecordOutOfRange;
    const unsigned int number = static_cast<unsigned int>(wanted);
    unsigned int offset;
    if (TmIdxMapIndexToByteOffset(number, offset) != 0) return kRecordOutOfRange;
    if (!d_->dataFile_) return kRecordUnreadable;

    const std::size_t n = d_->dataAttributes_.size();
    std::vector<dataValue> decoded;
    std::vector<int> decodedCounts;
    std::vector<dataValue> kept;
    auto fail = [&](int code) {
        for (std::size_t i = 0; i < decoded.size(); ++i) FreeValue(d_->dataAttributes_[i].type, decoded[i]);
        for (std::size_t i = 0; i < kept.size(); ++i) FreeValue(d_->dataAttributes_[i].type, kept[i]);
        if (code == kRecordUnreadable)
            velmio::say("VELMDataFile::ReadRecord(): record %u of '%s' cannot be read\n", number,
                        velmio::printable(d_->dataPath_.c_str()).c_str());
        return code;
    };
    try {
        decoded.reserve(n);
        decodedCounts.reserve(n);
        kept.reserve(n);
        int rc = readRecordBytes(number, offset, d_->recordBuffer_);
        if (rc != 0) return fail(rc);
        XDR x;
        xdrmem_create(&x, d_->recordBuffer_.data(), static_cast<unsigned int>(d_->recordBuffer_.size()), XDR_DECODE);
        unsigned int recordStatus;
        int encodedTime;
        if (!xdr_u_int(&x, &recordStatus) || !xdr_int(&x, &encodedTime)) return fail(kRecordUnreadable);
        for (std::size_t i = 0; i < n; ++i) {
            dataValue v;
            int count;
            if (!decodeValue(&x, d_->dataAttributes_[i].type, v, count)) return fail(kRecordUnreadable);
            decoded.push_back(v);
            decodedCounts.push_back(count);
        }
        // The object keeps its own copy as the current record.
        for (std::size_t i = 0; i < n; ++i) {
            dataValue copy;
            if (!copyValue(d_->dataAttributes_[i].type, decoded[i], decodedCounts[i], copy)) return fail(kNoMemory);
            kept.push_back(copy);
        }
        std::vector<int> keptCounts(decodedCounts);
        // Nothing below can fail: the caller's vectors change only now.
        values.swap(decoded);
        counts.swap(decodedCounts);
        for (std::size_t i = 0; i < n; ++i) FreeValue(d_->dataAttributes_[i].type, d_->currentValues_[i]);
        d_->currentValues_.swap(kept);
        d_->currentCounts_.swap(keptCounts);
        time = ::TOVO_DecodeTime(d_->referenceTime_, d_->timeScale_, encodedTime);
        status = recordStatus;
        d_->dataStatus_ = recordStatus;
        d_->currentRecord_ = number;
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
