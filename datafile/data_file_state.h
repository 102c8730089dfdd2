// The private state of a VELMDataFile, shared by the files that implement it.
#ifndef VELMIO_DATAFILE_DATA_FILE_STATE_H
#define VELMIO_DATAFILE_DATA_FILE_STATE_H

#include <velmio/data_file.hpp>

#include "linestore/time_index.h"

#include <cfloat>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <vector>

struct VELMDataFile::Impl {
    std::FILE *dataFile_ = nullptr;
    std::FILE *indexFile_ = nullptr;
    std::vector<char> recordBuffer_;
    unsigned int summaryRecordSize_ = 0;
    unsigned int dataRecordSize_ = 12;
    bool summaryDirty_ = false;
    bool reposition_ = true;  // the data file is not known to sit at the next record
    unsigned int posDataRecordSize_ = 0;
    unsigned int posSummaryStatus_ = 0;
    unsigned int posReferenceTime_ = 0;
    unsigned int posMinTime_ = 0;
    unsigned int posMaxTime_ = 0;
    unsigned int posRecordCount_ = 0;
    AccessType accessType_ = ACCESS_READ;
    MORVAUString dataPath_;
    MORVAUString indexPath_;
    unsigned int numberOfRecords_ = 0;
    unsigned int typeWord_ = 0;
    unsigned int fileVersion_ = 2;
    unsigned int dataVersion_ = 0;
    bool summaryWritten_ = false;
    unsigned int currentRecord_ = 0;
    bool attributesOpen_ = true;
    MORVAUString description_;
    int timeScale_ = 1000;
    unsigned int summaryStatus_ = 0;
    unsigned int dataStatus_ = 0;
    int referenceTime_ = 0;
    double minTime_ = DBL_MAX;
    double maxTime_ = -DBL_MAX;
    std::vector<Attribute> summaryAttributes_;
    std::vector<dataValue> summaryValues_;
    std::vector<int> summaryCounts_;
    std::vector<Attribute> dataAttributes_;
    std::vector<dataValue> currentValues_;
    std::vector<int> currentCounts_;
    unsigned int recordBufferCapacity_ = 512;
    std::unique_ptr<velmio::TimeIndex> index_{new velmio::TimeIndex};
    bool variableLength_ = false;
    std::uint64_t fileSize_ = 0;        // read and update: bytes of the data file
    std::uint64_t endOfData_ = 0;       // create: where the next record goes
    bool createdData_ = false;          // this object made the files it may delete
    bool createdIndex_ = false;
};

#endif
