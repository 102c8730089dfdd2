// The attribute data file: opening, the validation record, the summary and
// the end of a file's life.
#include <velmio/data_file.hpp>
#include <velmio/encoding.h>
#include <velmio/utils.hpp>

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
    : accessType_(access),
      typeWord_(typeWord),
      dataVersion_(dataVersion),
      description_(description),
      minTime_(DBL_MAX),
      maxTime_(-DBL_MAX),
      index_(new velmio::TimeIndex) {
    status = 0;
    try {
        dataPath_ = directory;
        VELMIOUtils::appendPath(dataPath_, fileName);
        indexPath_ = dataPath_ + MORVAUString(L"TmIdx");
    } catch (const std::bad_alloc &) {
        status = kNoMemory;
        return;
    }
    int rc = 0;
    int openErrno = 0;
    if (access == ACCESS_CREATE) {
        dataFile_ = velmio::platform::openFile(dataPath_.c_str(), "wb");
        if (!dataFile_) openErrno = errno;
        if (dataFile_) {
            createdData_ = true;
            indexFile_ = velmio::platform::openFile(indexPath_.c_str(), "wb");
            if (!indexFile_) openErrno = errno;
            else createdIndex_ = true;
        }
        rc = (dataFile_ && indexFile_) ? TOVO_WriteDataValidationRecord() : kCannotWrite;
        endOfData_ = 16;
    } else if (access == ACCESS_READ || access == ACCESS_UPDATE) {
        attributesOpen_ = false;
        dataFile_ = velmio::platform::openFile(dataPath_.c_str(), access == ACCESS_READ ? "rb" : "rb+");
        if (!dataFile_) openErrno = errno;
        if (dataFile_) {
            indexFile_ = velmio::platform::openFile(indexPath_.c_str(), "rb");
            if (!indexFile_) openErrno = errno;
        }
        rc = (dataFile_ && indexFile_) ? ReadSummary() : kCannotRead;
    } else {
        attributesOpen_ = false;
        rc = kBadArgument;
    }
    // An existing file is no failure (the platform's "already exists" code
    // is ignored the same way).
    if (openErrno == EEXIST) openErrno = 0;
    const velmio::platform::OpenFailureCodes codes = {kNotFound, kTooManyFiles, kAccessDenied, kNoSpace,
                                                      rc != 0 ? rc : kCannotRead};
    rc = velmio::platform::reportOpenFailure(velmio::printable(dataPath_.c_str()), openErrno, codes, true, rc);
    if (rc == 0 && access != ACCESS_CREATE) rc = TmIdxRead();
    if (access != ACCESS_CREATE && indexFile_) {
        velmio::platform::closeFile(indexFile_);
        indexFile_ = nullptr;
    }
    status = rc;
}

VELMDataFile::VELMDataFile(const VELMDataFile &other) : index_(new velmio::TimeIndex) { copyFrom(other); }

VELMDataFile &VELMDataFile::operator=(const VELMDataFile &other) {
    if (this != &other) {
        finish();
        copyFrom(other);
    }
    return *this;
}

VELMDataFile::~VELMDataFile() { finish(); }

