// The one load and store mechanism of the vessel document: every class that
// reads itself from an element describes its settings once, as a table of
// (element path, attribute, member) rows in writing order, and the functions
// here walk that table in both directions. The members are those of the
// class's private state (entry_state.h), which the tables are written over.
#ifndef VELMIO_VESSEL_FIELD_TABLE_H
#define VELMIO_VESSEL_FIELD_TABLE_H

#include <velmio/vessel_entries.hpp>

#include "vessel/xml_access.h"

#include <libxml/tree.h>

#include <functional>
#include <string>
#include <type_traits>
#include <variant>
#include <vector>

namespace velmio::vessel {

using Text = VELMOptionalText;

// Where a value lives in the object; its type decides the text form:
// doubles "%f", integers "%d", flags "Yes"/"No", texts UTF-8.
template <class C>
using Member = std::variant<double C::*, int C::*, unsigned C::*, bool C::*, Text C::*>;

// One setting: attribute of the element at path below the object's element
// ("" is that element itself). sweepOnly settings are written only in the
// "Sweep" context and removed otherwise.
template <class C>
struct Field {
    const char *path;
    const char *attribute;
    Member<C> member;
    bool sweepOnly = false;
};

// A table of rows: one element per row below the container at path.
template <class C>
struct Rows {
    const char *path;
    std::function<void(C &, xmlNode *container)> load;
    std::function<int(const C &, xmlNode *container, bool sweep)> store;
};

template <class C>
using Item = std::variant<Field<C>, Rows<C>>;
template <class C>
using Table = std::vector<Item<C>>;

// A member of a base struct as a member of C (so that tables of shared
// settings can be written once for every entry state that includes them).
template <class C, class T, class B>
Member<C> at(T B::*member) {
    return static_cast<T C::*>(member);
}

// Reading and writing one value (defined in field_table.cpp).
void assign(double &to, const std::string &text);
void assign(int &to, const std::string &text);
void assign(unsigned &to, const std::string &text);
void assign(bool &to, const std::string &text);
void assign(Text &to, const std::string &text);
int storeValue(xmlNode *element, const char *path, const char *attribute, double value);
int storeValue(xmlNode *element, const char *path, const char *attribute, int value);
int storeValue(xmlNode *element, const char *path, const char *attribute, unsigned value);
int storeValue(xmlNode *element, const char *path, const char *attribute, bool value);
int storeValue(xmlNode *element, const char *path, const char *attribute, const Text &value);
// Takes the attribute away, and the element at path with it once it is bare.
void removeValue(xmlNode *element, const char *path, const char *attribute);
// Removes the element children of container named rowName.
void removeRows(xmlNode *container, const char *rowName);

template <class C>
void loadItems(C &object, xmlNode *element, const Table<C> &table) {
    for (const auto &item : table) {
        if (const auto *rows = std::get_if<Rows<C>>(&item)) {
            if (xmlNode *container = descend(element, rows->path, false)) rows->load(object, container);
            continue;
        }
        const auto &field = std::get<Field<C>>(item);
        const auto text = attributeText(descend(element, field.path, false), field.attribute);
        if (!text) continue;  // missing settings keep their defaults
        std::visit([&](auto member) { assign(object.*member, *text); }, field.member);
    }
}

template <class C>
int storeItems(const C &object, xmlNode *element, const Table<C> &table, bool sweep) {
    for (const auto &item : table) {
        int status = 0;
        if (const auto *rows = std::get_if<Rows<C>>(&item)) {
            xmlNode *container = descend(element, rows->path, true);
            status = container ? rows->store(object, container, sweep) : -1;
        } else {
            const auto &field = std::get<Field<C>>(item);
            if (field.sweepOnly && !sweep) {
                removeValue(element, field.path, field.attribute);
                continue;
            }
            status = std::visit(
                [&](auto member) { return storeValue(element, field.path, field.attribute, object.*member); },
                field.member);
        }
        if (status != 0) return status;
    }
    return 0;
}

// Rows kept in a vector member of C, each row read and written by rowTable;
// loaded rows go through insert so that the class keeps its own order rules.
// Plain rows are described by their table themselves; a row class that keeps
// its settings behind a private pointer gives the way to them (stateOf).
template <class C, class Row, class State = Row>
Rows<C> rows(const char *path, const char *rowName, std::vector<Row> C::*member,
             void (*insert)(C &, const Row &), const Table<State> *rowTable,
             State &(*stateOf)(const Row &) = nullptr) {
    Rows<C> r;
    r.path = path;
    r.load = [=](C &object, xmlNode *container) {
        for (xmlNode *child = container->children; child; child = child->next) {
            if (child->type != XML_ELEMENT_NODE || !sameName(child->name, rowName)) continue;
            Row row{};
            if constexpr (std::is_same_v<Row, State>)
                loadItems(row, child, *rowTable);
            else
                loadItems(stateOf(row), child, *rowTable);
            insert(object, row);
        }
    };
    r.store = [=](const C &object, xmlNode *container, bool sweep) {
        removeRows(container, rowName);  // rewritten, never appended twice
        for (const Row &row : object.*member) {
            xmlNode *child = xmlNewChild(container, nullptr, xml(rowName), nullptr);
            if (!child) return -1;
            int status = 0;
            if constexpr (std::is_same_v<Row, State>)
                status = storeItems(row, child, *rowTable, sweep);
            else
                status = storeItems(stateOf(row), child, *rowTable, sweep);
            if (status != 0) return status;
        }
        return 0;
    };
    return r;
}

}  // namespace velmio::vessel

#endif
