// The time-ordered entries of one sensor kind.
#include <velmio/vessel.hpp>

#include "vessel/xml_access.h"

#include <libxml/tree.h>
#include <libxml/valid.h>

#include <algorithm>

namespace {
constexpr int kNullEntry = 5100007;
constexpr int kTimeTaken = 5100008;
constexpr int kNoSuchTime = 5100009;
constexpr int kBeforeFirst = 5100006;
}  // namespace

struct VELMVesselSensorList::Impl {
    MORVAUString name_;
    std::vector<std::shared_ptr<VELMVesselSensorConfig>> entries_;
    xmlNode *node_ = nullptr;
};

VELMVesselSensorList::VELMVesselSensorList(const wchar_t *kindName) : d_(new Impl) { d_->name_ = kindName; }

const wchar_t *VELMVesselSensorList::getName() const { return d_->name_.c_str(); }
std::size_t VELMVesselSensorList::getCount() const { return d_->entries_.size(); }
bool VELMVesselSensorList::empty() const { return d_->entries_.empty(); }
xmlNode *VELMVesselSensorList::getNode() const { return d_->node_; }

VELMVesselSensorList::~VELMVesselSensorList() {
    // The entries may live on elsewhere: their elements go now, with the list's.
    for (auto &entry : d_->entries_) entry->releaseNode();
    VELM::DeleteNode(d_->node_);
}

void VELMVesselSensorList::forgetNodes() {
    for (auto &entry : d_->entries_) entry->forgetNode();
    d_->node_ = nullptr;
}

int VELMVesselSensorList::add(std::shared_ptr<VELMVesselSensorConfig> entry) {
    if (!entry) return kNullEntry;
    const double time = entry->getTimeStamp();
    auto at = std::find_if(d_->entries_.begin(), d_->entries_.end(), [&](const auto &e) { return e->getTimeStamp() >= time; });
    if (at != d_->entries_.end() && (*at)->getTimeStamp() == time) return kTimeTaken;
    d_->entries_.insert(at, std::move(entry));
    return 0;
}

int VELMVesselSensorList::remove(double time) {
    auto at = std::find_if(d_->entries_.begin(), d_->entries_.end(), [&](const auto &e) { return e->getTimeStamp() == time; });
    if (at == d_->entries_.end()) return kNoSuchTime;
    (*at)->releaseNode();
    d_->entries_.erase(at);
    return 0;
}

std::shared_ptr<VELMVesselSensorConfig> VELMVesselSensorList::getConfig(double time, int &error) const {
    error = 0;
    if (d_->entries_.empty()) return nullptr;
    for (std::size_t i = 0; i < d_->entries_.size(); ++i) {
        const double t = d_->entries_[i]->getTimeStamp();
        if (t == time) return d_->entries_[i];
        if (t > time) {
            if (i == 0) {
                error = kBeforeFirst;
                return nullptr;
            }
            return d_->entries_[i - 1];
        }
    }
    return d_->entries_.back();
}

std::shared_ptr<VELMVesselSensorConfig> VELMVesselSensorList::getFirstConfig() const {
    return d_->entries_.empty() ? nullptr : d_->entries_.front();
}

std::shared_ptr<VELMVesselSensorConfig> VELMVesselSensorList::getLastConfig() const {
    return d_->entries_.empty() ? nullptr : d_->entries_.back();
}

std::shared_ptr<VELMVesselSensorConfig> VELMVesselSensorList::getNextConfig(const VELMVesselSensorConfig *entry) const {
    if (!entry) return nullptr;
    for (const auto &e : d_->entries_)
        if (e->getTimeStamp() > entry->getTimeStamp()) return e;
    return nullptr;
}

int VELMVesselSensorList::updateTimeStamp(VELMVesselSensorConfig *entry, double newTime) {
    if (!entry) return -1;
    auto at = std::find_if(d_->entries_.begin(), d_->entries_.end(),
                           [&](const auto &e) { return e->getTimeStamp() == entry->getTimeStamp(); });
    if (at == d_->entries_.end()) return kNoSuchTime;
    std::shared_ptr<VELMVesselSensorConfig> moved = *at;
    d_->entries_.erase(at);
    moved->setTimeStamp(newTime);
    const int status = add(moved);
    if (status != 0) moved->releaseNode();  // dropped, and its element with it
    return status;
}

int VELMVesselSensorList::load(xmlNode *listElement) {
    if (!listElement) return -1;
    d_->node_ = listElement;
    for (xmlNode *child = listElement->children; child;) {
        xmlNode *next = child->next;  // a dropped entry takes its element away
        if (child->type == XML_ELEMENT_NODE) {
            std::shared_ptr<VELMVesselSensorConfig> entry = VELM::VesselRegistry::create(d_->name_.c_str());
            if (!entry) break;  // unregistered kind: its children make nothing
            if (int status = entry->load(child)) {
                entry->forgetNode();
                return status;
            }
            if (add(entry) != 0) entry->releaseNode();
        }
        child = next;
    }
    if (d_->entries_.empty()) {
        VELM::DeleteNode(listElement);
        d_->node_ = nullptr;
    }
    return 0;
}

int VELMVesselSensorList::store(xmlNode *root) {
    if (!root) return -1;
    if (d_->entries_.empty()) {
        VELM::DeleteNode(d_->node_);
        d_->node_ = nullptr;
        return 0;
    }
    if (d_->node_ && d_->node_->doc != root->doc) d_->node_ = nullptr;
    if (!d_->node_) {
        const std::string name = velmio::vessel::xmlText(d_->name_.c_str());
        if (xmlValidateNameValue(velmio::vessel::xml(name)) == 0) return -1;  // no element can carry it
        d_->node_ = xmlNewChild(root, nullptr, velmio::vessel::xml(name), nullptr);
        if (!d_->node_) return -1;
    }
    for (auto &entry : d_->entries_)
        if (int status = entry->store(d_->node_)) return status;
    return 0;
}
