#include "actions/write_doc_table/write_doc_table.h"

#include "base/counted.h"
#include "codecs/document/document_part.h"
#include "codecs/document/document_parts.h"
#include "codecs/opc/marker_search.h"
#include "codecs/opc/markup_scan.h"
#include "corvanta/failure_reason.h"

#include <QDir>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

using document::kStylesPart;

ActionWriteDocTable::ActionWriteDocTable(const XMLNode &saved, GlobalParameters *parameters)
    // The pins follow from the tables that were saved.
    : ParamAction(kWriteDocTableEntry, saved, parameters)
{
}

void ActionWriteDocTable::addPinIn()
{
    // The host may refuse another pin, which then gets no table.
    const int pins = pinInCount();
    ActionItem::addPinIn();
    if (pinInCount() > pins) {
        m_params.tables.push_back(defaultDocTable(pins));
    }
}

void ActionWriteDocTable::removePinIn()
{
    // Graphs are saved with their tables only, and have as many pins when they are loaded.
    if (m_params.tables.size() > 1) {
        m_params.tables.pop_back();
        ActionItem::removePinIn();
    }
}

QString ActionWriteDocTable::message(TemplateProblem problem, const QString &name) const
{
    switch (problem) {
    case TemplateProblem::CannotReadTemplate:
        return u"ERROR: cannot read Report Template file %1\n"_s.arg(name);
    case TemplateProblem::EmptyTemplate:
        return u"ERROR: template file is empty.\n"_s;
    case TemplateProblem::CannotReadPart:
        // Some programs number it: word/styles2.xml.
        return name.startsWith(QLatin1StringView(kStylesPart).chopped(4))
                   ? u"ERROR: problem reading the template file(1)\n"_s
                   : u"ERROR: problem reading the template file(2)\n"_s;
    case TemplateProblem::CannotOpenMember:
    case TemplateProblem::CannotCopyMember:
        return u"ERROR: cannot open file '%1' in the zipfile for read"_s.arg(name);
    case TemplateProblem::CannotCreate:
        return u"ERROR: Cannot write Report file '%1'.\n"_s.arg(name);
    case TemplateProblem::CannotAddMember:
        return u"ERROR: cannot open file '%1' in the zipfile for write"_s.arg(name);
    case TemplateProblem::CannotWrite:
        return u"\nWARNING: problem writing the output file\n"_s;
    case TemplateProblem::CannotClose:
        break;
    }
    return u"\nWARNING: problem closing the output file\n"_s;
}

int ActionWriteDocTable::tableCount() const
{
    // A pin without a table has the default one, and a table without a pin has no rows.
    return std::max(pinInCount(), static_cast<int>(m_params.tables.size()));
}

DocTable ActionWriteDocTable::tableOf(int pin) const
{
    const auto index = static_cast<size_t>(pin);
    return index < m_params.tables.size() ? m_params.tables[index] : defaultDocTable(pin);
}

void ActionWriteDocTable::start()
{
    m_run = std::make_unique<Run>();
    m_run->output = expandOutputFile(m_params.output, QString());
    // Both are reported, so that a user can correct them together.
    if (m_params.output.isEmpty()) {
        fail(u"No Output File?"_s);
    }
    if (m_params.templateName.isEmpty()) {
        fail(u"No Template File?"_s);
    }
}

bool ActionWriteDocTable::step()
{
    // Pin after pin: the rows of a later one wait until those of the earlier ones are read.
    while (m_run->pin < tableCount()) {
        const Pin state = readPin();
        if (state != Pin::Ended) {
            return state == Pin::Interrupted;
        }
        ++m_run->pin;
    }
    m_run->isRead = true;
    return false;
}

void ActionWriteDocTable::finish()
{
    // The document is written when no action can fail any more, like every other target.
    if (m_run && m_run->isRead && runIsGood()) {
        m_run->isRead = false;
        reportTexts();
        writeDocument();
    }
    m_run.reset();
    closeFiles();
}

ActionWriteDocTable::Pin ActionWriteDocTable::readPin()
{
    while (!yieldRequested()) {
        const OneRow *const row = getNextRowFromInPin(m_run->pin);
        if (row == nullptr) {
            // Rows also end when the run fails; its table must not look complete.
            return runIsGood() && endTable() ? Pin::Ended : Pin::Failed;
        }
        if ((!m_run->text && !beginTable(*row)) || !putRow(*row)) {
            return Pin::Failed;
        }
    }
    return Pin::Interrupted;
}

