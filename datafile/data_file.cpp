// The attribute data file: opening, the validation record, the summary and
// the end of a file's life.
#include <velmio/data_file.hpp>
#include <velmio/encoding.h>
#include <velmio/utils.hpp>

#include "datafile/data_file_state.h"
#include "datafile/value_codec.h"
#include "foundation/diagnostics.h"
#include "foundation/utf8.h"
#include "linestore/time_index.h"
#include "platform/files.h"
#include "platform/stdio_file.h"
#include "platform/system_error.h"

#include <cerrno>
#include <cfloat>
#include <cstdlib>
#include <cstring>
#include <new>

using namespace velmio::datafile;
using namespace velmio::xdr;

namespace {

constexpr unsigned int kDataRecordKind = 1;

}  // namespace

VELMDataFile::VELMDataFile(const MORVAUString &directory, const MORVAUString &fileName,
                           const MORVAUString &description, unsigned int typeWord, AccessType access,
                           unsigned int dataVersion, long &status)
    : d_(new Impl) {
    d_->accessType_ = access;
    d_->typeWord_ = typeWord;
    d_->dataVersion_ = dataVersion;
    status = 0;
    try {
        d_->description_ = description;
        d_->dataPath_ = directory;
        VELMIOUtils::appendPath(d_->dataPath_, fileName);
        d_->indexPath_ = d_->dataPath_ + MORVAUString(L"TmIdx");
    } catch (const std::bad_alloc &) {
        status = kNoMemory;
        return;
    }
    int rc = 0;
    int openErrno = 0;
    if (access == ACCESS_CREATE) {
        d_->dataFile_ = velmio::platform::openFile(d_->dataPath_.c_str(), "wb");
        if (!d_->dataFile_) openErrno = errno;
        if (d_->dataFile_) {
            d_->createdData_ = true;
            d_->indexFile_ = velmio::platform::openFile(d_->indexPath_.c_str(), "wb");
            if (!d_->indexFile_) openErrno = errno;
            else d_->createdIndex_ = true;
        }
        rc = (d_->dataFile_ && d_->indexFile_) ? TOVO_WriteDataValidationRecord() : kCannotWrite;
        d_->endOfData_ = 16;
    } else if (access == ACCESS_READ || access == ACCESS_UPDATE) {
        d_->attributesOpen_ = false;
        d_->dataFile_ = velmio::platform::openFile(d_->dataPath_.c_str(), access == ACCESS_READ ? "rb" : "rb+");
        if (!d_->dataFile_) openErrno = errno;
        if (d_->dataFile_) {
            d_->indexFile_ = velmio::platform::openFile(d_->indexPath_.c_str(), "rb");
            if (!d_->indexFile_) openErrno = errno;
        }
        rc = (d_->dataFile_ && d_->indexFile_) ? ReadSummary() : kCannotRead;
    } else {
        d_->attributesOpen_ = false;
        rc = kBadArgument;
    }
    // An existing file is no failure (the platform's "already exists" code
    // is ignored the same way).
    if (openErrno == EEXIST) openErrno = 0;
    const velmio::platform::OpenFailureCodes codes = {kNotFound, kTooManyFiles, kAccessDenied, kNoSpace,
                                                      rc != 0 ? rc : kCannotRead};
    rc = velmio::platform::reportOpenFailure(velmio::printable(d_->dataPath_.c_str()), openErrno, codes, true, rc);
    if (rc == 0 && access != ACCESS_CREATE) rc = TmIdxRead();
    if (access != ACCESS_CREATE && d_->indexFile_) {
        velmio::platform::closeFile(d_->indexFile_);
        d_->indexFile_ = nullptr;
    }
    status = rc;
}

VELMDataFile::VELMDataFile(const VELMDataFile &other) : d_(new Impl) { copyFrom(other); }

VELMDataFile &VELMDataFile::operator=(const VELMDataFile &other) {
    if (this != &other) {
        finish();
        copyFrom(other);
    }
    return *this;
}

VELMDataFile::~VELMDataFile() { finish(); }

AccessType VELMDataFile::accessType() const { return d_->accessType_; }

