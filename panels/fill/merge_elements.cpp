// The text of a value:
//
//     <Level initialPath='a' subtagName='b'>    an element; its key is "a", "b"
//       <e name='n' path='p'/>                  an inner element; its key is "p"
//     </Level>
#include "panels/fill/merge_elements.h"

#include "corvanta/xml_node.h"

#include <QSet>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

using Type = ParameterInfo::Type;
using Nodes = QVector<XMLNode>;

constexpr char kName[] = "name";

QString escaped(const QString &text)
{
    ToXMLStringTool tool;
    return QString::fromWCharArray(tool.toXML(text));
}

QString attributeOf(const XMLNode &node, const QString &name, const QString &defaultValue = {})
{
    return xmltoa(node.getAttribute(name.toLatin1().constData()), defaultValue);
}

/// `name`, unless null, replaces the name.
QString startTag(const XMLNode &node, const QString &name = {})
{
    QString tag = u'<' + node.getName();
    for (const QString &attribute : node.attributeNames()) {
        const bool isReplaced = !name.isNull() && attribute == QLatin1StringView(kName);
        tag += u' ' + attribute + u"='"_s +
               escaped(isReplaced ? name : attributeOf(node, attribute)) + u'\'';
    }
    return tag + u'>';
}

QString endTag(const XMLNode &node)
{
    return u"</"_s + node.getName() + u'>';
}

/// What is between the tags.
QString contentOf(const XMLNode &node)
{
    // The spaces between elements are layout.
    const bool isText = node.nChildNode() == 0 || !node.text().trimmed().isEmpty();
    QString xml = isText ? escaped(node.text()) : QString();
    for (int i = 0; i < node.nChildNode(); ++i) {
        const XMLNode child = node.getChildNode(i);
        xml += startTag(child) + contentOf(child) + endTag(child);
    }
    return xml;
}

Nodes childrenOf(const XMLNode &node, const QString &name)
{
    Nodes children;
    for (int i = 0; i < node.nChildNode(); ++i) {
        if (node.getChildNode(i).getName() == name) {
            children << node.getChildNode(i);
        }
    }
    return children;
}

Nodes elementsOf(const ParameterInfo &info, const QString &value)
{
    const auto document = XMLNode::parse("<p>" + value.toUtf8() + "</p>");
    return document ? childrenOf(*document, info.itemElement) : Nodes();
}

/// The list inside the elements. `info` has one.
const ParameterInfo &listIn(const ParameterInfo &info)
{
    return *std::find_if(info.members.begin(), info.members.end(), [](const ParameterInfo &member) {
        return member.type == Type::Structure;
    });
}

QStringList keyOf(const ParameterInfo &info, const XMLNode &node)
{
    QStringList key;
    for (const ParameterInfo &member : info.members) {
        if (member.place == ParameterInfo::Place::Attribute &&
            member.name != QLatin1StringView(kName)) {
            key << attributeOf(node, member.name, member.defaultValue);
        }
    }
    return key;
}

/// Compares the existing elements with those that were found, and adds what is new.
class Merge
{
public:
    explicit Merge(const ParameterInfo &info)
        : m_info(info)
        , m_list(listIn(info))
    {
    }

    void keepNames(const Nodes &existing)
    {
        for (const XMLNode &element : existing) {
            for (const XMLNode &item : childrenOf(element, m_list.itemElement)) {
                m_names.insert(attributeOf(item, QLatin1StringView(kName)));
            }
        }
    }

    void keep(const XMLNode &existing)
    {
        m_result.xml += startTag(existing) + contentOf(existing) + endTag(existing);
    }

    void add(const XMLNode &found)
    {
        m_result.xml += startTag(found);
        for (int i = 0; i < found.nChildNode(); ++i) {
            const XMLNode child = found.getChildNode(i);
            const bool isItem = child.getName() == m_list.itemElement;
            m_result.xml +=
                isItem ? addedItem(child) : startTag(child) + contentOf(child) + endTag(child);
        }
        m_result.xml += endTag(found);
        ++m_result.levels;
    }

    void join(const XMLNode &existing, const XMLNode &found)
    {
        const Nodes old = childrenOf(existing, m_list.itemElement);
        QString added;
        for (const XMLNode &item : childrenOf(found, m_list.itemElement)) {
            const bool isKnown = std::any_of(old.begin(), old.end(), [&](const XMLNode &other) {
                return keyOf(m_list, other) == keyOf(m_list, item);
            });
            added += isKnown ? QString() : addedItem(item);
        }
        m_result.xml += startTag(existing) + contentOf(existing) + added + endTag(existing);
    }

    bool isSame(const XMLNode &existing, const XMLNode &found) const
    {
        return keyOf(m_info, existing) == keyOf(m_info, found);
    }
    void setConflict(const XMLNode &found)
    {
        m_result.conflict = keyOf(m_info, found).join(u' ').trimmed();
    }
    MergedElements take() { return std::move(m_result); }

private:
    /// With a name that no other item has.
    QString addedItem(const XMLNode &item)
    {
        const QString wanted = attributeOf(item, QLatin1StringView(kName));
        QString name = wanted;
        for (int i = 2; m_names.contains(name); ++i) {
            name = u"%1_%2"_s.arg(wanted, QString::number(i));
        }
        m_names.insert(name);
        ++m_result.items;
        return startTag(item, name) + contentOf(item) + endTag(item);
    }

    const ParameterInfo &m_info;
    const ParameterInfo &m_list;
    QSet<QString> m_names; // of all items
    MergedElements m_result;
};

} // namespace

bool hasItems(const ParameterInfo &info, const QString &value)
{
    const Nodes elements = elementsOf(info, value);
    return std::any_of(elements.begin(), elements.end(), [&](const XMLNode &element) {
        return !childrenOf(element, listIn(info).itemElement).isEmpty();
    });
}

MergedElements mergeElements(const ParameterInfo &info, const QString &existing,
                             const QString &found)
{
    const Nodes old = hasItems(info, existing) ? elementsOf(info, existing) : Nodes();
    const Nodes wanted = elementsOf(info, found);
    Merge merge(info);
    merge.keepNames(old);
    qsizetype i = 0;
    for (; i < old.size() && i < wanted.size() && merge.isSame(old[i], wanted[i]); ++i) {
        merge.join(old[i], wanted[i]);
    }
    if (i < old.size() && i < wanted.size()) {
        merge.setConflict(wanted[i]);
    }
    for (qsizetype rest = i; rest < old.size(); ++rest) {
        merge.keep(old[rest]);
    }
    for (qsizetype rest = qMax(i, old.size()); rest < wanted.size(); ++rest) {
        merge.add(wanted[rest]);
    }
    return merge.take();
}

} // namespace corvanta
