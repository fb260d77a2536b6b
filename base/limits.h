// base/limits.h
// Every limit on what a foreign file may ask for, in one place.
#pragma once
#include <QtGlobal>

namespace corvanta::limits {

/// A package member that is read whole.
inline constexpr qint64 kMemberBytes = qint64(1) << 30;
/// The list of members of a package: more than three million of them.
inline constexpr qint64 kPackageDirectoryBytes = qint64(256) << 20;
/// Deflate cannot do better than this: a larger declared size is a lie.
inline constexpr qint64 kDeflateMaxRatio = 1032;
inline constexpr qint64 kDeflateSlackBytes = 1024;

/// One markup token, in characters (error 19 beyond).
inline constexpr qint64 kTokenChars = qint64(256) << 20;
/// The tree of one markup record (error 18 beyond).
inline constexpr qint64 kTreeArenaBytes = qint64(1) << 30;
/// Open elements of a markup document.
inline constexpr qint64 kElementDepth = 1'000'000;

/// Nesting of structures that a Thrift reader skips.
inline constexpr int kThriftSkipDepth = 64;
/// A Parquet page, compressed and not.
inline constexpr qint64 kParquetPageBytes = qint64(256) << 20;
inline constexpr qint64 kParquetPageHeaderBytes = qint64(16) << 20;

/// UTF-16 units of a text cell: what a four-byte length code can say.
inline constexpr qint64 kTextCellUnits = 268'435'454;

} // namespace corvanta::limits
