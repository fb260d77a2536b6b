// Recognises files that are not texts by their first bytes.
//
// No text begins like them, so that a reader of texts may reject such a file, whatever its name
// says. The bytes are those that the formats define as their signatures. Threads: pure functions.
#pragma once
#include <QtGlobal>

#include <string_view>

namespace corvanta {

enum class BinaryKind : quint8 {
    None,     ///< perhaps a text
    Zip,      ///< an archive, or a package such as an .xlsx workbook
    Compound, ///< an older Office file, such as an .xls workbook
    Parquet,
    Gzip,
    Rar,
    Spss,
    Pdf,
    Image,
    Program,
};

/// Number of bytes at the beginning of a file that binaryKind() looks at.
inline constexpr size_t kBinaryKindBytes = 8;

/// The kind of a file that begins with these bytes. Fewer than kBinaryKindBytes are a whole file.
BinaryKind binaryKind(std::string_view beginning);

/// For messages: "a Parquet file". Not for None.
const char *describe(BinaryKind kind);

} // namespace corvanta
