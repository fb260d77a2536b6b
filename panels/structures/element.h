// The elements of a structure as its editors change them, with everything that the parameter table
// does not declare.
//
// The value of a structure is the XML of its elements, inside a wrapper for some parameters:
//
//     <Levels><Level name='a' new='1'><Item type='2'><s>x</s></Item></Level></Levels>
//
// "new" is not declared and kept. Comments and spaces between elements are not. Threads: plain
// values.
#pragma once
#include "corvanta/action_parameters.h"

#include <QString>

#include <utility>
#include <vector>

namespace corvanta {

/// One element with its content, as it is saved.
struct Element
{
    QString name = {};
    std::vector<std::pair<QString, QString>> attributes = {};
    QString text = {};
    std::vector<Element> children = {};

    QString startTag() const;
    /// The content, without the tags of the element itself.
    QString inner() const;
    QString xml() const;
    /// The first child of that name; null if there is none.
    const Element *child(const QString &wanted) const;
    Element *child(const QString &wanted);
};

// `list` is a parameter of the type Structure, or a member that is one.

/// The elements of a value; none if it is not the XML of such elements.
std::vector<Element> elementsOf(const ParameterInfo &list, const QString &value);
/// The elements of a list that is a member of `parent`, without a wrapper.
std::vector<Element> itemsIn(const Element &parent, const ParameterInfo &list);
/// The wrapper of a value with its attributes, without elements; no name if the list has none.
Element wrapperOf(const ParameterInfo &list, const QString &value);
/// The value of these elements; empty without elements. A list that needs a wrapper gets a new one
/// if `wrapper` has no name.
QString valueOf(const ParameterInfo &list, const std::vector<Element> &elements,
                const Element &wrapper = {});
/// A new element. It has the attributes that are always saved.
Element newElement(const ParameterInfo &list);

/// The value of a member, in the form of a parameter's value; its default if the element does not
/// have it.
QString memberValue(const Element &element, const ParameterInfo &member);
/// Set a member from that form. A default is saved only where the table says so.
void setMember(Element *element, const ParameterInfo &member, const QString &value);
/// The first member of that name; null if there is none.
const ParameterInfo *memberOf(const ParameterInfo &list, const QString &name);
/// The value of a member by its name, which must exist.
QString memberValue(const Element &element, const ParameterInfo &list, const QString &name);
/// Whether the action uses the member of this element: all its conditions hold.
bool isUsed(const Element &element, const ParameterInfo &list, const ParameterInfo &member);
/// The first member that is a list; null if there is none.
const ParameterInfo *listIn(const ParameterInfo &list);

} // namespace corvanta
