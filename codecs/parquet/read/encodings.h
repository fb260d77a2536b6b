// codecs/parquet/encodings.h
// The newer encodings of values (parquet-format, Encodings.md), turned into PLAIN.
#pragma once
#include "codecs/parquet/read/column.h"

#include <span>
#include <vector>

namespace corvanta::parquet {

/// Whether toPlain() knows how the encoding stores values of the physical type.
bool hasPlainForm(qint32 encoding, qint32 physical);

/// Write the values of a page as their PLAIN bytes to `out`, kPageTailBytes zeros behind them.
/// False when the bytes are not such values, or more than `most`.
bool toPlain(qint32 encoding, const Column &column, std::span<const uchar> in, qint32 maxValues,
             std::vector<uchar> &out);

/// "RLE_DICTIONARY", ...; the number for an unknown one.
QString encodingName(qint32 encoding);

} // namespace corvanta::parquet
