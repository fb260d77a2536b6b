// A workbook is a stream of records: the globals, and the sheets at the offsets that they give. Up
// to BIFF 4 it is a single sheet, or a workspace of several. The stream is the whole file, or a
// stream of a compound file: "Workbook", of BIFF 5 "Book".
#include "codecs/xls/legacy_workbook.h"

#include "codecs/xls/sheet_rows.h"

#include <array>

namespace corvanta::xls {

using sheet::WorkbookError;

namespace {

/// Sheets are scanned a few times, but those of a hostile file overlap: then a small file could
/// take hours. Bytes that all scans together may read beyond the first ones, and what a scan costs.
constexpr qint64 kMaxScans = 8;
constexpr qint64 kMaxRepeatedBytes = qint64(256) << 20;
constexpr qint64 kScanBytes = 4096;

/// What a fault of the container, a file of `fileBytes` bytes, means for the workbook.
Fault<WorkbookError> faultOf(const Fault<CompoundError> &fault, qint64 fileBytes)
{
    switch (fault.code) {
    case CompoundError::ReadFailed:
        return readFailed(fault.offset);
    case CompoundError::NotCompound:
        return {WorkbookError::NotAWorkbook, QStringLiteral("it is not a legacy workbook")};
    case CompoundError::Damaged:
        break;
    }
    if (fault.offset >= fileBytes) {
        return {WorkbookError::Damaged,
                QStringLiteral("it ends before the directory of its compound file")};
    }
    return {WorkbookError::Damaged,
            QStringLiteral("it is damaged: its compound file has no usable directory"),
            fault.offset};
}

/// The stream of the workbook in a compound file.
sheet::WorkbookResult<std::unique_ptr<CompoundStream>> streamOf(CompoundFile &file)
{
    for (const QStringView name : {u"Workbook", u"Book"}) {
        if (auto stream = file.stream(name)) {
            return stream;
        }
    }
    if (file.stream(u"EncryptedPackage")) {
        return Fault{
            WorkbookError::Encrypted,
            QStringLiteral("it is an encrypted .xlsx workbook; save it without a password")};
    }
    return Fault{WorkbookError::NotAWorkbook,
                 QStringLiteral(
                     "it is a compound file, such as an old Office document, without a workbook")};
}

} // namespace

sheet::WorkbookResult<std::unique_ptr<LegacyWorkbook>> LegacyWorkbook::open(ByteSource &source)
{
    auto workbook = std::unique_ptr<LegacyWorkbook>(new LegacyWorkbook);
    if (auto isRead = workbook->read(source); !isRead) {
        return isRead.fault();
    }
    return workbook;
}

sheet::WorkbookResult<void> LegacyWorkbook::read(ByteSource &source)
{
    std::array<char, 8> first{};
    if (!source.seek(0)) {
        return readFailed(0);
    }
    const qint64 got = readFully(source, first.data(), first.size());
    if (got < 0) {
        return readFailed(0);
    }
    if (CompoundFile::hasSignature({first.data(), got})) {
        auto file = CompoundFile::open(source);
        if (!file) {
            return faultOf(file.fault(), source.size());
        }
        auto stream = streamOf(*file);
        if (!stream) {
            return stream.fault();
        }
        m_stream = *std::move(stream);
        m_missingBytes = m_stream->missingBytes();
    }
    m_reader = std::make_unique<RecordReader>(m_stream ? *m_stream : source);
    return readWorkbook();
}

sheet::WorkbookResult<void> LegacyWorkbook::readWorkbook()
{
    auto globals = readGlobals(*m_reader, 0);
    if (!globals) {
        const auto &fault = globals.fault();
        if (m_stream && fault.code == WorkbookError::NotAWorkbook) {
            return Fault{
                WorkbookError::Damaged,
                QStringLiteral("it is damaged: its stream does not begin with a BOF record"),
                fault.offset};
        }
        return fault;
    }
    m_globals = *std::move(globals);
    m_rules.emplace(m_globals.biff, m_globals.codePage);
    for (const SheetPlace &place : m_globals.sheets) {
        m_sheets.push_back(place.info);
    }
    return {};
}

sheet::WorkbookResult<const SheetScan *> LegacyWorkbook::scan(size_t index)
{
    if (!m_scan || m_scanned != index) {
        m_scan.reset();
        const qint64 offset = m_globals.sheets[index].offset;
        auto scan = scanSheet(*m_reader, offset, m_stop);
        if (!scan) {
            return scan.fault();
        }
        m_scan = *std::move(scan);
        m_scannedBytes += m_scan->end - m_scan->begin + kScanBytes;
        if (m_scannedBytes > kMaxScans * m_reader->size() + kMaxRepeatedBytes) {
            return Fault{WorkbookError::TooLarge,
                         QStringLiteral("too many of its sheets are in the same place"), offset};
        }
        m_scan->isTruncated = m_scan->isTruncated || (!m_scan->hasEnd && m_missingBytes > 0);
        m_scanned = index;
    }
    return &*m_scan;
}

sheet::WorkbookResult<sheet::SheetLayout> LegacyWorkbook::layout(size_t index)
{
    auto scanned = scan(index);
    return scanned ? sheet::WorkbookResult<sheet::SheetLayout>((*scanned)->layout)
                   : scanned.fault();
}

void LegacyWorkbook::readSharedTexts()
{
    if (!m_hasSharedTexts && m_globals.sharedTexts >= 0) {
        // Also after a failure: a second attempt would find the same.
        m_hasSharedTexts = true;
        loadSharedTexts();
    }
}

void LegacyWorkbook::loadSharedTexts()
{
    m_reader->seek(m_globals.sharedTexts);
    if (Record record; m_reader->next(&record)) {
        m_shared.read(*m_reader, record, *m_rules);
    }
}

/// In a workspace each sheet begins with formats of its own.
CellForms LegacyWorkbook::formsOf(size_t index)
{
    if (m_globals.isWorkspace) {
        auto globals = readGlobals(*m_reader, m_globals.sheets[index].offset);
        if (globals) {
            return std::move(globals->forms);
        }
    }
    return m_globals.forms;
}

sheet::WorkbookResult<std::unique_ptr<sheet::SheetRows>> LegacyWorkbook::openSheet(size_t index)
{
    auto scanned = scan(index);
    if (!scanned) {
        return scanned.fault();
    }
    readSharedTexts();
    auto rows = std::make_unique<BiffRows>(SheetSource{*m_reader, *m_rules, m_shared, m_stop},
                                           formsOf(index), **scanned);
    if (auto isOpen = rows->open(); !isOpen) {
        return isOpen.fault();
    }
    return std::unique_ptr<sheet::SheetRows>(std::move(rows));
}

} // namespace corvanta::xls
