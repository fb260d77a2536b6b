// The encodings that dBase-family tables name, in the header or in a .cpg file.
//
// Threads: pure functions.
#pragma once
#include <QByteArrayView>
#include <QString>

namespace corvanta::dbf {

/// The name for iconv of the encoding that a mark in the header means; empty for an unknown mark,
/// and for 0, which names none.
QString encodingOfMark(uchar mark);

/// The same for the text of a .cpg file: "UTF-8", "ISO 88591", "ANSI 1252" or a bare number. Other
/// names are returned as they are.
QString encodingOfCpg(QByteArrayView text);

} // namespace corvanta::dbf