void VELMDataFile::copyFrom(const VELMDataFile &other) {
    d_->summaryRecordSize_ = other.d_->summaryRecordSize_;
    d_->dataRecordSize_ = other.d_->dataRecordSize_;
    d_->posDataRecordSize_ = other.d_->posDataRecordSize_;
    d_->posSummaryStatus_ = other.d_->posSummaryStatus_;
    d_->posReferenceTime_ = other.d_->posReferenceTime_;
    d_->posMinTime_ = other.d_->posMinTime_;
    d_->posMaxTime_ = other.d_->posMaxTime_;
    d_->posRecordCount_ = other.d_->posRecordCount_;
    d_->dataPath_ = other.d_->dataPath_;
    d_->indexPath_ = other.d_->indexPath_;
    d_->numberOfRecords_ = other.d_->numberOfRecords_;
    d_->typeWord_ = other.d_->typeWord_;
    d_->fileVersion_ = other.d_->fileVersion_;
    d_->dataVersion_ = other.d_->dataVersion_;
    d_->summaryWritten_ = other.d_->summaryWritten_;
    d_->currentRecord_ = other.d_->currentRecord_;
    d_->description_ = other.d_->description_;
    d_->timeScale_ = other.d_->timeScale_;
    d_->summaryStatus_ = other.d_->summaryStatus_;
    d_->dataStatus_ = other.d_->dataStatus_;
    d_->referenceTime_ = other.d_->referenceTime_;
    d_->minTime_ = other.d_->minTime_;
    d_->maxTime_ = other.d_->maxTime_;
    d_->summaryAttributes_ = other.d_->summaryAttributes_;
    d_->dataAttributes_ = other.d_->dataAttributes_;
    d_->recordBufferCapacity_ = other.d_->recordBufferCapacity_;
    d_->variableLength_ = other.d_->variableLength_;

    // The copy only reads: it never finishes, rewrites or deletes the file.
    d_->accessType_ = ACCESS_READ;
    d_->attributesOpen_ = false;
    d_->summaryDirty_ = false;
    d_->reposition_ = true;
    d_->createdData_ = d_->createdIndex_ = false;
    d_->endOfData_ = 0;
    d_->indexFile_ = nullptr;
    d_->dataFile_ = nullptr;
    d_->fileSize_ = 0;
    if (other.d_->dataFile_) {
        velmio::platform::flushFile(other.d_->dataFile_);
        d_->dataFile_ = velmio::platform::openFile(d_->dataPath_.c_str(), "rb");
        if (d_->dataFile_) {
            std::int64_t size = velmio::platform::fileSize(d_->dataFile_);
            d_->fileSize_ = size > 0 ? static_cast<std::uint64_t>(size) : 0;
        }
    }

    d_->summaryValues_.assign(other.d_->summaryValues_.size(), zeroValue());
    d_->summaryCounts_ = other.d_->summaryCounts_;
    for (std::size_t i = 0; i < d_->summaryValues_.size(); ++i)
        if (!copyValue(d_->summaryAttributes_[i].type, other.d_->summaryValues_[i], d_->summaryCounts_[i], d_->summaryValues_[i]))
            d_->summaryCounts_[i] = 0;
    d_->currentValues_.assign(other.d_->currentValues_.size(), zeroValue());
    d_->currentCounts_ = other.d_->currentCounts_;
    for (std::size_t i = 0; i < d_->currentValues_.size(); ++i)
        if (!copyValue(d_->dataAttributes_[i].type, other.d_->currentValues_[i], d_->currentCounts_[i], d_->currentValues_[i]))
            d_->currentCounts_[i] = 0;

    d_->index_->clear();
    for (const _TOVO_TmIdxSet *set = other.d_->index_->first(); set; set = set->next)
        for (std::uint32_t i = 0; i < set->count; ++i)
            if (d_->index_->append(set->entries[i].encodedTime, set->entries[i].byteOffset) != 0) return;
}

int VELMDataFile::Close() { return finishFile(); }

void VELMDataFile::finish() { finishFile(); }

void VELMDataFile::closeFiles() { closeStreams(); }

