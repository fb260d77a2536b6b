#include "actions/read_json/read_json_params.h"

namespace corvanta {

namespace {

using P = ReadJsonParams;

/// Where documents come from: a file or input pin 0.
ParamGroup<P> sourceOfDocuments()
{
    return {
        shared::documentColumn("colJSON", &P::colJSON)
            .label("JSON column")
            .meaning("Input column that holds the JSON texts."),
        shared::fromInputPin<P>("Read the JSON", "Reads the file fileName, or (any value but 0) "
                                                 "the texts of colJSON."),
        shared::bufferSize<P>(),
        shared::autoFillNRows<P>(),
        shared::documentFile<P>("JSON or JSON Lines file"),
    };
}

/// Columns other than those of the levels.
ParamGroup<P> addedColumns()
{
    return {
        shared::outputFilenames<P>().onlyWhen("fromInputPin", {QStringLiteral("0")}),
        shared::copyOfInputRow("appendToRow", &P::appendToRow),
        shared::outputSubTags<P>(),
    };
}

/// What the rows of the two input pins mean.
ParamGroup<P> inputPins()
{
    return {
        flag("oneJSONPerRow", &P::oneJSONPerRow)
            .ignoredWhen("fromInputPin", {QStringLiteral("0")})
            .label("Each input row holds one complete JSON document")
            .meaning("Each row is one document. Off: the rows are one stream of documents, and a "
                     "document may continue in the next row."),
        flag("readTagsFromInPin", &P::readTagsFromInPin)
            .label("Read tags to extract from pin 1")
            .meaning("Reads the items from the rows of input pin 1: from the columns path, name, "
                     "tagName and level, or else the path from the first and the name from the "
                     "second column."),
    };
}

/// What is accepted in a document, and where paths begin.
ParamGroup<P> errorsAndRoot()
{
    return {
        flag("permissiveNumbers", &P::permissiveNumbers)
            .label("Accept malformed numbers")
            .meaning("Accepts malformed numbers. Off: a value such as 12abc is a structure error."),
        flag("ignoreErrors", &P::ignoreErrors)
            .label("Continue after structure errors")
            .meaning("Reports structure errors as warnings and continues."),
        flag("nullIsMissing", &P::nullIsMissing)
            .label("A null is a missing cell")
            .meaning("Reads null as a missing cell. Off: as the text \"null\"."),
        flag("newMode", &P::newMode)
            .label("Always keep the root")
            .meaning("Keeps the root of every record, so that paths start at the document. Default "
                     "off in graphs saved before version 3.92."),
    };
}

} // namespace

void adjustReadJsonDefaults(ReadJsonParams &params, double savedVersion)
{
    // Kept for saved graphs: paths of earlier ones begin at the document's only element.
    constexpr double kRootKeptSince = 3.92;
    params.newMode = savedVersion >= kRootKeptSince;
}

const ParamTable<ReadJsonParams> &readJsonParamTable()
{
    // The order is that of saved graphs.
    static const ParamTable<P> table{
        sourceOfDocuments(),
        addedColumns(),
        inputPins(),
        shared::missingFiles<P>(),
        errorsAndRoot(),
        shared::warnUnread<P>(),
        shared::columnTypes<P>().meaning(
            "One letter per column, separated by commas: K (whole number), F (decimal number), U "
            "(text), J (text that is a value of JSON: with quotes and escapes if it is a text in "
            "the file). Columns without a letter are texts."),
        readLevels<P>(&P::levels),
    };
    return table;
}

} // namespace corvanta
