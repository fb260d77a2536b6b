// Classifies single bytes with a table: spaces, name characters, characters of JSON numbers.
//
// Bytes, not characters: the data is UTF-8, in which every character beyond ASCII consists of bytes
// from 0x80, and those are all name characters here. Which of them XML 1.0 (section 2.3) allows in
// names is not checked. Threads: pure functions.
#pragma once
#include <QtGlobal>

#include <array>
#include <string_view>

namespace corvanta::markup {

/// Classes of bytes. Names consist of the classes from Digit to NonAscii. End is the NUL that
/// follows the data in a tokenizer's buffer.
enum class CharClass : quint8 { Other, End, Space, Digit, Letter, NamePunctuation, NonAscii };

namespace charset {

/// The bits of an entry of the table that hold the class.
inline constexpr quint8 kClassMask = 0x07;
/// Set: characters of a JSON number.
inline constexpr quint8 kNumber = 0x08;
/// Set: characters of an unquoted value with permissiveNumbers.
inline constexpr quint8 kPermissive = 0x10;

/// The class of the byte `c` (0 to 255). Only used to build the table.
constexpr CharClass classOf(int c)
{
    // The punctuation of XML names, also where only later characters of a name may have it.
    constexpr std::string_view kPunctuation = "-.:_";
    constexpr std::string_view kSpaces = "\t\n\r ";
    const char ascii = static_cast<char>(c);
    if (c >= 0x80) {
        return CharClass::NonAscii;
    }
    if (c == 0) {
        return CharClass::End;
    }
    if (kSpaces.find(ascii) != std::string_view::npos) {
        return CharClass::Space;
    }
    if (c >= '0' && c <= '9') {
        return CharClass::Digit;
    }
    if ((c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z')) {
        return CharClass::Letter;
    }
    return kPunctuation.find(ascii) != std::string_view::npos ? CharClass::NamePunctuation
                                                              : CharClass::Other;
}

/// Build the table. Low bits: the class of each byte; kNumber and kPermissive: whether it is in
/// these sets.
constexpr std::array<quint8, 256> makeTable()
{
    // A number is any run of these characters; its grammar (RFC 8259, section 6) is not checked.
    constexpr std::string_view kNumberChars = ".Ee+-0123456789";
    constexpr std::string_view kPermissiveChars = "!#%*+-./?_~0123456789";
    std::array<quint8, 256> table{};
    for (int c = 0; c < 256; ++c) {
        const CharClass kind = classOf(c);
        const char ascii = static_cast<char>(c);
        const bool number = c < 0x80 && kNumberChars.find(ascii) != std::string_view::npos;
        const bool permissive =
            kind == CharClass::Letter ||
            (c < 0x80 && kPermissiveChars.find(ascii) != std::string_view::npos);
        table[static_cast<size_t>(c)] = static_cast<quint8>(
            static_cast<quint8>(kind) | (number ? kNumber : 0) | (permissive ? kPermissive : 0));
    }
    return table;
}

/// By byte. One load and one mask classify a byte, which is faster than comparisons.
inline constexpr std::array<quint8, 256> kTable = makeTable();

} // namespace charset

/// The class of a byte. The cast is needed because char is signed: bytes from 0x80 are negative.
inline CharClass charClass(char c)
{
    return static_cast<CharClass>(charset::kTable[static_cast<uchar>(c)] & charset::kClassMask);
}
/// True for space, tab, CR and LF, the white space of XML 1.0 (section 2.3) and of RFC 8259
/// (section 2).
inline bool isSpace(char c)
{
    return charClass(c) == CharClass::Space;
}
/// True for letters, digits, "-", ".", ":", "_" and every byte of a character beyond ASCII.
inline bool isNameChar(char c)
{
    return charClass(c) >= CharClass::Digit;
}
/// True when `c` is in `set`: charset::kNumber or charset::kPermissive.
inline bool isIn(char c, quint8 set)
{
    return (charset::kTable[static_cast<uchar>(c)] & set) != 0;
}

} // namespace corvanta::markup
