// The files that an action reads or writes, for programs that choose an action by file extension.
#pragma once

/// One group of file extensions of an action. All texts are constants.
struct FileFormat
{
    /// Whether the action reads or writes the files; an action that does both has two groups.
    enum Use { Read, Write };
    /// Kinds of files. Lists of extensions that are shown to users are in this order, then in the
    /// order of the catalogue. Of two actions for one extension, the first in this order is used.
    enum Family { SeparatedText, Json, Markup, Columnar, Workbook, Database, Statistics };

    Use use = Read;
    Family family = SeparatedText;
    /// Lower case, without dots, separated by blanks. The extension of a compressed file is that of
    /// its content: "csv" for a.csv.gz.
    const char *extensions = "";
    /// Parameters that a new action on such a file starts with, NAME=VALUE, separated by blanks.
    /// They request what is off by default only because saved graphs depend on it.
    const char *settings = "";
    /// The same, in addition, for reading only the first rows: what makes them arrive early.
    const char *firstRowsSettings = "";
};
