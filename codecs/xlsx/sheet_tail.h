// The tail of a worksheet: the text from the closing tag of sheetData to the end. It is edited
// after the rows, when all hyperlinks are known. Threads: pure functions.
#pragma once
#include "base/result.h"
#include "codecs/opc/error.h"
#include "codecs/sheet/sheet_writer.h"
#include "codecs/xlsx/cell_range.h"
#include "codecs/xlsx/namespaces.h"

#include <QByteArray>
#include <QByteArrayView>

#include <vector>

namespace corvanta::xlsx {

/// A tail with hyperlinks, and their number.
struct LinkedTail
{
    QByteArray text;
    qint64 linkCount = 0; ///< older ones included
};

/// The tail with hyperlinks added to its list of them; a list that is missing is inserted at its
/// place in the schema (ECMA-376 part 1, 18.3.1.99). Older links of the same single cells are
/// removed. `rootTag` is the worksheet's root tag; the link to address N gets the relationship id
/// "rId" + (`takenIds` + N). Errors: Malformed.
Result<LinkedTail, opc::Error> withHyperlinks(const QByteArray &tail, const QByteArray &rootTag,
                                              const Family &family,
                                              const std::vector<sheet::LinkUse> &uses,
                                              quint64 takenIds);

/// What an update needs to know about a tail.
struct TailFacts
{
    /// The highest N of the relationship ids "rId" + N that it uses; 0 if there are none.
    quint64 highestUsedId = 0;
    /// Merged ranges, in their order; those without a valid reference are left out.
    std::vector<CellRange> mergedRanges;
};

/// Check that the tail is the well-formed end of a worksheet, and collect its facts. Errors:
/// Malformed.
Result<TailFacts, opc::Error> readTail(QByteArrayView tail);

} // namespace corvanta::xlsx
