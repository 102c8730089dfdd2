#include "linestore/time_index.h"

#include "encoding/xdr.h"
#include "foundation/diagnostics.h"
#include "platform/files.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

namespace velmio {

using namespace xdr;

namespace {
constexpr std::uint32_t kFullSet = 512;
constexpr std::int32_t kEmptyMin = 2147483647;
constexpr std::int32_t kEmptyMax = -2147483647 - 1;
constexpr std::uint32_t kMagic = 0x544F564F;  // "TOVO"
constexpr std::uint32_t kRecordVersion = 3;

}  // namespace

TimeIndex::TimeIndex(TimeIndex &&o) noexcept { *this = std::move(o); }

TimeIndex &TimeIndex::operator=(TimeIndex &&o) noexcept {
    if (this != &o) {
        clear();
        setCount_ = o.setCount_;
        capacity_ = o.capacity_;
        first_ = o.first_;
        last_ = o.last_;
        sets_ = std::move(o.sets_);
        before_ = std::move(o.before_);
        rooms_ = std::move(o.rooms_);
        entryCount_ = o.entryCount_;
        uniform_ = o.uniform_;
        o.setCount_ = 0;
        o.first_ = o.last_ = nullptr;
        o.sets_.clear();
        o.before_.clear();
        o.rooms_.clear();
        o.entryCount_ = 0;
        o.uniform_ = true;
    }
    return *this;
}

_TOVO_TmIdxSet *TimeIndex::allocSet() { return allocSet(capacity_); }

_TOVO_TmIdxSet *TimeIndex::allocSet(std::uint32_t room) {
    auto *set = static_cast<_TOVO_TmIdxSet *>(std::malloc(sizeof(_TOVO_TmIdxSet)));
    TOVO_TmIdxEntry *entries =
        room ? static_cast<TOVO_TmIdxEntry *>(std::calloc(room, sizeof(TOVO_TmIdxEntry))) : nullptr;
    bool listed = false;
    if (set && (entries || room == 0)) {
        try {
            sets_.reserve(sets_.size() + 1);
            before_.reserve(before_.size() + 1);
            rooms_.reserve(rooms_.size() + 1);
            listed = true;
        } catch (const std::bad_alloc &) {
        }
    }
    if (!listed) {
        std::free(set);
        std::free(entries);
        say("TmIdxSetAlloc: malloc() returned NULL.  No memory available.\n");
        return nullptr;
    }
    set->count = 0;
    set->minTime = kEmptyMin;
    set->maxTime = kEmptyMax;
    set->entries = entries;
    set->next = nullptr;
    if (last_) {
        // The previous last set is now a middle set; the directory stays
        // constant-time only while every middle set holds exactly 512.
        if (last_->count != kFullSet) uniform_ = false;
        last_->next = set;
    } else {
        first_ = set;
    }
    last_ = set;
    ++setCount_;
    before_.push_back(entryCount_);
    sets_.push_back(set);
    rooms_.push_back(room);
    return set;
}

void TimeIndex::clear() {
    _TOVO_TmIdxSet *s = first_;
    while (s) {
        _TOVO_TmIdxSet *next = s->next;
        std::free(s->entries);
        std::free(s);
        s = next;
    }
    first_ = last_ = nullptr;
    setCount_ = 0;
    sets_.clear();
    before_.clear();
    rooms_.clear();
    entryCount_ = 0;
    uniform_ = true;
}

int TimeIndex::append(std::int32_t encodedTime, std::uint32_t byteOffset) {
    if (!last_ || last_->count == kFullSet) {
        if (!allocSet()) return kTmIdxNoMemory;
    }
    _TOVO_TmIdxSet *set = last_;
    if (set->count >= rooms_.back()) {
        // A set read from a file or a capacity below 512: start a set rather
        // than write past its entries.
        if (!allocSet()) return kTmIdxNoMemory;
        set = last_;
    }
    if (encodedTime < set->minTime) set->minTime = encodedTime;
    if (encodedTime > set->maxTime) set->maxTime = encodedTime;
    set->entries[set->count].encodedTime = encodedTime;
    set->entries[set->count].byteOffset = byteOffset;
    ++set->count;
    ++entryCount_;
    return 0;
}

const TOVO_TmIdxEntry *TimeIndex::entry(std::uint32_t n) const {
    if (n == 0 || n > entryCount_ || sets_.empty()) return nullptr;
    const std::uint32_t index = n - 1;
    std::size_t s;
    if (uniform_) {
        s = index / kFullSet;
    } else {
        // before_ is ascending: the last set that starts at or before index.
        auto it = std::upper_bound(before_.begin(), before_.end(), index);
        s = static_cast<std::size_t>(it - before_.begin()) - 1;
    }
    if (s >= sets_.size()) return nullptr;
    const std::uint32_t within = index - before_[s];
    if (within >= sets_[s]->count) return nullptr;
    return &sets_[s]->entries[within];
}

int TimeIndex::map(std::uint32_t recordNumber, std::uint32_t &byteOffset) const {
    if (recordNumber == 0) return kTmIdxRecordZero;
    const TOVO_TmIdxEntry *e = entry(recordNumber);
    if (!e) return kTmIdxNotFound;
    byteOffset = e->byteOffset;
    return 0;
}

int TimeIndex::writeTo(std::FILE *file, std::uint32_t typeId, std::uint32_t formatVersion) {
    XDR x;
    xdrstdio_create(&x, file, XDR_ENCODE);
    unsigned int header[6] = {kMagic, typeId, kRecordVersion, formatVersion, setCount_, capacity_};
    bool ok = true;
    for (unsigned int &h : header) ok = ok && xdr_u_int(&x, &h);
    for (_TOVO_TmIdxSet *s = first_; s && ok; s = s->next) {
        ok = xdr_u_int(&x, &s->count) && xdr_int(&x, &s->minTime) && xdr_int(&x, &s->maxTime);
    }
    for (_TOVO_TmIdxSet *s = first_; s && ok; s = s->next) {
        unsigned int count = s->count;
        ok = xdr_u_int(&x, &count);
        for (unsigned int i = 0; i < count && ok; ++i)
            ok = xdr_int(&x, &s->entries[i].encodedTime) && xdr_u_int(&x, &s->entries[i].byteOffset);
    }
    xdr_destroy(&x);
    return ok ? 0 : kTmIdxWriteFailed;
}

int TimeIndex::write(const wchar_t *path, std::uint32_t typeId, std::uint32_t formatVersion) {
    std::FILE *f = platform::openFile(path, "wb");
    if (!f) return kTmIdxCannotOpen;
    int rc = writeTo(f, typeId, formatVersion);
    if (std::fclose(f) != 0 && rc == 0) rc = kTmIdxCloseFailed;
    return rc;
}

int TimeIndex::readFrom(std::FILE *file, std::uint32_t typeId) {
    XDR x;
    xdrstdio_create(&x, file, XDR_DECODE);
    unsigned int magic, type, version, formatVersion, sets, capacity;
    if (!xdr_u_int(&x, &magic) || magic != kMagic || !xdr_u_int(&x, &type) || type != typeId ||
        !xdr_u_int(&x, &version) || version != kRecordVersion || !xdr_u_int(&x, &formatVersion) ||
        !xdr_u_int(&x, &sets) || !xdr_u_int(&x, &capacity))
        return kTmIdxInvalid;
    // Every set costs 16 bytes of the file at least (its header and its
    // array count) and every entry 8: counts the rest of the file cannot
    // hold are refused before anything is allocated from them, and the
    // entry arrays of sets read are sized by their counts, not the capacity.
    const long here = std::ftell(file);
    const std::int64_t size = platform::fileSize(file);
    const std::int64_t remaining = (size >= 0 && here >= 0) ? size - here : 0;
    if (static_cast<std::int64_t>(sets) * 16 > remaining) return kTmIdxInvalid;
    capacity_ = capacity;
    std::vector<unsigned int> counts;
    std::vector<std::int32_t> mins, maxs;
    try {
        counts.resize(sets);
        mins.resize(sets);
        maxs.resize(sets);
    } catch (const std::bad_alloc &) {
        return kTmIdxNoMemory;
    }
    std::uint64_t total = 0;
    for (unsigned int i = 0; i < sets; ++i) {
        if (!xdr_u_int(&x, &counts[i]) || !xdr_int(&x, &mins[i]) || !xdr_int(&x, &maxs[i])) return kTmIdxInvalid;
        if (counts[i] > capacity_) return kTmIdxInvalid;
        total += counts[i];
    }
    if (total * 8 + static_cast<std::uint64_t>(sets) * 4 > static_cast<std::uint64_t>(remaining)) return kTmIdxInvalid;
    for (unsigned int i = 0; i < sets; ++i) {
        _TOVO_TmIdxSet *s = allocSet(counts[i]);
        if (!s) return kTmIdxNoMemory;
        s->minTime = mins[i];
        s->maxTime = maxs[i];
        unsigned int count;
        if (!xdr_u_int(&x, &count) || count != counts[i]) return kTmIdxInvalid;
        for (unsigned int k = 0; k < count; ++k) {
            if (!xdr_int(&x, &s->entries[k].encodedTime) || !xdr_u_int(&x, &s->entries[k].byteOffset))
                return kTmIdxInvalid;
            ++s->count;
            ++entryCount_;
        }
    }
    return 0;
}

int TimeIndex::read(const wchar_t *path, std::uint32_t typeId) {
    std::FILE *f = platform::openFile(path, "rb");
    if (!f) return kTmIdxCannotOpen;
    int rc = readFrom(f, typeId);
    if (std::fclose(f) != 0 && rc == 0) rc = kTmIdxCloseFailed;
    return rc;
}

}  // namespace velmio
