// Why a compressed file or an archive cannot be read.
#pragma once
#include "corvanta/failure_reason.h"
#include "corvanta/files.h"

namespace corvanta::input {

/// What the system says about a read of `file` that failed; without an error of the system,
/// `damage`, which says what is wrong with the data.
inline QString reasonOf(const QString &path, const MyReadFile &file, const QString &damage)
{
    const QString reason = failureReason(path, FileUse::Read, file.error());
    return reason.isEmpty() ? damage : reason;
}

} // namespace corvanta::input
