// The files that an action reads or writes, for programs that choose an action by file extension.
#pragma once

/// One group of file extensions of an action. All texts are constants.
struct FileFormat
{
    enum Use { Read, Write };
    /// Lists of extensions for people are in this order, then in catalogue order.
    enum Family { SeparatedText, Json, Markup, Columnar, Workbook, Database, Statistics };

    Use use = Read;
    Family family = SeparatedText;
    const char *extensions = ""; ///< lower case, without dots, separated by blanks
    /// Parameters that a new action on such a file starts with, NAME=VALUE, separated by blanks.
    /// They request what is off by default only because saved graphs depend on it.
    const char *settings = "";
};
