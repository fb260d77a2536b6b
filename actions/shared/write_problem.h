// What can go wrong in every writer of rows; each writer has its own message for it.
#pragma once

namespace corvanta {

/// The name that goes with a problem is given in parentheses; it is empty for the others. The
/// message of a writer names its file, too. A writer needs no message for a problem that it never
/// reports.
enum class WriteProblem {
    // Problems of the table, found before a file is opened
    NoTestColumn,   ///< the input lacks the column that selects rows (the column)
    NoColumn,       ///< the input lacks a column to write (the column)
    NoColumns,      ///< there is no column to write
    BadFloatFormat, ///< floatToString is not a format of a floating-point number (the format)
    // Problems of the file
    CannotOpen,  ///< the target or its temporary file
    CannotWrite, ///< a write that the user gave up, or a failed commit
    TooLarge,    ///< a piece of text exceeds the writer's buffer
};

} // namespace corvanta
