// Finds the encoding that a table names.
//
// The parameter `encoding` knows few encodings, and the tables of one pattern may differ.
#pragma once
#include "codecs/dbf/table_header.h"
#include "codecs/encoding/text_decoder.h"
#include "io/input/input_file.h"

#include <optional>

namespace corvanta {

/// The encoding of a table, by the name that the table has for it.
struct DeclaredEncoding
{
    /// As shown in messages; empty: the table names none.
    QString name;
    /// Nothing: iconv does not know the name.
    std::optional<encoding::TextDecoder> decoder;
};

/// The encoding that the .cpg file of the table `file` names, or else its header. `table` is its
/// open input. Reads the .cpg file.
DeclaredEncoding declaredEncodingOf(GlobalParameters *parameters, const QString &file,
                                    const InputFile &table, const dbf::TableHeader &header);

} // namespace corvanta
