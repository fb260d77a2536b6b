// Scans one cell of the usual form, in a single pass over its bytes.
//
// Cells of another form (a prefix, a rich text, other elements) are left to the
// general way, which reads the same cells and more. Threads: pure functions.
#pragma once
#include <QByteArrayView>
#include <QtGlobal>

#include <optional>

namespace corvanta::xlsx {

/// A cell as it is written.
struct RawCell
{
    int column = -1;           ///< from 0; -1 without a valid reference
    bool hasReference = false; ///< also for an invalid one
    bool hasFormula = false;
    bool hasValue = false;
    quint32 style = 0;         ///< of the s attribute
    QByteArrayView type = {};  ///< the t attribute; empty: a number
    QByteArrayView value = {}; ///< raw
};

enum class CellScan : quint8 {
    Cell,
    Incomplete, ///< the bytes end inside the cell
    Unusual,    ///< needs the general way, or is not a cell
};

/// Scan the cell at `at`, where a "<" is. For Cell, `*after` is the address after its end. Reads up
/// to 16 bytes beyond `end`, where NULs are.
CellScan scanCell(const char *at, const char *end, RawCell *cell, const char **after);

/// Column of a reference such as "B7" or "$B$7"; -1 for a text that does not begin like one. There
/// is no upper limit below 2^31.
int columnOfReference(QByteArrayView reference);

/// An xsd:boolean; false for anything else.
bool isTrue(std::optional<QByteArrayView> value);

/// The finite number that all of `text` is, in the form of XML Schema without spaces. Returns false
/// for any other text; `*value` is then undefined. A bool and not an optional, as it is called for
/// every cell.
bool parseValue(QByteArrayView text, double *value);

} // namespace corvanta::xlsx
