// The upper levels of the XML text of a package part: where its elements begin and end.
#pragma once
#include "base/result.h"
#include "codecs/opc/error.h"
#include "codecs/opc/markup_scan.h"

namespace corvanta::opc {

/// One element of an Outline; offsets into its text.
struct Element
{
    Tag tag;
    qsizetype closeBegin = 0; ///< of the closing tag; for an empty element where "/>" begins
    qsizetype end = 0;        ///< after the element
    int parent = -1;          ///< index of the element around it; -1 for the root
    bool isEmptyTag() const { return tag.kind == Tag::Kind::Empty; }
};

/// The elements of the four upper levels. Holds views into the text, which must outlive it.
class Outline
{
public:
    /// Index the text. Deeper levels are checked, but not indexed.
    /// Errors: Encoding, Malformed, TooLarge.
    static Result<Outline, Error> read(QByteArrayView text);
    /// The same for a part whose root element has the local name `root`. Errors: also Unexpected.
    static Result<Outline, Error> readRootedIn(QByteArrayView text, QByteArrayView root);

    const Element &root() const { return m_elements.front(); }
    const Element &element(int index) const { return m_elements[static_cast<size_t>(index)]; }
    /// Indexes of the children of `parent` (0 is the root) that have the local name `local` and the
    /// root's prefix; of all children for an empty `local`.
    std::vector<int> children(int parent, QByteArrayView local) const;
    /// The first of them.
    std::optional<int> child(int parent, QByteArrayView local) const;
    /// `local` with the root's prefix.
    QByteArray qualified(QByteArrayView local) const;

private:
    explicit Outline(std::vector<Element> elements)
        : m_elements(std::move(elements))
    {
    }

    std::vector<Element> m_elements;
};

} // namespace corvanta::opc
