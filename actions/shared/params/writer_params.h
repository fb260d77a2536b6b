// Lines of parameter tables that several writers have. `P` is derived from RowWriterParams or has
// members of the same names.
//
// Each function is a line or a group of lines; where it is called decides its place in saved
// graphs. Names are fixed by saved graphs. Arguments are the texts in which the writers differ.
#pragma once
#include "corvanta/params/param_table.h"

#include <limits>

namespace corvanta::shared {

/// Off, both columns are written; some readers then show only one of them.
template <class P> Param<P> checkNameCollision()
{
    return flag<P>("checkNameCollision", &P::checkNameCollision)
        .label("Check for columns of the same name")
        .meaning("Reports an error when two written columns have the same name.");
}

/// RowWriter::createFolder() does this before a file is opened.
template <class P> Param<P> createDir()
{
    return flag<P>("createDir", &P::createDir)
        .role(ParameterInfo::Role::CreateFolder)
        .label("Create the folder of the file")
        .meaning("Creates missing folders of the file.");
}

/// For writers that lock their file.
template <class P> Param<P> lockTimeOut()
{
    return number<P>("timeOut", &P::timeOut)
        .range(-1, std::numeric_limits<int>::max())
        .lowMeans("no limit")
        .unit("seconds")
        .label("Wait for other programs")
        .meaning("How long the action waits while another program writes to the file; -1: without "
                 "limit.");
}

// The selection of rows. Some graphs save the three lines in another order, so that each has its
// own function.
template <class P> Param<P> writeAllRows()
{
    return flag<P>("writeAllRows", &P::writeAllRows)
        .label("Write all rows")
        .meaning("Writes every row. Off: only rows that pass the test.");
}

/// A missing column fails the run with the first row.
template <class P> Param<P> testCol()
{
    return text<P>("testCol", &P::testCol)
        .requiredWhen("writeAllRows", {QStringLiteral("0")})
        .label("Column to test")
        .meaning("Column that is tested when writeAllRows is off.");
}

/// Compared with the whole text of the cell.
template <class P> Param<P> testValue()
{
    return text<P>("testValue", &P::testValue)
        .onlyWhen("writeAllRows", {QStringLiteral("0")})
        .label("Value to test for")
        .meaning("Rows with another text in testCol are not written.");
}

/// The selection in the usual order.
template <class P> ParamGroup<P> rowFilter()
{
    return {writeAllRows<P>(), testCol<P>(), testValue<P>()};
}

/// `meaning` says what the columns to write are when it is off.
template <class P> Param<P> writeAllColumns(const char *meaning)
{
    return flag<P>("writeAllColumns", &P::writeAllColumns)
        .label("Write all columns")
        .meaning(meaning);
}

/// The columns that are written when writeAllColumns is off: `name` is the element that holds them.
template <class P> Param<P> columnsToWrite(const char *name)
{
    return strings<P>(name, &P::toWrite)
        .onlyWhen("writeAllColumns", {QStringLiteral("0")})
        .label("Columns to write")
        .meaning("Columns that are written when writeAllColumns is off.");
}

/// Lists of text columns whose values are written as what they are; for messages about them.
inline constexpr char kToBoolean[] = "ToBoolean";
inline constexpr char kToDate[] = "ToDate";
inline constexpr char kToDateTime[] = "ToDateTime";
inline constexpr char kToTime[] = "ToTime";

/// Name of the parameter, for problems with it.
inline constexpr char kFloatToString[] = "floatToString";

/// FloatFormat::set() checks it at the start of a run.
template <class P> Param<P> floatToString()
{
    return text<P>(kFloatToString, &P::floatToString)
        .label("Format of decimal numbers")
        .meaning("printf format with one conversion of a floating-point number; empty: the "
                 "fewest digits that read back as the same number.");
}

} // namespace corvanta::shared
