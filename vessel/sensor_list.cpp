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

VELMVesselSensorList::VELMVesselSensorList(const wchar_t *kindName) : name_(kindName) {}

VELMVesselSensorList::~VELMVesselSensorList() {
    // The entries may live on elsewhere: their elements go now, with the list's.
    for (auto &entry : entries_) entry->releaseNode();
    VELM::DeleteNode(node_);
}

void VELMVesselSensorList::forgetNodes() {
    for (auto &entry : entries_) entry->forgetNode();
    node_ = nullptr;
}

int VELMVesselSensorList::add(std::shared_ptr<VELMVesselSensorConfig> entry) {
    if (!entry) return kNullEntry;
    const double time = entry->getTimeStamp();
    auto at = std::find_if(entries_.begin(), entries_.end(), [&](const auto &e) { return e->getTimeStamp() >= time; });
    if (at != entries_.end() && (*at)->getTimeStamp() == time) return kTimeTaken;
    entries_.insert(at, std::move(entry));
    return 0;
}

int VELMVesselSensorList::remove(double time) {
    auto at = std::find_if(entries_.begin(), entries_.end(), [&](const auto &e) { return e->getTimeStamp() == time; });
    if (at == entries_.end()) return kNoSuchTime;
    (*at)->releaseNode();
    entries_.erase(at);
    return 0;
}

std::shared_ptr<VELMVesselSensorConfig> VELMVesselSensorList::getConfig(double time, int &error) const {
    error = 0;
    if (entries_.empty()) return nullptr;
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        const double t = entries_[i]->getTimeStamp();
        if (t == time) return entries_[i];
        if (t > time) {
            if (i == 0) {
                error = kBeforeFirst;
                return nullptr;
            }
            return entries_[i - 1];
        }
    }
    return entries_.back();
}

std::shared_ptr<VELMVesselSensorConfig> VELMVesselSensorList::getFirstConfig() const {
    return entries_.empty() ? nullptr : entries_.front();
}

std::shared_ptr<VELMVesselSensorConfig> VELMVesselSensorList::getLastConfig() const {
    return entries_.empty() ? nullptr : entries_.back();
}

std::shared_ptr<VELMVesselSensorConfig> VELMVesselSensorList::getNextConfig(const VELMVesselSensorConfig *entry) const {
    if (!entry) return nullptr;
    for (const auto &e : entries_)
        if (e->getTimeStamp() > entry->getTimeStamp()) return e;
    return nullptr;
}

int VELMVesselSensorList::updateTimeStamp(VELMVesselSensorConfig *entry, double newTime) {
    if (!entry) return -1;
    auto at = std::find_if(entries_.begin(), entries_.end(),
                           [&](const auto &e) { return e->getTimeStamp() == entry->getTimeStamp(); });
    if (at == entries_.end()) return kNoSuchTime;
    std::shared_ptr<VELMVesselSensorConfig> moved = *at;
    entries_.erase(at);
    moved->setTimeStamp(newTime);
    const int status = add(moved);
    if (status != 0) moved->releaseNode();  // dropped, and its element with it
    return status;
}

int VELMVesselSensorList::load(xmlNode *listElement) {
    if (!listElement) return -1;
    node_ = listElement;
    for (xmlNode *child = listElement->children; child;) {
        xmlNode *next = child->next;  // a dropped entry takes its element away
        if (child->type == XML_ELEMENT_NODE) {
            std::shared_ptr<VELMVesselSensorConfig> entry = VELM::VesselRegistry::create(name_.c_str());
            if (!entry) break;  // unregistered kind: its children make nothing
            if (int status = entry->load(child)) {
                entry->forgetNode();
                return status;
            }
            if (add(entry) != 0) entry->releaseNode();
        }
        child = next;
    }
    if (entries_.empty()) {
        VELM::DeleteNode(listElement);
        node_ = nullptr;
    }
    return 0;
}

int VELMVesselSensorList::store(xmlNode *root) {
    if (!root) return -1;
    if (entries_.empty()) {
        VELM::DeleteNode(node_);
        node_ = nullptr;
        return 0;
    }
    if (node_ && node_->doc != root->doc) node_ = nullptr;
    if (!node_) {
        const std::string name = velmio::vessel::xmlText(name_.c_str());
        if (xmlValidateNameValue(velmio::vessel::xml(name)) == 0) return -1;  // no element can carry it
        node_ = xmlNewChild(root, nullptr, velmio::vessel::xml(name), nullptr);
        if (!node_) return -1;
    }
    for (auto &entry : entries_)
        if (int status = entry->store(node_)) return status;
    return 0;
}
