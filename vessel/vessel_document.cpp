// The vessel configuration document: reading, the lists of entries, writing.
#include <velmio/vessel.hpp>
#include <velmio/vessel_queries.h>

#include "foundation/diagnostics.h"
#include "platform/durable_replace.h"
#include "platform/files.h"
#include "vessel/xml_access.h"

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <algorithm>
#include <cerrno>
#include <cwchar>

namespace {
constexpr int kNotVesselDocument = 5100001;
constexpr int kNullFileName = 5100002;
constexpr int kNoList = 5100003;
constexpr int kNoDocument = 5100005;
constexpr int kNullEntry = 5100007;

template <class T>
std::shared_ptr<VELMVesselSensorConfig> make() {
    return std::make_shared<T>();
}

const struct {
    const wchar_t *name;
    std::shared_ptr<VELMVesselSensorConfig> (*create)();
} kRegistry[] = {
    {VELMDepthConfig::kSensorName, make<VELMDepthConfig>},
    {VELMDraftConfig::kSensorName, make<VELMDraftConfig>},
    {VELMGyroConfig::kSensorName, make<VELMGyroConfig>},
    {VELMHeaveConfig::kSensorName, make<VELMHeaveConfig>},
    {VELMNavConfig::kSensorName, make<VELMNavConfig>},
    {VELMPitchConfig::kSensorName, make<VELMPitchConfig>},
    {VELMRollConfig::kSensorName, make<VELMRollConfig>},
    {VELMSVPConfig::kSensorName, make<VELMSVPConfig>},
    {VELMSideScanConfig::kSensorName, make<VELMSideScanConfig>},
    {VELMSideScanGyroConfig::kSensorName, make<VELMSideScanGyroConfig>},
    {VELMSideScanHeaveConfig::kSensorName, make<VELMSideScanHeaveConfig>},
    {VELMSideScanNavConfig::kSensorName, make<VELMSideScanNavConfig>},
    {VELMSideScanPitchConfig::kSensorName, make<VELMSideScanPitchConfig>},
    {VELMSideScanRollConfig::kSensorName, make<VELMSideScanRollConfig>},
    {VELMTowedSSSConfig::kSensorName, make<VELMTowedSSSConfig>},
    {VELMTPEConfig::kSensorName, make<VELMTPEConfig>},
    {VELMWaterlineHeight::kSensorName, make<VELMWaterlineHeight>},
};

const wchar_t *registered(const wchar_t *name) {
    if (!name) return nullptr;
    const MORVAUString wanted(name);
    for (const auto &row : kRegistry)
        if (wanted.equalsIgnoreCase(row.name)) return row.name;
    return nullptr;
}

// Keeps libxml2's "keep blanks" default of the caller while a file is parsed
// without blank text between elements.
class DropBlankText {
public:
    DropBlankText() : previous_(xmlKeepBlanksDefault(0)) {}
    ~DropBlankText() { xmlKeepBlanksDefault(previous_); }
    DropBlankText(const DropBlankText &) = delete;
    DropBlankText &operator=(const DropBlankText &) = delete;

private:
    int previous_;
};
}  // namespace

namespace VELM {
const wchar_t *VesselRegistry::canonicalName(const wchar_t *listName) { return registered(listName); }

std::shared_ptr<VELMVesselSensorConfig> VesselRegistry::create(const wchar_t *listName) {
    const wchar_t *name = registered(listName);
    for (const auto &row : kRegistry)
        if (row.name == name) return row.create();
    return nullptr;
}

std::size_t VesselRegistry::count() { return sizeof kRegistry / sizeof kRegistry[0]; }
const wchar_t *VesselRegistry::name(std::size_t index) { return index < count() ? kRegistry[index].name : nullptr; }
}  // namespace VELM

struct VELMVessel::Impl {
    MORVAUString fileName_;
    xmlDoc *doc_ = nullptr;
    float fileVersion_ = 0.0f;
    VELMVesselShape shape_;
    std::vector<std::unique_ptr<VELMVesselSensorList>> lists_;
    bool modified_ = false;
    VELMVesselMetaData metaData_;
    VELMVesselEditHistory editHistory_;
};

VELMVessel::VELMVessel() : d_(new Impl) {}

VELMVessel::VELMVessel(const wchar_t *fileName, int &error) : d_(new Impl) {
    error = setFileName(fileName);
    if (error == 0) error = read();
}

VELMVessel::~VELMVessel() { releaseDocument(); }

