// codecs/xlsx/package_parts.h
// What holds a package's parts together: member names, relationships, content types.
#pragma once
#include "codecs/opc/markup_scan.h"
#include "codecs/opc/namespaces.h"

#include <QHash>
#include <QStringList>

#include <vector>

namespace corvanta::xlsx {

/// Finds members by part name. Packages in the wild write "\" for "/", other letter case, and
/// percent-encoded characters; an exact name always wins.
class MemberNames
{
public:
    MemberNames() = default;
    explicit MemberNames(const std::vector<QByteArray> &names);

    /// The member's name as the package stores it. Of several equal ones the first.
    std::optional<QByteArray> find(const QByteArray &partName) const;
    /// The highest N of the members named `prefix` + N + ".xml"; 0 without any.
    quint64 highestNumber(const QByteArray &prefix) const;

private:
    QHash<QByteArray, QByteArray> m_exact;
    QHash<QByteArray, QByteArray> m_folded;
};

/// The part that holds the relationships of `partName`: "xl/_rels/workbook.xml.rels" for
/// "xl/workbook.xml".
QByteArray relationshipPartOf(const QByteArray &partName);

/// The part name that a relationship of `source` points to: relative to the source's folder, or
/// absolute; "." and ".." are resolved, "\" counts as "/". Empty when it leads out of the package.
QByteArray resolvedTarget(const QByteArray &source, const QString &target);

struct Relationship
{
    QByteArray id;
    QString type;
    QString target;
    bool isExternal = false;
};

/// The type of the relationships to parts or addresses of one kind, "hyperlink" for example.
QString relationshipType(const Family &family, const char *kind);

/// Hyperlinks to `addresses`, with the ids behind "rId" + `taken`.
std::vector<Relationship> hyperlinkRelationships(const QStringList &addresses, const Family &family,
                                                 quint64 taken);

/// Errors: Encoding, Malformed, Unexpected (the root is no Relationships element), TooLarge.
Result<std::vector<Relationship>, Error> readRelationships(QByteArrayView text);

/// The highest N of the ids of the form "rId" + N; 0 without any.
quint64 highestIdNumber(const std::vector<Relationship> &relationships);
/// N of an id of that form.
std::optional<quint64> idNumber(QByteArrayView id);

/// A relationship part with `added` put in at its end and the relationships named by `removedIds`
/// taken out. An empty `text` gives a new part. Errors: as readRelationships.
Result<QByteArray, Error> changedRelationships(QByteArrayView text,
                                               const std::vector<Relationship> &added,
                                               const std::vector<QByteArray> &removedIds = {});

/// The part names that "[Content_Types].xml" lists one by one, without the leading "/".
/// Errors: as readRelationships.
Result<std::vector<QByteArray>, Error> readOverriddenParts(QByteArrayView text);

/// "[Content_Types].xml" with an Override for one more part. Errors: as readRelationships.
Result<QByteArray, Error> withContentType(QByteArrayView text, const QByteArray &partName,
                                          const QByteArray &contentType);

} // namespace corvanta::xlsx
