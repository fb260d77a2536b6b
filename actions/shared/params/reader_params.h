// Lines of parameter tables that several readers have. `P` has members of the same names, and their
// initialisers are the defaults.
//
// A line sets the name of the attribute, the range, and the texts of the panel. Readers choose the
// order, which is the order of the attributes in saved graphs.
#pragma once
#include "corvanta/params/param_table.h"

namespace corvanta::shared {

/// For readers that can take the name from the pin. `meaning` says what the file is.
template <class P> Param<P> fileName(const char *meaning)
{
    return text<P>("fileName", &P::fileName)
        .inputFile()
        .always()
        .requiredWhen("fileNameFromPin", {QStringLiteral("0")})
        .label("File")
        .meaning(meaning);
}

/// For readers of one file. The name replaces the one in fileName.
template <class P> Param<P> fileNameFromPin()
{
    return flag<P>("fileNameFromPin", &P::fileNameFromPin)
        .label("Read the file name from input pin 0")
        .meaning("Reads the file name from the first column of the first row of input pin 0.");
}

/// For readers of several files: the same attribute, with every row of the pin.
template <class P> Param<P> fileNamesFromPin()
{
    return flag<P>("fileNameFromPin", &P::fileNameFromPin)
        .label("Read the file names from input pin 0")
        .meaning("Reads the file names from the first column of input pin 0, one file per row.");
}

/// Concerns files that do not exist. Each reader defines what happens to unreadable ones.
template <class P> Param<P> abortIfMissing()
{
    return flag<P>("abortIfMissing", &P::abortIfMissing)
        .role(ParameterInfo::Role::AbortIfMissing)
        .label("A missing file is an error")
        .meaning("Fails when a file is missing. Off: logs a warning.");
}

/// The number of retries, one second apart; 0: none, -1: until the file appears or the run ends.
template <class P> Param<P> timeOut()
{
    return number<P>("timeOut", &P::timeOut)
        .role(ParameterInfo::Role::RetryTime)
        .range(-1, 86400)
        .lowMeans("no limit")
        .unit("seconds")
        .label("Retry for")
        .meaning("How long reading a file is retried while it cannot be read; -1: without limit.");
}

/// MiB. The upper bound keeps the number of bytes below 2 GiB.
template <class P> Param<P> bufferSize()
{
    return number<P>("bufferSize", &P::bufferSize)
        .range(1, 2047)
        .unit("MB")
        .label("Minimum Input Buffer Size:")
        .meaning("Smallest input buffer.");
}

/// The cells of the column hold the expanded names.
template <class P> Param<P> outputFilenames()
{
    return flag<P>("outputFilenames", &P::outputFilenames)
        .label("Add a column with the file name")
        .meaning("Adds the last column _FileNames with the name of the file of each row.");
}

/// For readers with levels; the names of object members or elements are then data.
template <class P> Param<P> outputSubTags()
{
    return flag<P>("outputSubTags", &P::outputSubTags)
        .label("Add the names of the repeated elements")
        .meaning("Adds one column \"Level N Subtag\" per level.");
}

/// Used only to derive levels from the file, not by a run.
template <class P> Param<P> autoFillNRows()
{
    return number<P>("autoFillNRows", &P::autoFillNRows)
        .range(1, 1000000)
        .unit("records")
        .label("Sample")
        .meaning("Number of records that are examined to find the levels automatically.");
}

/// The attribute has another name in each reader. Ignored when reading files.
template <class P> Param<P> copyOfInputRow(const char *name, bool P::*member)
{
    return flag<P>(name, member)
        .ignoredWhen("fromInputPin", {QStringLiteral("0")})
        .label("Copy the columns of the input row")
        .meaning(
            "Adds the columns of the input row before the extracted ones, when reading from the "
            "input pin.");
}

} // namespace corvanta::shared
