// Adds cell formats to the styles part of a workbook (ECMA-376 part 1, 18.8): those of dates and
// hyperlinks, and those of the look of a sheet. Threads: pure functions.
#pragma once
#include "base/result.h"
#include "codecs/opc/error.h"
#include "codecs/xlsx/sheet_look.h"

#include <QByteArray>
#include <QByteArrayView>

namespace corvanta::xlsx {

/// How date cells are shown: a number format that every spreadsheet program has built in or, if
/// `code` is not empty, one of the workbook's own.
struct DateFormat
{
    int builtinId = 0;    ///< numFmtId from the list in 18.8.30; ignored with a code
    QByteArray code = {}; ///< as in formatCode (18.8.31); must need no escaping
};

/// Date formats by their index, 0 to 11: 0 to 2 are formats of the workbook's own, 3 to 11 built-in
/// ones. Other indexes count as the nearest of these.
DateFormat dateFormatAt(int index);
/// The numFmtId of that format; the own formats have the ids starting at `ownBase`. Ids
/// below 164 are reserved for built-in formats.
int numberFormatId(int index, int ownBase);

struct StylesChange
{
    QByteArray text;            ///< of the changed part
    quint64 dateStyle = 0;      ///< the s attribute of date cells
    quint64 hyperlinkStyle = 0; ///< the s attribute of hyperlink cells
    /// The part had no table of cell formats and got a new one.
    bool hadNoCellFormats = false;
};

/// The text with two more cell formats, a font for hyperlinks and, if needed, a number format. All
/// of them are used again if an earlier update added them. Existing formats keep their indexes.
/// Errors: Encoding, Malformed, Unexpected (no styleSheet), TooLarge.
Result<StylesChange, opc::Error> changedStyles(QByteArrayView text, const DateFormat &dateFormat);
/// Add a cell format for `format` to the part `text`; used again like those of changedStyles().
/// Returns the s attribute of its cells. Errors: as there.
Result<quint64, opc::Error> addDateStyle(QByteArray *text, const DateFormat &format);

/// Add the formats of a header and of columns to the part `text`. A font, fill, number format or
/// cell format that the part has is used again. The font of a bold header is that of cells without
/// a format, in bold. Errors: as changedStyles().
Result<LookStyles, opc::Error> addLook(QByteArray *text, const SheetLook &look);

} // namespace corvanta::xlsx
