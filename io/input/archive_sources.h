// Opens the inputs that are an entry of an archive.
#pragma once
#include "corvanta/input_source.h"

namespace corvanta::input {

/// Open the member `member` of a zip archive. Ignores letter case. An empty name means the first
/// entry. Errors: CannotOpen, also for a member that does not exist or cannot be read.
Opened openZipMember(const QString &path, const QString &member);

/// Open the first entry of a RAR archive. A worker thread unpacks it; it ends with the source.
/// Errors: CannotOpen, NoUnpacker, Refused.
Opened openRar(const QString &path);

} // namespace corvanta::input
