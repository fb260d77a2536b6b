// Base of the actions that change a table: rows of input pin 0 in, rows of output pin 0 out.
//
//     first row, or the end   -> begin(its columns): find columns, describe the output pin
//     each row                -> takeRow()
//     end of the input        -> endInput(), then emitRow() until it returns false
//
// An action that passes rows on unchanged uses OneRow::copyFrom(), which copies no cells.
// An action is declared as `class ActionX : public ParamAction<ActionX, XParams, RowTransform>`.
// Threads: as ActionBase.
#pragma once
#include "corvanta/action_base.h"
#include "corvanta/one_row.h"

namespace corvanta {

class RowTransform : public ActionBase
{
protected:
    using ActionBase::ActionBase;

    // What the action supplies. All return false after a failure.

    /// Prepare for a table with these columns and describe those of output pin 0. Called once per
    /// run, with a row without cells if the table has no rows.
    virtual bool begin(const OneRow &columns) = 0;
    /// Take one row. Also returns false when the action needs no more rows.
    virtual bool takeRow(const OneRow &row) = 0;
    /// The input has ended in a good run.
    virtual bool endInput() { return true; }
    /// Send one of the rows that were kept until the end. Also returns false after the last one.
    virtual bool emitRow() { return false; }

    /// Reset the state of an earlier run. An override calls this first.
    void start() override;

    // What the action uses.

    /// The number of the row that takeRow() got, from 1.
    qint64 rowNumber() const { return m_rowNumber; }
    /// The index of a column; -1 after failing the run because the table has none of this name.
    int requireColumn(const TableSchema &columns, const QString &name);

private:
    bool step() final;
    bool takeFirst(const OneRow &row);
    bool endRows();

    qint64 m_rowNumber = 0;
    bool m_isBeforeFirstRow = true;
    bool m_isAtEnd = false;
};

} // namespace corvanta
