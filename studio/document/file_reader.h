// Makes the reader of a data file from the file formats that the actions declare.
#pragma once
#include "corvanta/action_item.h"

#include <QString>

#include <memory>

namespace corvanta {
class ActionRegistry;
}

namespace corvanta::studio {

/// The type of the first action that reads files with this extension, compressed ones included;
/// empty if there is none. Threads: any.
QString readerType(const ActionRegistry &registry, const QString &file);

/// A new reader of a file, with the settings of its format; null if no action reads it. `global`
/// must outlive the action.
std::unique_ptr<ActionItem> makeReader(const ActionRegistry &registry, const QString &file,
                                       GlobalParameters *global);

/// The element that the action saves; empty for a value that XML cannot contain.
XMLNode savedElement(ActionItem &action);
/// The element that a text is; empty if it is not XML.
XMLNode parsedElement(const QString &text);

} // namespace corvanta::studio
