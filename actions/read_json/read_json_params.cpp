#include "actions/read_json/read_json_params.h"

#include "actions/shared/params/reader_params.h"

namespace corvanta {

void adjustReadJsonDefaults(ReadJsonParams &params, double savedVersion)
{
    constexpr double kRootKeptSince = 3.92;
    params.newMode = savedVersion >= kRootKeptSince;
}

const ParamTable<ReadJsonParams> &readJsonParamTable()
{
    using P = ReadJsonParams;
    static const ParamTable<P> table{
        text("colJSON", &P::colJSON)
            .label("JSON column")
            .meaning("Input column that holds the JSON texts."),
        shared::fromInputPin<P>("Read the JSON", "Reads the file fileName, or (any value but 0) "
                                                 "the texts of colJSON."),
        shared::bufferSize<P>(),
        shared::autoFillNRows<P>(),
        text("fileName", &P::fileName)
            .inputFile()
            .always()
            .label("File")
            .meaning("JSON or JSON Lines file to read, a pattern, or a member of an archive "
                     "(archive.zip@member)."),
        shared::outputFilenames<P>(),
        shared::copyOfInputRow("appendToRow", &P::appendToRow),
        shared::outputSubTags<P>(),
        flag("oneJSONPerRow", &P::oneJSONPerRow)
            .label("Each input row holds one complete JSON document")
            .meaning("Each row is one document. Off: the rows are one stream of documents, and a "
                     "document may continue in the next row."),
        flag("readTagsFromInPin", &P::readTagsFromInPin)
            .label("Read tags to extract from pin 1")
            .meaning("Reads the items from the rows of input pin 1: from the columns path, name, "
                     "tagName and level, or else the path from the first and the name from the "
                     "second column."),
        shared::abortIfMissing<P>(),
        shared::timeOut<P>(),
        flag("permissiveNumbers", &P::permissiveNumbers)
            .label("Accept malformed numbers")
            .meaning("Accepts malformed numbers. Off: a value such as 12abc is a structure error."),
        flag("ignoreErrors", &P::ignoreErrors)
            .label("Continue after structure errors")
            .meaning("Reports structure errors as warnings and continues."),
        flag("newMode", &P::newMode)
            .label("Always keep the root")
            .meaning("Keeps the root of every record, so that paths start at the document. Default "
                     "off in graphs saved before version 3.92."),
        readLevels(&P::levels),
    };
    return table;
}

} // namespace corvanta
