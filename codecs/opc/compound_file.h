// Recognises compound files (MS-CFB): an Office file with a password is one, with its package as an
// encrypted stream in it, and so are the older binary Office files. Threads: pure functions.
#pragma once
#include "base/byte_source.h"

namespace corvanta::opc {

enum class CompoundFile : quint8 {
    No,        ///< anything else, also a file that cannot be read
    Encrypted, ///< holds an encrypted package
    Other,     ///< for example an .xls or .doc file
};

/// Examine a file from its beginning, up to 64 MiB; it can seek. The position afterwards is
/// undefined.
CompoundFile compoundFileKind(ByteSource &source);

} // namespace corvanta::opc