const wchar_t *VELMVessel::getFileName() const { return d_->fileName_.c_str(); }
float VELMVessel::getFileVersion() const { return d_->fileVersion_; }
bool VELMVessel::isModified() const { return d_->modified_; }
const std::vector<std::unique_ptr<VELMVesselSensorList>> &VELMVessel::getSensors() const { return d_->lists_; }
void VELMVessel::setVesselShape(const VELMVesselShape &shape) { d_->shape_ = shape; }
const VELMVesselShape &VELMVessel::getVesselShape() const { return d_->shape_; }
const VELMVesselMetaData &VELMVessel::getMetaData() const { return d_->metaData_; }
const VELMVesselEditHistory &VELMVessel::getEditHistory() const { return d_->editHistory_; }

void VELMVessel::releaseDocument() {
    // The document goes as a whole; entries kept by callers lose their binding.
    for (auto &list : d_->lists_) list->forgetNodes();
    d_->lists_.clear();
    if (d_->doc_) xmlFreeDoc(d_->doc_);
    d_->doc_ = nullptr;
}

int VELMVessel::setFileName(const wchar_t *name, bool forgetDocument) {
    if (!name) return kNullFileName;
    MORVAUString file(name);
    if (!file.endsWithIgnoreCase(getDefaultExtension())) file += getDefaultExtension();
    d_->fileName_ = file;
    if (forgetDocument && d_->doc_) {
        for (auto &list : d_->lists_) list->forgetNodes();
        xmlFreeDoc(d_->doc_);
        d_->doc_ = nullptr;
    }
    return 0;
}

bool VELMVessel::resolveVesselName(const wchar_t *name, MORVAUString &path) {
    if (!name || !*name) return false;
    if (velmio::platform::isRegularFile(name)) {
        path = MORVAUString(name);
        return true;
    }
    MORVAUString withExtension(name);
    withExtension += getDefaultExtension();
    if (velmio::platform::isRegularFile(withExtension.c_str())) {
        path = withExtension;
        return true;
    }
    return false;
}

int VELMVessel::read() {
    releaseDocument();
    d_->shape_ = VELMVesselShape();
    const MORVAUString heldName = d_->fileName_;
    MORVAUString resolved;
    if (resolveVesselName(d_->fileName_.c_str(), resolved)) d_->fileName_ = resolved;
    {
        DropBlankText noBlanks;
        d_->doc_ = VELM::OpenXmlFile(d_->fileName_.c_str());
    }
    if (!d_->doc_) {
        MORVAUString version1 = d_->fileName_;
        if (version1.endsWithIgnoreCase(getDefaultExtension()))
            version1 = version1.substr(0, version1.length() - std::wcslen(getDefaultExtension()));
        velmio::say("%s is a Version 1 VCF file.  Attempting to load using Version 1 API\n",
                    velmio::printable(version1.c_str()).c_str());
        const int status = VELMVesselImport(version1.c_str(), this);
        d_->fileName_ = heldName;
        return status;
    }
    d_->fileName_ = heldName;
    return readDocument();
}

int VELMVessel::readDocument() {
    xmlNode *root = xmlDocGetRootElement(d_->doc_);
    const auto version = velmio::vessel::attributeText(root, "Version");
    if (!root || !velmio::vessel::sameName(root->name, "VELMVesselConfig") || !version || version->empty()) {
        velmio::say("VELMVessel::read(): %s is not a vessel configuration document\n",
                    velmio::printable(d_->fileName_.c_str()).c_str());
        xmlFreeDoc(d_->doc_);
        d_->doc_ = nullptr;
        return kNotVesselDocument;
    }
    d_->fileVersion_ = static_cast<float>(velmio::vessel::parseReal(*version));

    for (xmlNode *child = root->children; child;) {
        xmlNode *next = child->next;  // an empty or repeated list leaves the document
        if (child->type == XML_ELEMENT_NODE && !velmio::vessel::sameName(child->name, "EditHistory") &&
            !velmio::vessel::sameName(child->name, "MetaData")) {
            if (velmio::vessel::sameName(child->name, "VesselShape")) {
                d_->shape_.load(child);
            } else {
                const MORVAUString elementName = MORVAUString::fromUtf8(reinterpret_cast<const char *>(child->name));
                const wchar_t *known = VELM::VesselRegistry::canonicalName(elementName.c_str());
                auto list = std::make_unique<VELMVesselSensorList>(known ? known : elementName.c_str());
                if (int status = list->load(child)) {
                    list->forgetNodes();  // the document stays as read
                    return status;
                }
                auto at = std::find_if(d_->lists_.begin(), d_->lists_.end(), [&](const auto &held) {
                    return std::wcscmp(held->getName(), list->getName()) >= 0;
                });
                const bool repeated = at != d_->lists_.end() && std::wcscmp((*at)->getName(), list->getName()) == 0;
                if (repeated || list->empty()) {
                    // Only the first list of a kind counts; the list's
                    // destructor takes a repeated list out of the document.
                    if (list->empty()) list->forgetNodes();
                } else {
                    d_->lists_.insert(at, std::move(list));
                }
            }
        }
        child = next;
    }
    d_->modified_ = false;
    return 0;
}

