// Finds tags, comments and elements in the text of a well-formed XML document, so that the rest of
// the text can stay as it is.
//
// Positions are indexes of the text, in UTF-16 units. Threads: plain functions.
#pragma once
#include <QString>

namespace corvanta::studio {

enum class Markup {
    Start, ///< a start tag
    End,   ///< an end tag
    Empty, ///< the tag of an empty element
    Other, ///< a comment, CDATA section, processing instruction or document type
};

/// A piece of markup of a text.
struct MarkupRange
{
    qsizetype begin = -1; ///< negative: there is none
    qsizetype end = -1;   ///< after the last character
    Markup kind = Markup::Other;
};

/// The index after the tag, comment or other markup that begins at `at`.
qsizetype endOfMarkup(const QString &text, qsizetype at);
/// The first markup from an index on.
MarkupRange nextMarkup(const QString &text, qsizetype from);
/// The first element of the text from an index on, with its end tag; begin is negative if there is
/// none before the next end tag.
MarkupRange firstElement(const QString &text, qsizetype from);

} // namespace corvanta::studio
