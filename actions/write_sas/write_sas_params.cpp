#include "actions/write_sas/write_sas_params.h"

#include "actions/shared/writer_params.h"

namespace corvanta {

const ParamTable<WriteSasParams> &writeSasParamTable()
{
    using P = WriteSasParams;
    static const ParamTable<P> table{
        text("fileName", &P::fileName)
            .outputFile()
            .label("File")
            .meaning("Data set (.sas7bdat) to write."),
        number("columnNameMode", &P::columnNameMode)
            .choices({"Use the same Column Names as in Corvanta (possibly truncated)",
                      "Use the same Column Names as in Corvanta (abort if truncation)",
                      "Column Names are C1,C2,.. and Column Labels are Corvanta Column Names"})
            .label("Names of the variables")
            .meaning("A name in the data set has at most 32 bytes of UTF-8."),
        number("stringStorage", &P::stringStorage)
            .choices({"truncate it, with a warning", "abort"})
            .label("A text wider than its column")
            .meaning("What happens to a text that does not fit."),
        real("f1", &P::f1)
            .label("Automatic width: factor")
            .meaning("Widths taken from data are the longest text times this factor."),
        number("f2", &P::f2)
            .label("Automatic width: extra bytes")
            .meaning("Bytes added to widths taken from data."),
        shared::writeAllRows<P>(),
        shared::testCol<P>(),
        shared::testValue<P>(),
        shared::writeAllColumns<P>("Writes every column. Off: only the columns of ColWrite."),
        shared::createDir<P>(),
        shared::checkNameCollision<P>(),
        shared::columnsToWrite("ColWrite", &P::colWrite),
        stringColumns(&P::stringColumns),
    };
    return table;
}

} // namespace corvanta
