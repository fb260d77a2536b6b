// The sizes in the header of a SAS file: of a data set or a catalogue.
//
// Programs of 64 bits write longer words, and files are in the byte order of the machine that wrote
// them. The flags after the magic number show both.
#pragma once
#include "codecs/stat/check/checked_reader.h"

#include <optional>

namespace corvanta::stat {

/// The numbers of the file's header, which are compared with nothing.
struct SasHeader
{
    bool isWide = false; // 64 bits
    bool isBigEndian = false;
    bool isShifted = false; // by 4 bytes: some offsets
    qint64 bytes = 0;       // of the header itself
    qint64 pageBytes = 0;   // of each page after it
    quint64 pages = 0;
};

/// Reads the header and sets the byte order of `in`. Nothing if it is not a file of SAS; the
/// library then says so.
std::optional<SasHeader> readSasHeader(CheckedReader &in);

/// A word of the file: 4 bytes, or 8 in a file of 64 bits.
quint64 wordOf(CheckedReader &in, bool isWide);

} // namespace corvanta::stat
