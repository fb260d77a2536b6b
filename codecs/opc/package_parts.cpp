#include "codecs/opc/package_parts.h"

#include "base/number.h"

#include <QByteArrayList>

#include <algorithm>
#include <limits>
#include <string_view>

namespace corvanta::xlsx {

namespace {

constexpr quint64 kMaxNumber = std::numeric_limits<quint32>::max();

QByteArray folded(QByteArray name)
{
    return name.replace('\\', '/').toLower();
}

std::optional<quint64> number(QByteArrayView digits)
{
    quint64 value = 0;
    const std::string_view text(digits.data(), static_cast<size_t>(digits.size()));
    return parseUInt(text, kMaxNumber, &value) ? std::optional<quint64>(value) : std::nullopt;
}

Result<Outline, Error> readRootedIn(QByteArrayView text, QByteArrayView rootName)
{
    auto outline = Outline::read(text);
    if (outline && outline->root().tag.local() != rootName) {
        return Fault<Error>{Error::Unexpected};
    }
    return outline;
}

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
    const QByteArray mode = one.isExternal ? QByteArray(" TargetMode=\"External\"") : QByteArray();
    const QByteArray type = " Type=\"" + quotable(one.type) + '"';
    const QByteArray id = " Id=\"" + one.id + '"';
    return '<' + elementName + (one.isExternal ? type + id : id + type) + " Target=\"" +
           quotable(one.target) + '"' + mode + "/>";
}

} // namespace

MemberNames::MemberNames(const std::vector<QByteArray> &names)
{
    for (const QByteArray &name : names) {
        if (!m_exact.contains(name)) {
            m_exact.insert(name, name);
        }
        const QByteArray key = folded(name);
        if (!m_folded.contains(key)) {
            m_folded.insert(key, name);
        }
    }
}

std::optional<QByteArray> MemberNames::find(const QByteArray &partName) const
{
    for (const QByteArray &name : {partName, QByteArray::fromPercentEncoding(partName)}) {
        if (const auto exact = m_exact.constFind(name); exact != m_exact.constEnd()) {
            return *exact;
        }
        if (const auto similar = m_folded.constFind(folded(name)); similar != m_folded.constEnd()) {
            return *similar;
        }
    }
    return std::nullopt;
}

quint64 MemberNames::highestNumber(const QByteArray &prefix) const
{
    const QByteArray begin = folded(prefix);
    quint64 highest = 0;
    for (auto it = m_folded.constBegin(); it != m_folded.constEnd(); ++it) {
        const QByteArray &name = it.key();
        if (name.startsWith(begin) && name.endsWith(".xml") && name.size() > begin.size() + 4) {
            highest = std::max(
                highest, number(QByteArrayView(name).sliced(begin.size()).chopped(4)).value_or(0));
        }
    }
    return highest;
}

QByteArray relationshipPartOf(const QByteArray &partName)
{
    const qsizetype fileBegin = partName.lastIndexOf('/') + 1;
    return partName.first(fileBegin) + "_rels/" + partName.sliced(fileBegin) + ".rels";
}

QByteArray resolvedTarget(const QByteArray &source, const QString &target)
{
    QByteArray path = target.toUtf8().replace('\\', '/');
    if (!path.startsWith('/')) {
        path.prepend(source.first(source.lastIndexOf('/') + 1));
    }
    QByteArrayList steps;
    for (const QByteArray &step : path.split('/')) {
        if (step == "..") {
            if (steps.isEmpty()) {
                return {};
            }
            steps.removeLast();
        } else if (!step.isEmpty() && step != ".") {
            steps.append(step);
        }
    }
    return steps.join('/');
}

QString relationshipType(const Family &family, const char *kind)
{
    return QString::fromLatin1(family.relationships) + QLatin1Char('/') + QLatin1String(kind);
}

std::vector<Relationship> hyperlinkRelationships(const QStringList &addresses, const Family &family,
                                                 quint64 taken)
{
    const QString type = relationshipType(family, "hyperlink");
    std::vector<Relationship> links;
    for (const QString &address : addresses) {
        links.push_back({"rId" + QByteArray::number(++taken), type, address, true});
    }
    return links;
}

Result<std::vector<Relationship>, Error> readRelationships(QByteArrayView text)
{
    const auto outline = readRootedIn(text, "Relationships");
    if (!outline) {
        return outline.fault();
    }
    std::vector<Relationship> found;
    for (const int index : outline->children(0, "Relationship")) {
        found.push_back(relationshipOf(outline->element(index).tag));
    }
    return found;
}

std::optional<quint64> idNumber(QByteArrayView id)
{
    return id.startsWith("rId") ? number(id.sliced(3)) : std::nullopt;
}

quint64 highestIdNumber(const std::vector<Relationship> &relationships)
{
    quint64 highest = 0;
    for (const Relationship &one : relationships) {
        highest = std::max(highest, idNumber(one.id).value_or(0));
    }
    return highest;
}

Result<QByteArray, Error> changedRelationships(QByteArrayView text,
                                               const std::vector<Relationship> &added,
                                               const std::vector<QByteArray> &removedIds)
{
    static const QByteArray kNewPart =
        "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
        "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">"
        "</Relationships>";
    const QByteArrayView part = text.isEmpty() ? QByteArrayView(kNewPart) : text;
    const auto outline = readRootedIn(part, "Relationships");
    if (!outline) {
        return outline.fault();
    }
    Splices splices(part);
    for (const int index : outline->children(0, "Relationship")) {
        const Element &element = outline->element(index);
        const QByteArray id = relationshipOf(element.tag).id;
        if (std::find(removedIds.begin(), removedIds.end(), id) != removedIds.end()) {
            splices.replace(element.tag.begin, element.end, {});
        }
    }
    const QByteArray name = outline->qualified("Relationship");
    QByteArray all;
    for (const Relationship &one : added) {
        all += textOf(one, name);
    }
    splices.append(outline->root(), all);
    return splices.apply();
}

Result<std::vector<QByteArray>, Error> readOverriddenParts(QByteArrayView text)
{
    const auto outline = readRootedIn(text, "Types");
    if (!outline) {
        return outline.fault();
    }
    std::vector<QByteArray> names;
    for (const int index : outline->children(0, "Override")) {
        const auto name = outline->element(index).tag.attribute("PartName");
        names.push_back(decoded(name.value_or(QByteArrayView())).toUtf8());
        names.back().remove(0, names.back().startsWith('/') ? 1 : 0);
    }
    return names;
}

Result<QByteArray, Error> withContentType(QByteArrayView text, const QByteArray &partName,
                                          const QByteArray &contentType)
{
    const auto outline = readRootedIn(text, "Types");
    if (!outline) {
        return outline.fault();
    }
    Splices splices(text);
    splices.append(outline->root(), '<' + outline->qualified("Override") + " PartName=\"/" +
                                        quotable(QString::fromUtf8(partName)) +
                                        "\" ContentType=\"" + contentType + "\"/>");
    return splices.apply();
}

} // namespace corvanta::xlsx
