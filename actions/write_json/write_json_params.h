// The parameters of writeJSON.
#pragma once
#include "actions/shared/params/level_writer_params.h"

namespace corvanta {

/// Elements with lists of columns.
inline constexpr auto kBare = "Bare";
inline constexpr auto kJsonTexts = "JsonTexts";

struct WriteJsonParams : LevelWriterParams
{
    /// The texts true, True, false and False are booleans, without quotes.
    bool specialBool = true;
    /// Text columns whose numbers and booleans are written without quotes.
    QStringList bareColumns;
    /// Text columns that hold values of JSON, which are written unchanged.
    QStringList jsonColumns;
    /// A line feed in a text becomes \n.
    bool replaceLF = false;
    /// Every control character becomes an escape, also in names; replaceLF then has no effect.
    bool escapeControls = false;
    /// One file per value of splitCol. The other two are used only when this is on.
    bool splitFile = false;
    /// The value replaces each * of fileName; off: it is inserted before the extension.
    bool advancedNaming = false;
    /// Name of the column; a missing column is an error.
    QString splitCol;
    // Around the elements of every file; expanded before they are written. May be empty.
    QString prefix = QStringLiteral("[");
    QString suffix = QStringLiteral("]");
};

/// Attributes of `writeJSON`, then its child elements.
const ParamTable<WriteJsonParams> &writeJsonParamTable();

/// Set the defaults of graphs that were saved with `savedVersion`, before they are read.
void adjustWriteJsonDefaults(WriteJsonParams &params, double savedVersion);

} // namespace corvanta
