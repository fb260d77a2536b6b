// Limits on the memory and depth that an input file can ask for, in one place.
#pragma once
#include <QtGlobal>

namespace corvanta::limits {

/// A package member that is read into memory in one piece.
inline constexpr qint64 kMemberBytes = qint64(1) << 30;
/// The central directory of a package. Enough for more than three million members.
inline constexpr qint64 kPackageDirectoryBytes = qint64(256) << 20;
/// Deflate cannot compress better than this ratio, so a larger declared size is wrong.
inline constexpr qint64 kDeflateMaxRatio = 1032;
inline constexpr qint64 kDeflateSlackBytes = 1024;

/// One markup token, in characters. A longer one is error 19.
inline constexpr qint64 kTokenChars = qint64(256) << 20;
/// The tree of one markup record. A larger one is error 18.
inline constexpr qint64 kTreeArenaBytes = qint64(1) << 30;
/// Elements of a markup document that are open at the same time.
inline constexpr qint64 kElementDepth = 1'000'000;

/// Nesting depth of structures in a Thrift record.
inline constexpr int kThriftSkipDepth = 64;
/// A Parquet page, both compressed and uncompressed, and its header.
inline constexpr qint64 kParquetPageBytes = qint64(256) << 20;
inline constexpr qint64 kParquetPageHeaderBytes = qint64(16) << 20;

/// UTF-16 units of a text cell: the largest number that a four-byte length code holds.
inline constexpr qint64 kTextCellUnits = 268'435'454;

} // namespace corvanta::limits
