// The parameters that writeJSON and writeXML have in common.
#pragma once
#include "actions/shared/row_writer.h"
#include "actions/shared/write_levels.h"
#include "actions/shared/writer_params.h"

namespace corvanta {

struct LevelWriterParams : RowWriterParams
{
    QString fileName;
    int fileMode = 0;
    int nullString = 2;
    int nullNumber = 1;
    int nan = 1;
    QString floatToString = QStringLiteral("%g");
    bool alwaysWrite = false;
    std::vector<WriteLevel> levels;
};

namespace shared {

template <class P> Param<P> fileMode()
{
    return number<P>("fileMode", &P::fileMode)
        .choices({"create or overwrite", "append"})
        .label("Open the file")
        .meaning("Whether an existing file is replaced or continued.");
}

/// `nullForm` is what stands for a missing value.
template <class P> Param<P> nullString(const char *nullForm, const char *emptyForm)
{
    return number<P>("nullString", &P::nullString)
        .choices({nullForm, emptyForm, "leave it out"})
        .label("Missing text")
        .meaning("What is written for a missing text cell.");
}

template <class P> Param<P> nullNumber(const char *nullForm)
{
    return number<P>("nullNumber", &P::nullNumber)
        .choices({nullForm, "leave it out"})
        .label("Missing number")
        .meaning("What is written for a missing whole or decimal number.");
}

template <class P> Param<P> nan(const char *nullForm)
{
    return number<P>("nan", &P::nan)
        .choices({"write nan, inf or -inf", nullForm, "leave it out"})
        .label("NaN and infinite numbers")
        .meaning("What is written for NaN and infinite numbers.");
}

template <class P> Param<P> alwaysWrite()
{
    return flag<P>("alwaysWrite", &P::alwaysWrite)
        .label("Write a file also without rows")
        .meaning("Writes a file with its start and end also when there is no row.");
}

template <class P> Param<P> writeAllColumnsWithoutLevels()
{
    return writeAllColumns<P>("Writes every column. Off: only the columns of ToWrite. Without "
                              "effect when there are Levels.");
}

template <class P> Param<P> prefix()
{
    return elementText<P>("Prefix", &P::prefix)
        .always()
        .label("Start of the file")
        .meaning("Text at the start of every file.");
}

template <class P> Param<P> suffix()
{
    return elementText<P>("Suffix", &P::suffix)
        .always()
        .label("End of the file")
        .meaning("Text at the end of every file.");
}

} // namespace shared

} // namespace corvanta
