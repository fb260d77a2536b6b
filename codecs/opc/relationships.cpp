// A relationships part (ECMA-376 part 2, section 6.5.3):
//
//   <Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">
//     <Relationship Id="rId1" Type="uri" Target="part, relative or absolute"/>
//     <Relationship Type="uri" Id="rId2" Target="address" TargetMode="External"/>
//   </Relationships>
//
// Ids are unique in the part; any name is allowed, "rId" + N is common. The order of attributes is
// free; added elements have the order shown here.
#include "codecs/opc/relationships.h"

#include "codecs/opc/part_names.h"
#include "codecs/opc/splices.h"

#include <algorithm>

namespace corvanta::opc {

namespace {

constexpr char kIdPrefix[] = "rId";
constexpr qsizetype kIdPrefixSize = sizeof kIdPrefix - 1;
constexpr char kNewPart[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
    "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">"
    "</Relationships>";

/// A missing attribute is empty; readers accept that.
Relationship relationshipOf(const Tag &tag)
{
    const auto value = [&](QByteArrayView name) {
        return tag.attribute(name).value_or(QByteArrayView());
    };
    return {value("Id").toByteArray(), decoded(value("Type")), decoded(value("Target")),
            value("TargetMode") == QByteArrayView("External")};
}

QByteArray textOf(const Relationship &one, const QByteArray &elementName)
{
    // The two orders of attributes are those of the drawing above; readers accept any.
    const QByteArray mode = one.isExternal ? QByteArray(" TargetMode=\"External\"") : QByteArray();
    const QByteArray type = " Type=\"" + quotable(one.type) + '"';
    const QByteArray id = " Id=\"" + one.id + '"';
    return '<' + elementName + (one.isExternal ? type + id : id + type) + " Target=\"" +
           quotable(one.target) + '"' + mode + "/>";
}

} // namespace

QString relationshipType(QByteArrayView base, const char *kind)
{
    return QString::fromLatin1(base) + QLatin1Char('/') + QLatin1String(kind);
}

bool isToPart(const Relationship &relationship, const char *kind)
{
    return !relationship.isExternal &&
           relationship.type.endsWith(QLatin1Char('/') + QLatin1String(kind));
}

std::optional<quint64> idNumber(QByteArrayView id)
{
    return id.startsWith(kIdPrefix) ? partNumber(id.sliced(kIdPrefixSize)) : std::nullopt;
}

Result<Relationships, Error> Relationships::read(const QByteArray &text)
{
    const auto outline = Outline::readRootedIn(text, "Relationships");
    if (!outline) {
        return outline.fault();
    }
    Relationships part;
    part.m_text = text;
    for (const int index : outline->children(0, "Relationship")) {
        part.m_entries.push_back(relationshipOf(outline->element(index).tag));
        part.m_highestId =
            std::max(part.m_highestId, idNumber(part.m_entries.back().id).value_or(0));
    }
    return part;
}

const Relationship *Relationships::find(const char *kind) const
{
    const auto found = std::find_if(m_entries.begin(), m_entries.end(),
                                    [&](const Relationship &one) { return isToPart(one, kind); });
    return found == m_entries.end() ? nullptr : &*found;
}

void Relationships::add(const Relationship &relationship)
{
    m_added.push_back(relationship);
    m_highestId = std::max(m_highestId, idNumber(relationship.id).value_or(0));
}

QByteArray Relationships::addPart(const QString &type, const QString &target)
{
    QByteArray id = kIdPrefix + QByteArray::number(++m_highestId);
    add({id, type, target});
    return id;
}

QByteArray Relationships::text() const
{
    const QByteArray part = m_text.isEmpty() ? QByteArray(kNewPart) : m_text;
    const auto read = Outline::read(part); // succeeds, as it did in read()
    const Outline &outline = *read;
    Splices splices(part);
    for (const int index : outline.children(0, "Relationship")) {
        const Element &element = outline.element(index);
        const QByteArray id = relationshipOf(element.tag).id;
        if (std::find(m_removedIds.begin(), m_removedIds.end(), id) != m_removedIds.end()) {
            splices.replace(element.tag.begin, element.end, {});
        }
    }
    QByteArray added;
    for (const Relationship &one : m_added) {
        added += textOf(one, outline.qualified("Relationship"));
    }
    splices.append(outline.root(), added);
    return splices.apply();
}

} // namespace corvanta::opc
