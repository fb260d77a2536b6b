// The text of a value:
//
//     <Level initialPath='a' subtagName='b'>    an element; its key is "a", "b"
//       <e name='n' path='p'/>                  an inner element; its key is
//       "p"
//     </Level>
#include "panels/fill/merge_elements.h"

#include "panels/structures/element.h"

#include <QSet>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

using Elements = std::vector<Element>;

constexpr auto kName = "name"_L1;

QStringList keyOf(const ParameterInfo &list, const Element &element)
{
    QStringList key;
    for (const ParameterInfo &member : list.members) {
        // Paths are texts; what else a level has does not make it another one.
        if (member.place == ParameterInfo::Place::Attribute &&
            member.type == ParameterInfo::Type::Text && member.name != kName) {
            key << memberValue(element, member);
        }
    }
    return key;
}

bool isSame(const ParameterInfo &list, const Element &a, const Element &b)
{
    return keyOf(list, a) == keyOf(list, b);
}

/// Adds what was found, and counts it.
class Merge
{
public:
    /// `items` declares the inner elements.
    Merge(const ParameterInfo &items, const Elements &existing)
        : m_items(items)
    {
        for (const Element &element : existing) {
            for (const Element &item : itemsIn(element, m_items)) {
                m_names.insert(memberValue(item, m_items, kName));
            }
        }
    }

    void add(Element found, Elements *to)
    {
        for (Element &child : found.children) {
            if (child.name == m_items.itemElement) {
                nameNew(&child);
            }
        }
        to->push_back(std::move(found));
        ++result.levels;
    }

    /// Add the inner elements of `found` that are not in `existing`.
    void join(const Element &found, Element *existing)
    {
        QSet<QStringList> old; // a file may have thousands
        for (const Element &item : itemsIn(*existing, m_items)) {
            old.insert(keyOf(m_items, item));
        }
        for (Element &item : itemsIn(found, m_items)) {
            if (!old.contains(keyOf(m_items, item))) {
                nameNew(&item);
                existing->children.push_back(std::move(item));
            }
        }
    }

    MergedElements result;

private:
    /// Give a new inner element a name that no other one has.
    void nameNew(Element *item)
    {
        const QString wanted = memberValue(*item, m_items, kName);
        QString name = wanted;
        for (int i = 2; m_names.contains(name); ++i) {
            name = u"%1_%2"_s.arg(wanted, QString::number(i));
        }
        m_names.insert(name);
        setMember(item, *memberOf(m_items, kName), name);
        ++result.items;
    }

    const ParameterInfo &m_items;
    QSet<QString> m_names; // of all inner elements
};

} // namespace

bool hasItems(const ParameterInfo &info, const QString &value)
{
    const Elements elements = elementsOf(info, value);
    return std::any_of(elements.begin(), elements.end(), [&](const Element &element) {
        return !itemsIn(element, *listIn(info)).empty();
    });
}

MergedElements mergeElements(const ParameterInfo &info, const QString &existing,
                             const QString &found)
{
    Elements all = hasItems(info, existing) ? elementsOf(info, existing) : Elements();
    const Elements wanted = elementsOf(info, found);
    Merge merge(*listIn(info), all);
    const size_t old = all.size();
    size_t i = 0;
    for (; i < qMin(old, wanted.size()) && isSame(info, all[i], wanted[i]); ++i) {
        merge.join(wanted[i], &all[i]);
    }
    if (i < qMin(old, wanted.size())) {
        merge.result.conflict = keyOf(info, wanted[i]).join(u' ').trimmed();
    }
    for (i = qMax(i, old); i < wanted.size(); ++i) {
        merge.add(wanted[i], &all);
    }
    merge.result.xml = valueOf(info, all);
    return std::move(merge.result);
}

} // namespace corvanta
