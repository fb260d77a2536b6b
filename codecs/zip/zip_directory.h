// io/package/zip_directory.h
// Find and read the central directory of a zip file (PKWARE APPNOTE.TXT 6.3, sections 4.3.12
// to 4.3.16).
#pragma once
#include "base/byte_source.h"
#include "base/result.h"
#include "codecs/zip/member.h"

#include <vector>

namespace corvanta::zip {

/// The members in the directory's order. Every one of them lies inside the file, in front of the
/// directory, and none overlaps another. Errors: ReadFailed, NotAPackage, BadDirectory.
Result<std::vector<Member>, Error> readDirectory(ByteSource &source);

/// The source's bytes at `offset`, all `n` of them. Errors: ReadFailed.
Result<QByteArray, Error> readAt(ByteSource &source, qint64 offset, qint64 n);

} // namespace corvanta::zip