int VELMVessel::store() {
    if (d_->fileName_.empty()) return kNullFileName;
    if (!d_->doc_) {
        d_->doc_ = VELM::CreateXmlFile(L"VELMVesselConfig", 2.0f);
        if (!d_->doc_) return kNoDocument;
    }
    xmlNode *root = xmlDocGetRootElement(d_->doc_);
    if (!root || !velmio::vessel::setAttribute(root, "Version", "2.0")) return kNoDocument;
    if (d_->shape_.store(VELM::CreateNode(root, L"VesselShape")) != 0) return -1;
    for (auto &list : d_->lists_)
        if (int status = list->store(root)) return status;

    // Written beside the target and pushed to the disk first, so that a
    // failed write or a crash leaves the previous file intact.
    const int error = velmio::platform::replaceFileBySaving(d_->fileName_.str(), [&](const std::wstring &temporary) {
        return VELM::SaveXmlFile(d_->doc_, temporary.c_str()) < 0 ? (errno != 0 ? errno : EIO) : 0;
    });
    if (error) {
        velmio::say("VELMVessel::store(): unable to write %s\n", velmio::printable(d_->fileName_.c_str()).c_str());
        return -1;
    }
    d_->modified_ = true;
    return 0;
}

VELMVesselSensorList *VELMVessel::findSensorList(const wchar_t *kind) const {
    if (!kind) return nullptr;
    const wchar_t *known = VELM::VesselRegistry::canonicalName(kind);
    const wchar_t *wanted = known ? known : kind;
    for (const auto &list : d_->lists_)
        if (std::wcscmp(list->getName(), wanted) == 0) return list.get();
    return nullptr;
}

VELMVesselSensorList *VELMVessel::getSensorList(const wchar_t *kind) const { return findSensorList(kind); }

VELMVesselSensorList *VELMVessel::addList(const wchar_t *kind) {
    if (VELMVesselSensorList *held = findSensorList(kind)) return held;
    const wchar_t *known = VELM::VesselRegistry::canonicalName(kind);
    auto list = std::make_unique<VELMVesselSensorList>(known ? known : kind);
    auto at = std::find_if(d_->lists_.begin(), d_->lists_.end(),
                           [&](const auto &held) { return std::wcscmp(held->getName(), list->getName()) > 0; });
    return d_->lists_.insert(at, std::move(list))->get();
}

std::shared_ptr<VELMVesselSensorConfig> VELMVessel::getSensor(const wchar_t *kind, double time, int &error) const {
    VELMVesselSensorList *list = findSensorList(kind);
    if (!list) {
        error = kNoList;
        return nullptr;
    }
    return list->getConfig(time, error);
}

std::shared_ptr<VELMVesselSensorConfig> VELMVessel::getFirstSensor(const wchar_t *kind) const {
    VELMVesselSensorList *list = findSensorList(kind);
    return list ? list->getFirstConfig() : nullptr;
}

std::shared_ptr<VELMVesselSensorConfig> VELMVessel::getLastSensor(const wchar_t *kind) const {
    VELMVesselSensorList *list = findSensorList(kind);
    return list ? list->getLastConfig() : nullptr;
}

int VELMVessel::addSensor(std::shared_ptr<VELMVesselSensorConfig> entry) {
    if (!entry) return kNullEntry;
    const int status = addList(entry->getSensorName())->add(std::move(entry));
    if (status == 0) d_->modified_ = true;
    return status;
}

int VELMVessel::removeSensor(double time, const wchar_t *kind) {
    VELMVesselSensorList *list = findSensorList(kind);
    if (!list) return kNoList;
    if (int status = list->remove(time)) return status;
    d_->modified_ = true;
    if (list->empty()) removeAllSensors(kind);
    return 0;
}

int VELMVessel::removeAllSensors(const wchar_t *kind) {
    VELMVesselSensorList *list = findSensorList(kind);
    if (!list) return kNoList;
    d_->lists_.erase(std::find_if(d_->lists_.begin(), d_->lists_.end(), [&](const auto &held) { return held.get() == list; }));
    d_->modified_ = true;
    return 0;
}
