// Loads one module, if it fits to this host.
#pragma once
#include "base/result.h"

#include <QString>

class CorvantaPluginInterface;

namespace corvanta {

enum class ModuleError : quint8 {
    Refused, ///< The detail says why, as the end of a sentence.
};

/// Load the module `file` and make its plug-in object, which lives until the program ends. Its
/// metadata is read first: the code of a module that was built for another interface never runs.
/// Throws what the plug-in object throws, and std::bad_alloc if there is no memory.
Result<CorvantaPluginInterface *, ModuleError> openModule(const QString &file);

} // namespace corvanta
