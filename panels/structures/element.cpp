#include "panels/structures/element.h"

#include "base/mapped.h"
#include "corvanta/xml_node.h"

#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

using Type = ParameterInfo::Type;
using Place = ParameterInfo::Place;

constexpr auto kString = "s"_L1; // an element of a string list

/// For texts and for attribute values, which are in single quotes.
QString escaped(const QString &text)
{
    ToXMLStringTool tool;
    return QString::fromWCharArray(tool.toXML(text));
}

/// `node` with all that is in it. Spaces between elements are dropped.
Element elementOf(const XMLNode &node)
{
    Element element;
    element.name = node.getName();
    for (const QString &name : node.attributeNames()) {
        const auto *const value = node.getAttribute(name.toLatin1().constData());
        element.attributes.emplace_back(name, QString::fromUtf16(value));
    }
    for (int i = 0; i < node.nChildNode(); ++i) {
        element.children.push_back(elementOf(node.getChildNode(i)));
    }
    const bool isText = element.children.empty() || !node.text().trimmed().isEmpty();
    element.text = isText ? node.text() : QString();
    return element;
}

/// In the form of a parameter's value: one line per text.
QString stringsOf(const Element &list)
{
    QStringList texts;
    for (const Element &child : list.children) {
        if (child.name == kString) {
            texts << child.text;
        }
    }
    return texts.join(u'\n');
}

/// Replace the children of that name, in the place of the first of them.
void replaceChildren(Element *parent, const QString &name, std::vector<Element> with)
{
    std::vector<Element> &children = parent->children;
    const auto isOne = [&](const Element &child) { return child.name == name; };
    const auto at = std::find_if(children.begin(), children.end(), isOne) - children.begin();
    std::erase_if(children, isOne);
    children.insert(children.begin() + at, std::make_move_iterator(with.begin()),
                    std::make_move_iterator(with.end()));
}

/// An empty value is a list without texts, not a list of one empty text.
void setStrings(Element *list, const QString &value)
{
    const auto stringOf = [](const QString &text) { return Element{kString, {}, text, {}}; };
    const QStringList texts = value.isEmpty() ? QStringList() : value.split(u'\n');
    replaceChildren(list, kString, mapped<std::vector<Element>>(texts, stringOf));
}

/// A list whose name is not that of its items has an element of its own around them.
bool hasWrapper(const ParameterInfo &list)
{
    return list.name != list.itemElement;
}

/// An element around a value, which may be none or several elements.
Element rootOf(const QString &value)
{
    const auto document = XMLNode::parse("<p>" + value.toUtf8() + "</p>");
    return document ? elementOf(*document) : Element();
}

/// With its attributes and items. Empty if the value has no wrapper.
Element wholeWrapperOf(const ParameterInfo &list, const QString &value)
{
    const Element root = rootOf(value);
    const Element *const wrapper = root.child(list.name);
    return wrapper == nullptr ? Element() : *wrapper;
}

/// Changes one attribute and keeps the order of the others. A default is not saved.
void setElementAttribute(Element *element, const ParameterInfo &member, const QString &value)
{
    const auto isMember = [&](const auto &attribute) { return attribute.first == member.name; };
    const auto found =
        std::find_if(element->attributes.begin(), element->attributes.end(), isMember);
    if (value == member.defaultValue && !member.saveAlways) {
        std::erase_if(element->attributes, isMember);
    } else if (found != element->attributes.end()) {
        found->second = value;
    } else {
        element->attributes.emplace_back(member.name, value);
    }
}

/// A string list in an element of its own, which is there only when it has a text.
void setStringElement(Element *element, const ParameterInfo &member, const QString &value)
{
    if (value.isEmpty()) {
        replaceChildren(element, member.name, {});
        return;
    }
    if (element->child(member.name) == nullptr) {
        element->children.push_back({member.name, {}, {}, {}});
    }
    setStrings(element->child(member.name), value);
}

/// One of the alternatives is enough.
bool holds(const ParameterInfo::Condition &condition, const Element &element,
           const ParameterInfo &list)
{
    const QString value = memberValue(element, list, condition.parameter);
    return condition.values.contains(value) != condition.isExcluded ||
           std::any_of(condition.alternatives.begin(), condition.alternatives.end(),
                       [&](const auto &other) { return holds(other, element, list); });
}

} // namespace

