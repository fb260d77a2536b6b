// Finds the long texts (strL) of a Stata file of version 117 or later.
//
// The library keeps all of them in memory, and does not find those of version 119. They are
// therefore hidden from it, and this class reads each text when a row refers to it. An index of a
// small part of the texts suffices, because they are in the order of the rows.
// Threads: one at a time per object.
#pragma once
#include "base/result.h"
#include "codecs/stat/check/stata_header.h"
#include "codecs/stat/error.h"
#include "codecs/stat/library_source.h"

#include <compare>
#include <memory>
#include <optional>
#include <vector>

namespace corvanta::stat {

/// For a file that has passed check(). Call attachTo(), and the functions after it while the
/// library delivers the values of a row.
class LongTexts
{
public:
    /// A text in the file; both in bytes.
    struct Place
    {
        qint64 at = 0;
        qint64 bytes = 0;
    };

    /// Null for a file without such variables. `source` seeks at no cost, and outlives the object.
    static std::unique_ptr<LongTexts> of(ByteSource &source);

    /// Compare the place of the texts with the file. Errors: Damaged, Unreadable.
    Result<void, Error> check();
    /// Let `library`, which must outlive this object, deliver the file without its long texts.
    void attachTo(LibrarySource *library);
    /// Offset in a row of the reference of a variable, -1 for one of another type. `variable` is
    /// the index in the file, from 0.
    int offsetInRow(int variable) const;

    /// The text to which the reference at `offset` of the current row points; nothing if the file
    /// does not have it, and after a fault.
    std::optional<Place> find(int offset);
    /// Copy the text; `out` has Place::bytes bytes. False after a fault.
    bool read(const Place &place, char *out);
    /// Why find() or read() failed: Damaged, Unreadable.
    const std::optional<Fault<Error>> &fault() const { return m_fault; }

private:
    /// The observation and the variable for which a text was stored first, both from 1. Texts are
    /// sorted by it; equal texts have one.
    struct Key
    {
        quint64 row = 0;
        quint32 variable = 0;
        // The check finds a zero in the generated comparison.
        auto operator<=>(const Key &) const = default; // NOLINT(modernize-use-nullptr)
    };
    /// A text with its header in the file.
    struct Stored
    {
        Key key;
        Place text; ///< without the zero at its end
        qint64 end = 0;
    };
    struct IndexEntry
    {
        Key key;
        qint64 at = 0;
    };

    LongTexts(ByteSource &source, const StataHeader &header);
    void readTypes(CheckedReader &in, const StataHeader &header);
    Key keyOf(const char *reference) const;
    /// The text whose header is at the offset; nothing, with a fault, if it is not one.
    std::optional<Stored> storedAt(qint64 at);
    bool makeIndex();
    /// Index every `stride`-th text. Returns false if they are not sorted, or after a fault.
    bool indexEach(qint64 stride);
    std::optional<Stored> search(const Key &key);
    std::optional<Stored> searchFirst(const char *reference);

    const int m_release;
    const bool m_isBigEndian;
    int m_variableBytes; // in references
    qint64 m_begin;      // of the first text, and the end of the last one
    qint64 m_end;
    qint64 m_rowBytes = 0;      // of the rows in the file
    std::vector<int> m_offsets; // by variable
    LibrarySource m_input;
    const LibrarySource *m_library = nullptr;
    std::vector<IndexEntry> m_index; // sorted
    qint64 m_stride = 0;             // texts per entry of the index; 0: it is not made yet
    Stored m_last;                   // that was found
    std::optional<Fault<Error>> m_fault;
};

} // namespace corvanta::stat