void VELMDataFile::copyFrom(const VELMDataFile &other) {
    summaryRecordSize_ = other.summaryRecordSize_;
    dataRecordSize_ = other.dataRecordSize_;
    posDataRecordSize_ = other.posDataRecordSize_;
    posSummaryStatus_ = other.posSummaryStatus_;
    posReferenceTime_ = other.posReferenceTime_;
    posMinTime_ = other.posMinTime_;
    posMaxTime_ = other.posMaxTime_;
    posRecordCount_ = other.posRecordCount_;
    dataPath_ = other.dataPath_;
    indexPath_ = other.indexPath_;
    numberOfRecords_ = other.numberOfRecords_;
    typeWord_ = other.typeWord_;
    fileVersion_ = other.fileVersion_;
    dataVersion_ = other.dataVersion_;
    summaryWritten_ = other.summaryWritten_;
    currentRecord_ = other.currentRecord_;
    description_ = other.description_;
    timeScale_ = other.timeScale_;
    summaryStatus_ = other.summaryStatus_;
    dataStatus_ = other.dataStatus_;
    referenceTime_ = other.referenceTime_;
    minTime_ = other.minTime_;
    maxTime_ = other.maxTime_;
    summaryAttributes_ = other.summaryAttributes_;
    dataAttributes_ = other.dataAttributes_;
    recordBufferCapacity_ = other.recordBufferCapacity_;
    variableLength_ = other.variableLength_;

    // The copy only reads: it never finishes, rewrites or deletes the file.
    accessType_ = ACCESS_READ;
    attributesOpen_ = false;
    summaryDirty_ = false;
    reposition_ = true;
    createdData_ = createdIndex_ = false;
    endOfData_ = 0;
    indexFile_ = nullptr;
    dataFile_ = nullptr;
    fileSize_ = 0;
    if (other.dataFile_) {
        velmio::platform::flushFile(other.dataFile_);
        dataFile_ = velmio::platform::openFile(dataPath_.c_str(), "rb");
        if (dataFile_) {
            std::int64_t size = velmio::platform::fileSize(dataFile_);
            fileSize_ = size > 0 ? static_cast<std::uint64_t>(size) : 0;
        }
    }

    summaryValues_.assign(other.summaryValues_.size(), zeroValue());
    summaryCounts_ = other.summaryCounts_;
    for (std::size_t i = 0; i < summaryValues_.size(); ++i)
        if (!copyValue(summaryAttributes_[i].type, other.summaryValues_[i], summaryCounts_[i], summaryValues_[i]))
            summaryCounts_[i] = 0;
    currentValues_.assign(other.currentValues_.size(), zeroValue());
    currentCounts_ = other.currentCounts_;
    for (std::size_t i = 0; i < currentValues_.size(); ++i)
        if (!copyValue(dataAttributes_[i].type, other.currentValues_[i], currentCounts_[i], currentValues_[i]))
            currentCounts_[i] = 0;

    index_->clear();
    for (const _TOVO_TmIdxSet *set = other.index_->first(); set; set = set->next)
        for (std::uint32_t i = 0; i < set->count; ++i)
            if (index_->append(set->entries[i].encodedTime, set->entries[i].byteOffset) != 0) return;
}

int VELMDataFile::Close() { return finish(); }

int VELMDataFile::finish() {
    int rc = 0;
    const auto keep = [&rc](int status) {
        if (rc == 0) rc = status;
    };
    if (accessType_ == ACCESS_CREATE) {
        if (numberOfRecords_ > 0 && dataFile_) {
            if (indexFile_) keep(TmIdxWrite());
            keep(UpdateSummary());
            // A file that was created is on the disk once its handle is gone.
            if (velmio::platform::syncFile(dataFile_) != 0) keep(kCannotWrite);
            if (indexFile_ && velmio::platform::syncFile(indexFile_) != 0) keep(velmio::kTmIdxWriteFailed);
        }
        keep(closeFiles());
        // A file without records is no file: leave nothing behind.
        if (numberOfRecords_ == 0) {
            if (createdData_) velmio::platform::removeFile(dataPath_.c_str());
            if (createdIndex_) velmio::platform::removeFile(indexPath_.c_str());
        }
    } else {
        if (accessType_ == ACCESS_UPDATE && summaryDirty_) keep(UpdateSummary());
        keep(closeFiles());
    }
    createdData_ = createdIndex_ = false;
    for (std::size_t i = 0; i < summaryValues_.size(); ++i) FreeValue(summaryAttributes_[i].type, summaryValues_[i]);
    for (std::size_t i = 0; i < currentValues_.size(); ++i) FreeValue(dataAttributes_[i].type, currentValues_[i]);
    TmIdxSetFree();
    numberOfRecords_ = 0;
    // Closed for good: a second Close or the destructor has nothing to do.
    accessType_ = ACCESS_READ;
    return rc;
}

int VELMDataFile::closeFiles() {
    int rc = 0;
    if (dataFile_ && velmio::platform::closeFile(dataFile_) != 0) rc = kCannotWrite;
    if (indexFile_ && velmio::platform::closeFile(indexFile_) != 0 && rc == 0) rc = velmio::kTmIdxWriteFailed;
    dataFile_ = indexFile_ = nullptr;
    return rc;
}

// ---- validation record ----

