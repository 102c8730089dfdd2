// VELMDataFile: the self-describing attribute data file, and the raw data
// index built on it.
//
// A file holds a summary (description, status, record count, time range,
// summary attributes with their values, the declaration of the data
// attributes) and time-stamped records with one value per data attribute.
// A companion time index file (the data file's path with "TmIdx" appended)
// maps record numbers to byte offsets.
//
// Files this class creates have the file version 2. Files of another file
// version are read without the data version word of the summary and without
// the length word of each record; a variable-length record of such a file
// runs to the offset of the next record (or the end of the file).
//
// Ownership: every array handed out through a dataValue (ReadRecord,
// GetSummaryAttribute, GetAllSummaryAttributes, GetDataAttribute,
// GetAllDataAttributes) is a fresh malloc'ed copy owned by the caller. Free a
// whole record with FreeRecordValues() or FreeValues(), one value with
// FreeValue(), or each pointer with free() / VELMIO_free(). Arrays given to
// the object (WriteRecord, SetSummaryAttribute, SetDataAttribute) stay the
// caller's; the object copies what it keeps.
//
// Char, string and opaque arrays handed out carry one extra zero byte after
// their elements, so that a string can be used as a C string. An empty array
// is a null pointer with the count 0.
#ifndef VELMIO_DATA_FILE_HPP
#define VELMIO_DATA_FILE_HPP

#include <velmio/export.h>
#include <velmio/morva_string.hpp>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <vector>

struct _TOVO_TmIdxSet;

// The type of an attribute; the value is what the file stores.
enum dataType : std::int32_t {
    DT_INT = 0,             // signed 32-bit integer
    DT_UINT = 1,            // unsigned 32-bit integer
    DT_FLOAT = 2,           // 32-bit float
    DT_DOUBLE = 3,          // 64-bit double
    DT_CHAR = 4,            // char
    DT_SHORT = 5,           // signed 16-bit integer
    DT_USHORT = 6,          // unsigned 16-bit integer
    DT_INT_ARRAY = 7,       // the array types carry an element count beside the value
    DT_UINT_ARRAY = 8,
    DT_FLOAT_ARRAY = 9,
    DT_DOUBLE_ARRAY = 10,
    DT_CHAR_ARRAY = 11,
    DT_SHORT_ARRAY = 12,
    DT_USHORT_ARRAY = 13,
    DT_STRING = 14,         // count = bytes, no terminator needed
    DT_OPAQUE = 15,
};

// One attribute value: a scalar member for DT_INT..DT_USHORT, a pointer to
// the first element for the array types.
union dataValue {
    std::int32_t i;
    std::uint32_t ui;
    float f;
    double d;
    char c;
    std::int16_t s;
    std::uint16_t us;
    std::int32_t *ia;
    std::uint32_t *uia;
    float *fa;
    double *da;
    char *ca;
    std::int16_t *sa;
    std::uint16_t *usa;
    char *str;
    unsigned char *opaque;
    void *ptr;
};
static_assert(sizeof(dataValue) == 8, "dataValue is the file's 8-byte value");

// How a file is opened: data file / time index file stdio modes
// "wb"/"wb", "rb"/"rb", "rb+"/"rb".
enum AccessType : std::int32_t {
    ACCESS_CREATE = 0,  // a new file; attributes may be declared until the first record
    ACCESS_READ = 1,    // read only
    ACCESS_UPDATE = 2,  // read, change the summary status and the summary
};

// Codes: 0 success; 5000014 no disk space, 5000015 too many open files,
// 5000016 access denied, 5000025 cannot open the data file or its index, or
// the summary is unreadable, 5000026 cannot create, encode or write, 5000027
// the file's validation record does not match, 5000038/5000039 the time index
// cannot be opened or is invalid, 5000046 not found, 5000058 record
// cannot be read, 5000059 record cannot be written, 5000061 not allowed in
// this access mode, 5000062 attributes closed, 5000063 no such attribute,
// 5000064 record number out of range, 5000009 out of memory, -1 bad argument.
class VELMIO_API VELMDataFile {
public:
    // An attribute declaration: its type and its name.
    struct Attribute {
        dataType type;
        MORVAUString name;
    };

    // Opens or creates directory/fileName. status: 0 or a code above; the
    // object then exists but refuses what it cannot do.
    VELMDataFile(const MORVAUString &directory, const MORVAUString &fileName, const MORVAUString &description,
                 unsigned int typeWord, AccessType access, unsigned int dataVersion, long &status);
    // A copy is a read-only view of the same file: it has the original's
    // attributes, summary and index, opens the data file again for reading,
    // and never writes or deletes anything.
    VELMDataFile(const VELMDataFile &other);
    // Finishes this object's file as the destructor would, then copies.
    VELMDataFile &operator=(const VELMDataFile &other);
    // Create: writes the index and completes the summary (or deletes both
    // files when no record was written). Update: saves a changed summary.
    virtual ~VELMDataFile();