int VELMDataFile::finishFile() {
    int rc = 0;
    const auto keep = [&rc](int status) {
        if (rc == 0) rc = status;
    };
    if (d_->accessType_ == ACCESS_CREATE) {
        if (d_->numberOfRecords_ > 0 && d_->dataFile_) {
            if (d_->indexFile_) keep(TmIdxWrite());
            keep(UpdateSummary());
            // A file that was created is on the disk once its handle is gone.
            if (velmio::platform::syncFile(d_->dataFile_) != 0) keep(kCannotWrite);
            if (d_->indexFile_ && velmio::platform::syncFile(d_->indexFile_) != 0) keep(velmio::kTmIdxWriteFailed);
        }
        keep(closeStreams());
        // A file without records is no file: leave nothing behind.
        if (d_->numberOfRecords_ == 0) {
            if (d_->createdData_) velmio::platform::removeFile(d_->dataPath_.c_str());
            if (d_->createdIndex_) velmio::platform::removeFile(d_->indexPath_.c_str());
        }
    } else {
        if (d_->accessType_ == ACCESS_UPDATE && d_->summaryDirty_) keep(UpdateSummary());
        keep(closeStreams());
    }
    d_->createdData_ = d_->createdIndex_ = false;
    for (std::size_t i = 0; i < d_->summaryValues_.size(); ++i) FreeValue(d_->summaryAttributes_[i].type, d_->summaryValues_[i]);
    for (std::size_t i = 0; i < d_->currentValues_.size(); ++i) FreeValue(d_->dataAttributes_[i].type, d_->currentValues_[i]);
    TmIdxSetFree();
    d_->numberOfRecords_ = 0;
    // Closed for good: a second Close or the destructor has nothing to do.
    d_->accessType_ = ACCESS_READ;
    return rc;
}

int VELMDataFile::closeStreams() {
    int rc = 0;
    if (d_->dataFile_ && velmio::platform::closeFile(d_->dataFile_) != 0) rc = kCannotWrite;
    if (d_->indexFile_ && velmio::platform::closeFile(d_->indexFile_) != 0 && rc == 0) rc = velmio::kTmIdxWriteFailed;
    d_->dataFile_ = d_->indexFile_ = nullptr;
    return rc;
}

// ---- validation record ----

int VELMDataFile::TOVO_WriteDataValidationRecord() {
    if (!d_->dataFile_) return kValidationNotWritten;
    char buffer[16];
    XDR x;
    xdrmem_create(&x, buffer, sizeof buffer, XDR_ENCODE);
    unsigned int units[4] = {kMagic, d_->typeWord_, kDataRecordKind, d_->fileVersion_};
    for (unsigned int &u : units)
        if (!xdr_u_int(&x, &u)) return kValidationNotWritten;
    if (velmio::platform::seekFile(d_->dataFile_, 0, SEEK_SET) != 0 || velmio::platform::writeFile(buffer, 4, 4, d_->dataFile_) != 4)
        return kValidationNotWritten;
    return 0;
}

int VELMDataFile::TOVO_ReadDataValidationRecord() {
    if (!d_->dataFile_) return kValidationMismatch;
    char buffer[16];
    if (velmio::platform::seekFile(d_->dataFile_, 0, SEEK_SET) != 0 || velmio::platform::readFile(buffer, 4, 4, d_->dataFile_) != 4)
        return kValidationMismatch;
    XDR x;
    xdrmem_create(&x, buffer, sizeof buffer, XDR_DECODE);
    unsigned int magic, type, kind, version;
    if (!xdr_u_int(&x, &magic) || magic != kMagic || !xdr_u_int(&x, &type) || type != d_->typeWord_ ||
        !xdr_u_int(&x, &kind) || kind != kDataRecordKind || !xdr_u_int(&x, &version))
        return kValidationMismatch;
    d_->fileVersion_ = version;
    return 0;
}

// ---- summary ----

unsigned int VELMDataFile::fixedRecordSize() const {
    unsigned int size = d_->fileVersion_ == 2 ? 12 : 8;
    for (const Attribute &a : d_->dataAttributes_)
        if (!IsArrayType(a.type)) size += static_cast<unsigned int>(encodedSize(a.type, 1));
    return size;
}

