// What the writers of the two SAS formats have in common: a header, packed rows, an end.
//
// Call begin(), addRows() for each block of packed rows, and finish(). A packed row has, for each
// variable in order, a double (8 bytes, machine order; a missing one as in base/cell.h), or a text:
// its size in bytes (quint32, machine order), its bytes, and a zero byte. RowPacker makes them.
#pragma once
#include "base/result.h"
#include "codecs/sas/error.h"
#include "codecs/sas/variable.h"

#include <string_view>

namespace corvanta::sas {

/// Threads: one at a time per object.
class TableWriter
{
public:
    TableWriter() = default;
    TableWriter(const TableWriter &) = delete;
    TableWriter &operator=(const TableWriter &) = delete;
    virtual ~TableWriter() = default;

    /// Write everything before the rows. `rows` is their number: the formats need it early.
    virtual Result<void, Error> begin(qint64 rows) = 0;
    /// Write the packed rows of a block: whole rows, with texts that fit their variables.
    virtual Result<void, Error> addRows(std::string_view block) = 0;
    /// Write what follows the rows; exactly as many as begin() announced were added.
    virtual Result<void, Error> finish() = 0;
};

} // namespace corvanta::sas
