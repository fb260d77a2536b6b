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
    Unreadable,     ///< a member where the system reports an error, or the file ends
    Damaged,        ///< a member that contradicts its size or checksum
    MemberTooLarge, ///< a member that is too large to be read in one piece
    NoMember,       ///< a member that is missing
    Encrypted,      ///< a member that needs a password
    UnknownMethod,  ///< a member that is packed by a method other than deflate
    BadHeader,      ///< a member whose header contradicts the directory
    NotAdded,       ///< a member that cannot be put into the new package
    WriteFailed,    ///< a refused write that is not repeated
    Stopped,        ///< the run has ended
};

} // namespace corvanta::opc