int VELMDataFile::WriteSummary() {
    if (!d_->dataFile_) return kCannotWrite;
    try {
        const std::string description = d_->description_.toUtf8();
        std::vector<std::string> summaryNames, dataNames;
        for (const Attribute &a : d_->summaryAttributes_) summaryNames.push_back(a.name.toUtf8());
        for (const Attribute &a : d_->dataAttributes_) dataNames.push_back(a.name.toUtf8());

        // The size first, so that the buffer is exactly the summary and a
        // summary over the format's 1,000,000 bytes is refused, not cut.
        std::uint64_t size = 4 + (d_->fileVersion_ == 2 ? 4 : 0) + 4 + 4 + pad4(description.size()) + 6 * 4 + 4 * 4;
        for (std::size_t i = 0; i < d_->summaryAttributes_.size(); ++i)
            size += 8 + pad4(summaryNames[i].size()) + encodedSize(d_->summaryAttributes_[i].type, d_->summaryCounts_[i]);
        size += 4;
        for (const std::string &name : dataNames) size += 8 + pad4(name.size());
        if (size > kSummaryLimit) {
            velmio::say("VELMDataFile::WriteSummary(): the summary needs %llu bytes, more than %u\n",
                        static_cast<unsigned long long>(size), kSummaryLimit);
            return kCannotWrite;
        }

        d_->dataRecordSize_ = fixedRecordSize();
        std::vector<char> buffer(static_cast<std::size_t>(size));
        XDR x;
        xdrmem_create(&x, buffer.data(), static_cast<unsigned int>(size), XDR_ENCODE);
        unsigned int zero = 0;
        unsigned int u;
        int i32;
        bool ok = xdr_u_int(&x, &zero);
        if (ok && d_->fileVersion_ == 2) ok = xdr_u_int(&x, &d_->dataVersion_);
        i32 = static_cast<int>(description.size());
        ok = ok && xdr_int(&x, &i32) && encodeText(&x, description);
        d_->posSummaryStatus_ = xdr_getpos(&x);
        ok = ok && xdr_u_int(&x, &d_->summaryStatus_);
        d_->posRecordCount_ = xdr_getpos(&x);
        ok = ok && xdr_u_int(&x, &d_->numberOfRecords_) && xdr_int(&x, &d_->timeScale_);
        d_->posReferenceTime_ = xdr_getpos(&x);
        ok = ok && xdr_int(&x, &d_->referenceTime_);
        d_->posMinTime_ = xdr_getpos(&x);
        i32 = ::TOVO_EncodeTime(d_->minTime_, d_->referenceTime_, d_->timeScale_);
        ok = ok && xdr_int(&x, &i32);
        d_->posMaxTime_ = xdr_getpos(&x);
        i32 = ::TOVO_EncodeTime(d_->maxTime_, d_->referenceTime_, d_->timeScale_);
        ok = ok && xdr_int(&x, &i32);
        i32 = static_cast<int>(d_->summaryAttributes_.size());
        ok = ok && xdr_int(&x, &i32) && xdr_u_int(&x, &zero);
        u = static_cast<unsigned int>(d_->dataAttributes_.size());
        ok = ok && xdr_u_int(&x, &u) && xdr_u_int(&x, &zero);
        for (std::size_t k = 0; ok && k < d_->summaryAttributes_.size(); ++k) {
            i32 = d_->summaryAttributes_[k].type;
            ok = xdr_int(&x, &i32) && encodeText(&x, summaryNames[k]);
        }
        for (std::size_t k = 0; ok && k < d_->summaryAttributes_.size(); ++k)
            ok = encodeValue(&x, d_->summaryAttributes_[k].type, d_->summaryValues_[k], d_->summaryCounts_[k]);
        d_->posDataRecordSize_ = xdr_getpos(&x);
        ok = ok && xdr_u_int(&x, &d_->dataRecordSize_);
        for (std::size_t k = 0; ok && k < d_->dataAttributes_.size(); ++k) {
            i32 = d_->dataAttributes_[k].type;
            ok = xdr_int(&x, &i32) && encodeText(&x, dataNames[k]);
        }
        // The length leads the summary; it is known only now.
        u = xdr_getpos(&x);
        ok = ok && u == size && xdr_setpos(&x, 0) && xdr_u_int(&x, &u);
        if (!ok) return kCannotWrite;
        if (velmio::platform::seekFile(d_->dataFile_, 16, SEEK_SET) != 0 || velmio::platform::writeFile(buffer.data(), buffer.size(), 1, d_->dataFile_) != 1)
            return kCannotWrite;
        d_->summaryRecordSize_ = u;
        d_->summaryWritten_ = true;
        return 0;
    } catch (const std::bad_alloc &) {
        return kNoMemory;
    }
}

