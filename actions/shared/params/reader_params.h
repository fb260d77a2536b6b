// Lines of parameter tables that several readers have. `P` has members of the same names.
#pragma once
#include "corvanta/param_table.h"

namespace corvanta::shared {

template <class P> Param<P> fileNameFromPin()
{
    return flag<P>("fileNameFromPin", &P::fileNameFromPin)
        .label("Read the file name from input pin 0")
        .meaning("Reads the file name from the first column of the first row of input pin 0.");
}

template <class P> Param<P> fileNamesFromPin()
{
    return flag<P>("fileNameFromPin", &P::fileNameFromPin)
        .label("Read the file names from input pin 0")
        .meaning("Reads the file names from the first column of input pin 0, one file per row.");
}

template <class P> Param<P> abortIfMissing()
{
    return flag<P>("abortIfMissing", &P::abortIfMissing)
        .label("A missing file is an error")
        .meaning("Fails when a file is missing. Off: logs a warning.");
}

template <class P> Param<P> timeOut()
{
    return number<P>("timeOut", &P::timeOut)
        .range(-1, 86400)
        .label("Retry for")
        .meaning("Seconds for which reading a file is retried while it cannot be read; -1: without "
                 "limit.");
}

template <class P> Param<P> bufferSize()
{
    return number<P>("bufferSize", &P::bufferSize)
        .range(1, 2047)
        .label("Minimum Input Buffer Size:")
        .meaning("Smallest input buffer, in MB.");
}

template <class P> Param<P> outputFilenames()
{
    return flag<P>("outputFilenames", &P::outputFilenames)
        .label("Add a column with the file name")
        .meaning("Adds the last column _FileNames with the name of the file of each row.");
}

template <class P> Param<P> outputSubTags()
{
    return flag<P>("outputSubTags", &P::outputSubTags)
        .label("Add the names of the repeated elements")
        .meaning("Adds one column \"Level N Subtag\" per level.");
}

template <class P> Param<P> autoFillNRows()
{
    return number<P>("autoFillNRows", &P::autoFillNRows)
        .range(1, 1000000)
        .label("Sample")
        .meaning("Number of records that are examined to find the levels automatically.");
}

template <class P> Param<P> copyOfInputRow(const char *name, bool P::*member)
{
    return flag<P>(name, member)
        .label("Copy the columns of the input row")
        .meaning(
            "Adds the columns of the input row before the extracted ones, when reading from the "
            "input pin.");
}

} // namespace corvanta::shared
