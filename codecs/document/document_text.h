// Texts of table cells as XML text of a document.
//
// "&" and "<" are escaped; ">" only where it would end a CDATA section, "]]>". Line ends become
// line breaks as the rules say. Characters that XML 1.0 does not have (2.2) become U+FFFD and are
// counted. Texts are UTF-16, the result is UTF-8. Threads: pure functions.
#pragma once
#include <QByteArray>
#include <QStringView>

namespace corvanta::document {

/// What a text becomes a part of.
enum class TextPlace : quint8 {
    Word,     ///< a text element of a Word document: a line break is <w:br/>
    Slide,    ///< a text element of a slide: a line break is a carriage return
    Attribute ///< the value of an attribute: quotes are escaped, a line break is &#10;
};

/// How a text is written; the same for all rows of a run.
struct TextRules
{
    TextPlace place = TextPlace::Word;
    bool breaksAtLineEnds = true;    ///< in Word documents: CR LF, CR and LF become line breaks
    bool breaksAtBackslashN = false; ///< "\" and "n" become a line break
    /// In Word documents a line break ends the text element and begins another one, because the
    /// standard allows no elements in it.
    bool closesText = false;
};

/// What was done to texts that a user may have to know; calls add to it.
struct TextCounts
{
    qint64 replaced = 0;    ///< characters that XML does not have
    qint64 innerBreaks = 0; ///< line breaks inside a text element of a Word document
    bool any() const { return (replaced | innerBreaks) != 0; }
};

/// Bytes that putText() may need for a text. An upper bound.
qsizetype roomForText(QStringView text, const TextRules &rules);

/// Write `text` to `out`, which has roomForText() bytes. Returns the end.
char *putText(QStringView text, const TextRules &rules, char *out, TextCounts *counts);

/// The same in an array of its own.
QByteArray documentText(QStringView text, const TextRules &rules, TextCounts *counts);

/// A text of a Word document with a line feed for each line break: for elements in which no other
/// element is allowed.
QByteArray withoutBreaks(QByteArray text);

} // namespace corvanta::document
