// Finds and reads the central directory of a zip file (PKWARE APPNOTE.TXT 6.3, sections 4.3.12 to
// 4.3.16).
#pragma once
#include "base/byte_source.h"
#include "base/result.h"
#include "codecs/zip/member.h"

#include <vector>

namespace corvanta::zip {

/// Read the members, in the directory's order. Every member is inside the file and before the
/// directory, and no two members overlap. Names may occur more than once.
/// Errors: ReadFailed, NotAPackage, BadDirectory.
Result<std::vector<Member>, Error> readDirectory(ByteSource &source);

/// Read exactly `n` bytes at `offset`. Errors: ReadFailed, also if there are fewer.
Result<QByteArray, Error> readAt(ByteSource &source, qint64 offset, qint64 n);

} // namespace corvanta::zip
