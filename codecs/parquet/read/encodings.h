// Converts values in the newer encodings (parquet-format, Encodings.md) to PLAIN values.
//
// One more copy of each value keeps the decoders of blocks simple: they know only PLAIN values,
// booleans and dictionary indexes. Threads: pure functions.
#pragma once
#include "codecs/parquet/read/column.h"

#include <span>
#include <vector>

namespace corvanta::parquet {

/// Whether toPlain() supports the encoding for values of the physical type.
bool hasPlainForm(qint32 encoding, qint32 physical);

/// Convert the values of a page to PLAIN values. `in` must be followed by kPageTailBytes readable
/// bytes. Replaces `out`: the values, followed by kPageTailBytes zeros. Call it only if
/// hasPlainForm(). Errors: BadData, without a detail, if `in` is malformed or has more than
/// `maxValues` values.
Result<void, Error> toPlain(qint32 encoding, const Column &column, std::span<const uchar> in,
                            qint32 maxValues, std::vector<uchar> &out);

/// The name of an encoding in parquet.thrift, such as "RLE_DICTIONARY"; the number for an unknown
/// one.
QString encodingName(qint32 encoding);

} // namespace corvanta::parquet
