// writers/write_xml_params.h
// The parameters of writeXML.
#pragma once
#include "actions/shared/level_writer_params.h"

namespace corvanta {

struct WriteXmlParams : LevelWriterParams
{
    int charMode = 0;
    bool useComma = false;
    bool humanReadable = false;
    bool wellFormed = false;
    QString indentStart = QStringLiteral("0");
    QString prefix = QStringLiteral("<data>");
    QString suffix = QStringLiteral("</data>");
};

const ParamTable<WriteXmlParams> &writeXmlParamTable();

} // namespace corvanta