int VELMDataFile::ReadSummary() {
    int rc = TOVO_ReadDataValidationRecord();
    if (rc != 0) {
        velmio::say("VELMDataFile::ReadSummary(): '%s' is not a data file of type %u\n",
                    velmio::printable(d_->dataPath_.c_str()).c_str(), d_->typeWord_);
        return rc;
    }
    std::int64_t fileBytes = velmio::platform::fileSize(d_->dataFile_);
    d_->fileSize_ = fileBytes > 0 ? static_cast<std::uint64_t>(fileBytes) : 0;

    std::vector<Attribute> summaryAttributes, dataAttributes;
    std::vector<dataValue> summaryValues;
    std::vector<int> summaryCounts;
    auto corrupt = [&](const char *what) {
        for (std::size_t i = 0; i < summaryValues.size(); ++i) FreeValue(summaryAttributes[i].type, summaryValues[i]);
        velmio::say("VELMDataFile::ReadSummary(): %s in '%s'\n", what, velmio::printable(d_->dataPath_.c_str()).c_str());
        return kCannotRead;
    };
    try {
        char sizeBytes[4];
        if (velmio::platform::seekFile(d_->dataFile_, 16, SEEK_SET) != 0 || velmio::platform::readFile(sizeBytes, 4, 1, d_->dataFile_) != 1)
            return corrupt("no summary");
        XDR x;
        xdrmem_create(&x, sizeBytes, 4, XDR_DECODE);
        unsigned int size;
        xdr_u_int(&x, &size);
        if (size < 4 || size > kSummaryLimit || 16 + std::uint64_t(size) > d_->fileSize_)
            return corrupt("summary length out of bounds");
        std::vector<char> buffer(size);
        std::memcpy(buffer.data(), sizeBytes, 4);
        if (size > 4 && velmio::platform::readFile(buffer.data() + 4, size - 4, 1, d_->dataFile_) != 1) return corrupt("short summary");

        xdrmem_create(&x, buffer.data(), size, XDR_DECODE);
        unsigned int u, dataVersion = d_->dataVersion_, status, records, dataRecordSize;
        int descriptionLength, scale, reference, minEncoded, maxEncoded, summaryCount, reserved;
        std::string text;
        unsigned int posStatus, posCount, posReference, posMin, posMax, posSize;
        bool ok = xdr_u_int(&x, &u);
        if (ok && d_->fileVersion_ == 2) ok = xdr_u_int(&x, &dataVersion);
        ok = ok && xdr_int(&x, &descriptionLength) && decodeText(&x, kSummaryLimit, text) &&
             descriptionLength == static_cast<int>(text.size());
        if (!ok) return corrupt("bad description");
        MORVAUString description = MORVAUString(velmio::fromUtf8(text));
        posStatus = xdr_getpos(&x);
        ok = xdr_u_int(&x, &status);
        posCount = xdr_getpos(&x);
        ok = ok && xdr_u_int(&x, &records) && xdr_int(&x, &scale);
        posReference = xdr_getpos(&x);
        ok = ok && xdr_int(&x, &reference);
        posMin = xdr_getpos(&x);
        ok = ok && xdr_int(&x, &minEncoded);
        posMax = xdr_getpos(&x);
        ok = ok && xdr_int(&x, &maxEncoded) && xdr_int(&x, &summaryCount) && xdr_int(&x, &reserved);
        unsigned int dataCount;
        ok = ok && xdr_u_int(&x, &dataCount) && xdr_int(&x, &reserved);
        if (!ok) return corrupt("short summary header");
        if (scale <= 0) return corrupt("bad time scale");
        // Each declaration takes 8 bytes at least: counts beyond what is left
        // are refused before anything is reserved for them.
        if (summaryCount < 0 || std::uint64_t(summaryCount) * 8 > static_cast<std::uint64_t>(x.x_handy))
            return corrupt("summary attribute count out of bounds");
        summaryAttributes.reserve(summaryCount);
        for (int i = 0; i < summaryCount; ++i) {
            int type;
            if (!xdr_int(&x, &type) || !validType(type)) return corrupt("bad summary attribute type");
            if (!decodeText(&x, kMaxNameBytes, text)) return corrupt("bad summary attribute name");
            summaryAttributes.push_back({static_cast<dataType>(type), MORVAUString(velmio::fromUtf8(text))});
        }
        summaryValues.reserve(summaryCount);
        summaryCounts.reserve(summaryCount);
        for (int i = 0; i < summaryCount; ++i) {
            dataValue v;
            int count;
            if (!decodeValue(&x, summaryAttributes[i].type, v, count)) return corrupt("bad summary attribute value");
            summaryValues.push_back(v);
            summaryCounts.push_back(count);
        }
        posSize = xdr_getpos(&x);
        if (!xdr_u_int(&x, &dataRecordSize)) return corrupt("no data record size");
        if (std::uint64_t(dataCount) * 8 > static_cast<std::uint64_t>(x.x_handy))
            return corrupt("data attribute count out of bounds");
        dataAttributes.reserve(dataCount);
        for (unsigned int i = 0; i < dataCount; ++i) {
            int type;
            if (!xdr_int(&x, &type) || !validType(type)) return corrupt("bad data attribute type");
            if (!decodeText(&x, kMaxNameBytes, text)) return corrupt("bad data attribute name");
            dataAttributes.push_back({static_cast<dataType>(type), MORVAUString(velmio::fromUtf8(text))});
        }

        // Committed only now, so that a corrupt file leaves a clean object.
        d_->dataAttributes_.swap(dataAttributes);
        if (dataRecordSize != fixedRecordSize()) {
            d_->dataAttributes_.swap(dataAttributes);
            return corrupt("data record size does not match the attributes");
        }
        d_->summaryAttributes_.swap(summaryAttributes);
        d_->summaryValues_.swap(summaryValues);
        d_->summaryCounts_.swap(summaryCounts);
        d_->currentValues_.assign(d_->dataAttributes_.size(), zeroValue());
        d_->currentCounts_.assign(d_->dataAttributes_.size(), 0);
        d_->variableLength_ = false;
        for (const Attribute &a : d_->dataAttributes_) {
            if (IsArrayType(a.type)) d_->variableLength_ = true;
        }
        for (std::size_t i = 0; i < d_->dataAttributes_.size(); ++i)
            d_->currentCounts_[i] = IsArrayType(d_->dataAttributes_[i].type) ? 0 : 1;
        d_->summaryRecordSize_ = size;
        d_->dataVersion_ = dataVersion;
        d_->description_ = description;
        d_->summaryStatus_ = status;
        d_->numberOfRecords_ = records;
        d_->timeScale_ = scale;
        d_->referenceTime_ = reference;
        d_->minTime_ = ::TOVO_DecodeTime(reference, scale, minEncoded);
        d_->maxTime_ = ::TOVO_DecodeTime(reference, scale, maxEncoded);
        d_->dataRecordSize_ = dataRecordSize;
        d_->posSummaryStatus_ = posStatus;
        d_->posRecordCount_ = posCount;
        d_->posReferenceTime_ = posReference;
        d_->posMinTime_ = posMin;
        d_->posMaxTime_ = posMax;
        d_->posDataRecordSize_ = posSize;
        d_->summaryWritten_ = true;
        d_->reposition_ = true;
        return 0;
    } catch (const std::bad_alloc &) {
        for (std::size_t i = 0; i < summaryValues.size(); ++i) FreeValue(summaryAttributes[i].type, summaryValues[i]);
        return kNoMemory;
    }
}

