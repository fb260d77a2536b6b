// The parameters that writeJSON and writeXML have in common.
#pragma once
#include "actions/shared/params/write_levels.h"
#include "actions/shared/params/writer_params.h"
#include "actions/shared/row_writer.h"

namespace corvanta {

/// What happens to an existing file.
enum class FileMode { Replace, Append };

/// What is written for a missing text.
enum class MissingText { Null, Empty, LeaveOut };

/// What is written for a missing number.
enum class MissingNumber { Null, LeaveOut };

/// What is written for NaN and infinite numbers.
enum class NotFinite { Name, Null, LeaveOut };

struct LevelWriterParams : RowWriterParams
{
    QString fileName;
    FileMode fileMode = FileMode::Replace;
    MissingText nullString = MissingText::LeaveOut;
    MissingNumber nullNumber = MissingNumber::LeaveOut;
    NotFinite nan = NotFinite::Null;
    QString floatToString = QStringLiteral("%g");
    bool alwaysWrite = false;
    std::vector<WriteLevel> levels;
};

namespace shared {

template <class P> Param<P> fileMode()
{
    return choice<P>("fileMode", &P::fileMode,
                     {{FileMode::Replace, "create or overwrite"}, {FileMode::Append, "append"}})
        .label("Open the file")
        .meaning("Whether an existing file is replaced or extended.");
}

/// The forms of missing values and numbers. `nullForm` and `emptyForm` name what the format writes
/// for a missing value.
template <class P> ParamGroup<P> valueForms(const char *nullForm, const char *emptyForm)
{
    return {
        choice<P>("nullString", &P::nullString,
                  {{MissingText::Null, nullForm},
                   {MissingText::Empty, emptyForm},
                   {MissingText::LeaveOut, "leave it out"}})
            .label("Missing text")
            .meaning("What is written for a missing text cell."),
        choice<P>("nullNumber", &P::nullNumber,
                  {{MissingNumber::Null, nullForm}, {MissingNumber::LeaveOut, "leave it out"}})
            .label("Missing number")
            .meaning("What is written for a missing whole or decimal number."),
        choice<P>("nan", &P::nan,
                  {{NotFinite::Name, "write nan, inf or -inf"},
                   {NotFinite::Null, nullForm},
                   {NotFinite::LeaveOut, "leave it out"}})
            .label("NaN and infinite numbers")
            .meaning("What is written for NaN and infinite numbers."),
        floatToString<P>(),
    };
}

template <class P> Param<P> alwaysWrite()
{
    return flag<P>("alwaysWrite", &P::alwaysWrite)
        .label("Write a file even without rows")
        .meaning("Writes a file with its start and end even when there is no row.");
}

/// What a file contains, at the end of the table.
template <class P> ParamGroup<P> fileContent()
{
    return {
        writeAllColumns<P>("Writes every column. Off: only the columns of ToWrite. Ignored when "
                           "there are Levels."),
        elementText<P>("Prefix", &P::prefix)
            .always()
            .label("Start of the file")
            .meaning("Text at the start of every file."),
        elementText<P>("Suffix", &P::suffix)
            .always()
            .label("End of the file")
            .meaning("Text at the end of every file."),
        columnsToWrite<P>("ToWrite"),
        writeLevels<P>(&P::levels),
    };
}

} // namespace shared

} // namespace corvanta
