// The relationships part of a package or of one of its parts.
#pragma once
#include "base/result.h"
#include "codecs/opc/error.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

namespace corvanta::opc {

struct Relationship
{
    QByteArray id;           ///< unique in its part, for example "rId7"
    QString type;            ///< a URI that ends with the kind, for example "/hyperlink"
    QString target;          ///< a part, relative to the source part or absolute, or an address
    bool isExternal = false; ///< the target is an address outside the package
};

/// The type of relationships of one kind ("hyperlink"); `base` is the namespace of types.
QString relationshipType(QByteArrayView base, const char *kind);

/// Whether a relationship refers to a part and its type ends with "/" + `kind`.
bool isToPart(const Relationship &relationship, const char *kind);

/// N of an id of the form "rId" + N.
std::optional<quint64> idNumber(QByteArrayView id);

/// A relationships part: reads it, collects changes and gives the changed text.
class Relationships
{
public:
    /// A new part without relationships.
    Relationships() = default;
    /// Errors: Encoding, Malformed, Unexpected (the root is not Relationships), TooLarge.
    static Result<Relationships, Error> read(const QByteArray &text);

    /// As read, without the changes.
    const std::vector<Relationship> &entries() const { return m_entries; }
    /// The first one for which isToPart(); null if there is none.
    const Relationship *find(const char *kind) const;
    /// The highest N of the ids of the form "rId" + N, added ones included; 0 if there are none.
    quint64 highestIdNumber() const { return m_highestId; }

    /// Add a relationship at the end. Its id must not be used yet.
    void add(const Relationship &relationship);
    /// Add one to a part of the package, with the next free id, which is returned.
    QByteArray addPart(const QString &type, const QString &target);
    /// Remove the relationship of this id, which was read.
    void remove(const QByteArray &id) { m_removedIds.push_back(id); }

    /// The part with the changes; all other bytes are as read.
    QByteArray text() const;

private:
    QByteArray m_text; // empty: a new part
    std::vector<Relationship> m_entries;
    std::vector<Relationship> m_added;
    std::vector<QByteArray> m_removedIds;
    quint64 m_highestId = 0;
};

} // namespace corvanta::opc
