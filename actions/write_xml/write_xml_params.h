// The parameters of writeXML.
#pragma once
#include "actions/shared/params/level_writer_params.h"

namespace corvanta {

/// Encoding of the file and of its declaration, with or without a byte-order mark. Any other number
/// means UTF-8.
enum class CharMode { Utf8WithMark, Utf8, Utf16WithMark, Utf16 };

struct WriteXmlParams : LevelWriterParams
{
    CharMode charMode = CharMode::Utf8WithMark;
    /// Decimal numbers have a comma in place of the point.
    bool useComma = false;
    /// Each element has its own line, indented by two spaces per level.
    bool humanReadable = false;
    /// Replace what XML does not allow, and make names valid and distinct.
    bool wellFormed = false;
    /// Number of spaces before the first level; expanded. A text that is not a number counts as 0.
    /// Used when humanReadable is on.
    QString indentStart = QStringLiteral("0");
    // Around the elements of the file; expanded before they are written. May be empty.
    QString prefix = QStringLiteral("<data>");
    QString suffix = QStringLiteral("</data>");
};

/// Attributes of `writeXML`, then its child elements.
const ParamTable<WriteXmlParams> &writeXmlParamTable();

} // namespace corvanta
