// writers/shared_params.h
// Lines of parameter tables that stand in several writers. `P` has the members of the same names.
#pragma once
#include "corvanta/param_table.h"

namespace corvanta::shared {

template <class P> Param<P> checkNameCollision()
{
    return flag<P>("checkNameCollision", &P::checkNameCollision)
        .label("Check for columns of the same name")
        .meaning("Two written columns of one name are an error.");
}

template <class P> Param<P> createDir()
{
    return flag<P>("createDir", &P::createDir)
        .label("Create the folder of the file")
        .meaning("Creates missing folders of the file.");
}

template <class P> Param<P> writeAllRows()
{
    return flag<P>("writeAllRows", &P::writeAllRows)
        .label("Write all rows")
        .meaning("Writes every row. Off: only rows that pass the test.");
}

template <class P> Param<P> testCol()
{
    return text<P>("testCol", &P::testCol)
        .label("Column to test")
        .meaning("Column that is tested when writeAllRows is off.");
}

template <class P> Param<P> testValue()
{
    return text<P>("testValue", &P::testValue)
        .label("Value to test for")
        .meaning("Rows whose testCol has another text are not written.");
}

template <class P> Param<P> writeAllColumns(const char *meaning)
{
    return flag<P>("writeAllColumns", &P::writeAllColumns)
        .label("Write all columns")
        .meaning(meaning);
}

/// The columns that are written when writeAllColumns is off.
template <class P> Param<P> columnsToWrite(const char *name, QStringList P::*member)
{
    return strings<P>(name, member)
        .label("Columns to write")
        .meaning("Columns that are written when writeAllColumns is off.");
}

template <class P> Param<P> floatToString()
{
    return text<P>("floatToString", &P::floatToString)
        .label("Format of decimal numbers")
        .meaning("printf format with one conversion of a floating-point number; empty: the "
                 "fewest digits that read back.");
}

} // namespace corvanta::shared
