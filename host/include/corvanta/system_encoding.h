// The 8-bit encoding of the system, which some formats leave files in.
//
// Threads: any.
#pragma once
#include "corvanta/export.h"

#include <QString>

/// Name of the system's 8-bit encoding: the ANSI code page on Windows; on POSIX the locale's, or
/// "windows-1252" if that is UTF-8. setSystemEncoding() overrides it.
CORVANTA_EXPORT QString currentACPName();

/// Make currentACPName() return `name`; an empty name ends the override.
CORVANTA_EXPORT void setSystemEncoding(const QString &name);
