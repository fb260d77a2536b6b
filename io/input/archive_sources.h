// Opens the inputs that are an entry of an archive.
#pragma once
#include "corvanta/input_source.h"

namespace corvanta::input {

/// Open the member `member` of a zip archive: its name in Unicode or as stored. Ignores letter
/// case. An empty name means the first entry that is not a folder. Errors: CannotOpen, also for a
/// member that does not exist; Refused for one that cannot be read.
Opened openZipMember(const QString &path, const QString &member);

/// Open the first entry of a RAR archive that is not a folder. A worker thread unpacks it; it ends
/// with the source. Errors: CannotOpen, NoUnpacker, Refused.
Opened openRar(const QString &path);

} // namespace corvanta::input
