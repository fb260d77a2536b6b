// The error codes of the markup parser and of its Base64 codec, with their fixed texts.
#pragma once
#include <QtGlobal>

namespace corvanta::markup {

/// Codes 1, 2, 28 and 30 are warnings. The numbers and texts are fixed: users see them. None is the
/// status of a tokenizer that did not fail; a Fault never holds it.
enum class MarkupError : quint8 {
    None = 0,
    UnmatchedEndTagWarning = 1,
    NoTagFound = 2,
    NoData = 3,
    UnmatchedEndTag = 4,
    UnexpectedEndTag = 5,
    UnmatchedClearTagEnd = 6,
    FileNotFound = 7,
    FirstTagNotFound = 8,
    UnknownEntity = 9,
    CharacterAbove255 = 10,
    InvalidTagName = 11,
    InvalidEndTagName = 12,
    InvalidTagEnd = 13,
    InvalidPiEnd = 14,
    NoEqualSign = 15,
    QuoteExpected = 16,
    CannotConvert = 17,
    TreeTooLarge = 18,
    NoMemory = 19,
    CannotRead = 20,
    CannotOpenForWriting = 21,
    CannotWrite = 22,
    ColonExpected = 23,
    InvalidNumber = 24,
    TrueExpected = 25,
    FalseExpected = 26,
    NullExpected = 27,
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
