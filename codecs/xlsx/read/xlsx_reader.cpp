// The parts of a workbook and how they are found:
//
//   _rels/.rels                officeDocument -> xl/workbook.xml
//   xl/_rels/workbook.xml.rels rId1 worksheet -> worksheets/sheet1.xml; sharedStrings, styles
//   xl/worksheets/_rels/...    table          -> ../tables/table1.xml
#include "codecs/xlsx/read/xlsx_reader.h"

#include "codecs/opc/file_kind.h"
#include "codecs/opc/relationships.h"
#include "codecs/xlsx/cell_range.h"
#include "codecs/xlsx/read/number_styles.h"
#include "codecs/xlsx/read/sheet_scanner.h"
#include "codecs/xlsx/read/workbook_sheets.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

using namespace Qt::StringLiterals;

namespace corvanta::xlsx {

using sheet::WorkbookError;

namespace {

/// A part that is read whole. Sheets and shared strings are not.
constexpr qint64 kMaxPartBytes = qint64(64) << 20;
/// Memory of the shared strings: what any workbook may take, and what each packed byte may add.
constexpr qint64 kStringBytes = qint64(192) << 20;
constexpr qint64 kStringBytesPerPackedByte = 64;
/// Memory for shared strings together with the rows that are kept for a second reading; more rows
/// are in a temporary file.
constexpr qint64 kRecordedBytes = qint64(64) << 20;
constexpr qint64 kRecordedFileBytes = qint64(1) << 30;
/// Content of all sheets and shared strings that are read: what any workbook may have, and what
/// each byte of the file may add. Real sheets are packed to a tenth; small files that expand a
/// thousand times, or name one part for thousands of sheets, would take hours.
constexpr qint64 kContentBytes = qint64(256) << 20;
constexpr qint64 kContentBytesPerByte = 64;
/// What opening a sheet costs at least.
constexpr qint64 kOpeningBytes = qint64(16) << 10;

Fault<WorkbookError> partFault(const Fault<opc::Error> &fault, const QByteArray &part)
{
    const QString name = QString::fromUtf8(part);
    switch (fault.code) {
    case opc::Error::Encoding:
        return {WorkbookError::Unsupported, u"'%1': the text is not UTF-8"_s.arg(name)};
    case opc::Error::TooLarge:
        return {WorkbookError::TooLarge, u"'%1' has too many elements"_s.arg(name)};
    case opc::Error::Unexpected:
        return {WorkbookError::Damaged, u"'%1' has other content than its kind"_s.arg(name)};
    default:
        return {WorkbookError::Damaged, u"'%1': the markup is broken"_s.arg(name), fault.offset};
    }
}

/// The kind that the type of a relationship says; nothing for other parts.
std::optional<sheet::SheetKind> kindOf(const opc::Relationship &relationship)
{
    using Kind = sheet::SheetKind;
    const std::pair<const char *, Kind> kinds[] = {{"worksheet", Kind::Worksheet},
                                                   {"chartsheet", Kind::Chart},
                                                   {"dialogsheet", Kind::Dialog},
                                                   {"xlMacrosheet", Kind::Macro},
                                                   {"xlIntlMacrosheet", Kind::Macro}};
    for (const auto &[name, kind] : kinds) {
        if (opc::isToPart(relationship, name)) {
            return kind;
        }
    }
    return std::nullopt;
}

} // namespace

XlsxReader::XlsxReader(ByteSource &source)
    : m_fileBytes(source.size())
    , m_view(source, m_sourceMutex)
    , m_stringsView(source, m_sourceMutex)
    , m_sheetView(source, m_sourceMutex)
{
}

XlsxReader::~XlsxReader() = default;

sheet::WorkbookResult<std::unique_ptr<XlsxReader>> XlsxReader::open(ByteSource &source)
{
    std::unique_ptr<XlsxReader> reader(new XlsxReader(source));
    for (const auto step : {&XlsxReader::openPackage, &XlsxReader::checkKind,
                            &XlsxReader::readWorkbook, &XlsxReader::readStyles}) {
        if (const auto done = (reader.get()->*step)(); !done) {
            return done.fault();
        }
    }
    return reader;
}

// ---- Parts.

XlsxReader::Done XlsxReader::openPackage()
{
    auto package = zip::PackageReader::open(m_view);
    if (!package) {
        switch (package.fault().code) {
        case zip::Error::NotAPackage:
            if (opc::fileKind(m_view) == opc::FileKind::Package) {
                return Fault{WorkbookError::Damaged,
                             u"it ends before the directory of its zip package"_s};
            }
            return Fault{WorkbookError::NotAWorkbook}; // described by its content
        case zip::Error::ReadFailed:
            return Fault{WorkbookError::ReadFailed, u"the file cannot be read"_s};
        default:
            return Fault{WorkbookError::Damaged, u"the zip directory is damaged"_s};
        }
    }
    m_package = *std::move(package);
    std::vector<QByteArray> names;
    for (const zip::Member &member : m_package->members()) {
        names.push_back(member.name);
    }
    m_memberNames = opc::MemberNames(names);
    return {};
}

const zip::Member *XlsxReader::memberOf(const QByteArray &part) const
{
    const auto name = m_memberNames.find(part);
    return name ? m_package->find(*name) : nullptr;
}

sheet::WorkbookResult<QByteArray> XlsxReader::readPart(const QByteArray &part)
{
    const QString name = QString::fromUtf8(part);
    const zip::Member *const member = memberOf(part);
    if (member == nullptr) {
        return memberFault(Fault{zip::Error::NoMember}, name);
    }
    if (member->size > kMaxPartBytes) {
        return memberFault(Fault{zip::Error::TooLarge}, name);
    }
    auto content = m_package->readWhole(*member);
    if (!content) {
        return memberFault(content.fault(), name);
    }
    return *std::move(content);
}

/// The relationships of a part; none if they are missing or broken. Without those that cannot be
/// read, the sheets could be confused.
sheet::WorkbookResult<opc::Relationships> XlsxReader::relationshipsOf(const QByteArray &part)
{
    const QByteArray name = opc::relationshipPartOf(part);
    if (memberOf(name) == nullptr) {
        return opc::Relationships();
    }
    const auto text = readPart(name);
    if (!text) {
        return text.fault();
    }
    auto relationships = opc::Relationships::read(*text);
    return relationships ? *std::move(relationships) : opc::Relationships();
}

/// A package has one such relationship; of several the last one counts, without one the usual name.
sheet::WorkbookResult<QByteArray> XlsxReader::workbookPart()
{
    QByteArray part = "xl/workbook.xml";
    const auto relationships = relationshipsOf({});
    if (!relationships) {
        return relationships.fault();
    }
    for (const opc::Relationship &one : relationships->entries()) {
        part = opc::isToPart(one, "officeDocument") ? opc::resolvedTarget({}, one.target) : part;
    }
    return part;
}

/// The part of the workbook's first relationship of a kind.
QByteArray XlsxReader::relatedPart(const char *kind, const QByteArray &fallback) const
{
    const opc::Relationship *const one = m_relationships->find(kind);
    return one != nullptr ? opc::resolvedTarget(m_workbookPart, one->target) : fallback;
}

// ---- The workbook.

/// Refuse packages of other kinds by their name, as the markup of their parts would say nothing.
XlsxReader::Done XlsxReader::checkKind()
{
    auto part = workbookPart();
    if (!part) {
        return part.fault();
    }
    m_workbookPart = *std::move(part);
    const auto refuse = [](WorkbookError code, const QString &kind) {
        return Fault{code, u"it is %1"_s.arg(kind)};
    };
    if (m_workbookPart.endsWith(".bin")) {
        return refuse(WorkbookError::Unsupported, u"a binary workbook (.xlsb); save it as .xlsx"_s);
    }
    if (memberOf("content.xml") != nullptr) {
        return refuse(WorkbookError::NotAWorkbook,
                      u"an OpenDocument file (.ods); save it as .xlsx"_s);
    }
    if (m_workbookPart.startsWith("word/")) {
        return refuse(WorkbookError::NotAWorkbook, u"a Word document"_s);
    }
    if (m_workbookPart.startsWith("ppt/")) {
        return refuse(WorkbookError::NotAWorkbook, u"a PowerPoint presentation"_s);
    }
    if (memberOf(m_workbookPart) == nullptr) {
        return refuse(
            WorkbookError::NotAWorkbook,
            u"a zip file without the workbook part '%1'"_s.arg(QString::fromUtf8(m_workbookPart)));
    }
    return {};
}

/// The usual part of the sheet with this number, from 1, for workbooks without relationships.
QByteArray XlsxReader::usualSheetPart(qsizetype number) const
{
    return opc::folderOf(m_workbookPart) + "worksheets/sheet" + QByteArray::number(number) + ".xml";
}

/// Describes the sheets in the order of their tabs; their parts are opened only when they are read.
XlsxReader::Done XlsxReader::readWorkbook()
{
    const auto text = readPart(m_workbookPart);
    if (!text) {
        return text.fault();
    }
    auto workbook = readWorkbookSheets(*text);
    if (!workbook) {
        return partFault(workbook.fault(), m_workbookPart);
    }
    m_uses1904 = workbook->uses1904;
    m_names = std::move(workbook->names);
    auto relationships = relationshipsOf(m_workbookPart);
    if (!relationships) {
        return relationships.fault();
    }
    m_relationships = std::make_unique<opc::Relationships>(*std::move(relationships));
    std::unordered_map<QByteArray, const opc::Relationship *> byId;
    for (const opc::Relationship &one : m_relationships->entries()) {
        byId[one.id] = &one;
    }
    for (const WorkbookSheets::Entry &entry : workbook->sheets) {
        const auto found = byId.find(entry.relationshipId);
        const opc::Relationship *const one = found != byId.end() ? found->second : nullptr;
        sheet::SheetInfo info = entry.info;
        info.kind = (one != nullptr ? kindOf(*one) : std::nullopt).value_or(info.kind);
        m_parts.push_back(one != nullptr ? opc::resolvedTarget(m_workbookPart, one->target)
                                         : usualSheetPart(std::ssize(m_infos) + 1));
        m_infos.push_back(info);
    }
    m_states.resize(m_infos.size());
    return {};
}

/// A workbook without styles has no dates: all numbers are shown as they are.
XlsxReader::Done XlsxReader::readStyles()
{
    const QByteArray part = relatedPart("styles", opc::folderOf(m_workbookPart) + "styles.xml");
    if (memberOf(part) == nullptr) {
        return {};
    }
    const auto text = readPart(part);
    if (!text) {
        return text.fault();
    }
    m_forms = readNumberForms(*text);
    return {};
}

// ---- Sheets.

sheet::WorkbookResult<std::unique_ptr<PartText>> XlsxReader::openText(const zip::Member &member,
                                                                      SourceView &view)
{
    const QString name = QString::fromUtf8(member.name);
    auto stream = m_package->openStream(member, view);
    if (!stream) {
        return memberFault(stream.fault(), name);
    }
    return std::make_unique<PartText>(name, *std::move(stream), member.size);
}

/// Open the strings for the first sheet that is read: a list of the sheets does not need them.
XlsxReader::Done XlsxReader::openStrings()
{
    if (m_hasStrings) {
        return {};
    }
    const QByteArray part =
        relatedPart("sharedStrings", opc::folderOf(m_workbookPart) + "sharedStrings.xml");
    if (const zip::Member *const member = memberOf(part); member != nullptr) {
        auto text = openText(*member, m_stringsView);
        if (!text) {
            return text.fault();
        }
        if (const auto counted = countContent(*member); !counted) {
            return counted.fault();
        }
        // stop() may use the strings that are replaced here.
        const std::lock_guard lock(m_stopMutex);
        m_strings = SharedStrings(*std::move(text), kStringBytes + member->compressedSize *
                                                                       kStringBytesPerPackedByte);
    }
    // Not set after a fault, so that every sheet that needs the strings reports it.
    m_hasStrings = true;
    return {};
}

/// Where stop() finds the scanner that is in use.
void XlsxReader::setScanner(SheetScanner *scanner)
{
    const std::lock_guard lock(m_stopMutex);
    m_scanner = scanner;
    if (m_isStopped && scanner != nullptr) {
        scanner->stop();
    }
}

void XlsxReader::stop()
{
    const std::lock_guard lock(m_stopMutex);
    m_isStopped = true;
    m_strings.stop();
    if (m_scanner != nullptr) {
        m_scanner->stop();
    }
}

/// The rows of one sheet, which stop() can reach as long as they exist.
class XlsxReader::OpenSheet final : public sheet::SheetRows
{
public:
    /// `recording` is null for a sheet that is not recorded.
    OpenSheet(XlsxReader &reader, size_t index, std::unique_ptr<SheetScanner> scanner,
              std::unique_ptr<RowRecording> recording)
        : m_reader(reader)
        , m_index(index)
        , m_scanner(std::move(scanner))
        , m_recording(std::move(recording))
    {
        m_reader.setScanner(m_scanner.get());
    }
    OpenSheet(const OpenSheet &) = delete;
    OpenSheet &operator=(const OpenSheet &) = delete;
    ~OpenSheet() override { m_reader.setScanner(nullptr); }

