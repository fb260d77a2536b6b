// The encodings that pages name (Encoding standard, section 4.2).
#pragma once
#include <QByteArray>

namespace corvanta::markup {

/// The name for iconv of the encoding that browsers use for the label `charset` of a <meta>, in any
/// letter case. It may be larger than the one that is named: "iso-8859-1" is windows-1252. Empty
/// when no encoding is known by that name.
QByteArray encodingOfCharset(const QByteArray &charset);

} // namespace corvanta::markup
