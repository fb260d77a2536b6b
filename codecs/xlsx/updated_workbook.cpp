// The members of a workbook that an update touches (ECMA-376 part 1, SpreadsheetML). Names are
// those of a usual workbook; the relationships determine the real ones.
//
//   [Content_Types].xml                     written first, or last if the rows may continue in
//                                           further sheets; declares new sheets and a styles part
//   all other members                       copied
//   xl/styles.xml                           two more cell formats, and those of MoreFormats
//                                           and SheetLook
//   xl/worksheets/sheetN.xml                new, or split at the first new row
//   xl/workbook.xml                         new sheet, defined name, recalculation
//   xl/_rels/workbook.xml.rels              new sheet or styles part; calculation chain removed
//   xl/worksheets/_rels/sheetN.xml.rels     new addresses of hyperlinks, or copied
#include "codecs/xlsx/updated_workbook.h"

#include "codecs/xlsx/read/number_styles.h"
#include "codecs/xlsx/sheet_tail.h"
#include "codecs/xlsx/styles_part.h"

#include <algorithm>

namespace corvanta::xlsx {

using opc::Error;

namespace {

constexpr char kContentTypeBase[] = "application/vnd.openxmlformats-officedocument.spreadsheetml.";
/// Day 0 of workbooks that count their days from 1904.
constexpr int kSerialOf1904 = 1462;

} // namespace

Result<std::unique_ptr<UpdatedWorkbook>, Error>
UpdatedWorkbook::open(zip::PackageReader &source, std::function<bool()> isRunning)
{
    std::unique_ptr<UpdatedWorkbook> update(new UpdatedWorkbook(source, std::move(isRunning)));
    if (const auto read = update->readParts(); !read) {
        return read.fault();
    }
    return update;
}

Result<void, Error> UpdatedWorkbook::readParts()
{
    m_workbookPart = m_copy.mainPart(kWorkbookPart);
    auto text = m_copy.read(m_workbookPart);
    if (!text) {
        return text.fault();
    }
    m_workbookText = std::move(*text);
    auto relationships = m_copy.readRelationships(m_workbookPart);
    if (!relationships) {
        return relationships.fault();
    }
    m_relationships = std::move(*relationships);
    const auto types = m_copy.contentTypes();
    if (!types) {
        return types.fault();
    }
    m_types = *types;
    auto workbook = readWorkbook(m_workbookText);
    if (!workbook) {
        return Fault<Error>{workbook.fault().code, QString::fromUtf8(m_workbookPart)};
    }
    m_workbook = std::move(*workbook);
    return {};
}

/// A part name for a new sheet that nothing in the package uses, refers to or declares.
QByteArray UpdatedWorkbook::freeSheetPart() const
{
    const QByteArray prefix = opc::folderOf(m_workbookPart) + "worksheets/sheet";
    std::vector<QByteArray> mentioned = m_types->parts();
    for (const opc::Relationship &one : m_relationships.entries()) {
        mentioned.push_back(opc::resolvedTarget(m_workbookPart, one.target));
    }
    const quint64 highest = std::max(m_copy.names().highestNumber(prefix),
                                     opc::MemberNames(mentioned).highestNumber(prefix));
    return prefix + QByteArray::number(highest + 1) + ".xml";
}

/// Returns the id of the new relationship.
QByteArray UpdatedWorkbook::addRelationship(const char *kind, const QByteArray &part)
{
    return m_relationships.addPart(opc::relationshipType(m_workbook.family.relationships, kind),
                                   opc::targetOf(m_workbookPart, part));
}

void UpdatedWorkbook::addSheet(const QString &name)
{
    m_sheetName = name;
    m_sheetPart = freeSheetPart();
    const SheetEntry entry{name, m_workbook.freeSheetId(),
                           addRelationship("worksheet", m_sheetPart)};
    m_addedSheets.push_back(entry);
    m_workbook.sheets.push_back(entry);
    m_types->declarePart(m_sheetPart, kContentTypeBase + QByteArray("worksheet+xml"));
}

/// The relationship to the part of a sheet; null if there is none.
const opc::Relationship *UpdatedWorkbook::relationshipOf(const SheetEntry &sheet) const
{
    const auto &all = m_relationships.entries();
    const auto found = std::find_if(all.begin(), all.end(), [&](const opc::Relationship &one) {
        return one.id == sheet.relationshipId && !one.isExternal;
    });
    return found == all.end() ? nullptr : &*found;
}

QString UpdatedWorkbook::sheetKind(size_t index) const
{
    const opc::Relationship *const found = relationshipOf(m_workbook.sheets[index]);
    return found == nullptr ? QString() : found->type.section(u'/', -1);
}

Result<void, Error> UpdatedWorkbook::changeSheet(size_t index, quint64 startRow1)
{
    const SheetEntry &sheet = m_workbook.sheets[index];
    const opc::Relationship *const found = relationshipOf(sheet);
    if (found == nullptr) {
        return Fault<Error>{Error::Unexpected};
    }
    const QByteArray part = opc::resolvedTarget(m_workbookPart, found->target);
    const auto member = m_copy.names().find(part);
    if (!member) {
        return Fault<Error>{Error::NoMember, QString::fromUtf8(part)};
    }
    // The name as stored: the relationships of the sheet then have the same spelling.
    m_sheetName = sheet.name;
    m_sheetPart = *member;
    m_splitter.emplace(startRow1);
    return readSheetRelationships();
}

/// The part of the sheet's relationships. It has the spelling of the sheet's member.
QByteArray UpdatedWorkbook::sheetRelationshipPart() const
{
    return opc::relationshipPartOf(QByteArray(m_sheetPart).replace('\\', '/'));
}

Result<void, Error> UpdatedWorkbook::readSheetRelationships()
{
    if (!m_copy.names().find(sheetRelationshipPart())) {
        return {};
    }
    auto relationships = m_copy.readRelationships(QByteArray(m_sheetPart).replace('\\', '/'));
    if (!relationships) {
        return relationships.fault();
    }
    m_sheetRelationships = std::move(*relationships);
    m_takenLinkIds = std::max<quint64>(m_sheetRelationships.entries().size(),
                                       m_sheetRelationships.highestIdNumber());
    readTables();
    return {};
}

/// The table that a relationship of the sheet leads to.
Result<Table, Error> UpdatedWorkbook::readTableOf(const opc::Relationship &one)
{
    const QByteArray sheetPart = QByteArray(m_sheetPart).replace('\\', '/');
    const auto text = m_copy.read(opc::resolvedTarget(sheetPart, one.target));
    return text ? readTable(*text) : Result<Table, Error>(text.fault());
}

/// A table that cannot be read is skipped: its part is copied unchanged, as it is.
void UpdatedWorkbook::readTables()
{
    for (const opc::Relationship &one : m_sheetRelationships.entries()) {
        if (!opc::isToPart(one, "table")) {
            continue;
        }
        if (auto table = readTableOf(one)) {
            m_tables.push_back(std::move(*table));
        }
    }
}

UpdatedWorkbook::CellFormats UpdatedWorkbook::addCellFormats(int dateFormat,
                                                             const MoreFormats &more)
{
    const opc::Relationship *const relationship = m_relationships.find("styles");
    if (relationship == nullptr) {
        const QByteArray part = opc::folderOf(m_workbookPart) + "styles.xml";
        if (!m_copy.names().find(part)) {
            addRelationship("styles", part);
        }
        return changeStyles(part, dateFormat, more);
    }
    return changeStyles(opc::resolvedTarget(m_workbookPart, relationship->target), dateFormat,
                        more);
}

UpdatedWorkbook::CellFormats UpdatedWorkbook::changeStyles(const QByteArray &part, int dateFormat,
                                                           const MoreFormats &more)
{
    if (!m_copy.names().find(part)) {
        // Cells of the formats 1 and 2 need a part that has them.
        m_styles = newStyles(dateFormat, {});
        m_stylesPart = part;
        m_copy.put(part, m_styles);
        m_types->declarePart(part, kContentTypeBase + QByteArray("styles+xml"));
        return CellFormats::NotAdded;
    }
    const auto text = m_copy.read(part);
    auto changed = text ? changedStyles(*text, dateFormatAt(dateFormat))
                        : Result<StylesChange, Error>(text.fault());
    if (!changed) {
        return CellFormats::NotAdded;
    }
    m_dateStyle = changed->dateStyle;
    m_linkStyle = changed->hyperlinkStyle;
    addMoreFormats(more, &changed->text);
    if (m_rowStyles) {
        m_forms = readNumberForms(changed->text);
    }
    m_styles = changed->text;
    m_stylesPart = part;
    m_copy.put(part, m_styles);
    return changed->hadNoCellFormats ? CellFormats::AddedTable : CellFormats::Added;
}

/// A format that cannot be added leaves its cells with that of dates, which shows less.
void UpdatedWorkbook::addMoreFormats(const MoreFormats &more, QByteArray *text)
{
    constexpr int kDay = 0;
    constexpr int kDateTime = 2;
    constexpr int kTime = 11;
    const auto add = [text](int format, quint64 otherwise) {
        const auto added = addDateStyle(text, dateFormatAt(format));
        return added ? *added : otherwise;
    };
    if (more.dateTimes) {
        m_dateTimeStyle = add(kDateTime, m_dateStyle);
        m_dateTimeDayStyle = add(kDay, m_dateStyle);
    }
    if (more.times) {
        m_timeStyle = add(kTime, m_dateStyle);
    }
}

void UpdatedWorkbook::setCellFormats(sheet::SheetOptions *options) const
{
    options->dateStyle = m_dateStyle;
    options->dateTimeStyle = m_dateTimeStyle;
    options->dateTimeDayStyle = m_dateTimeDayStyle;
    options->timeStyle = m_timeStyle;
    options->linkStyle = m_linkStyle;
    options->firstDay = m_workbook.has1904Dates ? kSerialOf1904 : 0;
    setLookStyles(options);
}

Result<void, Error> UpdatedWorkbook::begin(opc::MemberWriter &output)
{
    m_output = &output;
    // A changed sheet gets the look only where it continues in a new one.
    const bool usesLook = isNewSheet() || m_look.mayContinue;
    if (usesLook && !m_stylesPart.isEmpty() && m_look.needsStyles() && addLookTo(&m_styles)) {
        m_copy.put(m_stylesPart, m_styles);
    }
    if (m_look.mayContinue) {
        m_copy.reserve(opc::kContentTypesPart); // written when all sheets are known
    }
    m_copy.reserve(m_workbookPart);
    m_copy.reserve(opc::relationshipPartOf(m_workbookPart));
    m_copy.reserve(sheetRelationshipPart());
    const QByteArray sheet = m_copy.reserve(m_sheetPart);
    const auto copied = m_copy.copyMembers(output);
    return copied ? output.open(sheet) : copied;
}

Result<void, Error> UpdatedWorkbook::openSheet(sheet::SheetWriter &sheet)
{
    if (!m_splitter) {
        return put(sheet, newSheetHead(m_workbook.family, m_look));
    }
    const auto putHead = [&] {
        const QByteArray head = m_splitter->takeHead();
        if (m_rowStyles) {
            m_rowStyles->push(head, m_splitter->rowStarts());
        }
        return put(sheet, head);
    };
    const auto take = [&](QByteArrayView piece) -> Result<void, Error> {
        const auto split = m_splitter->push(piece);
        return split ? putHead() : split;
    };
    auto done = m_copy.readInPieces(m_sheetPart, take);
    if (!done) {
        return done;
    }
    if (const auto finished = m_splitter->finish(); !finished) {
        return Fault<Error>{finished.fault().code, QString::fromUtf8(m_sheetPart)};
    }
    sheet.setRow(static_cast<qint64>(m_splitter->firstRow1()));
    done = putHead();
    if (m_rowStyles && !m_splitter->dropsRows()) {
        sheet.setStyles(stylesFor(sheet));
    }
    return done;
}

namespace {

bool isDate(sheet::Column::Kind kind)
{
    return kind == sheet::Column::Kind::Date || kind == sheet::Column::Kind::DateTime ||
           kind == sheet::Column::Kind::Time;
}

} // namespace

std::vector<std::optional<quint64>>
UpdatedWorkbook::stylesFor(const sheet::SheetWriter &sheet) const
{
    auto styles = m_rowStyles->styles();
    styles.resize(sheet.columns().size());
    for (size_t i = 0; i < styles.size(); ++i) {
        const quint64 style = styles[i].value_or(0);
        const bool showsDates =
            style < m_forms.size() && m_forms[style] != sheet::NumberForm::General;
        if (isDate(sheet.columns()[i].kind) && !showsDates) {
            styles[i].reset();
        }
    }
    return styles;
}

SheetConflicts UpdatedWorkbook::conflicts(const WrittenCells &written) const
{
    SheetConflicts found;
    if (!m_splitter) {
        return found;
    }
    for (const Table &table : m_tables) {
        if (losesHeader(table, written)) {
            found.tables << table.name;
        } else if (const qint64 rows = rowsBelow(table, written); rows > 0) {
            found.rowsBelow.push_back({table.name, table.range.lastRow + 1, rows});
        }
    }
    auto last = static_cast<qint64>(m_splitter->lastRowWithCells());
    for (const CellRange &merged : m_splitter->tailFacts().mergedRanges) {
        if (hidesCells(merged, written)) {
            found.mergedRanges.push_back(merged);
        }
        // The value of a merged cell is in its first row.
        last = merged.firstRow <= last ? std::max(last, merged.lastRow) : last;
    }
    const qint64 above = written.range.firstRow - 1;
    found.emptyRows = removesOlderRows() ? 0 : std::max<qint64>(above - last, 0);
    return found;
}

Result<void, Error> UpdatedWorkbook::finishSheet(sheet::SheetWriter &sheet)
{
    const Family &family = m_workbook.family;
    if (!m_splitter) {
        // In a strict workbook this makes the list of links declare the namespace of their ids.
        return putTail(sheet, tailOf(sheet), newSheetRoot(kTransitional), family, m_takenLinkIds);
    }
    const QByteArray &tail = m_splitter->tail();
    m_takenLinkIds = std::max(m_takenLinkIds, m_splitter->tailFacts().highestUsedId);
    return putTail(sheet, tail, m_splitter->rootTag(), family, m_takenLinkIds);
}

Result<void, Error> UpdatedWorkbook::writeSheetRelationships(const sheet::SheetWriter &sheet)
{
    const QByteArray part = sheetRelationshipPart();
    if (sheet.urls().isEmpty()) {
        // A new sheet must not get relationships that the package has for a sheet of its name.
        return m_splitter ? m_copy.copyReserved(*m_output, part) : Result<void, Error>();
    }
    addAddresses(&m_sheetRelationships, sheet, m_workbook.family, m_takenLinkIds);
    return m_output->write(m_copy.memberOf(part), m_sheetRelationships.text());
}

/// Remove the relationship to a chain that lists cells which no longer contain a formula:
/// spreadsheet programs report it as damage. Without the relationship they create a new chain.
void UpdatedWorkbook::removeCalculationChain()
{
    const opc::Relationship *const chain = m_relationships.find("calcChain");
    if (chain != nullptr && m_splitter && m_splitter->hasDroppedFormula()) {
        m_relationships.remove(chain->id);
    }
}

QStringList UpdatedWorkbook::sheetNames() const
{
    return m_workbook.sheetNames();
}

/// What the update knows of a changed sheet does not apply to the new one.
Result<void, Error> UpdatedWorkbook::nextSheet(const sheet::SheetWriter &sheet, const QString &name)
{
    removeCalculationChain();
    const auto done = writeSheetRelationships(sheet);
    m_splitter.reset();
    m_rowStyles.reset();
    m_tables.clear();
    m_sheetRelationships = {};
    m_takenLinkIds = 0;
    addSheet(name);
    return done ? m_output->open(m_sheetPart) : done;
}

Result<void, Error> UpdatedWorkbook::finish(const sheet::SheetWriter &sheet, const WorkbookEnd &end)
{
    removeCalculationChain();
    const auto workbook =
        changedWorkbook(m_workbookText, {m_addedSheets, definedNames(end), end.recalculate});
    if (!workbook) {
        return workbook.fault();
    }
    auto done = m_output->write(m_copy.memberOf(m_workbookPart), *workbook);
    if (done) {
        done = m_output->write(m_copy.memberOf(opc::relationshipPartOf(m_workbookPart)),
                               m_relationships.text());
    }
    done = done ? writeSheetRelationships(sheet) : done;
    if (done && m_look.mayContinue) {
        done = m_output->write(m_copy.memberOf(opc::kContentTypesPart), m_types->text());
    }
    return done ? m_output->finish() : done;
}

} // namespace corvanta::xlsx
