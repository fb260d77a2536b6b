// The parameters of readJSON.
#pragma once
#include "actions/shared/params/document_source.h"
#include "actions/shared/params/read_levels.h"
#include "corvanta/param_table.h"

namespace corvanta {

struct ReadJsonParams
{
    QString colJSON;
    DocumentSource fromInputPin = DocumentSource::File;
    int bufferSize = 1;
    int autoFillNRows = 100;
    QString fileName;
    bool outputFilenames = false;
    bool appendToRow = false;
    bool outputSubTags = false;
    bool oneJSONPerRow = false;
    bool readTagsFromInPin = false;
    bool abortIfMissing = true;
    int timeOut = 0;
    bool permissiveNumbers = true;
    bool ignoreErrors = false;
    bool newMode = true;
    std::vector<ReadLevel> levels;
};

const ParamTable<ReadJsonParams> &readJsonParamTable();

/// Defaults of graphs saved by earlier hosts.
void adjustReadJsonDefaults(ReadJsonParams &params, double savedVersion);

} // namespace corvanta
