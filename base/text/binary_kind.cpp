// The signatures, at the first byte of a file:
//
//   50 4B 03 04, 50 4B 05 06   zip: a member, or the directory of an empty archive (APPNOTE 4.3)
//   D0 CF 11 E0                compound file (MS-CFB 2.2)
//   50 41 52 31 15             Parquet: PAR1 and the first byte of a page header
//   1F 8B 08                   gzip with deflate (RFC 1952)
//   52 61 72 21 1A 07          RAR
//   24 46 4C 32 40 28 23 29    SPSS: $FL2@(#)
#include "base/text/binary_kind.h"

#include <algorithm>
#include <iterator>

namespace corvanta {

namespace {

struct Signature
{
    std::string_view bytes;
    BinaryKind kind;
};

constexpr Signature kSignatures[] = {
    {"PK\x03\x04", BinaryKind::Zip},
    {"PK\x05\x06", BinaryKind::Zip},
    {"\xD0\xCF\x11\xE0", BinaryKind::Compound},
    {"PAR1\x15", BinaryKind::Parquet},
    {"\x1F\x8B\x08", BinaryKind::Gzip},
    {"Rar!\x1A\x07", BinaryKind::Rar},
    {"$FL2@(#)", BinaryKind::Spss},
    {"%PDF-", BinaryKind::Pdf},
    {"\x89PNG\r\n", BinaryKind::Image},
    {"\xFF\xD8\xFF", BinaryKind::Image},
    {"\x7F"
     "ELF",
     BinaryKind::Program},
};

} // namespace

BinaryKind binaryKind(std::string_view beginning)
{
    const auto *const found = std::find_if(
        std::begin(kSignatures), std::end(kSignatures),
        [&](const Signature &signature) { return beginning.starts_with(signature.bytes); });
    return found == std::end(kSignatures) ? BinaryKind::None : found->kind;
}

const char *describe(BinaryKind kind)
{
    switch (kind) {
    case BinaryKind::Zip:
        return "a zip archive or a workbook";
    case BinaryKind::Compound:
        return "a legacy Office file";
    case BinaryKind::Parquet:
        return "a Parquet file";
    case BinaryKind::Gzip:
        return "a gzip file";
    case BinaryKind::Rar:
        return "a RAR archive";
    case BinaryKind::Spss:
        return "an SPSS file";
    case BinaryKind::Pdf:
        return "a PDF document";
    case BinaryKind::Image:
        return "an image";
    case BinaryKind::Program:
        return "a program";
    case BinaryKind::None:
        break;
    }
    return "a text";
}

} // namespace corvanta