QString Element::startTag() const
{
    QString tag = u'<' + name;
    for (const auto &[attribute, value] : attributes) {
        tag += u' ' + attribute + u"='"_s + escaped(value) + u'\'';
    }
    return tag + u'>';
}

QString Element::inner() const
{
    QString xml = escaped(text);
    for (const Element &child : children) {
        xml += child.xml();
    }
    return xml;
}

QString Element::xml() const
{
    return startTag() + inner() + u"</"_s + name + u'>';
}

const Element *Element::child(const QString &wanted) const
{
    const auto found = std::find_if(children.begin(), children.end(),
                                    [&](const Element &child) { return child.name == wanted; });
    return found == children.end() ? nullptr : &*found;
}

Element *Element::child(const QString &wanted)
{
    return const_cast<Element *>(std::as_const(*this).child(wanted));
}

std::vector<Element> elementsOf(const ParameterInfo &list, const QString &value)
{
    return hasWrapper(list) ? wholeWrapperOf(list, value).children : rootOf(value).children;
}

/// Other children are members of the element, such as the texts of a list.
std::vector<Element> itemsIn(const Element &parent, const ParameterInfo &list)
{
    std::vector<Element> items;
    std::copy_if(parent.children.begin(), parent.children.end(), std::back_inserter(items),
                 [&](const Element &child) { return child.name == list.itemElement; });
    return items;
}

/// Its attributes must survive an edit of the items, which are kept apart from it.
Element wrapperOf(const ParameterInfo &list, const QString &value)
{
    Element wrapper = hasWrapper(list) ? wholeWrapperOf(list, value) : Element();
    wrapper.children.clear();
    return wrapper;
}

/// A wrapper without elements is not saved.
QString valueOf(const ParameterInfo &list, const std::vector<Element> &elements,
                const Element &wrapper)
{
    if (!hasWrapper(list) || elements.empty()) {
        Element root;
        root.children = elements;
        return root.inner();
    }
    Element whole = wrapper;
    whole.name = list.name;
    whole.children = elements;
    return whole.xml();
}

/// Absent members have their defaults, so only those are set that are always saved.
Element newElement(const ParameterInfo &list)
{
    Element element;
    element.name = list.itemElement;
    for (const ParameterInfo &member : list.members) {
        if (member.saveAlways && member.place == Place::Attribute) {
            setMember(&element, member, member.defaultValue);
        }
    }
    return element;
}

QString memberValue(const Element &element, const ParameterInfo &member)
{
    if (member.type == Type::Structure) {
        return valueOf(member, itemsIn(element, member));
    }
    if (member.place == Place::Content) {
        return member.type == Type::Strings ? stringsOf(element) : element.text;
    }
    if (member.place == Place::Element) {
        const Element *const child = element.child(member.name);
        return child == nullptr ? member.defaultValue : stringsOf(*child);
    }
    const auto found =
        std::find_if(element.attributes.begin(), element.attributes.end(),
                     [&](const auto &attribute) { return attribute.first == member.name; });
    return found == element.attributes.end() ? member.defaultValue : found->second;
}

void setMember(Element *element, const ParameterInfo &member, const QString &value)
{
    if (member.type == Type::Structure) {
        replaceChildren(element, member.itemElement, elementsOf(member, value));
    } else if (member.place == Place::Attribute) {
        setElementAttribute(element, member, value);
    } else if (member.place == Place::Element) {
        setStringElement(element, member, value);
    } else if (member.type == Type::Strings) {
        setStrings(element, value);
    } else {
        element->text = value;
    }
}

const ParameterInfo *memberOf(const ParameterInfo &list, const QString &name)
{
    const auto found = std::find_if(list.members.begin(), list.members.end(),
                                    [&](const ParameterInfo &info) { return info.name == name; });
    return found == list.members.end() ? nullptr : &*found;
}

QString memberValue(const Element &element, const ParameterInfo &list, const QString &name)
{
    return memberValue(element, *memberOf(list, name));
}

/// A member without conditions is always used.
bool isUsed(const Element &element, const ParameterInfo &list, const ParameterInfo &member)
{
    return std::all_of(member.conditions.begin(), member.conditions.end(),
                       [&](const auto &condition) { return holds(condition, element, list); });
}

const ParameterInfo *listIn(const ParameterInfo &list)
{
    const auto found =
        std::find_if(list.members.begin(), list.members.end(),
                     [](const ParameterInfo &info) { return info.type == Type::Structure; });
    return found == list.members.end() ? nullptr : &*found;
}

} // namespace corvanta