bool ActionWriteDocTable::checkMarker()
{
    // The first table replaces every occurrence; a second one would have no place.
    const QByteArray marker = markerOf(tableOf(m_run->pin));
    const auto &earlier = m_run->markers;
    if (std::find(earlier.begin(), earlier.end(), marker) != earlier.end()) {
        return fail(
            u"ERROR : Marker '%1' on pin %2 already exists. All markers must be different.\n"_s.arg(
                QString::fromUtf8(marker), QString::number(m_run->pin + 1)));
    }
    m_run->markers.push_back(marker);
    return true;
}

std::vector<int> ActionWriteDocTable::widthsFor(const OneRow &columns)
{
    const QString pin = QString::number(m_run->pin + 1);
    const QString list = tableOf(m_run->pin).colWidths;
    // Invalid widths count here: they have a warning of their own.
    const qsizetype given = list.isEmpty() ? 0 : list.count(u',') + 1;
    if (given != columns.numberOfColumns()) {
        // Not a failure: the run continues.
        MainUI::addLog(
            MainUI::Error,
            u"Warning reading table on input pin %1: Number of columns of input table does not match number of widths given?"_s
                .arg(pin));
        logReason(u"colWidths gives %1 for %2"_s.arg(
            counted(given, u"width"_s), counted(columns.numberOfColumns(), u"column"_s)));
    }
    QStringList invalid;
    auto widths = document::columnWidths(list, columns.numberOfColumns(), &invalid);
    if (!invalid.isEmpty()) {
        warn(
            u"Warning: %1 of the table on input pin %2 %4 not used, first '%3': a width is a whole number from 1 to 31680.\n"_s
                .arg(counted(invalid.size(), u"width"_s), pin, invalid.front(),
                     isOrAre(invalid.size())));
    }
    return widths;
}

bool ActionWriteDocTable::beginTable(const OneRow &columns)
{
    if (!checkMarker()) {
        return false;
    }
    const DocTable table = tableOf(m_run->pin);
    document::TextRules rules;
    rules.breaksAtLineEnds = m_params.processCR;
    rules.breaksAtBackslashN = m_params.processLF;
    rules.closesText = m_params.strictMarkup;
    // The memory of one table at a time: those of earlier pins are in their spools.
    m_run->rows = 0;
    m_run->tables.emplace_back();
    m_run->text.emplace(table.styleID, widthsFor(columns), rules);
    m_run->text->begin();
    return !table.includeHeaders || putHeader(columns);
}

bool ActionWriteDocTable::putHeader(const OneRow &columns)
{
    // Names of columns are texts like those of the cells, with the same rules.
    m_run->text->beginRow();
    for (int i = 0; i < columns.numberOfColumns(); ++i) {
        if (!checkCounts(m_run->text->putCell(columns.colName(i)), columns.colName(i))) {
            return false;
        }
    }
    m_run->text->endRow();
    return true;
}

bool ActionWriteDocTable::checkCounts(const document::TextCounts &counts, const QString &column)
{
    const auto place = [&] {
        const QString pin = QString::number(m_run->pin + 1);
        return m_run->rows > 0 ? u"row %1, column '%2' of input pin %3"_s.arg(
                                     QString::number(m_run->rows), column, pin)
                               : u"the name of the column '%1' of input pin %2"_s.arg(column, pin);
    };
    m_run->innerBreaks.add(counts.innerBreaks, place);
    return counts.replaced == 0 ||
           fail(
               u"ERROR: %1 has %2 that XML does not allow: remove such characters from the data.\n"_s
                   .arg(place(), counted(counts.replaced, u"character"_s)));
}

bool ActionWriteDocTable::putRow(const OneRow &row)
{
    constexpr qsizetype kPiece = 65536;
    document::TableText &text = *m_run->text;
    // The text is moved in pieces, so that the memory does not grow with the table.
    // Counted first, because the place of a fault names the row.
    m_run->rows += 1;
    text.beginRow();
    for (int i = 0; i < row.numberOfColumns(); ++i) {
        const document::TextCounts counts = text.putCell(row.textView(i));
        if (counts.any() && !checkCounts(counts, row.colName(i))) {
            return false;
        }
    }
    text.endRow();
    return text.text().size() < kPiece || spool();
}

bool ActionWriteDocTable::spool()
{
    TableSpool &table = m_run->tables.back();
    const bool done = table.append(m_run->text->text());
    m_run->text->clear();
    return done ||
           fail(u"ERROR: cannot write the temporary file of the table on input pin %1.\n"_s.arg(
                    QString::number(m_run->pin + 1)),
                failureReason(QDir::tempPath(), FileUse::Write, table.error()));
}

