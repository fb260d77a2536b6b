#include "writers/write_sas_xpt_params.h"

namespace corvanta {

const ParamTable<WriteSasXptParams> &writeSasXptParamTable()
{
    using P = WriteSasXptParams;
    static const ParamTable<P> table{
        text("fileName", &P::fileName)
            .outputFile()
            .label("File")
            .meaning("Transport file (.xpt) to write."),
        flag("writeAllRows", &P::writeAllRows)
            .label("Write all rows")
            .meaning("Writes every row. Off: only rows that pass the test."),
        text("testCol", &P::testCol)
            .label("Column to test")
            .meaning("Column that is tested when writeAllRows is off."),
        text("testValue", &P::testValue)
            .label("Value to test for")
            .meaning("Rows whose testCol has another text are not written."),
        flag("writeAllColumns", &P::writeAllColumns)
            .label("Write all columns")
            .meaning("Writes every column. Off: only the columns of ColWrite."),
        flag("createDir", &P::createDir)
            .label("Create the folder of the file")
            .meaning("Creates missing folders of the file."),
        flag("checkNameCollision", &P::checkNameCollision)
            .label("Check for columns of the same name")
            .meaning("Two written columns of one name are an error."),
        strings("ColWrite", &P::colWrite)
            .label("Columns to write")
            .meaning("Columns that are written when writeAllColumns is off."),
        stringColumns(&P::stringColumns),
    };
    return table;
}

} // namespace corvanta
