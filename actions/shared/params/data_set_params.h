// The parameters that the writers of SAS data sets and transport files have in common.
#pragma once
#include "actions/shared/params/string_columns.h"
#include "actions/shared/params/writer_params.h"
#include "actions/shared/row_writer.h"

namespace corvanta {

struct DataSetParams : RowWriterParams
{
    QString fileName;
    std::vector<StringColumn> stringColumns;
};

namespace shared {

/// The rows and columns that are written, at the end of the table.
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
