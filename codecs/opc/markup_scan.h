// codecs/xlsx/markup_scan.h
// Find tags and attributes in the XML text of a package part, without building a document.
//
// The texts are UTF-8. Comments, CDATA sections and processing instructions are passed over, so
// that what looks like a tag inside them is none. Document type declarations, which Office packages
// must not have (ECMA-376 part 2), are refused.
#pragma once
#include "base/result.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <optional>
#include <vector>

namespace corvanta::xlsx {

enum class Error : quint8 {
    Encoding,   ///< not UTF-8
    Malformed,  ///< no well-formed XML, or a document type declaration
    Unexpected, ///< well-formed, but not the part that was asked for
    TooLarge,
};

struct Attribute
{
    QByteArrayView name;  ///< with its prefix
    QByteArrayView value; ///< as it stands in the text, without its quotes
};

struct Tag
{
    enum class Kind : quint8 { Open, Close, Empty };
    Kind kind = Kind::Open;
    qsizetype begin = 0;        ///< of "<" in the text
    qsizetype end = 0;          ///< behind ">"
    QByteArrayView name = {};   ///< with its prefix
    QByteArrayView inside = {}; ///< what stands between the name and the end of the tag

    QByteArrayView prefix() const;
    QByteArrayView local() const;
    /// The raw value of the attribute of this qualified name.
    std::optional<QByteArrayView> attribute(QByteArrayView qualifiedName) const;
    /// All attributes in their order; nothing when they are not well-formed.
    std::optional<std::vector<Attribute>> attributes() const;
    /// The prefix that this tag binds to `uri`; an empty one for the default namespace.
    std::optional<QByteArrayView> prefixBoundTo(QByteArrayView uri) const;
};

enum class Scan : quint8 {
    Tag,
    Skipped,    ///< a comment, CDATA section or processing instruction
    Incomplete, ///< the text ends inside
    Broken,
};

/// Look at the markup whose "<" stands at `at`. `end` is set behind it for Tag and Skipped.
Scan scanMarkup(QByteArrayView text, qsizetype at, Tag *tag, qsizetype *end);

/// The next tag at or behind `*at`, which moves behind it. False at the end of the text, or with
/// `*isBroken` set.
bool nextTag(QByteArrayView text, qsizetype *at, Tag *tag, bool *isBroken);

/// Whether the text that begins so can be UTF-8: no other byte-order mark and no other encoding in
/// the XML declaration.
bool isUtf8Text(QByteArrayView beginning);

/// `local` with the prefix, where there is one.
QByteArray qualified(QByteArrayView prefix, QByteArrayView local);

/// An attribute's or text's raw value with the predefined entities and character references
/// decoded.
QString decoded(QByteArrayView raw);

/// `text` as it can stand between double quotes: "&", "<" and the quote escaped; tab and line ends
/// as character references; characters that XML cannot hold replaced by U+FFFD.
QByteArray quotable(QStringView text);

/// One element of an Outline; offsets into the text.
struct Element
{
    Tag tag;
    qsizetype closeBegin = 0; ///< of the closing tag; for an empty element where "/>" begins
    qsizetype end = 0;        ///< behind the element
    int parent = -1;
    bool isEmptyTag() const { return tag.kind == Tag::Kind::Empty; }
};

/// The upper levels of a part: which elements lie where. Views into the text, which must outlive
/// it.
class Outline
{
public:
    /// Errors: Encoding, Malformed, TooLarge.
    static Result<Outline, Error> read(QByteArrayView text);

    const Element &root() const { return m_elements.front(); }
    const Element &element(int index) const { return m_elements[static_cast<size_t>(index)]; }
    /// Indexes of the children of `parent` (0 is the root) that are named `local` and have the
    /// root's prefix; of all children for an empty `local`.
    std::vector<int> children(int parent, QByteArrayView local) const;
    /// The first of them.
    std::optional<int> child(int parent, QByteArrayView local) const;
    /// `local` with the root's prefix.
    QByteArray qualified(QByteArrayView local) const;

private:
    std::vector<Element> m_elements;
};

/// Changes to a text, applied in one pass.
class Splices
{
public:
    explicit Splices(QByteArrayView text)
        : m_text(text)
    {
    }

    void insert(qsizetype at, const QByteArray &added) { replace(at, at, added); }
    void replace(qsizetype begin, qsizetype end, const QByteArray &added);
    /// Put `added` behind the last child of an element, opening an empty one.
    void append(const Element &element, const QByteArray &added);
    /// Give an attribute without prefix a value, which needs no escaping.
    void setAttribute(const Tag &tag, QByteArrayView name, const QByteArray &value);

    /// The changed text. No two changes may overlap.
    QByteArray apply();

private:
    struct Change
    {
        qsizetype begin;
        qsizetype end;
        QByteArray added;
    };
    QByteArrayView m_text;
    std::vector<Change> m_changes;
};

} // namespace corvanta::xlsx
