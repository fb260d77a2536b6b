// Words for why a file could not be opened, created, read, written or renamed.
//
// An action logs the fixed message of a failure and passes one of these texts to fail() or warn(),
// which log it with logReason(). The functions look at the folders of the file: call them soon
// after the failure.
#pragma once
#include "base/system_error.h"
#include "corvanta/export.h"

#include <QFileInfo>
#include <QString>

class TargetFile;

namespace corvanta {

/// What the failed call was to do.
enum class FileUse { Read, Write };

/// The nearest folder above `file` that exists, or what is in its place.
CORVANTA_EXPORT QFileInfo existingAbove(const QString &file);

/// The reason without a final full stop, for example "the disk is full (No space left on device)".
/// Empty without an error. `folderRemedy` is added when a folder of the file is missing and could
/// be created.
CORVANTA_EXPORT QString failureReason(const QString &file, FileUse use, SystemError error,
                                      const QString &folderRemedy = {});

/// The same for the last failure of `target`.
CORVANTA_EXPORT QString failureReason(const TargetFile &target, const QString &folderRemedy = {});

/// Log the reason of a failure whose message was logged just before, in a line of its own at level
/// 3: the text of the message stays the one that programs may wait for. Logs nothing for an empty
/// reason.
CORVANTA_EXPORT void logReason(const QString &reason);

} // namespace corvanta
