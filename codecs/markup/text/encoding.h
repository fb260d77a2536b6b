// codecs/markup/text/encoding.h
// Guess the encoding of a document from its first bytes.
#pragma once
#include <QByteArray>
#include <QByteArrayView>

namespace corvanta::markup {

/// How raw bytes become characters.
enum class CharMode : quint8 {
    Error = 0,
    Utf32 = 1,
    Utf16 = 2,
    Utf8 = 3,
    CodePage = 4, ///< through the code page that the encoding's name says
    ShiftJis = 5,
    Gb2312 = 6,
    Big5 = 7,
    Gbk = 8,
};

/// Bytes from the start of a document that the guesses look at.
inline constexpr qsizetype kGuessBytes = 64 * 1024;

/// Name the encoding of an XML or HTML document: "UTF-8", "UTF-16", "UTF-32", "System" (the
/// system's code page), "ERROR" (declares UTF-8 and is not), or the declared name as written.
QByteArray guessEncoding(QByteArrayView first);

/// The encoding of an XML or HTML document that starts with `first`: that of its byte-order mark,
/// else `name`. An empty name or "auto" (in any letter case) means guessEncoding().
QByteArray chooseEncoding(QByteArrayView first, const QByteArray &name);

/// The mode of a JSON document: Utf16 or Utf8.
CharMode guessJSONEncoding(QByteArrayView first);

/// The mode that belongs to an encoding's name, in any letter case.
CharMode encodingCode(QByteArrayView name);

/// True when `bytes` look like UTF-16 or UTF-32 text of either byte order: a byte-order mark, or
/// zeros in nearly every other byte. (What the Windows call IsTextUnicode answers.)
bool looksLikeUtf16(QByteArrayView bytes);

} // namespace corvanta::markup
