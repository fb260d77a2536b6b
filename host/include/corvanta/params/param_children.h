// Lists of child elements in a parameter table: each element is a struct with a table of its own.
//
//     struct Level { QString name; std::vector<Item> items; };       // with operator==
//     const ParamTable<Level> &levelTable()
//     {
//         static const ParamTable<Level> table{text("name", &Level::name),
//                                              children("Item", &Level::items, itemTable())};
//         return table;
//     }
//     children("Level", &Params::levels, levelTable()).inside("Levels")
//
// A list is saved as a whole when it differs from its default, and not at all otherwise. Lists may
// be nested: the members of an item can be lists again.
#pragma once
#include "corvanta/params/param_table.h"

#include <vector>

namespace corvanta {

/// What a table cannot say about a list of child elements.
template <class T> struct ChildRules
{
    /// The values that the element number `index`, from 0, has before its attributes are read.
    /// Null: those of a default-constructed item.
    T (*makeItem)(int index) = nullptr;
    /// Called after the list was read from `parent`; may change it, for example to add the item of
    /// an inline form. Null: nothing is changed.
    void (*complete)(std::vector<T> &items, const XMLNode &parent) = nullptr;
};

/// Read the child elements `element` of `parent`, in their order. Other children are skipped. An
/// empty `parent` gives an empty list, which `rules.complete` then sees too.
template <class T>
std::vector<T> readChildren(const XMLNode &parent, const char *element, const ParamTable<T> &table,
                            const ChildRules<T> &rules = {})
{
    std::vector<T> items;
    int at = 0;
    for (XMLNode node = parent.getChildNode(element, &at); !node.isEmpty();
         node = parent.getChildNode(element, &at)) {
        const int index = static_cast<int>(items.size());
        items.push_back(rules.makeItem != nullptr ? rules.makeItem(index) : T());
        table.read(items.back(), node);
    }
    if (rules.complete != nullptr) {
        rules.complete(items, parent);
    }
    return items;
}

/// A list of the child elements `element`. `table` must live as long as the returned line, so it is
/// a static object of a function. `T` needs operator==, for the comparison with the default.
template <class P, class T>
Param<P> children(const char *element, std::vector<T> P::*member, const ParamTable<T> &table,
                  const ChildRules<T> &rules = {})
{
    ChildAccess access;
    access.read = [=, &table](void *params, const XMLNode &parent, const char *name) {
        static_cast<P *>(params)->*member = readChildren(parent, name, table, rules);
    };
    access.save = [=, &table](const void *params, std::wostream &out, const char *name,
                              Indent indent) {
        for (const T &item : static_cast<const P *>(params)->*member) {
            table.saveChild(item, out, name, indent);
        }
    };
    access.isDefault = [=](const void *params) {
        return static_cast<const P *>(params)->*member == P().*member;
    };
    access.members = [&table] { return table.infos(); };
    return {element, std::move(access)};
}

// For tables of child elements, at most one line each: the content of the element is the value, and
// all other lines of the table are attributes. `name` is for people and `describe` only.

/// The text of the child element itself.
template <class T> Param<T> content(const char *name, QString T::*member)
{
    return text(name, member).at(ParameterInfo::Place::Content);
}
/// A string list directly in the child element.
template <class T> Param<T> content(const char *name, QStringList T::*member)
{
    return strings(name, member).at(ParameterInfo::Place::Content);
}

} // namespace corvanta