int VELMDataFile::TOVO_WriteDataValidationRecord() {
    if (!dataFile_) return kValidationNotWritten;
    char buffer[16];
    XDR x;
    xdrmem_create(&x, buffer, sizeof buffer, XDR_ENCODE);
    unsigned int units[4] = {kMagic, typeWord_, kDataRecordKind, fileVersion_};
    for (unsigned int &u : units)
        if (!xdr_u_int(&x, &u)) return kValidationNotWritten;
    if (velmio::platform::seekFile(dataFile_, 0, SEEK_SET) != 0 || velmio::platform::writeFile(buffer, 4, 4, dataFile_) != 4)
        return kValidationNotWritten;
    return 0;
}

int VELMDataFile::TOVO_ReadDataValidationRecord() {
    if (!dataFile_) return kValidationMismatch;
    char buffer[16];
    if (velmio::platform::seekFile(dataFile_, 0, SEEK_SET) != 0 || velmio::platform::readFile(buffer, 4, 4, dataFile_) != 4)
        return kValidationMismatch;
    XDR x;
    xdrmem_create(&x, buffer, sizeof buffer, XDR_DECODE);
    unsigned int magic, type, kind, version;
    if (!xdr_u_int(&x, &magic) || magic != kMagic || !xdr_u_int(&x, &type) || type != typeWord_ ||
        !xdr_u_int(&x, &kind) || kind != kDataRecordKind || !xdr_u_int(&x, &version))
        return kValidationMismatch;
    fileVersion_ = version;
    return 0;
}

// ---- summary ----

unsigned int VELMDataFile::fixedRecordSize() const {
    unsigned int size = fileVersion_ == 2 ? 12 : 8;
    for (const Attribute &a : dataAttributes_)
        if (!IsArrayType(a.type)) size += static_cast<unsigned int>(encodedSize(a.type, 1));
    return size;
}

int VELMDataFile::WriteSummary() {
    if (!dataFile_) return kCannotWrite;
    try {
        const std::string description = description_.toUtf8();
        std::vector<std::string> summaryNames, dataNames;
        for (const Attribute &a : summaryAttributes_) summaryNames.push_back(a.name.toUtf8());
        for (const Attribute &a : dataAttributes_) dataNames.push_back(a.name.toUtf8());

        // The size first, so that the buffer is exactly the summary and a
        // summary over the format's 1,000,000 bytes is refused, not cut.
        std::uint64_t size = 4 + (fileVersion_ == 2 ? 4 : 0) + 4 + 4 + pad4(description.size()) + 6 * 4 + 4 * 4;
        for (std::size_t i = 0; i < summaryAttributes_.size(); ++i)
            size += 8 + pad4(summaryNames[i].size()) + encodedSize(summaryAttributes_[i].type, summaryCounts_[i]);
        size += 4;
        for (const std::string &name : dataNames) size += 8 + pad4(name.size());
        if (size > kSummaryLimit) {
            velmio::say("VELMDataFile::WriteSummary(): the summary needs %llu bytes, more than %u\n",
                        static_cast<unsigned long long>(size), kSummaryLimit);
            return kCannotWrite;
        }

        dataRecordSize_ = fixedRecordSize();
        std::vector<char> buffer(static_cast<std::size_t>(size));
        XDR x;
        xdrmem_create(&x, buffer.data(), static_cast<unsigned int>(size), XDR_ENCODE);
        unsigned int zero = 0;
        unsigned int u;
        int i32;
        bool ok = xdr_u_int(&x, &zero);
        if (ok && fileVersion_ == 2) ok = xdr_u_int(&x, &dataVersion_);
        i32 = static_cast<int>(description.size());
        ok = ok && xdr_int(&x, &i32) && encodeText(&x, description);
        posSummaryStatus_ = xdr_getpos(&x);
        ok = ok && xdr_u_int(&x, &summaryStatus_);
        posRecordCount_ = xdr_getpos(&x);
        ok = ok && xdr_u_int(&x, &numberOfRecords_) && xdr_int(&x, &timeScale_);
        posReferenceTime_ = xdr_getpos(&x);
        ok = ok && xdr_int(&x, &referenceTime_);
        posMinTime_ = xdr_getpos(&x);
        i32 = ::TOVO_EncodeTime(minTime_, referenceTime_, timeScale_);
        ok = ok && xdr_int(&x, &i32);
        posMaxTime_ = xdr_getpos(&x);
        i32 = ::TOVO_EncodeTime(maxTime_, referenceTime_, timeScale_);
        ok = ok && xdr_int(&x, &i32);
        i32 = static_cast<int>(summaryAttributes_.size());
        ok = ok && xdr_int(&x, &i32) && xdr_u_int(&x, &zero);
        u = static_cast<unsigned int>(dataAttributes_.size());
        ok = ok && xdr_u_int(&x, &u) && xdr_u_int(&x, &zero);
        for (std::size_t k = 0; ok && k < summaryAttributes_.size(); ++k) {
            i32 = summaryAttributes_[k].type;
            ok = xdr_int(&x, &i32) && encodeText(&x, summaryNames[k]);
        }
        for (std::size_t k = 0; ok && k < summaryAttributes_.size(); ++k)
            ok = encodeValue(&x, summaryAttributes_[k].type, summaryValues_[k], summaryCounts_[k]);
        posDataRecordSize_ = xdr_getpos(&x);
        ok = ok && xdr_u_int(&x, &dataRecordSize_);
        for (std::size_t k = 0; ok && k < dataAttributes_.size(); ++k) {
            i32 = dataAttributes_[k].type;
            ok = xdr_int(&x, &i32) && encodeText(&x, dataNames[k]);
        }
        // The length leads the summary; it is known only now.
        u = xdr_getpos(&x);
        ok = ok && u == size && xdr_setpos(&x, 0) && xdr_u_int(&x, &u);
        if (!ok) return kCannotWrite;
        if (velmio::platform::seekFile(dataFile_, 16, SEEK_SET) != 0 || velmio::platform::writeFile(buffer.data(), buffer.size(), 1, dataFile_) != 1)
            return kCannotWrite;
        summaryRecordSize_ = u;
        summaryWritten_ = true;
        return 0;
    } catch (const std::bad_alloc &) {
        return kNoMemory;
    }
}

