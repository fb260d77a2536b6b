// Words for why an Office package, or a member of it, cannot be read.
//
// Actions pass them to fail() as the reason after the fixed message. `kind` names the package for
// the user: "workbook" or "template". Threads: pure functions, except for the file that is read.
#pragma once
#include "base/result.h"
#include "codecs/opc/error.h"

#include <QString>

class GlobalParameters;

namespace corvanta {

/// Why a member cannot be read, without a final full stop. `systemReason` is what failureReason()
/// gave for the file. Empty for faults that are not of a member's storage.
QString memberReason(const Fault<opc::Error> &fault, const QString &kind,
                     const QString &systemReason);

/// What a file that is not a package is: encrypted with a password, or an older binary file. `name`
/// is expanded; `extension` is that of the package, ".xlsx", and `oldExtension` that of the older
/// format, ".xls". Reads up to 64 MiB. Empty for any other file.
QString compoundFileReason(GlobalParameters *parameters, const QString &name, const QString &kind,
                           const QString &extension, const QString &oldExtension);

} // namespace corvanta
