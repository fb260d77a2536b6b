// Reads workbooks of the Office Open XML format: .xlsx and .xlsm (ECMA-376 part 1, 18).
#pragma once
#include "base/byte_source.h"
#include "codecs/opc/part_names.h"
#include "codecs/sheet/workbook_reader.h"
#include "codecs/xlsx/read/recorded_rows.h"
#include "codecs/xlsx/read/shared_strings.h"
#include "codecs/xlsx/read/source_view.h"
#include "codecs/zip/package_reader.h"

#include <atomic>
#include <memory>
#include <mutex>

namespace corvanta::opc {
class Relationships;
}

namespace corvanta::xlsx {

class SheetScanner;

/// Finds the parts through relationships, so that their names do not matter; falls back to the
/// usual names where relationships are missing. Memory: the shared strings that have been used,
/// about 3 MiB, and the rows of sheets that are read again: with the strings less than 96 MiB, or
/// they are parsed again. Threads: see sheet::WorkbookReader.
class XlsxReader final : public sheet::WorkbookReader
{
public:
    /// Read the parts that describe the workbook. `source` must be able to seek and outlive the
    /// reader. Errors: all but Stopped.
    static sheet::WorkbookResult<std::unique_ptr<XlsxReader>> open(ByteSource &source);
    ~XlsxReader() override;

    // See sheet::WorkbookReader. Sheets count from 0.
    const std::vector<sheet::SheetInfo> &sheets() const override { return m_infos; }
    bool uses1904() const override { return m_uses1904; }
    const std::vector<sheet::DefinedName> &definedNames() const override { return m_names; }
    sheet::WorkbookResult<std::vector<sheet::TableInfo>> tables() override;
    sheet::WorkbookResult<sheet::SheetLayout> layout(size_t index) override;
    sheet::WorkbookResult<std::unique_ptr<sheet::SheetRows>> openSheet(size_t index) override;
    void stop() override;

private:
    using Done = sheet::WorkbookResult<void>;
    class OpenSheet;

    explicit XlsxReader(ByteSource &source);
    /// Read the directory of the package.
    Done openPackage();
    /// Refuse packages of another kind, such as a text document, and say what they are.
    Done checkKind();
    /// Read names, kinds and parts of the sheets, and the defined names.
    Done readWorkbook();
    /// Read which cell formats show dates.
    Done readStyles();
    /// Prepare the shared strings before the first sheet that needs them.
    Done openStrings();
    /// The part that the package names as its document.
    sheet::WorkbookResult<QByteArray> workbookPart();
    /// The name that most writers give the sheet; `number` counts from 1.
    QByteArray usualSheetPart(qsizetype number) const;
    sheet::WorkbookResult<opc::Relationships> relationshipsOf(const QByteArray &part);
    /// The part with a relationship of this kind to the workbook; `fallback` without one.
    QByteArray relatedPart(const char *kind, const QByteArray &fallback) const;
    /// Null without it; letter case and slashes count as opc::MemberNames has it.
    const zip::Member *memberOf(const QByteArray &part) const;
    /// The content of a small part. Errors: TooLarge, and those of the package.
    sheet::WorkbookResult<QByteArray> readPart(const QByteArray &part);
    /// A part as a stream, which reads through `view`: views have positions of their own.
    sheet::WorkbookResult<std::unique_ptr<PartText>> openText(const zip::Member &member,
                                                              SourceView &view);
    /// The rows of sheet `index`, from 0, from its part.
    sheet::WorkbookResult<std::unique_ptr<SheetScanner>> openScanner(size_t index);
    /// Add the size of a part to m_contentBytes. Errors: TooLarge, which ends hostile workbooks.
    Done countContent(const zip::Member &member);
    Done addTables(size_t index, std::vector<sheet::TableInfo> *tables);
    /// Memory that one more recording may have now.
    qint64 recordingBytes() const;
    /// Whether all rows will fit in memory, if `fraction` of them need what `recording` has.
    bool hasRoomFor(const RowRecording &recording, double fraction) const;
    /// Keep the rows of a sheet for its second reading.
    void keep(size_t index, std::unique_ptr<RowRecording> recording);
    /// Say which scanner stop() ends; null for none.
    void setScanner(SheetScanner *scanner);

    const qint64 m_fileBytes;
    std::mutex m_sourceMutex;
    SourceView m_view; // of the directory and the small parts
    SourceView m_stringsView;
    SourceView m_sheetView;
    std::unique_ptr<zip::PackageReader> m_package;
    opc::MemberNames m_memberNames;
    QByteArray m_workbookPart;
    std::unique_ptr<opc::Relationships> m_relationships; // of the workbook
    std::vector<sheet::SheetInfo> m_infos;
    std::vector<QByteArray> m_parts; // of the sheets; empty without one
    std::vector<sheet::DefinedName> m_names;
    bool m_uses1904 = false;
    std::vector<sheet::NumberForm> m_forms;
    bool m_hasStrings = false; // m_strings is open
    /// What has been done with a sheet.
    struct SheetState
    {
        bool isCounted = false; ///< in m_contentBytes
        bool wasRead = false;
        std::unique_ptr<RowRecording> recording; ///< of all its rows, for the next reading
    };
    PageFile m_pageFile; // of all recordings
    std::vector<SheetState> m_states;
    qint64 m_recordedBytes = 0; // in memory, of all complete recordings
    qint64 m_contentBytes = 0;  // of all parts that have been read, each once per sheet

    std::mutex m_stopMutex;
    bool m_isStopped = false;          // guarded by m_stopMutex
    SheetScanner *m_scanner = nullptr; // guarded by m_stopMutex
    SharedStrings m_strings;
};

} // namespace corvanta::xlsx
