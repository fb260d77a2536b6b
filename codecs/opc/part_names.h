// Names in a package: which member holds a part, and what a relationship's target refers to.
#pragma once
#include <QByteArray>
#include <QString>

#include <map>
#include <optional>
#include <vector>

namespace corvanta::opc {

/// Finds members by part name. Some packers write "\" for "/", change the letter case or
/// percent-encode characters; an exact name is preferred.
class MemberNames
{
public:
    MemberNames() = default;
    explicit MemberNames(const std::vector<QByteArray> &names);

    /// The member's name as stored in the package; of several equal ones the first.
    std::optional<QByteArray> find(const QByteArray &partName) const;
    /// The highest N of the members named `prefix` + N + ".xml"; 0 if there are none.
    quint64 highestNumber(const QByteArray &prefix) const;

private:
    /// The member with this name, or else the first one that differs in letter case only.
    std::optional<QByteArray> findAsWritten(const QByteArray &name) const;

    std::map<QByteArray, QByteArray> m_exact;
    std::map<QByteArray, QByteArray> m_folded;
};

/// The folder of a part with a "/" at its end; empty for a part at the top of the package.
QByteArray folderOf(const QByteArray &partName);

/// The part that holds the relationships of `partName`: "xl/_rels/workbook.xml.rels" for
/// "xl/workbook.xml", "_rels/.rels" for the package itself (an empty name).
QByteArray relationshipPartOf(const QByteArray &partName);

/// The part that a relationship of `source` refers to: relative to the source's folder, or
/// absolute; "." and ".." are resolved, "\" counts as "/". Empty for a target outside the package.
QByteArray resolvedTarget(const QByteArray &source, const QString &target);

/// The target for a relationship of `source` to `part`: relative in the source's folder and below
/// it, absolute elsewhere.
QString targetOf(const QByteArray &source, const QByteArray &part);

/// The whole of `digits` as a number below 2^32; std::nullopt when it is something else.
std::optional<quint64> partNumber(QByteArrayView digits);

} // namespace corvanta::opc
