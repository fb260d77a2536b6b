#include "actions/merge_files/merge_format.h"

#include "codecs/csv/table_merger.h"
#include "codecs/merge/json_merger.h"
#include "codecs/parquet/merge/file_merger.h"

using namespace Qt::StringLiterals;

namespace corvanta {

/// A Parquet file is compressed inside, and is not read from beginning to end.
MergeFormat mergeFormatOf(const QString &name)
{
    const bool isPacked = name.endsWith(".gz"_L1);
    const QString inner = isPacked ? name.chopped(3) : name;
    const QString extension = inner.mid(inner.lastIndexOf(u'.') + 1).toLower();
    if (extension == "parquet"_L1) {
        return isPacked ? MergeFormat::None : MergeFormat::Parquet;
    }
    if (extension == "csv"_L1 || extension == "txt"_L1) {
        return MergeFormat::Csv;
    }
    if (extension == "tsv"_L1 || extension == "tab"_L1) {
        return MergeFormat::Tsv;
    }
    if (extension == "jsonl"_L1 || extension == "ndjson"_L1) {
        return MergeFormat::JsonLines;
    }
    return extension == "json"_L1 ? MergeFormat::Json : MergeFormat::None;
}

QString nameOf(MergeFormat format)
{
    switch (format) {
    case MergeFormat::Parquet:
        return u"Parquet"_s;
    case MergeFormat::Csv:
        return u"CSV"_s;
    case MergeFormat::Tsv:
        return u"TSV"_s;
    case MergeFormat::JsonLines:
        return u"JSON Lines"_s;
    case MergeFormat::Json:
        return u"JSON"_s;
    case MergeFormat::None:
        break;
    }
    return {};
}

std::unique_ptr<PartMerger> makeMerger(MergeFormat format, MergeMatch match)
{
    csv::TextForm form;
    form.findsLineEnd = true;
    switch (format) {
    case MergeFormat::Parquet:
        return std::make_unique<parquet::FileMerger>(match);
    case MergeFormat::JsonLines:
        return std::make_unique<JsonMerger>(JsonMerger::Form::Lines);
    case MergeFormat::Json:
        return std::make_unique<JsonMerger>(JsonMerger::Form::Array);
    case MergeFormat::Tsv:
        form.dialect.separator = '\t';
        break;
    case MergeFormat::Csv:
    case MergeFormat::None:
        form.findsSeparator = true;
        break;
    }
    return std::make_unique<csv::TableMerger>(match, form);
}

} // namespace corvanta
