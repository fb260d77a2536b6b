#include "actions/merge_files/merge_files_params.h"

#include "actions/shared/params/writer_params.h"

namespace corvanta {

const ParamTable<MergeFilesParams> &mergeFilesParamTable()
{
    using P = MergeFilesParams;
    static const ParamTable<P> table{
        text(kMergedFile, &P::fileName)
            .outputFile()
            .always()
            .required()
            .label("File")
            .meaning("File to write. Its extension is the format: parquet, csv, tsv, jsonl or "
                     "json; .gz compresses texts."),
        flag("byName", &P::byName)
            .label("Join columns by name")
            .meaning("The file has every column of every part; values of other parts are missing. "
                     "Off: all parts must have the same columns in the same order."),
        shared::createDir<P>(),
        strings(kMergedParts, &P::parts)
            .required()
            .label("Parts")
            .meaning("Files to join, in this order; patterns such as part-*.parquet stand for "
                     "the files that they match. All have the format of the output."),
    };
    return table;
}

} // namespace corvanta
