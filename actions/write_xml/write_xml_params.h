// The parameters of writeXML.
#pragma once
#include "actions/shared/params/level_writer_params.h"

namespace corvanta {

/// Encoding of the file, with or without a byte-order mark. Any other number means UTF-8.
enum class CharMode { Utf8WithMark, Utf8, Utf16WithMark, Utf16 };

struct WriteXmlParams : LevelWriterParams
{
    CharMode charMode = CharMode::Utf8WithMark;
    bool useComma = false;
    bool humanReadable = false;
    bool wellFormed = false;
    QString indentStart = QStringLiteral("0");
    QString prefix = QStringLiteral("<data>");
    QString suffix = QStringLiteral("</data>");
};

const ParamTable<WriteXmlParams> &writeXmlParamTable();

} // namespace corvanta
