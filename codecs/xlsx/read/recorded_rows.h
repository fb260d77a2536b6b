// Keeps the rows of a sheet in memory, in a compact form, so that they need not be parsed again.
//
// An action reads a sheet twice: the types of all columns must be known before the first row. The
// second reading is several times as fast from here as from the packed markup.
#pragma once
#include "base/platform/files.h"
#include "codecs/sheet/workbook_reader.h"
#include "codecs/xlsx/read/shared_strings.h"

#include <atomic>
#include <memory>
#include <utility>
#include <vector>

namespace corvanta::xlsx {

/// Pages that have no room in memory: a temporary file without a name, which is gone with the
/// object.
class PageFile
{
public:
    /// Add the bytes at the end, size(). Returns false if the file cannot be written.
    bool append(const uchar *bytes, size_t n);
    /// Returns false if the file cannot be read.
    bool read(qint64 offset, uchar *bytes, size_t n);
    qint64 size() const { return m_size; }

private:
    platform::FileHandle m_file; // opened when it is needed
    qint64 m_size = 0;
};

/// What an own number of a text cell, SheetCell::number, means: 0 is a text of the sheet itself,
/// any other one is the number of a shared string, plus 1.
class RowRecording
{
public:
    /// `file` outlives the recording and the RecordedRows that deliver it.
    explicit RowRecording(PageFile &file)
        : m_file(file)
    {
    }

    /// Add the row after those that are there. Its texts are copied, except shared strings. What
    /// needs more than `memoryBytes` goes to the file.
    void add(const sheet::SheetRow &row, qint64 memoryBytes);
    /// All rows are there.
    void finish(const sheet::SheetProblems &problems);

    /// The file cannot be written: the recording is of no use.
    bool hasFailed() const { return m_hasFailed; }
    /// Memory that the rows take.
    qint64 memoryBytes() const { return m_memoryBytes; }
    /// Bytes of all rows.
    qint64 bytes() const { return m_memoryBytes + m_fileBytes; }
    const sheet::SheetProblems &problems() const { return m_problems; }

private:
    friend class RecordedRows;

    /// Some rows, one after the other.
    struct Page
    {
        std::unique_ptr<uchar[]> memory; ///< null: in the file
        qint64 offset = 0;               ///< in the file
        size_t size = 0;                 ///< of the rows; valid when the page is complete
    };

    void beginPage(size_t bytes);
    void endPage();
    void moveToFile(Page *page);
    // The parts of a row in the form that takeCell() reads.
    void put(const sheet::SheetCell &cell);
    void putNumber(const sheet::SheetCell &cell);
    void putText(const sheet::SheetCell &cell);

    PageFile &m_file;
    std::vector<Page> m_pages;
    uchar *m_at = nullptr;  // where the last page continues
    uchar *m_end = nullptr; // of the last page
    qint64 m_memoryBytes = 0;
    qint64 m_fileBytes = 0; // of this recording
    bool m_hasFailed = false;
    qint64 m_rows = 0;
    int m_column = -1; // of the last cell
    sheet::SheetProblems m_problems;
};

/// Delivers recorded rows. Threads: see sheet::SheetRows.
class RecordedRows final : public sheet::SheetRows
{
public:
    /// `recording` is complete; `strings` outlives the rows.
    RecordedRows(std::unique_ptr<RowRecording> recording, SharedStrings &strings)
        : m_recording(std::move(recording))
        , m_strings(strings)
    {
    }

    /// Errors: ReadFailed.
    sheet::WorkbookResult<bool> next(sheet::SheetRow *row) override;
    /// Of the rows, not of the bytes.
    double fractionDone() const override;
    const sheet::SheetProblems &problems() const override { return m_recording->problems(); }

private:
    bool openPage();
    // Each takes an item at m_at and goes to the one after it.
    /// The column and the value after a tag.
    void takeCell(sheet::SheetCell *cell);
    /// A text of the sheet, or the number of a shared string.
    void takeText(sheet::SheetCell *cell);

    const std::unique_ptr<RowRecording> m_recording;
    SharedStrings &m_strings;
    size_t m_nextPage = 0;
    std::vector<uchar> m_read; // the open page, if it is in the file
    const uchar *m_at = nullptr;
    const uchar *m_end = nullptr;   // of the open page
    std::atomic<qint64> m_rows = 0; // delivered
    std::vector<sheet::SheetCell> m_cells;
};

} // namespace corvanta::xlsx