int VELMDataFile::ReadSummary() {
    int rc = TOVO_ReadDataValidationRecord();
    if (rc != 0) {
        velmio::say("VELMDataFile::ReadSummary(): '%s' is not a data file of type %u\n",
                    velmio::printable(dataPath_.c_str()).c_str(), typeWord_);
        return rc;
    }
    std::int64_t fileBytes = velmio::platform::fileSize(dataFile_);
    fileSize_ = fileBytes > 0 ? static_cast<std::uint64_t>(fileBytes) : 0;

    std::vector<Attribute> summaryAttributes, dataAttributes;
    std::vector<dataValue> summaryValues;
    std::vector<int> summaryCounts;
    auto corrupt = [&](const char *what) {
        for (std::size_t i = 0; i < summaryValues.size(); ++i) FreeValue(summaryAttributes[i].type, summaryValues[i]);
        velmio::say("VELMDataFile::ReadSummary(): %s in '%s'\n", what, velmio::printable(dataPath_.c_str()).c_str());
        return kCannotRead;
    };
    try {
        char sizeBytes[4];
        if (velmio::platform::seekFile(dataFile_, 16, SEEK_SET) != 0 || velmio::platform::readFile(sizeBytes, 4, 1, dataFile_) != 1)
            return corrupt("no summary");
        XDR x;
        xdrmem_create(&x, sizeBytes, 4, XDR_DECODE);
        unsigned int size;
        xdr_u_int(&x, &size);
        if (size < 4 || size > kSummaryLimit || 16 + std::uint64_t(size) > fileSize_)
            return corrupt("summary length out of bounds");
        std::vector<char> buffer(size);
        std::memcpy(buffer.data(), sizeBytes, 4);
        if (size > 4 && velmio::platform::readFile(buffer.data() + 4, size - 4, 1, dataFile_) != 1) return corrupt("short summary");

        xdrmem_create(&x, buffer.data(), size, XDR_DECODE);
        unsigned int u, dataVersion = dataVersion_, status, records, dataRecordSize;
        int descriptionLength, scale, reference, minEncoded, maxEncoded, summaryCount, reserved;
        std::string text;
        unsigned int posStatus, posCount, posReference, posMin, posMax, posSize;
        bool ok = xdr_u_int(&x, &u);
        if (ok && fileVersion_ == 2) ok = xdr_u_int(&x, &dataVersion);
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
        dataAttributes_.swap(dataAttributes);
        if (dataRecordSize != fixedRecordSize()) {
            dataAttributes_.swap(dataAttributes);
            return corrupt("data record size does not match the attributes");
        }
        summaryAttributes_.swap(summaryAttributes);
        summaryValues_.swap(summaryValues);
        summaryCounts_.swap(summaryCounts);
        currentValues_.assign(dataAttributes_.size(), zeroValue());
        currentCounts_.assign(dataAttributes_.size(), 0);
        variableLength_ = false;
        for (const Attribute &a : dataAttributes_) {
            if (IsArrayType(a.type)) variableLength_ = true;
        }
        for (std::size_t i = 0; i < dataAttributes_.size(); ++i)
            currentCounts_[i] = IsArrayType(dataAttributes_[i].type) ? 0 : 1;
        summaryRecordSize_ = size;
        dataVersion_ = dataVersion;
        description_ = description;
        summaryStatus_ = status;
        numberOfRecords_ = records;
        timeScale_ = scale;
        referenceTime_ = reference;
        minTime_ = ::TOVO_DecodeTime(reference, scale, minEncoded);
        maxTime_ = ::TOVO_DecodeTime(reference, scale, maxEncoded);
        dataRecordSize_ = dataRecordSize;
        posSummaryStatus_ = posStatus;
        posRecordCount_ = posCount;
        posReferenceTime_ = posReference;
        posMinTime_ = posMin;
        posMaxTime_ = posMax;
        posDataRecordSize_ = posSize;
        summaryWritten_ = true;
        reposition_ = true;
        return 0;
    } catch (const std::bad_alloc &) {
        for (std::size_t i = 0; i < summaryValues.size(); ++i) FreeValue(summaryAttributes[i].type, summaryValues[i]);
        return kNoMemory;
    }
}

