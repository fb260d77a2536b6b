// The parameters of readJSON.
//
// They are read in the order of the table, after adjustReadJsonDefaults() has set the defaults that
// depend on the version that saved the graph.
#pragma once
#include "actions/shared/params/level_reader_params.h"
#include "corvanta/params/param_table.h"

namespace corvanta {

struct ReadJsonParams : LevelReaderParams
{
    /// Column of input pin 0 with the texts; ignored when reading a file.
    QString colJSON;
    /// Put the columns of the input row before the extracted ones; only with the input pin.
    bool appendToRow = false;
    /// Each row of the pin is one document. Off: the rows are one stream, and a document may
    /// continue in the next row.
    bool oneJSONPerRow = false;
    /// Read the items from input pin 1. Those of `levels` are then ignored.
    bool readTagsFromInPin = false;
    /// Accept values such as 12abc as text. Off: they are structure errors.
    bool permissiveNumbers = true;
    /// Structure errors are warnings, and the next document is read. Off: they fail the run.
    bool ignoreErrors = false;
    /// A null gives a missing cell. Off: the text "null".
    bool nullIsMissing = false;
    /// Paths begin at the document. Off: at the document's only element.
    bool newMode = true;
};

/// Constant; made by the first call.
const ParamTable<ReadJsonParams> &readJsonParamTable();

/// Set the defaults of a graph that was saved by version `savedVersion`: newMode is off
/// before 3.92.
void adjustReadJsonDefaults(ReadJsonParams &params, double savedVersion);

} // namespace corvanta