int VELMDataFile::UpdateSummary() {
    if (d_->accessType_ != ACCESS_CREATE && d_->accessType_ != ACCESS_UPDATE) return kWrongAccess;
    if (!d_->dataFile_) return kCannotWrite;
    if (!d_->summaryWritten_) return 0;  // nothing on disk yet
    struct Field {
        unsigned int position;
        unsigned int value;
    };
    const Field fields[] = {
        {d_->posSummaryStatus_, d_->summaryStatus_},
        {d_->posReferenceTime_, static_cast<unsigned int>(d_->referenceTime_)},
        {d_->posMinTime_, static_cast<unsigned int>(::TOVO_EncodeTime(d_->minTime_, d_->referenceTime_, d_->timeScale_))},
        {d_->posMaxTime_, static_cast<unsigned int>(::TOVO_EncodeTime(d_->maxTime_, d_->referenceTime_, d_->timeScale_))},
        {d_->posDataRecordSize_, d_->dataRecordSize_},
        {d_->posRecordCount_, d_->numberOfRecords_},
    };
    d_->reposition_ = true;
    for (const Field &f : fields) {
        char unit[4];
        XDR x;
        xdrmem_create(&x, unit, 4, XDR_ENCODE);
        unsigned int v = f.value;
        xdr_u_int(&x, &v);
        if (velmio::platform::seekFile(d_->dataFile_, 16 + static_cast<long>(f.position), SEEK_SET) != 0 ||
            velmio::platform::writeFile(unit, 4, 1, d_->dataFile_) != 1)
            return kCannotWrite;
    }
    if (velmio::platform::flushFile(d_->dataFile_) != 0) return kCannotWrite;
    d_->summaryDirty_ = false;
    return 0;
}

