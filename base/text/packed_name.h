// The names of compressed files, for programs that choose an action by the extension of a file.
//
// Threads: pure functions.
#pragma once
#include <QString>

namespace corvanta {

/// The name without its last ending if that says how the file is compressed: ".gz" or ".Z". The
/// letter case counts, as it does for the readers, which decompress no other files.
inline QString withoutPacking(const QString &name)
{
    for (const char *const ending : {".gz", ".Z"}) {
        if (name.endsWith(QLatin1StringView(ending))) {
            return name.chopped(QLatin1StringView(ending).size());
        }
    }
    return name;
}

} // namespace corvanta
