// Opens legacy workbooks: .xls and .xlt files of all versions, BIFF 2 to 8.
#pragma once
#include "codecs/sheet/workbook_reader.h"
#include "codecs/xls/compound_file.h"
#include "codecs/xls/globals.h"
#include "codecs/xls/shared_texts.h"
#include "codecs/xls/sheet_scan.h"

#include <atomic>
#include <memory>
#include <optional>

namespace corvanta::xls {

/// A legacy workbook. Memory: the shared texts of BIFF 8, and buffers of less than 1 MiB; see
/// BiffRows for sheets whose cells are not in order.
///
/// Formulas are never computed: a cell has the result that the writer stored. There are no tables.
/// Threads: see WorkbookReader.
class LegacyWorkbook final : public sheet::WorkbookReader
{
public:
    /// `source` can seek, knows its size, and must outlive the workbook. Errors: ReadFailed,
    /// NotAWorkbook, Encrypted, Damaged.
    static sheet::WorkbookResult<std::unique_ptr<LegacyWorkbook>> open(ByteSource &source);

    /// All sheets, also charts and modules, which have no rows.
    const std::vector<sheet::SheetInfo> &sheets() const override { return m_sheets; }
    bool uses1904() const override { return m_globals.uses1904; }
    const std::vector<sheet::DefinedName> &definedNames() const override { return m_globals.names; }
    /// Always empty: the format does not have tables.
    sheet::WorkbookResult<std::vector<sheet::TableInfo>> tables() override
    {
        return std::vector<sheet::TableInfo>{};
    }
    /// Scans the sheet. Errors: Damaged, TooLarge, ReadFailed, Stopped.
    sheet::WorkbookResult<sheet::SheetLayout> layout(size_t index) override;
    /// Errors: as layout().
    sheet::WorkbookResult<std::unique_ptr<sheet::SheetRows>> openSheet(size_t index) override;
    void stop() override { m_stop.store(true, std::memory_order_relaxed); }

private:
    LegacyWorkbook() = default;
    // The two halves of open(): the stream, and the globals in it.

    sheet::WorkbookResult<void> read(ByteSource &source);
    sheet::WorkbookResult<void> readWorkbook();
    /// Scan a sheet, unless it is the one that was scanned last. Valid until the next call.
    sheet::WorkbookResult<const SheetScan *> scan(size_t index);
    /// Read them when the first sheet is opened; lists of sheets do without.
    void readSharedTexts();
    /// The part of readSharedTexts() that reads: the SST record and those that continue it.
    void loadSharedTexts();
    /// The forms that the cells of a sheet refer to.
    CellForms formsOf(size_t index);

    std::unique_ptr<CompoundStream> m_stream; // null for a file that is only the stream
    qint64 m_missingBytes = 0;                // of the stream; see CompoundStream
    std::unique_ptr<RecordReader> m_reader;
    Globals m_globals;
    std::vector<sheet::SheetInfo> m_sheets;
    std::optional<TextReader> m_rules;
    SharedTexts m_shared;
    bool m_hasSharedTexts = false; // m_shared is read
    size_t m_scanned = 0;          // the sheet of m_scan
    std::optional<SheetScan> m_scan;
    qint64 m_scannedBytes = 0; // by all scans
    std::atomic<bool> m_stop = false;
};

} // namespace corvanta::xls