    virtual unsigned int GetNumberOfAttributes();         // data attributes
    virtual unsigned int GetNumberOfSummaryAttributes();
    virtual unsigned int GetNumberOfRecords();
    virtual unsigned int GetFileVersionNumber();
    virtual unsigned int GetDataVersionNumber();
    virtual unsigned int GetSummeryRecordSize();          // bytes of the summary on disk
    virtual unsigned int GetDataRecordSize();             // fixed part of a record

    // A summary value; arrays are fresh copies (see Ownership) and count gets
    // the element count (1 for scalars) when not null. Index: -1 when
    // negative or greater than the count, 5000063 when equal to it.
    virtual int GetSummaryAttribute(int index, dataValue &value, int *count);
    virtual int GetSummaryAttribute(const MORVAUString &name, dataValue &value, int *count);  // 5000063
    // All summary attributes; counts, when not null, needs room for
    // GetNumberOfSummaryAttributes() ints.
    virtual int GetAllSummaryAttributes(std::vector<MORVAUString> &names, std::vector<dataType> &types,
                                        std::vector<dataValue> &values, int *counts);
    // The same, the counts as a vector.
    virtual int GetAllSummaryAttributes(std::vector<MORVAUString> &names, std::vector<dataType> &types,
                                        std::vector<dataValue> &values, std::vector<int> &counts);

    // Values of the current record: the record last read, or the values
    // staged with SetDataAttribute. Arrays are fresh copies; count as above.
    virtual int GetDataAttribute(unsigned int index, dataValue &value, int *count = nullptr);  // -1
    virtual int GetDataAttribute(const MORVAUString &name, dataValue &value, int *count = nullptr);  // 5000063
    virtual int GetAllDataAttributes(std::vector<MORVAUString> &names, std::vector<dataType> &types,
                                     std::vector<dataValue> &values, std::vector<int> *counts = nullptr);
    // Names and types of the data attributes, in declaration order.
    virtual int GetAttributesName(std::vector<MORVAUString> &names, std::vector<dataType> &types);
    // Position of the data attribute name; 0xFFFFFFFF when there is none
    // (the result is still 0).
    virtual int GetAttributeIndex(unsigned int &index, const MORVAUString &name);

    virtual unsigned int GetSummaryRecordStatus();
    virtual unsigned int GetDataRecordStatus();           // of the record last read
    virtual unsigned int GetMinimumSummaryRecordSize();   // 52 + XDR size of the description
    // Seconds; +1.7976931348623157e308 / -1.7976931348623157e308 while
    // the file has no record.
    virtual double GetMinTime();
    virtual double GetMaxTime();

    // Declares an attribute (create mode before the first record: else 5000061
    // or 5000062). -1 for a type outside 0..15 or a name over 256 UTF-8 bytes.
    virtual int AddAttribute(dataType type, const MORVAUString &name);
    virtual int AddSummaryAttribute(dataType type, const MORVAUString &name);

    // Summary setters (create and update, else 5000061). Arrays are copied
    // (count elements). Only values set before the first record reach the
    // file: later the summary is rewritten in its remembered fields only
    // (status, times, sizes, record count).
    virtual int SetSummaryAttribute(int index, dataValue value, int count);
    virtual int SetSummaryAttribute(const MORVAUString &name, dataValue value, int count);
    virtual int SetSummaryRecordStatus(unsigned int status);
    // Stages a value of the next record (create only, else 5000061); a
    // WriteRecord with empty value and count vectors writes the staged values.
    virtual int SetDataAttribute(unsigned int index, dataValue value, int count);
    virtual int SetDataAttribute(const MORVAUString &name, dataValue value, int count);

    // Appends a record (create only). values holds one value per data
    // attribute (or is empty: the staged values); counts the element counts
    // of the array attributes (may be empty when there is none). 5000026 when
    // the values do not match the attributes or cannot be encoded, 5000059
    // when the bytes cannot be written or the file would pass 4 GiB.
    virtual int WriteRecord(double time, unsigned int status, const std::vector<dataValue> &values,
                            const std::vector<int> &counts);
    // Finishes the file and closes it: a created file gets its time index
    // and summary and is pushed to the disk, an updated one its changed
    // summary. 0, or the code of the first part that could not be written
    // (5000040 the time index, 5000026 the data file); the files are closed
    // either way. The destructor closes an open file the same way.
    int Close();
    // Reads record recordNumber (from 1; -999 is the one after the current
    // record). values and counts are replaced, arrays freshly allocated for
    // the caller (free them before reusing the vectors). 5000064 out of
    // range, 5000058 unreadable; the outputs are untouched on failure.
    virtual int ReadRecord(double &time, unsigned int &status, std::vector<dataValue> &values,
                           std::vector<int> &counts, int recordNumber);
    virtual int ReadRecord(double &time, unsigned int &status, std::vector<dataValue> &values, int recordNumber);

