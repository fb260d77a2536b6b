// Where the tables of a Word document go: the markers of its text and the paragraphs around them.
#pragma once
#include <QByteArray>
#include <QByteArrayView>

#include <vector>

namespace corvanta::document {

/// One table in the text of a part: the text up to `copyEnd` is copied, then the table is written,
/// then `after`, and copying continues at `resume`.
struct TablePlace
{
    int table = 0; ///< index of the marker
    qsizetype copyEnd = 0;
    QByteArray after = {};
    qsizetype resume = 0;
};

/// The places of all markers in the order of the text; a marker may have several. A marker directly
/// after "<w:p><w:r><w:t>" and text without markup gets its table before that paragraph, and the
/// text before the marker is dropped. Any other marker gets the table where it stands: inside a
/// text element, which programs may reject.
std::vector<TablePlace> findTablePlaces(QByteArrayView part,
                                        const std::vector<QByteArray> &markers);

} // namespace corvanta::document
