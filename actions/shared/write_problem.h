// writers/write_problem.h
// What can go wrong while rows are composed into a file; each writer has its own texts for it.
#pragma once

namespace corvanta {

enum class WriteProblem {
    BadFloatFormat,
    NoTestColumn,
    NoPartitionColumn,
    NoColumn,       ///< a listed column does not exist
    NoLevel,        ///< a called level does not exist
    LevelInCircle,  ///< a level that reaches itself
    NoDictionary,   ///< a comma after something else than a dictionary
    NoColumnListed, ///< an item that needs a column has none
    CannotOpen,
    CannotWrite,
    TooLarge, ///< a piece of text beyond what the block holds
};

} // namespace corvanta
