// Names of parts (ECMA-376 part 2, sections 6.2 and 6.3): "/" separates the segments, the leading
// "/" of a part name is left out here, as members have none.
//
//   xl/workbook.xml   +  worksheets/sheet1.xml      ->  xl/worksheets/sheet1.xml
//   xl/workbook.xml   +  /xl/styles.xml             ->  xl/styles.xml
//   xl/workbook.xml   its relationships             ->  xl/_rels/workbook.xml.rels
#include "codecs/opc/part_names.h"

#include "base/number.h"

#include <QByteArrayList>

#include <algorithm>
#include <limits>
#include <string_view>

namespace corvanta::opc {

namespace {

/// The form in which names are compared: part names are equal regardless of ASCII letter case
/// (ECMA-376 part 2, section 6.2.2).
QByteArray folded(QByteArray name)
{
    return name.replace('\\', '/').toLower();
}

/// The value of a key; nothing if the map does not have it.
std::optional<QByteArray> valueIn(const std::map<QByteArray, QByteArray> &map,
                                  const QByteArray &key)
{
    const auto found = map.find(key);
    return found != map.end() ? std::optional(found->second) : std::nullopt;
}

} // namespace

MemberNames::MemberNames(const std::vector<QByteArray> &names)
{
    for (const QByteArray &name : names) {
        m_exact.emplace(name, name);
        m_folded.emplace(folded(name), name);
    }
}

std::optional<QByteArray> MemberNames::find(const QByteArray &partName) const
{
    // A target is a URI and may be percent-encoded, while members often have the plain name.
    const auto plain = findAsWritten(partName);
    return plain ? plain : findAsWritten(QByteArray::fromPercentEncoding(partName));
}

std::optional<QByteArray> MemberNames::findAsWritten(const QByteArray &name) const
{
    const auto exact = valueIn(m_exact, name);
    return exact ? exact : valueIn(m_folded, folded(name));
}

quint64 MemberNames::highestNumber(const QByteArray &prefix) const
{
    static const QByteArray kExtension = ".xml";
    const QByteArray begin = folded(prefix);
    quint64 highest = 0;
    for (const auto &[key, stored] : m_folded) {
        const QByteArrayView name = key;
        if (name.startsWith(begin) && name.endsWith(kExtension) &&
            name.size() > begin.size() + kExtension.size()) {
            const auto digits = name.sliced(begin.size()).chopped(kExtension.size());
            highest = std::max(highest, partNumber(digits).value_or(0));
        }
    }
    return highest;
}

QByteArray folderOf(const QByteArray &partName)
{
    return partName.first(partName.lastIndexOf('/') + 1);
}

QByteArray relationshipPartOf(const QByteArray &partName)
{
    const QByteArray folder = folderOf(partName);
    return folder + "_rels/" + partName.sliced(folder.size()) + ".rels";
}

QByteArray resolvedTarget(const QByteArray &source, const QString &target)
{
    QByteArray path = target.toUtf8().replace('\\', '/');
    if (!path.startsWith('/')) {
        path.prepend(folderOf(source));
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

QString targetOf(const QByteArray &source, const QByteArray &part)
{
    const QByteArray folder = folderOf(source);
    return QString::fromUtf8(part.startsWith(folder) ? part.sliced(folder.size()) : '/' + part);
}

std::optional<quint64> partNumber(QByteArrayView digits)
{
    quint64 value = 0;
    const std::string_view text(digits.data(), static_cast<size_t>(digits.size()));
    const bool isNumber = parseUInt(text, std::numeric_limits<quint32>::max(), &value);
    return isNumber ? std::optional<quint64>(value) : std::nullopt;
}

} // namespace corvanta::opc
