// writers/write_json_params.h
// The parameters of writeJSON.
#pragma once
#include "corvanta/param_table.h"
#include "writers/levels.h"

namespace corvanta {

struct WriteJsonParams
{
    QString fileName;
    int fileMode = 0;
    bool checkNameCollision = true;
    bool createDir = false;
    bool writeAllRows = true;
    QString testCol;
    QString testValue;
    int nullString = 2;
    int nullNumber = 1;
    int nan = 1;
    QString floatToString = QStringLiteral("%g");
    bool specialBool = true;
    bool replaceLF = false;
    bool splitFile = false;
    bool advancedNaming = false;
    bool alwaysWrite = false;
    QString splitCol;
    bool writeAllColumns = true;
    QString prefix = QStringLiteral("[");
    QString suffix = QStringLiteral("]");
    QStringList toWrite;
    std::vector<WriteLevel> levels;
};

const ParamTable<WriteJsonParams> &writeJsonParamTable();

/// Defaults of graphs saved by earlier hosts.
void adjustWriteJsonDefaults(WriteJsonParams &params, double savedVersion);

} // namespace corvanta
