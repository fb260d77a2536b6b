// Checks a data set before the library reads it.
//
// The library (1.1.8) trusts some sizes and counts of a file: a damaged or hostile one makes it
// read or write beyond its buffers, or allocate memory that the file cannot need. A file that
// passes has no such number. docs/formats/stat.md lists the checks.
// Threads: pure functions.
#pragma once
#include "base/byte_source.h"
#include "codecs/stat/dictionary.h"
#include "codecs/stat/error.h"

#include <optional>

namespace corvanta::stat {

/// Check the parts of a data set before its rows. `source` seeks at no cost and knows its size; its
/// position changes. The detail of a fault is the reason in words. Errors: CannotOpen for an empty
/// file, Damaged, Unreadable.
Result<void, Error> checkHeader(ByteSource &source, Format format);

/// Check a SAS catalogue (.sas7bcat), all of its value labels included. Errors: the same.
Result<void, Error> checkCatalogue(ByteSource &source);

/// The number of rows of a SAS data set that are marked as deleted, as its header says; 0 if there
/// are none or the header is not found. For a file that has passed checkHeader().
qint64 deletedSasRows(ByteSource &source);

/// Whether a Stata file from version 117 on ends before its end tag. The library then reads its
/// rows if they are complete, and silently leaves out value labels. `source` is used as above.
bool lacksStataEnd(ByteSource &source);

/// Whether an SPSS file has texts of several segments and the encoding UTF-8. The library then
/// leaves out bytes 0, and writes before its buffer when a segment has no other bytes. For a file
/// that has passed checkHeader().
bool hasLongUtf8Texts(ByteSource &source);

/// The beginning of a portable file, up to the end of its table of characters, with only the first
/// character of each byte. The library uses the last one: a table that has "8" also as a raised 8
/// makes all numbers unreadable. Empty if the table cannot be read. `source` is used as above.
QByteArray distinctPorStart(ByteSource &source);

// File names can be wrong. Each format but the portable one begins with bytes that no other has.

/// The format of the content; nothing if it is not known, or cannot be read. `source`
/// seeks at no cost; its position changes.
std::optional<Format> formatOfContent(ByteSource &source);

/// Whether the content is a SAS catalogue (.sas7bcat). `source` is used as above.
bool isCatalogue(ByteSource &source);

/// What a file of the format is called in messages: "a Stata file (.dta)".
QString nameOf(Format format);

// The checks of the formats; checkHeader() chooses one.

Result<void, Error> checkSav(ByteSource &source);
Result<void, Error> checkStata(ByteSource &source);
Result<void, Error> checkSas(ByteSource &source);
Result<void, Error> checkPor(ByteSource &source);
Result<void, Error> checkTransport(ByteSource &source);

} // namespace corvanta::stat
