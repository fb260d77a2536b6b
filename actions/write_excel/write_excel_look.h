// The texts of the parameters that describe the look of new sheets.
#pragma once
#include "actions/write_excel/write_excel_params.h"
#include "codecs/xlsx/sheet_look.h"

#include <optional>

namespace corvanta {

/// A value that a parameter cannot have. `text` has the value as %1; it is in English and can be
/// translated in the context "Problems".
struct LookProblem
{
    const char *parameter;
    const char *text;
    QString value;
};
/// All of them, in the order of the parameters.
QVector<LookProblem> lookProblems(const WriteExcelParams &params);

/// Whether columnWidths asks for widths from the first rows.
bool measuresWidths(const WriteExcelParams &params);
/// The widths of columnWidths by column; 0: the default.
std::vector<double> givenWidths(const WriteExcelParams &params);
/// The names in columnFormats: those of `columns` where an entry begins with one.
QStringList formattedColumns(const WriteExcelParams &params, const QStringList &columns);
/// The look of the sheet with these columns, without widths.
xlsx::SheetLook sheetLook(const WriteExcelParams &params, const QStringList &columns);

} // namespace corvanta
