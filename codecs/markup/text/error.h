// The error codes of the markup parser and of its Base64 codec, with their fixed texts.
#pragma once
#include <QtGlobal>

namespace corvanta::markup {

/// Codes 1, 2, 28 and 30 are warnings. The numbers and texts are fixed: users see them. Codes
/// without a description are reserved. None is the
/// status of a tokenizer that did not fail; a Fault never holds it.
enum class MarkupError : quint8 {
    /// The tokenizer did not fail.
    None = 0,
    UnmatchedEndTagWarning = 1,
    /// A warning: the document has no element and no value.
    NoTagFound = 2,
    NoData = 3,
    /// An end tag or bracket does not match the open element, or the data ends inside one.
    UnmatchedEndTag = 4,
    /// An end tag or bracket without an open element.
    UnexpectedEndTag = 5,
    /// The data ends inside a CDATA, DOCTYPE, comment or other section.
    UnmatchedClearTagEnd = 6,
    FileNotFound = 7,
    FirstTagNotFound = 8,
    /// A reference to an unknown character.
    UnknownEntity = 9,
    CharacterAbove255 = 10,
    /// A character that names must not have, or an empty name; likewise for end tags.
    InvalidTagName = 11,
    InvalidEndTagName = 12,
    /// An unexpected character inside a tag, or after a JSON value.
    InvalidTagEnd = 13,
    /// The data ends inside an instruction.
    InvalidPiEnd = 14,
    /// An attribute without a value.
    NoEqualSign = 15,
    /// A value or key without quotes, or without its closing quote.
    QuoteExpected = 16,
    /// Bytes that are not a character of the encoding, or an unknown encoding.
    CannotConvert = 17,
    /// A record, or the number of open elements, exceeds its limit (base/limits.h).
    TreeTooLarge = 18,
    /// A token exceeds its limit (base/limits.h), or memory ran out.
    NoMemory = 19,
    /// The source of the bytes failed.
    CannotRead = 20,
    CannotOpenForWriting = 21,
    CannotWrite = 22,
    /// A JSON key without a colon.
    ColonExpected = 23,
    /// A JSON value that is not a number, or has more characters after the number.
    InvalidNumber = 24,
    /// A JSON value that begins like a literal and is not one.
    TrueExpected = 25,
    FalseExpected = 26,
    NullExpected = 27,
    /// Warnings and errors of decodeBase64().
    Base64LengthWarning = 28,
    Base64IllegalCharacter = 29,
    Base64TruncatedWarning = 30,
    Base64BufferTooSmall = 31,
};

/// The text that readers print for `code`; "Unknown error" for an unknown number.
const char16_t *errorText(MarkupError code);

/// True for the codes after which the data is still usable.
bool isWarning(MarkupError code);

} // namespace corvanta::markup
