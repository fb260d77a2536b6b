// The parameters of writeJSON.
#pragma once
#include "actions/shared/params/level_writer_params.h"

namespace corvanta {

struct WriteJsonParams : LevelWriterParams
{
    bool specialBool = true;
    bool replaceLF = false;
    bool escapeControls = false;
    bool splitFile = false;
    bool advancedNaming = false;
    QString splitCol;
    QString prefix = QStringLiteral("[");
    QString suffix = QStringLiteral("]");
};

const ParamTable<WriteJsonParams> &writeJsonParamTable();

/// Defaults of graphs saved by earlier hosts.
void adjustWriteJsonDefaults(WriteJsonParams &params, double savedVersion);

} // namespace corvanta
