// writers/write_xml_params.h
// The parameters of writeXML.
#pragma once
#include "corvanta/param_table.h"
#include "writers/levels.h"

namespace corvanta {

struct WriteXmlParams
{
    QString fileName;
    int fileMode = 0;
    int charMode = 0;
    bool checkNameCollision = true;
    bool createDir = false;
    bool writeAllRows = true;
    QString testCol;
    QString testValue;
    bool useComma = false;
    bool humanReadable = false;
    QString indentStart = QStringLiteral("0");
    int nullString = 2;
    int nullNumber = 1;
    int nan = 1;
    QString floatToString = QStringLiteral("%g");
    bool alwaysWrite = false;
    bool writeAllColumns = true;
    QString prefix = QStringLiteral("<data>");
    QString suffix = QStringLiteral("</data>");
    QStringList toWrite;
    std::vector<WriteLevel> levels;
};

const ParamTable<WriteXmlParams> &writeXmlParamTable();

} // namespace corvanta
