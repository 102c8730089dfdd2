// The vessel configuration document: one ".tvc" XML file with root
// "VELMVesselConfig", a vessel shape, and one list of time-stamped entries
// (vessel_entries.hpp) per sensor kind.
//
// An entry is valid from its own time up to, not including, the time of the
// next entry of its kind. Element names are matched ignoring case on reading.
// Version 1 (pre-XML) files are recognised but cannot be read.
//
// Status codes: 0 success; 5100001 not a vessel configuration document;
// 5100002 no file name; 5100003 no list of that kind; 5100005 the document
// could not be made; 5100006 the time precedes the first entry; 5100007 null
// entry; 5100008 an entry with that time exists; 5100009 no entry with that
// time; 5100010 malformed time stamp; -1 the file could not be written, or a
// bad argument. Entries are shared through std::shared_ptr and belong to one
// vessel at a time.
#ifndef VELMIO_VESSEL_HPP
#define VELMIO_VESSEL_HPP

#include <velmio/export.h>
#include <velmio/morva_string.hpp>
#include <velmio/vessel_entries.hpp>
#include <velmio/xml_helpers.hpp>

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

// The entries of one sensor kind, sorted by time with no two of one time,
// and the list element of the document they are bound to.
class VELMIO_API VELMVesselSensorList {
public:
    explicit VELMVesselSensorList(const wchar_t *kindName);
    // Removes the list's entries and element from the document.
    ~VELMVesselSensorList();
    VELMVesselSensorList(const VELMVesselSensorList &) = delete;
    VELMVesselSensorList &operator=(const VELMVesselSensorList &) = delete;

    const wchar_t *getName() const;
    // Inserts in time order: 0, 5100007 (null) or 5100008 (time taken).
    int add(std::shared_ptr<VELMVesselSensorConfig> entry);
    // Removes the entry of exactly that time with its element: 0 or 5100009.
    int remove(double time);
    // The entry valid at time; null for an empty list (error 0) or a time
    // before the first entry (error 5100006).
    std::shared_ptr<VELMVesselSensorConfig> getConfig(double time, int &error) const;
    std::shared_ptr<VELMVesselSensorConfig> getFirstConfig() const;
    std::shared_ptr<VELMVesselSensorConfig> getLastConfig() const;
    // The entry after the given one in time, or null.
    std::shared_ptr<VELMVesselSensorConfig> getNextConfig(const VELMVesselSensorConfig *entry) const;
    std::size_t getCount() const;
    bool empty() const;
    // Moves the held entry of entry's time to newTime: 0, -1 (null entry),
    // 5100009 (not held) or 5100008 (newTime taken: the moved entry is dropped).
    int updateTimeStamp(VELMVesselSensorConfig *entry, double newTime);
    // Loads the entries from the element's children (duplicate times are
    // dropped with their elements); an empty result removes the element.
    // 0 or the first entry's load failure.
    int load(xmlNode *listElement);
    // Writes the list under the document root; an empty list writes nothing.
    int store(xmlNode *root);
    xmlNode *getNode() const;

private:
    friend class VELMVessel;
    // Drops every binding to the document without touching it (the document
    // is about to be freed, or must be kept as read).
    void forgetNodes();

    struct Impl;
    std::unique_ptr<Impl> d_;
};

// Outline of the vessel: plan view points (X, Y), profile view points (Y, Z)
// and the reference point (length, width, height).
class VELMIO_API VELMVesselShape {
public:
    using Coord = std::pair<double, double>;
    void addPlanViewCoord(double x, double y) { plan_.emplace_back(x, y); }
    void addProfileViewCoord(double y, double z) { profile_.emplace_back(y, z); }
    void clearPlanViewCoords() { plan_.clear(); }
    void clearProfileViewCoords() { profile_.clear(); }
    const std::vector<Coord> &getPlanViewCoords() const { return plan_; }
    const std::vector<Coord> &getProfileViewCoords() const { return profile_; }
    void setRP(double length, double width, double height) { length_ = length, width_ = width, height_ = height; }
    void getRP(double &length, double &width, double &height) const {
        length = length_, width = width_, height = height_;
    }
    // From and to the "VesselShape" element ("PlanCoordinates",
    // "ProfileCoordinates" with one "Entry" per point, "RP"). Stored points
    // replace those the element held. 0, or -1 when an element cannot be made.
    int load(xmlNode *shapeElement);
    int store(xmlNode *shapeElement) const;

private:
    friend struct velmio::vessel::Tables;
    std::vector<Coord> plan_;
    std::vector<Coord> profile_;
    double length_ = 0.0, width_ = 0.0, height_ = 0.0;
};