    // The scaled encodings, as the flat TOVO_ functions of <velmio/encoding.h>.
    virtual double TOVO_DecodeDepthPosition(double reference, int scale, int value);
    virtual int TOVO_EncodeDepthPosition(double position, double reference, int scale);
    virtual double TOVO_DecodeDepthTime(double reference, int scale, int value);
    virtual int TOVO_EncodeDepthTime(double time, double reference, int scale);
    virtual double TOVO_DecodeMeters(int value);
    virtual int TOVO_EncodeMeters(double metres);
    virtual double TOVO_DecodePosition(int reference, int scale, int value);
    virtual int TOVO_EncodeRefPosition(double radians);
    virtual int TOVO_EncodePosition(double position, int reference, int scale);
    virtual double TOVO_DecodeRadians(int value);
    virtual int TOVO_EncodeRadians(double radians);
    virtual double TOVO_DecodeSeconds(int value);
    virtual int TOVO_EncodeSeconds(double seconds);
    virtual double TOVO_DecodeTime(int referenceMinutes, int scale, int value);
    virtual double TOVO_DecodeRefTime(int minutes);
    virtual int TOVO_EncodeRefTime(double seconds);
    virtual int TOVO_EncodeTime(double time, int referenceMinutes, int scale);

    // Frees the arrays among values (types parallel to values) and sets those
    // pointers to null; scalars are left alone.
    static void FreeValues(const std::vector<dataType> &types, std::vector<dataValue> &values);
    static void FreeValue(dataType type, dataValue &value);
    // FreeValues with this file's data attribute types: frees a record that
    // ReadRecord or GetAllDataAttributes handed out.
    void FreeRecordValues(std::vector<dataValue> &values);

    // Array types 7..15 are variable-length.
    static bool IsArrayType(dataType type) { return type >= DT_INT_ARRAY && type <= DT_OPAQUE; }

protected:
    virtual int TOVO_ReadDataValidationRecord();   // 0 or 5000027
    virtual int TOVO_WriteDataValidationRecord();  // 0 or 5000028
    virtual int ReadSummary();                     // 0, 5000025, 5000027, 5000009
    virtual int WriteSummary();                    // 0 or 5000026
    virtual int UpdateSummary();                   // 0 or 5000026
    virtual _TOVO_TmIdxSet *TmIdxSetAlloc();
    virtual int TmIdxRead();
    virtual int TmIdxWrite();
    virtual void TmIdxSetFree();
    virtual int TmIdxEntry(int encodedTime);
    virtual int TmIdxMapIndexToByteOffset(unsigned int recordNumber, unsigned int &byteOffset);
    // Bytes of one record with these values (see the file layout); the fixed
    // size when either vector is empty or no data attribute is declared.
    virtual unsigned int CalculateSizeOfDataRecord(const std::vector<int> &counts,
                                                   const std::vector<dataValue> &values);

    // The declarations, for subclasses that check a file's attribute list.
    const std::vector<Attribute> &dataAttributes() const;
    const std::vector<Attribute> &summaryAttributes() const;
    AccessType accessType() const;

private:
    static int CopyAttributes(const std::vector<Attribute> &attributes, const std::vector<dataValue> &values,
                              const std::vector<int> &counts, std::vector<MORVAUString> &outNames,
                              std::vector<dataType> &outTypes, std::vector<dataValue> &outValues,
                              std::vector<int> *outCounts);

    void copyFrom(const VELMDataFile &other);
    void finish();
    void closeFiles();
    int finishFile();    // finish, with the first failure's code
    int closeStreams();  // closeFiles, with the code of a failed close
    std::uint64_t recordSize(const std::vector<dataValue> &values, const std::vector<int> &counts) const;
    unsigned int fixedRecordSize() const;
    int summaryIndex(int index) const;
    int findSummary(const MORVAUString &name) const;
    int findData(const MORVAUString &name) const;
    void setCurrentValues(const std::vector<dataValue> &values, const std::vector<int> &counts);
    void clearValues(std::vector<dataValue> &values, std::vector<int> &counts,
                     const std::vector<Attribute> &attributes);
    int readRecordBytes(unsigned int recordNumber, unsigned int offset, std::vector<char> &bytes);

    // The state lives in the library, so that it can change without breaking
    // programs built against an earlier version.
    struct Impl;
    std::unique_ptr<Impl> d_;
};

// The raw data index: the file "RawDataIndex", type word 70, data version 1,
// the summary attribute "DataType" (DT_INT) and the data attributes
// "RecordType" (DT_INT), "RecordByteOffset" (DT_UINT), "RecordLength"
// (DT_INT) and "VELMProfileNumber" (DT_INT). Opening an existing file whose
// attributes differ gives 5000025.
class VELMIO_API VELMRawDataIndex : public VELMDataFile {
public:
    VELMRawDataIndex(const MORVAUString &directory, AccessType access, long &status,
                     const MORVAUString &description = MORVAUString());
    static const wchar_t *const kFileName;  // "RawDataIndex"
    static constexpr unsigned int kTypeWord = 70;
    static constexpr unsigned int kDataVersion = 1;
};

#endif
