// The parameters that the writers of SAS data sets and transport files have in common.
//
// A table of such a writer starts with dataSetFile(), continues with what is special to the format,
// and ends with dataSetContent().
#pragma once
#include "actions/shared/params/string_columns.h"
#include "actions/shared/params/writer_params.h"
#include "actions/shared/row_writer.h"

namespace corvanta {

/// The formats store texts in columns of fixed width.
struct DataSetParams : RowWriterParams
{
    /// Expanded before use.
    QString fileName;
    /// The widths of text columns that are declared; those of other columns are measured.
    std::vector<StringColumn> stringColumns;
};

namespace shared {

/// The file, at the start of the table. `meaning` names the format.
template <class P> Param<P> dataSetFile(const char *meaning)
{
    return text<P>("fileName", &P::fileName).outputFile().required().label("File").meaning(meaning);
}

/// The rows and columns that are written, at the end of the table. The child elements come last.
template <class P> ParamGroup<P> dataSetContent()
{
    return {
        writeAllRows<P>(),
        testCol<P>(),
        testValue<P>(),
        writeAllColumns<P>("Writes every column. Off: only the columns of ColWrite."),
        createDir<P>(),
        checkNameCollision<P>(),
        columnsToWrite<P>("ColWrite"),
        stringColumns<P>(&P::stringColumns),
    };
}

} // namespace shared

} // namespace corvanta
