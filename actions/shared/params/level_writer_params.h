// The parameters that writeJSON and writeXML have in common.
//
// The functions are lines of their parameter tables. The two formats differ in the order of the
// lines and in what they write for missing values.
#pragma once
#include "actions/shared/params/write_levels.h"
#include "actions/shared/params/writer_params.h"
#include "actions/shared/row_writer.h"

namespace corvanta {

/// What happens to an existing file. Any other number appends.
enum class FileMode { Replace, Append };

/// What is written for a missing text: the format's null form, its empty text, or nothing, not even
/// the key. Any other number leaves it out.
enum class MissingText { Null, Empty, LeaveOut };

/// What is written for a missing number. Any other number means the null form.
enum class MissingNumber { Null, LeaveOut };

/// What is written for NaN and infinite numbers: nan, inf or -inf, the null form, or nothing.
enum class NotFinite { Name, Null, LeaveOut };

/// The prefix and suffix of a file have different defaults and are members of the derived structs.
struct LevelWriterParams : RowWriterParams
{
    /// Expanded before use; an empty name cannot be opened.
    QString fileName;
    FileMode fileMode = FileMode::Replace;
    // What is written in place of a value that is missing or not finite.
    MissingText nullString = MissingText::LeaveOut;
    MissingNumber nullNumber = MissingNumber::LeaveOut;
    NotFinite nan = NotFinite::Null;
    /// printf format of finite numbers; empty: the fewest digits that read back as the number.
    QString floatToString = QStringLiteral("%g");
    /// Write a file even if no row is selected.
    bool alwaysWrite = false;
    /// The structure of the file, the top level first. Empty: each row is one element, and
    /// writeAllColumns and toWrite select its columns. Otherwise these two are ignored.
    std::vector<WriteLevel> levels;
};

namespace shared {

/// What happens to an existing file.
template <class P> Param<P> fileMode()
{
    return choice<P>("fileMode", &P::fileMode,
                     {{FileMode::Replace, "create or overwrite"}, {FileMode::Append, "append"}})
        .otherwise("appends to the file")
        .label("Open the file")
        .meaning("Whether an existing file is replaced or extended.");
}

/// The forms of missing values and numbers. `nullForm` and `emptyForm` are the texts that a user
/// chooses from: what the format writes for a missing value.
template <class P> ParamGroup<P> valueForms(const char *nullForm, const char *emptyForm)
{
    return {
        choice<P>("nullString", &P::nullString,
                  {{MissingText::Null, nullForm},
                   {MissingText::Empty, emptyForm},
                   {MissingText::LeaveOut, "leave it out"}})
            .otherwise("leaves the value out")
            .label("Missing text")
            .meaning("What is written for a missing text cell."),
        choice<P>("nullNumber", &P::nullNumber,
                  {{MissingNumber::Null, nullForm}, {MissingNumber::LeaveOut, "leave it out"}})
            .orAnyNumber("writes the form of a missing value")
            .label("Missing number")
            .meaning("What is written for a missing whole or decimal number."),
        choice<P>("nan", &P::nan,
                  {{NotFinite::Name, "write nan, inf or -inf"},
                   {NotFinite::Null, nullForm},
                   {NotFinite::LeaveOut, "leave it out"}})
            .otherwise("leaves the value out")
            .label("NaN and infinite numbers")
            .meaning("What is written for NaN and infinite numbers."),
        floatToString<P>(),
    };
}

/// Without it a run that selects no row writes no file and leaves an existing one unchanged.
template <class P> Param<P> alwaysWrite()
{
    return flag<P>("alwaysWrite", &P::alwaysWrite)
        .label("Write a file even without rows")
        .meaning("Writes a file with its start and end even when there is no row.");
}

/// What a file contains, at the end of the table. `P` has the members `prefix` and `suffix`; they
/// are saved always, because an empty text is a valid value. `levelTables` must outlive the table.
template <class P> ParamGroup<P> fileContent(const WriteLevelTables &levelTables)
{
    return {
        writeAllColumns<P>("Writes every column. Off: only the columns of ToWrite. Ignored when "
                           "there are Levels.")
            .onlyWhen("Levels", {QString()}),
        elementText<P>("Prefix", &P::prefix)
            .expanded()
            .always()
            .label("Start of the file")
            .meaning("Text at the start of every file."),
        elementText<P>("Suffix", &P::suffix)
            .expanded()
            .always()
            .label("End of the file")
            .meaning("Text at the end of every file."),
        columnsToWrite<P>("ToWrite").onlyWhen("Levels", {QString()}),
        writeLevels<P>(&P::levels, levelTables),
    };
}

} // namespace shared

} // namespace corvanta
