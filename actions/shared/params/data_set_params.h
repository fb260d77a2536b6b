// The parameters that the writers of SAS data sets and transport files have in common.
//
// A table of such a writer starts with dataSetFile(), continues with what is special to the format,
// and ends with dataSetContent().
#pragma once
#include "actions/shared/params/string_columns.h"
#include "actions/shared/params/variable_definitions.h"
#include "actions/shared/params/writer_params.h"
#include "actions/shared/row_writer.h"

namespace corvanta {

/// What happens to a text that is longer than the width of its column.
enum class WideText {
    Truncate, ///< it is cut, with a warning
    Abort,    ///< the run fails
};

/// The formats store texts in columns of fixed width.
struct DataSetParams : RowWriterParams
{
    /// Expanded before use.
    QString fileName;
    /// The widths of text columns. Without autoWidth every text column needs one.
    std::vector<StringColumn> stringColumns;
    /// Text columns without a declared width are as wide as their longest text.
    bool autoWidth = false;
    WideText stringStorage = WideText::Truncate;
    std::vector<VariableDefinition> variables;
    /// Text columns whose texts true and false become 1 and 0; others become missing.
    QStringList toBoolean;
};

namespace shared {

/// The file, at the start of the table. `meaning` names the format.
template <class P> Param<P> dataSetFile(const char *meaning)
{
    return text<P>("fileName", &P::fileName).outputFile().required().label("File").meaning(meaning);
}

/// What happens to texts that do not fit.
template <class P> Param<P> wideTexts()
{
    return choice<P>(
               "stringStorage", &P::stringStorage,
               {{WideText::Truncate, "truncate it, with a warning"}, {WideText::Abort, "abort"}})
        .otherwise("truncates it")
        .label("A text wider than its column")
        .meaning("What happens to a text that does not fit.");
}

/// The rows and columns that are written, at the end of the table. The child elements come last;
/// `variables` are the attributes of a `V` element, which `meaning` names.
template <class P>
ParamGroup<P> dataSetContent(const ParamTable<VariableDefinition> &variables, const char *meaning)
{
    return {
        writeAllRows<P>(),
        testCol<P>(),
        testValue<P>(),
        writeAllColumns<P>("Writes every column. Off: only the columns of ColWrite."),
        createDir<P>(),
        checkNameCollision<P>(),
        flag<P>("autoWidth", &P::autoWidth)
            .label("Measure the widths of text columns")
            .meaning("Text columns without a declared width (StringColDef) become as wide as their "
                     "longest text. Off: every text column needs a declared width."),
        columnsToWrite<P>("ColWrite"),
        stringColumns<P>(&P::stringColumns),
        variableDefinitions<P>(&P::variables, variables, meaning),
        strings<P>(kToBoolean, &P::toBoolean)
            .label("Boolean columns")
            .meaning("Text columns that become numbers: true is 1 and false is 0, in any letter "
                     "case. Other texts become missing, with a warning."),
    };
}

} // namespace shared

} // namespace corvanta
