// The failures of readers of statistical data sets. They end the reading; what can be repaired or
// left out is counted instead (see Findings).
#pragma once
#include "base/result.h"

namespace corvanta::stat {

/// The detail of a fault is a text for the user.
enum class Error : quint8 {
    CannotOpen = 1,  ///< the file is too short to be a data set, or begins with other bytes
    Unreadable,      ///< a read of the source failed
    Damaged,         ///< sizes or counts in the file contradict each other or the file's size
    Library,         ///< the library refused the file; the detail is its message
    RowTooLarge,     ///< a row does not fit into the ring; the detail is its size in bytes
    UnknownEncoding, ///< no converter for the encoding; the detail is its name
    Stopped,         ///< the run has ended
    NoMemory,
};

} // namespace corvanta::stat
