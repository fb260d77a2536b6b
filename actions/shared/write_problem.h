// What can go wrong in every writer of rows; each writer has its own message for it.
#pragma once

namespace corvanta {

/// The name that goes with a problem is given in parentheses.
enum class WriteProblem {
    NoTestColumn,   ///< the input lacks the column that selects rows (the column)
    NoColumn,       ///< the input lacks a column to write (the column)
    NoColumns,      ///< there is no column to write
    BadFloatFormat, ///< floatToString is not a format of a floating-point number (the format)
    CannotOpen,
    CannotWrite,
    TooLarge, ///< a piece of text exceeds the writer's buffer
};

} // namespace corvanta
