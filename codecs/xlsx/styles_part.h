// codecs/xlsx/styles_part.h
// Add the cell formats of dates and hyperlinks to the styles part of a workbook.
#pragma once
#include "codecs/opc/markup_scan.h"

namespace corvanta::xlsx {

/// How date cells are shown: a number format that every spreadsheet program has built in, or, where
/// `code` is not empty, one of the workbook's own.
struct DateFormat
{
    int builtinId = 0;
    QByteArray code = {}; ///< needs no escaping
};

struct StylesChange
{
    QByteArray text;
    quint64 dateStyle = 0; ///< index for the s attribute of date cells
    quint64 hyperlinkStyle = 0;
    /// The part had no table of cell formats and got a new one.
    bool hadNoCellFormats = false;
};

/// Errors: Encoding, Malformed, Unexpected (no styleSheet), TooLarge.
Result<StylesChange, Error> changedStyles(QByteArrayView text, const DateFormat &dateFormat);

} // namespace corvanta::xlsx
