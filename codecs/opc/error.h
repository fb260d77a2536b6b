// What can go wrong with an Office package or with one of its parts.
#pragma once
#include <QtGlobal>

namespace corvanta::opc {

/// The fault's detail is the name of the part or member, where one is affected.
enum class Error : quint8 {
    // The text of a part
    Encoding,   ///< not UTF-8
    Malformed,  ///< not well-formed XML, or a document type declaration
    Unexpected, ///< well-formed, but not the expected part; also a file that is not a package
    TooLarge,   ///< more markup than a part of a real document has
    // The members of a package
    Damaged,     ///< a member that cannot be read to its end
    NoMember,    ///< a member that is missing or cannot be opened
    NotAdded,    ///< a member that cannot be put into the new package
    WriteFailed, ///< a refused write that is not repeated
    Stopped,     ///< the run has ended
};

} // namespace corvanta::opc
