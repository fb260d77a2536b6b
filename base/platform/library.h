// Where the code of the running program was loaded from.
#pragma once
#include <QString>

namespace corvanta::platform {

/// The folder, without links, of the library or program that contains `address`, which is that of
/// a function or of a static variable. Empty if the system does not know it. Threads: any.
QString folderOfCode(const void *address);

} // namespace corvanta::platform