// "MetaData" and "EditHistory" are accepted on reading and hold nothing.
class VELMIO_API VELMVesselMetaData {};
class VELMIO_API VELMVesselEditHistory {};

namespace VELM {
// The entry class of each sensor list element name.
class VELMIO_API VesselRegistry {
public:
    // The registered spelling of a list name matched ignoring case, or null.
    static const wchar_t *canonicalName(const wchar_t *listName);
    // A new entry of the class registered for the list name (time 0), or
    // null for an unregistered name.
    static std::shared_ptr<VELMVesselSensorConfig> create(const wchar_t *listName);
    static std::size_t count();
    static const wchar_t *name(std::size_t index);  // null past the end
};
}  // namespace VELM

class VELMIO_API VELMVessel {
public:
    VELMVessel();
    // Names the file (see setFileName) and reads it; error receives the
    // result of the read. A non-XML file is taken for a Version 1 file,
    // which cannot be read: 5000401.
    VELMVessel(const wchar_t *fileName, int &error);
    ~VELMVessel();
    VELMVessel(const VELMVessel &) = delete;
    VELMVessel &operator=(const VELMVessel &) = delete;

    static const wchar_t *getDefaultExtension() { return L".tvc"; }
    // Sets the file name, appending ".tvc" unless the name ends in it
    // (ignoring case): 0 or 5100002 for a null name. With forgetDocument the
    // held document is dropped; the next store writes a fresh one.
    int setFileName(const wchar_t *name, bool forgetDocument = false);
    const wchar_t *getFileName() const;
    float getFileVersion() const;
    bool isModified() const;

    // Writes the document ("Version" "2.0") through a temporary file that
    // then replaces the file: 0, 5100002 (no file name), 5100005 or -1.
    int store();

    // The entry of a kind valid at time; error 5100003 without a list of
    // the kind, else as VELMVesselSensorList::getConfig.
    std::shared_ptr<VELMVesselSensorConfig> getSensor(const wchar_t *kind, double time, int &error) const;
    std::shared_ptr<VELMVesselSensorConfig> getFirstSensor(const wchar_t *kind) const;
    std::shared_ptr<VELMVesselSensorConfig> getLastSensor(const wchar_t *kind) const;
    template <class T>
    std::shared_ptr<T> getSensor(double time, int &error) const {
        return std::dynamic_pointer_cast<T>(getSensor(T::kSensorName, time, error));
    }
    template <class T>
    std::shared_ptr<T> getFirstSensor() const {
        return std::dynamic_pointer_cast<T>(getFirstSensor(T::kSensorName));
    }
    template <class T>
    std::shared_ptr<T> getLastSensor() const {
        return std::dynamic_pointer_cast<T>(getLastSensor(T::kSensorName));
    }

    // Adds to the list of the entry's kind (made when missing): 0, 5100007,
    // 5100008.
    int addSensor(std::shared_ptr<VELMVesselSensorConfig> entry);
    // Removes the entry of exactly that time, and the list when it empties:
    // 0, 5100003 or 5100009.
    int removeSensor(double time, const wchar_t *kind);
    // Removes the list of a kind with all its entries: 0 or 5100003.
    int removeAllSensors(const wchar_t *kind);
    // The lists, sorted by kind name (code unit order).
    const std::vector<std::unique_ptr<VELMVesselSensorList>> &getSensors() const;
    // The list of a kind, or null. Registered kind names match ignoring case.
    VELMVesselSensorList *getSensorList(const wchar_t *kind) const;
    template <class T>
    VELMVesselSensorList *getSensorList() const {
        return getSensorList(T::kSensorName);
    }

    void setVesselShape(const VELMVesselShape &shape);
    const VELMVesselShape &getVesselShape() const;
    const VELMVesselMetaData &getMetaData() const;
    const VELMVesselEditHistory &getEditHistory() const;

    // The file of a vessel name: the name itself when it is an existing
    // file, else the name with ".tvc" appended when that file exists. False
    // when neither exists.
    static bool resolveVesselName(const wchar_t *name, MORVAUString &path);

private:
    int read();
    int readDocument();
    VELMVesselSensorList *addList(const wchar_t *kind);
    VELMVesselSensorList *findSensorList(const wchar_t *kind) const;
    void releaseDocument();

    // The state lives in the library, so that it can change without breaking
    // programs built against an earlier version.
    struct Impl;
    std::unique_ptr<Impl> d_;
};

#endif