    sheet::WorkbookResult<bool> next(sheet::SheetRow *row) override
    {
        auto more = m_scanner->next(row);
        if (m_recording && more) {
            record(*more ? row : nullptr);
        }
        return more;
    }
    double fractionDone() const override { return m_scanner->fractionDone(); }
    const sheet::SheetProblems &problems() const override { return m_scanner->problems(); }

    sheet::WorkbookResult<sheet::SheetLayout> readLayout() { return m_scanner->readLayout(); }

private:
    /// Null after the last row.
    void record(const sheet::SheetRow *row)
    {
        if (row == nullptr) {
            m_recording->finish(m_scanner->problems());
            m_reader.keep(m_index, std::move(m_recording));
            return;
        }
        // A row without cells says nothing but that it is hidden.
        if (!row->cells.empty() || row->isHidden) {
            m_recording->add(*row, m_reader.recordingBytes());
        }
        if (!m_reader.hasRoomFor(*m_recording, m_scanner->fractionDone())) {
            m_recording.reset();
        }
    }

    XlsxReader &m_reader;
    const size_t m_index;
    std::unique_ptr<SheetScanner> m_scanner;
    std::unique_ptr<RowRecording> m_recording;
};

qint64 XlsxReader::recordingBytes() const
{
    return std::max<qint64>(0, kRecordedBytes - m_recordedBytes - m_strings.bytes());
}

/// Whether to continue a recording when this fraction of its sheet is read. One that would not fit
/// in the end is given up early.
bool XlsxReader::hasRoomFor(const RowRecording &recording, double fraction) const
{
    constexpr double kTolerance = 1.25;
    constexpr double kStart = 0.1;
    const qint64 room = recordingBytes() + kRecordedFileBytes;
    const double expected = std::min(1.0, fraction * kTolerance + kStart);
    return !recording.hasFailed() && m_pageFile.size() <= kRecordedFileBytes &&
           static_cast<double>(recording.bytes()) <= expected * static_cast<double>(room);
}

/// The next reading of the sheet takes the rows from the recording.
void XlsxReader::keep(size_t index, std::unique_ptr<RowRecording> recording)
{
    m_recordedBytes += recording->memoryBytes();
    m_states[index].recording = std::move(recording);
}

/// Count the content of a part that is read for the first time. Errors: TooLarge.
XlsxReader::Done XlsxReader::countContent(const zip::Member &member)
{
    m_contentBytes += member.size + kOpeningBytes;
    if (m_contentBytes > kContentBytes + kContentBytesPerByte * m_fileBytes) {
        return Fault{WorkbookError::TooLarge,
                     u"the content up to '%1' is too large for the size of the file"_s.arg(
                         QString::fromUtf8(member.name))};
    }
    return {};
}

sheet::WorkbookResult<std::unique_ptr<SheetScanner>> XlsxReader::openScanner(size_t index)
{
    if (const auto opened = openStrings(); !opened) {
        return opened.fault();
    }
    const zip::Member *const member = memberOf(m_parts[index]);
    if (member == nullptr) {
        return memberFault(Fault{zip::Error::NoMember}, QString::fromUtf8(m_parts[index]));
    }
    // A sheet that is read again adds no content.
    if (!m_states[index].isCounted) {
        if (const auto counted = countContent(*member); !counted) {
            return counted.fault();
        }
        m_states[index].isCounted = true;
    }
    auto text = openText(*member, m_sheetView);
    if (!text) {
        return text.fault();
    }
    return std::make_unique<SheetScanner>(*std::move(text), m_strings, m_forms);
}

sheet::WorkbookResult<std::unique_ptr<sheet::SheetRows>> XlsxReader::openSheet(size_t index)
{
    SheetState &state = m_states[index];
    if (state.recording) {
        return std::unique_ptr<sheet::SheetRows>(
            std::make_unique<RecordedRows>(std::move(state.recording), m_strings));
    }
    // What had no room the first time has none later.
    auto recording =
        std::exchange(state.wasRead, true) ? nullptr : std::make_unique<RowRecording>(m_pageFile);
    auto scanner = openScanner(index);
    if (!scanner) {
        return scanner.fault();
    }
    return std::unique_ptr<sheet::SheetRows>(
        std::make_unique<OpenSheet>(*this, index, *std::move(scanner), std::move(recording)));
}

sheet::WorkbookResult<sheet::SheetLayout> XlsxReader::layout(size_t index)
{
    auto scanner = openScanner(index);
    return scanner ? OpenSheet(*this, index, *std::move(scanner), nullptr).readLayout()
                   : scanner.fault();
}

// ---- Tables.

namespace {

/// The area of a table. Its rows count from 1 in the part, and from 0 here.
sheet::CellArea areaOf(const CellRange &range)
{
    return {range.firstRow - 1, range.lastRow - 1, range.firstColumn, range.lastColumn};
}

} // namespace

/// Add the tables of one sheet. A broken one is as if it were missing: no cell needs it.
XlsxReader::Done XlsxReader::addTables(size_t index, std::vector<sheet::TableInfo> *tables)
{
    const auto relationships = relationshipsOf(m_parts[index]);
    if (!relationships) {
        return relationships.fault();
    }
    for (const opc::Relationship &one : relationships->entries()) {
        if (!opc::isToPart(one, "table")) {
            continue;
        }
        const auto text = readPart(opc::resolvedTarget(m_parts[index], one.target));
        if (!text) {
            return text.fault();
        }
        const auto table = readTable(*text);
        if (!table) {
            continue;
        }
        sheet::TableInfo info;
        info.name = table->name;
        info.sheet = static_cast<int>(index);
        info.area = areaOf(table->range);
        info.hasHeader = table->hasHeader;
        info.totalsRows = table->totalsRows;
        tables->push_back(info);
    }
    return {};
}

sheet::WorkbookResult<std::vector<sheet::TableInfo>> XlsxReader::tables()
{
    std::vector<sheet::TableInfo> tables;
    for (size_t i = 0; i < m_parts.size(); ++i) {
        if (const auto added = addTables(i, &tables); !added) {
            return added.fault();
        }
    }
    return tables;
}

} // namespace corvanta::xlsx
