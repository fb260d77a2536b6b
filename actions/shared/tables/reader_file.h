// What readers do with each of their files: name its columns, and report that it cannot be read.
#pragma once
#include "corvanta/action_base.h"

namespace corvanta {

/// The columns of a file, with the names and types that they have there.
template <class Columns, class TypeOf> TableSchema schemaOf(const Columns &columns, TypeOf typeOf)
{
    TableSchema schema;
    for (const auto &column : columns) {
        schema.names << column.name;
        schema.types << MetaInfo(typeOf(column));
    }
    return schema;
}

/// Report a file that cannot be read: an error that ends the run if `fails`, otherwise a warning.
/// Returns whether the run continues, with the next file.
inline bool failOrWarn(ActionBase &action, bool fails, const QString &text)
{
    if (!fails) {
        action.warn(text);
    }
    return !fails || action.fail(text);
}

} // namespace corvanta
