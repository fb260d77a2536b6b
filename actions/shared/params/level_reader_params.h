// The parameters that readJSON and readXML have in common.
#pragma once
#include "actions/shared/params/document_source.h"
#include "actions/shared/params/read_levels.h"
#include "actions/shared/params/reader_params.h"

#include <string>

namespace corvanta {

struct LevelReaderParams
{
    /// The other members that name or describe files are ignored when this is not File.
    DocumentSource fromInputPin = DocumentSource::File;
    /// Smallest input buffer, in MiB. Each reader has its own default.
    int bufferSize = 1;
    /// Records that are examined when the levels are derived from the file; at least 1.
    int autoFillNRows = 100;
    /// A file, a pattern, or a member of an archive. Not expanded yet.
    QString fileName;
    /// Add the last column _FileNames; only with files.
    bool outputFilenames = false;
    /// Add one column "Level N Subtag" per level, with the name of the occurrence.
    bool outputSubTags = false;
    /// A missing file fails the run. Off: a warning, and the next file.
    bool abortIfMissing = true;
    /// Retries of a missing file, one second apart; negative: no limit.
    int timeOut = 0;
    /// Letters of the types of the columns, separated by commas: K, F, U, or J (ExtractOptions).
    /// Columns without a letter are texts.
    QString types;
    /// Warn about parts of the occurrences that no item reads.
    bool warnUnread = false;
    /// Outermost first. Empty: nothing to read; `fillFromInput` can then derive them.
    std::vector<ReadLevel> levels;
};

namespace shared {

/// The column of input pin 0 with the documents.
template <class P> Param<P> documentColumn(const char *name, QString P::*column)
{
    return text(name, column).expanded().requiredWhen("fromInputPin", {QStringLiteral("1")});
}

/// The file to read. `kinds` says which files the reader reads.
template <class P> Param<P> documentFile(const std::string &kinds)
{
    const std::string meaning =
        kinds + " to read, a pattern, or a member of an archive (archive.zip@member).";
    return text<P>("fileName", &P::fileName)
        .inputFile()
        .always()
        .requiredWhen("fromInputPin", {QStringLiteral("0")})
        .label("File")
        .meaning(meaning.c_str());
}

/// What happens to a file that is missing.
template <class P> ParamGroup<P> missingFiles()
{
    const QStringList file{QStringLiteral("0")};
    return {abortIfMissing<P>().onlyWhen("fromInputPin", file),
            timeOut<P>().onlyWhen("fromInputPin", file)};
}

template <class P> Param<P> columnTypes()
{
    return text<P>("types", &P::types)
        .label("Column types")
        .meaning("One letter per column, separated by commas: K (whole number), F (decimal "
                 "number), U (text). Columns without a letter are texts.");
}

template <class P> Param<P> warnUnread()
{
    return flag<P>("warnUnread", &P::warnUnread)
        .label("Warn about values that are not read")
        .meaning("Logs a warning with the number of elements, attributes and list values of the "
                 "occurrences that no item reads. Not for HTML.");
}

} // namespace shared

} // namespace corvanta
