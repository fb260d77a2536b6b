// Reads the defined names of a legacy workbook.
#pragma once
#include "codecs/sheet/workbook_reader.h"
#include "codecs/xls/record_text.h"

#include <array>
#include <vector>

namespace corvanta::xls {

/// Collects NAME records of BIFF 5 and 8 and the records that say which sheets they mean. Older
/// names are left out: their workbooks have one sheet. Threads: one at a time.
class DefinedNames
{
public:
    /// Take a record of the globals, which was read last from `reader`; those of other kinds are
    /// ignored.
    void take(RecordReader &reader, const Record &record, const TextReader &rules);

    /// The names of a workbook with `sheets` sheets. Without those of macros and functions.
    std::vector<sheet::DefinedName> resolve(Biff biff, size_t sheets) const;

private:
    /// A name as stored. The area is given as its tokens.
    struct Stored
    {
        QString name;
        int scope = -1;    // as DefinedName::scope
        QByteArray tokens; // at most as many as one area has
    };
    // take() for each kind of record. Records that are too short are ignored.

    void takeName(RecordReader &reader, const Record &record, const TextReader &rules);
    void takeExternSheet(RecordReader &reader, const Record &record);
    void takeSupBook(const Record &record);
    // Set sheet and area of a name from its tokens, which differ in BIFF 8 and 5. False, and no
    // change, for anything but one area of one sheet of this workbook.

    bool setArea8(const QByteArray &tokens, sheet::DefinedName *name) const;
    static bool setArea5(const QByteArray &tokens, sheet::DefinedName *name);

    /// A reference to sheets, as BIFF 8 names use it.
    struct SheetRange
    {
        quint16 book = 0;  ///< number of the SUPBOOK record
        quint16 first = 0; ///< index of the first sheet
        quint16 last = 0;  ///< and of the last one
    };
    // In the order of the records.
    std::vector<Stored> m_names;
    std::vector<SheetRange> m_ranges;
    std::vector<bool> m_isThisBook; // by the order of SUPBOOK records
};

} // namespace corvanta::xls
