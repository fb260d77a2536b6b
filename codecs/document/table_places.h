// Where the tables of a Word document go: the markers of its text and the paragraphs around them.
#pragma once
#include <QByteArray>
#include <QByteArrayView>

#include <vector>

namespace corvanta::document {

/// One table in the text of a part: the text up to `copyEnd` is copied, then `before`, the table
/// and `after` are written, and copying continues at `resume`.
struct TablePlace
{
    int table = 0; ///< index of the marker
    qsizetype copyEnd = 0;
    QByteArray before = {}; ///< written before the table
    QByteArray after = {};
    qsizetype resume = 0;
    qsizetype dropped = 0; ///< bytes of text that are not copied
    bool isInText = false; ///< the table is inside a text element
};

/// The part with the prefix "w" of tables declared in its root element: a few programs write
/// another one.
QByteArray withTablePrefix(const QByteArray &part);

/// The places of all markers in the order of the text; a marker may have several. A marker directly
/// after "<w:p><w:r><w:t>" and text without markup gets its table before that paragraph, and the
/// text before the marker is dropped. Any other marker gets the table at its own place: inside a
/// text element, which programs may reject. A marker in a tag has no place.
std::vector<TablePlace> findTablePlaces(QByteArrayView part,
                                        const std::vector<QByteArray> &markers);

/// The same, but every table is between two paragraphs, as the standard requires: the paragraph of
/// the marker is closed before the table, unless it has no text yet, and begun again after it with
/// the same properties. No text is dropped. Only markers in text elements have a place.
std::vector<TablePlace> findParagraphPlaces(QByteArrayView part,
                                            const std::vector<QByteArray> &markers);

} // namespace corvanta::document
