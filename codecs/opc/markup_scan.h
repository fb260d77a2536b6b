// Finds tags and attributes in the XML text of a package part, without building a document.
//
// The texts are UTF-8. Comments, CDATA sections and processing instructions are skipped, with
// everything in them that looks like a tag. Document type declarations, which Office packages must
// not have (ECMA-376 part 2), count as broken markup.
#pragma once
#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <optional>
#include <vector>

namespace corvanta::opc {

struct Attribute
{
    QByteArrayView name;  ///< with its prefix
    QByteArrayView value; ///< raw: as written in the text, without its quotes
};

/// A tag found in a text. Views and offsets refer to that text.
struct Tag
{
    enum class Kind : quint8 { Open, Close, Empty };
    Kind kind = Kind::Open;
    qsizetype begin = 0;        ///< offset of "<"
    qsizetype end = 0;          ///< offset after ">"
    QByteArrayView name = {};   ///< with its prefix
    QByteArrayView inside = {}; ///< everything between the name and the end of the tag

    QByteArrayView prefix() const;
    QByteArrayView local() const;
    /// The raw value of the attribute of this qualified name; empty when there is none.
    std::optional<QByteArrayView> attribute(QByteArrayView qualifiedName) const;
    /// All attributes in their order; std::nullopt when they are not well-formed.
    std::optional<std::vector<Attribute>> attributes() const;
    /// The prefix that this tag binds to `uri`; an empty one for the default namespace.
    std::optional<QByteArrayView> prefixBoundTo(QByteArrayView uri) const;
    /// The raw namespace that this tag declares for its own prefix; empty when it declares none.
    std::optional<QByteArrayView> declaredNamespace() const;
};

enum class Scan : quint8 {
    Tag,
    Skipped,    ///< a comment, CDATA section or processing instruction
    Incomplete, ///< the text ends inside
    Broken,
};

/// Examine the markup whose "<" is at offset `at`. For Tag and Skipped, `*end` is the offset after
/// the markup; `*tag` is set for Tag only.
Scan scanMarkup(QByteArrayView text, qsizetype at, Tag *tag, qsizetype *end);

/// Walks over the tags of a text, which must outlive it.
class TagCursor
{
public:
    explicit TagCursor(QByteArrayView text)
        : m_text(text)
    {
    }
    /// Move to the next tag. Returns false at the end of the text and at broken markup.
    bool next();
    const Tag &tag() const { return m_tag; }
    /// After next() returned false: whether that was not the end of the text.
    bool isBroken() const { return m_isBroken; }
    /// The offset after the last tag.
    qsizetype offset() const { return m_at; }

private:
    QByteArrayView m_text;
    Tag m_tag;
    qsizetype m_at = 0;
    bool m_isBroken = false;
};

/// Whether a text with this beginning can be UTF-8: it has no other byte-order mark and no other
/// encoding in the XML declaration.
bool isUtf8Text(QByteArrayView beginning);

/// `local` with the prefix, if there is one.
QByteArray qualified(QByteArrayView prefix, QByteArrayView local);

/// An attribute's or text's raw value with the predefined entities and character references
/// decoded.
QString decoded(QByteArrayView raw);
/// The decoded value of an attribute; empty without it.
QString attributeText(const Tag &tag, QByteArrayView name);

/// `text` escaped for use between double quotes: "&", "<" and the quote escaped; tab and line ends
/// as character references; characters that XML cannot hold replaced by U+FFFD.
QByteArray quotable(QStringView text);

} // namespace corvanta::opc
