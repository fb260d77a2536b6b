// io/input/archive_sources.h
// The kinds of input that are an entry of an archive.
#pragma once
#include "corvanta/input_source.h"

namespace corvanta::input {

/// The member `member` of a zip archive, its name compared without regard to letter case; the first
/// entry when it is empty.
Opened openZipMember(const QString &path, const QString &member);

/// The first entry of a RAR archive, unpacked by a thread of its own.
Opened openRar(const QString &path);

} // namespace corvanta::input
