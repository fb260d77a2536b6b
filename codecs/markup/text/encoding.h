// Guesses the encoding of a document from its first bytes.
#pragma once
#include <QByteArray>
#include <QByteArrayView>

namespace corvanta::markup {

/// How bytes become characters. The numbers are fixed.
enum class CharMode : quint8 {
    /// The document declares an encoding that its bytes contradict.
    Error = 0,
    Utf32 = 1,
    Utf16 = 2,
    Utf8 = 3,
    /// The encoding has a name; iconv converts it.
    CodePage = 4,
    ShiftJis = 5,
    Gb2312 = 6,
    Big5 = 7,
    Gbk = 8,
};

/// Bytes at the start of a document that the guesses use.
inline constexpr qsizetype kGuessBytes = qsizetype(64) * 1024;

/// The name of the encoding of an XML or HTML document: "UTF-8", "UTF-16", "UTF-32", "System" (the
/// system's code page), "ERROR" (declared as UTF-8 but invalid), or the declared name unchanged. A
/// declared UTF-16, UTF-32 or UCS of a document of single bytes is ignored.
QByteArray guessEncoding(QByteArrayView first);

/// The encoding in which a document is read, and what speaks against it.
struct EncodingChoice
{
    /// As guessEncoding() returns it.
    QByteArray name;
    /// The declared encoding, of 16 or 32 bits per unit, of a document of single bytes. It is
    /// ignored. Otherwise empty.
    QByteArray contradicted = {};
    /// The document declares no encoding and has characters beyond ASCII: only the system's code
    /// page is left.
    bool isAssumed = false;
    /// The name in a page's <meta>, when no encoding is known by it. It is ignored. Otherwise
    /// empty.
    QByteArray unknown = {};
};

/// The encoding of an XML or HTML document that starts with `first`: that of its byte-order mark,
/// else `name`. An empty name or "auto" (in any letter case) means `charset`, which a page declares
/// in a <meta>, and without one guessEncoding().
EncodingChoice chooseEncoding(QByteArrayView first, const QByteArray &name,
                              const QByteArray &charset = {});

/// The mode of a JSON document: Utf16 or Utf8.
CharMode guessJSONEncoding(QByteArrayView first);

/// The mode for the name of an encoding, in any letter case; CodePage for an unknown name.
CharMode encodingCode(QByteArrayView name);

/// True when `bytes` look like UTF-16 or UTF-32 text of either byte order: a byte-order mark, or
/// zeros in nearly every other byte. Replaces the Windows call IsTextUnicode.
bool looksLikeUtf16(QByteArrayView bytes);

} // namespace corvanta::markup
