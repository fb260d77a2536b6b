// The beginning of a file as a person reads it: as text, or as bytes in hexadecimal digits.
//
// Compressed files are decompressed, and members of archives are read as readers read them.
#pragma once
#include <QString>

namespace corvanta {

/// How the bytes are shown.
enum class RawForm { Text, Bytes };

struct RawText
{
    QString name; ///< of the file, with the member of an archive; without its folder
    RawForm form = RawForm::Text;
    QString text;
    QString problem;     ///< why there is no text; empty: there is
    bool isPipe = false; ///< it can be read only once, and was not
};

/// Read at most some kilobytes of the first file that `pattern` matches; it is expanded already.
/// `encoding` is an iconv name; empty: UTF-16 with a byte-order mark, UTF-8 or Windows-1252,
/// whichever fits. Blocks as the file does. Threads: any.
RawText beginningOf(const QString &pattern, const QString &encoding);
/// The same for bytes in memory: `form` and `text`.
RawText textOfBytes(const QByteArray &bytes, const QString &encoding);

} // namespace corvanta