int VELMDataFile::UpdateSummary() {
    if (accessType_ != ACCESS_CREATE && accessType_ != ACCESS_UPDATE) return kWrongAccess;
    if (!dataFile_) return kCannotWrite;
    if (!summaryWritten_) return 0;  // nothing on disk yet
    struct Field {
        unsigned int position;
        unsigned int value;
    };
    const Field fields[] = {
        {posSummaryStatus_, summaryStatus_},
        {posReferenceTime_, static_cast<unsigned int>(referenceTime_)},
        {posMinTime_, static_cast<unsigned int>(::TOVO_EncodeTime(minTime_, referenceTime_, timeScale_))},
        {posMaxTime_, static_cast<unsigned int>(::TOVO_EncodeTime(maxTime_, referenceTime_, timeScale_))},
        {posDataRecordSize_, dataRecordSize_},
        {posRecordCount_, numberOfRecords_},
    };
    reposition_ = true;
    for (const Field &f : fields) {
        char unit[4];
        XDR x;
        xdrmem_create(&x, unit, 4, XDR_ENCODE);
        unsigned int v = f.value;
        xdr_u_int(&x, &v);
        if (velmio::platform::seekFile(dataFile_, 16 + static_cast<long>(f.position), SEEK_SET) != 0 ||
            velmio::platform::writeFile(unit, 4, 1, dataFile_) != 1)
            return kCannotWrite;
    }
    if (velmio::platform::flushFile(dataFile_) != 0) return kCannotWrite;
    summaryDirty_ = false;
    return 0;
}

// ---- the time index ----

_TOVO_TmIdxSet *VELMDataFile::TmIdxSetAlloc() { return index_->allocSet(); }

int VELMDataFile::TmIdxRead() {
    if (!indexFile_) return velmio::kTmIdxCannotOpen;
    return index_->readFrom(indexFile_, typeWord_);
}

int VELMDataFile::TmIdxWrite() {
    if (!indexFile_) return velmio::kTmIdxCannotOpen;
    int rc = index_->writeTo(indexFile_, typeWord_, fileVersion_);
    if (rc == 0 && velmio::platform::flushFile(indexFile_) != 0) rc = velmio::kTmIdxWriteFailed;
    return rc;
}

void VELMDataFile::TmIdxSetFree() { index_->clear(); }

int VELMDataFile::TmIdxEntry(int encodedTime) {
    if (!dataFile_) return kBadArgument;
    long position = std::ftell(dataFile_);
    if (position < 0 || static_cast<std::uint64_t>(position) > 0xFFFFFFFFu) return kBadArgument;
    return index_->append(encodedTime, static_cast<std::uint32_t>(position));
}

int VELMDataFile::TmIdxMapIndexToByteOffset(unsigned int recordNumber, unsigned int &byteOffset) {
    std::uint32_t offset = 0;
    int rc = index_->map(recordNumber, offset);
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