bool ActionWriteDocTable::endTable()
{
    const QString pin = QString::number(m_run->pin + 1);
    // A pin without rows has columns all the same, and its table a header.
    if (!m_run->text && !beginTable(*getInputColumns(m_run->pin))) {
        return false;
    }
    if (m_run->rows == 0) {
        warn(u"WARNING reading table on input pin %1: Input table is empty?"_s.arg(pin));
    }
    m_run->text->end();
    const bool done = spool();
    m_run->text.reset();
    return done;
}

bool ActionWriteDocTable::writeDocument()
{
    QByteArray body;
    if (!openTemplate(expandFile(m_params.templateName))) {
        return false;
    }
    opc::PackageCopy copy(templateReader(), [this] { return runIsGood(); });
    // Parts that can be refused are read before the document is created.
    if (!editStyles(copy) || !readBody(copy, &body) || !openDocument(m_run->output)) {
        return false;
    }
    // Only a warning: the content is right, and a file can be renamed.
    if (hasOtherKind(m_run->output)) {
        warn(
            u"Warning: the name of the document '%1' does not end like that of its template: Office programs may refuse to open it.\n"_s
                .arg(m_run->output));
    }
    // The body is written last, piece by piece: its tables may be larger than memory.
    const QByteArray member = copy.reserve(document::bodyPart(copy));
    if (const auto copied = copy.copyMembers(document()); !copied) {
        return failPackage(copied.fault(), TemplateProblem::CannotCopyMember);
    }
    const auto places = findPlaces(body, m_run->markers);
    warnEach(missingMarkers(body, m_run->markers, places));
    reportLeft(body, places);
    reportOtherParts();
    reportPlaces(places);
    const auto opened = document().open(member);
    return (opened || failPackage(opened.fault(), TemplateProblem::CannotCopyMember)) &&
           writeBody(body, places) && commitDocument();
}

bool ActionWriteDocTable::editStyles(opc::PackageCopy &copy)
{
    QByteArray styles;
    const QByteArray part = document::stylesPart(copy);
    if (!readPart(copy, part, &styles)) {
        return false;
    }
    if (document::addTableGrid(&styles)) {
        copy.put(part, styles);
    }
    warnEach(missingStyles(styles));
    return true;
}

bool ActionWriteDocTable::readPart(opc::PackageCopy &copy, const QByteArray &part, QByteArray *text)
{
    auto read = copy.read(part);
    if (!read) {
        return failPackage(read.fault(), TemplateProblem::CannotReadPart);
    }
    *text = std::move(*read);
    return opc::isUtf8Text(*text) || failPackage({opc::Error::Encoding, QString::fromUtf8(part)},
                                                 TemplateProblem::CannotReadPart);
}

bool ActionWriteDocTable::readBody(opc::PackageCopy &copy, QByteArray *body)
{
    if (!readPart(copy, document::bodyPart(copy), body)) {
        return false;
    }
    *body = searchedBody(*body, m_run->markers);
    return true;
}

bool ActionWriteDocTable::writeBody(const QByteArray &body,
                                    const std::vector<document::TablePlace> &places)
{
    zip::PackageWriter &out = document().output();
    // A write that the user gave up is reported once, one that a stop ended not at all.
    const auto put = [&](QByteArrayView bytes) { return static_cast<bool>(out.write(bytes)); };
    const QByteArrayView text(body);
    qsizetype at = 0;
    for (const document::TablePlace &place : places) {
        const bool done = runIsGood() && put(text.sliced(at, place.copyEnd - at)) &&
                          put(place.before) && writeTable(place.table) && put(place.after);
        if (!done) {
            return runIsGood() && failWith(TemplateProblem::CannotWrite, {}, documentReason());
        }
        at = place.resume;
    }
    return (put(text.sliced(at)) && document().close()) ||
           failWith(TemplateProblem::CannotWrite, {}, documentReason());
}

bool ActionWriteDocTable::writeTable(int table)
{
    TableSpool &spool = m_run->tables[static_cast<size_t>(table)];
    zip::PackageWriter &out = document().output();
    // A failed write is reported by the caller, a failed read of the spool here.
    const bool done =
        spool.read([&](QByteArrayView piece) { return runIsGood() && out.write(piece); });
    return done || !spool.error() ||
           fail(u"ERROR: cannot read the temporary file of the table on input pin %1.\n"_s.arg(
                    QString::number(table + 1)),
                failureReason(QDir::tempPath(), FileUse::Read, spool.error()));
}

} // namespace corvanta
