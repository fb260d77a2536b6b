// What actions need to know about the system: its 8-bit encoding and the memory for caches.
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

/// Whether texts in the encoding `name` can be converted.
CORVANTA_EXPORT bool isKnownEncoding(const QString &name);

/// `percent` of the cache budget of the process, 1 GiB, in bytes. Negative values count as 0; the
/// result is at most the largest int.
CORVANTA_EXPORT int memConsumptionInByte(int percent);