// ---- the time index ----

_TOVO_TmIdxSet *VELMDataFile::TmIdxSetAlloc() { return d_->index_->allocSet(); }

int VELMDataFile::TmIdxRead() {
    if (!d_->indexFile_) return velmio::kTmIdxCannotOpen;
    return d_->index_->readFrom(d_->indexFile_, d_->typeWord_);
}

int VELMDataFile::TmIdxWrite() {
    if (!d_->indexFile_) return velmio::kTmIdxCannotOpen;
    int rc = d_->index_->writeTo(d_->indexFile_, d_->typeWord_, d_->fileVersion_);
    if (rc == 0 && velmio::platform::flushFile(d_->indexFile_) != 0) rc = velmio::kTmIdxWriteFailed;
    return rc;
}

void VELMDataFile::TmIdxSetFree() { d_->index_->clear(); }

int VELMDataFile::TmIdxEntry(int encodedTime) {
    if (!d_->dataFile_) return kBadArgument;
    long position = std::ftell(d_->dataFile_);
    if (position < 0 || static_cast<std::uint64_t>(position) > 0xFFFFFFFFu) return kBadArgument;
    return d_->index_->append(encodedTime, static_cast<std::uint32_t>(position));
}

int VELMDataFile::TmIdxMapIndexToByteOffset(unsigned int recordNumber, unsigned int &byteOffset) {
    std::uint32_t offset = 0;
    int rc = d_->index_->map(recordNumber, offset);
    if (rc == 0) byteOffset = offset;
    return rc;
}

// ---- the scaled encodings ----

double VELMDataFile::TOVO_DecodeDepthPosition(double r, int s, int v) { return ::TOVO_DecodeDepthPosition(r, s, v); }
int VELMDataFile::TOVO_EncodeDepthPosition(double p, double r, int s) { return ::TOVO_EncodeDepthPosition(p, r, s); }
double VELMDataFile::TOVO_DecodeDepthTime(double r, int s, int v) { return ::TOVO_DecodeDepthTime(r, s, v); }
int VELMDataFile::TOVO_EncodeDepthTime(double t, double r, int s) { return ::TOVO_EncodeDepthTime(t, r, s); }
double VELMDataFile::TOVO_DecodeMeters(int v) { return ::TOVO_DecodeMeters(v); }
int VELMDataFile::TOVO_EncodeMeters(double m) { return ::TOVO_EncodeMeters(m); }
double VELMDataFile::TOVO_DecodePosition(int r, int s, int v) { return ::TOVO_DecodePosition(r, s, v); }
int VELMDataFile::TOVO_EncodeRefPosition(double rad) { return ::TOVO_EncodeRefPosition(rad); }
int VELMDataFile::TOVO_EncodePosition(double p, int r, int s) { return ::TOVO_EncodePosition(p, r, s); }
double VELMDataFile::TOVO_DecodeRadians(int v) { return ::TOVO_DecodeRadians(v); }
int VELMDataFile::TOVO_EncodeRadians(double rad) { return ::TOVO_EncodeRadians(rad); }
double VELMDataFile::TOVO_DecodeSeconds(int v) { return ::TOVO_DecodeSeconds(v); }
int VELMDataFile::TOVO_EncodeSeconds(double s) { return ::TOVO_EncodeSeconds(s); }
double VELMDataFile::TOVO_DecodeTime(int r, int s, int v) { return ::TOVO_DecodeTime(r, s, v); }
double VELMDataFile::TOVO_DecodeRefTime(int m) { return ::TOVO_DecodeRefTime(m); }
int VELMDataFile::TOVO_EncodeRefTime(double s) { return ::TOVO_EncodeRefTime(s); }
int VELMDataFile::TOVO_EncodeTime(double t, int r, int s) { return ::TOVO_EncodeTime(t, r, s); }
