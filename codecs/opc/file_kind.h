// Recognises what a file is by its content, for files whose name says something else.
#pragma once
#include "base/byte_source.h"

#include <QString>

namespace corvanta::opc {

enum class FileKind : quint8 {
    Empty,
    Package,   ///< a zip file, such as an .xlsx workbook
    Encrypted, ///< an Office file with a password
    Compound,  ///< a compound file, such as an .xls workbook
    Records,   ///< the records of a legacy workbook, without a compound file
    Html,
    XmlSpreadsheet, ///< the XML form of workbooks from 2003
    Xml,
    Pdf,
    RichText,
    Text, ///< any other text, for example CSV
    Other,
};

/// Look at the beginning of the file; it can seek. The position afterwards is undefined.
FileKind fileKind(ByteSource &source);

/// What the file is, for messages: "an HTML page", "a text file, perhaps CSV".
QString describe(FileKind kind);

} // namespace corvanta::opc
