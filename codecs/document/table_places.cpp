// A marker and its paragraph (ECMA-376 part 1, 17.3.1.22 and 17.3.2.25):
//
//   <w:p><w:r><w:t>text %T1% more</w:t></w:r></w:p>       the simple opener
//   <w:tbl>...</w:tbl><w:p><w:r><w:t> more</w:t></w:r></w:p>
#include "codecs/document/table_places.h"

#include "codecs/opc/marker_search.h"

namespace corvanta::document {

namespace {

constexpr QByteArrayView kOpener("<w:p><w:r><w:t>");

/// Where the simple opener of the marker at `at` begins, at or after `from`; -1 if there is none.
qsizetype openerBefore(QByteArrayView part, qsizetype from, qsizetype at)
{
    const QByteArrayView searched = part.sliced(from, at - from);
    const qsizetype found = searched.lastIndexOf(kOpener);
    // The opener must be the last markup before the marker.
    return found >= 0 && searched.lastIndexOf('<') == found + kOpener.lastIndexOf('<')
               ? from + found
               : -1;
}

} // namespace

std::vector<TablePlace> findTablePlaces(QByteArrayView part, const std::vector<QByteArray> &markers)
{
    std::vector<TablePlace> places;
    qsizetype copied = 0;
    for (const opc::MarkerHit &hit : opc::findMarkers(part, markers)) {
        const qsizetype opener = openerBefore(part, copied, hit.begin);
        TablePlace place{hit.marker, opener >= 0 ? opener : hit.begin};
        place.after = opener >= 0 ? kOpener.toByteArray() : QByteArray();
        place.resume = copied = hit.end;
        places.push_back(place);
    }
    return places;
}

} // namespace corvanta::document
