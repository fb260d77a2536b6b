// The tail of a worksheet: the text from the closing tag of sheetData to the end. It is edited
// after the rows, when all hyperlinks are known. Threads: pure functions.
#pragma once
#include "base/result.h"
#include "codecs/opc/error.h"
#include "codecs/sheet/sheet_writer.h"
#include "codecs/xlsx/namespaces.h"

#include <QByteArray>
#include <QByteArrayView>

#include <vector>

namespace corvanta::xlsx {

/// The tail with hyperlinks added to its list of them; a list that is missing is inserted at its
/// place in the schema (ECMA-376 part 1, 18.3.1.99). Older links of the same single cells are
/// removed. `rootTag` is the worksheet's root tag; the link to address N gets the relationship id
/// "rId" + (`takenIds` + N). Errors: Malformed.
Result<QByteArray, opc::Error> withHyperlinks(const QByteArray &tail, const QByteArray &rootTag,
                                              const Family &family,
                                              const std::vector<sheet::LinkUse> &uses,
                                              quint64 takenIds);

/// The highest N of the relationship ids "rId" + N that the tail uses; 0 if there are none.
/// Errors: Malformed.
Result<quint64, opc::Error> highestUsedId(QByteArrayView tail);

} // namespace corvanta::xlsx
