#include "actions/write_excel/workbook_update.h"

#include "codecs/sheet/cell_text.h"
#include "codecs/sheet/new_workbook.h"

#include <algorithm>

namespace corvanta {

namespace {

using Problem = WorkbookUpdate::Problem;

constexpr char kTypesPart[] = "[Content_Types].xml";
constexpr char kContentTypeBase[] = "application/vnd.openxmlformats-officedocument.spreadsheetml.";
constexpr qint64 kPieceBytes = 256 * 1024;

Fault<Problem> notUnderstood()
{
    return {Problem::NotUnderstood};
}

/// What a fault of reading or copying `member` means.
Fault<Problem> memberFault(zip::Error error, const QByteArray &member)
{
    const QString name = QString::fromUtf8(member);
    switch (error) {
    case zip::Error::ReadFailed:
    case zip::Error::BadData:
    case zip::Error::BadSize:
    case zip::Error::BadChecksum:
    case zip::Error::TooLarge:
        return {Problem::Damaged, name};
    case zip::Error::NoMember:
    case zip::Error::Encrypted:
    case zip::Error::UnknownMethod:
    case zip::Error::BadLocalHeader:
        return {Problem::NoMember, name};
    case zip::Error::BadName:
    case zip::Error::NameTaken:
        return {Problem::NotAdded, name};
    case zip::Error::NotAPackage:
    case zip::Error::BadDirectory:
        return {Problem::NotUnderstood, name};
    case zip::Error::WriteFailed:
    case zip::Error::Stopped:
    case zip::Error::NoMemory:
        break;
    }
    return {Problem::Write, name};
}

bool isOfType(const xlsx::Relationship &relationship, const char *type)
{
    return relationship.type.endsWith(QLatin1Char('/') + QLatin1String(type)) &&
           !relationship.isExternal;
}

QByteArray folderOf(const QByteArray &partName)
{
    return partName.first(partName.lastIndexOf('/') + 1);
}

QByteArray cellName(const SheetWriter::LinkUse &use)
{
    return sheet::columnLetters(use.column) + QByteArray::number(use.row);
}

} // namespace

/// Repeat an operation of the new package while its writes fail and the user wants to go on.
template <class F> Result<void, Problem> WorkbookUpdate::call(F operation, const QByteArray &member)
{
    for (;;) {
        const Result<void, zip::Error> done = operation();
        if (done) {
            return {};
        }
        if (done.fault().code != zip::Error::WriteFailed || !m_asked.retry()) {
            return memberFault(done.fault().code, member);
        }
    }
}

Result<std::unique_ptr<WorkbookUpdate>, Problem>
WorkbookUpdate::open(GlobalParameters *parameters, const QString &file, Asked asked)
{
    std::unique_ptr<WorkbookUpdate> update(new WorkbookUpdate(std::move(asked)));
    auto input = PackageInput::open(parameters, file);
    if (!input) {
        return notUnderstood();
    }
    update->m_input = std::move(*input);
    if (const auto read = update->readParts(); !read) {
        return read.fault();
    }
    return update;
}

Result<QByteArray, Problem> WorkbookUpdate::readPart(const QByteArray &partName)
{
    const auto name = m_members.find(partName);
    if (!name) {
        return Fault{Problem::NoMember, QString::fromUtf8(partName)};
    }
    auto content = m_input->reader().readWhole(*name);
    if (!content) {
        return memberFault(content.fault().code, *name);
    }
    return std::move(*content);
}

Result<void, Problem> WorkbookUpdate::readParts()
{
    std::vector<QByteArray> names;
    for (const zip::Member &member : m_input->reader().members()) {
        names.push_back(member.name);
    }
    m_members = xlsx::MemberNames(names);

    m_workbookPart = sheet::kWorkbookMember;
    if (const auto text = readPart("_rels/.rels")) {
        if (const auto relationships = xlsx::readRelationships(*text)) {
            for (const xlsx::Relationship &one : *relationships) {
                m_workbookPart = isOfType(one, "officeDocument")
                                     ? xlsx::resolvedTarget({}, one.target)
                                     : m_workbookPart;
            }
        }
    }
    struct Part
    {
        QByteArray name;
        QByteArray *foundName;
        QByteArray *text;
    };
    for (const Part &part : {Part{m_workbookPart, &m_workbookName, &m_workbookText},
                             Part{xlsx::relationshipPartOf(m_workbookPart), &m_relationshipsName,
                                  &m_relationshipsText},
                             Part{kTypesPart, &m_typesName, &m_typesText}}) {
        auto text = readPart(part.name);
        if (!text) {
            return text.fault();
        }
        *part.foundName = *m_members.find(part.name);
        *part.text = std::move(*text);
    }
    auto workbook = xlsx::readWorkbook(m_workbookText);
    auto relationships = xlsx::readRelationships(m_relationshipsText);
    if (!workbook || !relationships || !xlsx::readOverriddenParts(m_typesText)) {
        return notUnderstood();
    }
    m_workbook = std::move(*workbook);
    m_relationships = std::move(*relationships);
    return {};
}

const xlsx::Relationship *WorkbookUpdate::relationshipOfType(const char *type) const
{
    const auto found =
        std::find_if(m_relationships.begin(), m_relationships.end(),
                     [&](const xlsx::Relationship &one) { return isOfType(one, type); });
    return found == m_relationships.end() ? nullptr : &*found;
}

/// A part name for a new sheet that nothing in the package uses, refers to or declares.
QByteArray WorkbookUpdate::freeSheetPart() const
{
    const QByteArray prefix = folderOf(m_workbookPart) + "worksheets/sheet";
    std::vector<QByteArray> mentioned = *xlsx::readOverriddenParts(m_typesText);
    for (const xlsx::Relationship &one : m_relationships) {
        mentioned.push_back(xlsx::resolvedTarget(m_workbookPart, one.target));
    }
    const quint64 highest = std::max(m_members.highestNumber(prefix),
                                     xlsx::MemberNames(mentioned).highestNumber(prefix));
    return prefix + QByteArray::number(highest + 1) + ".xml";
}

/// Returns the new relationship's id.
QByteArray WorkbookUpdate::addRelationship(const char *type, const QByteArray &part)
{
    const quint64 taken = xlsx::highestIdNumber(m_relationships) + m_addedRelationships.size();
    const QByteArray id = "rId" + QByteArray::number(taken + 1);
    const QByteArray folder = folderOf(m_workbookPart);
    const QByteArray target = part.startsWith(folder) ? part.sliced(folder.size()) : '/' + part;
    m_addedRelationships.push_back(
        {id, xlsx::relationshipType(m_workbook.family, type), QString::fromUtf8(target)});
    return id;
}

void WorkbookUpdate::declarePart(const QByteArray &part, const char *contentType)
{
    const std::vector<QByteArray> declared = *xlsx::readOverriddenParts(m_typesText);
    if (std::find(declared.begin(), declared.end(), part) == declared.end()) {
        m_typesText =
            *xlsx::withContentType(m_typesText, part, kContentTypeBase + QByteArray(contentType));
    }
}

void WorkbookUpdate::addSheet(const QString &name)
{
    m_sheetName = name;
    m_sheetMember = freeSheetPart();
    m_sheetRelationshipsName = xlsx::relationshipPartOf(m_sheetMember);
    m_addedSheet = xlsx::SheetEntry{name, m_workbook.freeSheetId(),
                                    addRelationship("worksheet", m_sheetMember)};
    declarePart(m_sheetMember, "worksheet+xml");
}

Result<void, Problem> WorkbookUpdate::changeSheet(size_t index, quint64 startRow1)
{
    const xlsx::SheetEntry &sheet = m_workbook.sheets[index];
    const auto found =
        std::find_if(m_relationships.begin(), m_relationships.end(), [&](const auto &one) {
            return one.id == sheet.relationshipId && !one.isExternal;
        });
    if (found == m_relationships.end()) {
        return notUnderstood();
    }
    const QByteArray part = xlsx::resolvedTarget(m_workbookPart, found->target);
    const auto member = m_members.find(part);
    if (!member) {
        return Fault{Problem::NoMember, QString::fromUtf8(part)};
    }
    m_sheetName = sheet.name;
    m_sheetMember = *member;
    m_splitter.emplace(startRow1);
    const QByteArray relationshipsPart =
        xlsx::relationshipPartOf(QByteArray(*member).replace('\\', '/'));
    const auto relationshipsName = m_members.find(relationshipsPart);
    m_sheetRelationshipsName = relationshipsName.value_or(relationshipsPart);
    if (!relationshipsName) {
        return {};
    }
    auto text = readPart(*relationshipsName);
    if (!text) {
        return text.fault();
    }
    const auto relationships = xlsx::readRelationships(*text);
    if (!relationships) {
        return notUnderstood();
    }
    m_sheetRelationshipsText = std::move(*text);
    m_firstFreeLink =
        std::max<quint64>(relationships->size(), xlsx::highestIdNumber(*relationships));
    return {};
}

WorkbookUpdate::Styles WorkbookUpdate::changeStyles(const xlsx::DateFormat &dateFormat,
                                                    const QByteArray &newPart)
{
    const xlsx::Relationship *const relationship = relationshipOfType("styles");
    const QByteArray part = relationship != nullptr
                                ? xlsx::resolvedTarget(m_workbookPart, relationship->target)
                                : folderOf(m_workbookPart) + "styles.xml";
    const auto member = m_members.find(part);
    if (!member) {
        // Cells of the styles 1 and 2 need a part that has them.
        m_stylesName = part;
        m_stylesText = newPart;
        declarePart(part, "styles+xml");
        if (relationship == nullptr) {
            addRelationship("styles", part);
        }
        return Styles::NotAdded;
    }
    const auto text = m_input->reader().readWhole(*member);
    const auto changed =
        text ? xlsx::changedStyles(*text, dateFormat)
             : Result<xlsx::StylesChange, xlsx::Error>(Fault<xlsx::Error>{xlsx::Error::Malformed});
    if (!changed) {
        return Styles::NotAdded;
    }
    m_stylesName = *member;
    m_stylesText = changed->text;
    m_dateStyle = changed->dateStyle;
    m_hyperlinkStyle = changed->hyperlinkStyle;
    return changed->hadNoCellFormats ? Styles::AddedTable : Styles::Added;
}

Result<void, Problem> WorkbookUpdate::writeMember(zip::PackageWriter &output,
                                                  const QByteArray &name, const QByteArray &content)
{
    auto done = call([&] { return output.openMember(name); }, name);
    if (done) {
        done = call([&] { return output.write(content); }, name);
    }
    return done ? call([&] { return output.closeMember(); }, name) : done;
}

Result<void, Problem> WorkbookUpdate::copyMember(zip::PackageWriter &output,
                                                 const zip::Member &member)
{
    return call([&] { return output.copyRaw(m_input->reader(), member); }, member.name);
}

Result<void, Problem> WorkbookUpdate::copyMembers(zip::PackageWriter &output)
{
    std::set<QByteArray> taken{m_typesName, m_workbookName, m_relationshipsName, m_sheetMember,
                               m_sheetRelationshipsName};
    if (!m_stylesText.isEmpty()) {
        taken.insert(m_stylesName);
    }
    auto done = writeMember(output, m_typesName, m_typesText);
    for (const zip::Member &member : m_input->reader().members()) {
        if (done && !m_asked.isGoing()) {
            done = Fault{Problem::Stopped};
        }
        // Of members of one name the first is the one that readers see.
        if (done && taken.insert(member.name).second) {
            done = copyMember(output, member);
        }
    }
    return done && !m_stylesText.isEmpty() ? writeMember(output, m_stylesName, m_stylesText) : done;
}

Result<void, Problem> WorkbookUpdate::openSheet(zip::PackageWriter &output, SheetWriter &sheet)
{
    if (const auto opened = call([&] { return output.openMember(m_sheetMember); }, m_sheetMember);
        !opened) {
        return opened.fault();
    }
    if (m_splitter) {
        return streamSheet(sheet);
    }
    QByteArray head = sheet::sheetHead();
    head.replace(xlsx::kTransitional.main, m_workbook.family.main);
    head.replace(xlsx::kTransitional.relationships, m_workbook.family.relationships);
    return sheet.put(head) == SheetWriter::Error::None ? Result<void, Problem>()
                                                       : Fault{Problem::Write};
}

Result<void, Problem> WorkbookUpdate::streamSheet(SheetWriter &sheet)
{
    auto stream = m_input->reader().openStream(m_sheetMember);
    if (!stream) {
        return memberFault(stream.fault().code, m_sheetMember);
    }
    std::vector<char> piece(kPieceBytes);
    qint64 got = 0;
    while ((got = (*stream)->read(piece.data(), kPieceBytes)) > 0) {
        if (!m_asked.isGoing()) {
            return Fault{Problem::Stopped};
        }
        if (!m_splitter->push({piece.data(), got})) {
            return notUnderstood();
        }
        if (sheet.put(m_splitter->takeHead()) != SheetWriter::Error::None) {
            return Fault{Problem::Write};
        }
    }
    if (got < 0) {
        return memberFault((*stream)->fault()->code, m_sheetMember);
    }
    if (!m_splitter->finish()) {
        return notUnderstood();
    }
    sheet.setRow(static_cast<qint64>(m_splitter->firstRow1()));
    return sheet.put(m_splitter->takeHead()) == SheetWriter::Error::None ? Result<void, Problem>()
                                                                         : Fault{Problem::Write};
}

Result<void, Problem> WorkbookUpdate::finishSheet(zip::PackageWriter &output, SheetWriter &sheet)
{
    QByteArray tail = sheet::sheetEndOfRows() + sheet::sheetTail();
    QByteArray rootTag = sheet::sheetHead().sliced(sheet::sheetHead().indexOf("<worksheet"));
    if (m_splitter) {
        tail = m_splitter->tail();
        rootTag = m_splitter->rootTag();
        m_firstFreeLink = std::max(m_firstFreeLink, *xlsx::highestUsedId(tail));
    }
    if (!sheet.linkUses().empty()) {
        std::vector<xlsx::HyperlinkUse> uses;
        for (const SheetWriter::LinkUse &use : sheet.linkUses()) {
            const quint64 number = m_firstFreeLink + static_cast<quint64>(use.number);
            uses.push_back({cellName(use), "rId" + QByteArray::number(number)});
        }
        auto linked = xlsx::withHyperlinks(tail, rootTag, m_workbook.family, uses);
        if (!linked) {
            return notUnderstood();
        }
        tail = std::move(*linked);
    }
    if (sheet.put(tail) != SheetWriter::Error::None) {
        return Fault{Problem::Write};
    }
    sheet.commit();
    return call([&] { return output.closeMember(); }, m_sheetMember);
}

Result<void, Problem> WorkbookUpdate::writeSheetRelationships(zip::PackageWriter &output,
                                                              const SheetWriter &sheet)
{
    if (sheet.urls().isEmpty()) {
        const zip::Member *const kept = m_sheetRelationshipsText.isEmpty()
                                            ? nullptr
                                            : m_input->reader().find(m_sheetRelationshipsName);
        return kept == nullptr ? Result<void, Problem>() : copyMember(output, *kept);
    }
    const auto links =
        xlsx::hyperlinkRelationships(sheet.urls(), m_workbook.family, m_firstFreeLink);
    const auto text = xlsx::changedRelationships(m_sheetRelationshipsText, links);
    return text ? writeMember(output, m_sheetRelationshipsName, *text)
                : Result<void, Problem>(notUnderstood());
}

Result<void, Problem> WorkbookUpdate::finishWorkbook(zip::PackageWriter &output,
                                                     const SheetWriter &sheet,
                                                     xlsx::WorkbookChange change)
{
    change.addedSheet = m_addedSheet;
    std::vector<QByteArray> removed;
    const xlsx::Relationship *const chain = relationshipOfType("calcChain");
    if (chain != nullptr && m_splitter && m_splitter->hasDroppedFormula()) {
        // The chain lists cells that hold no formula any more, which spreadsheet programs take for
        // damage; without the relationship they make a new one.
        removed.push_back(chain->id);
    }
    const auto workbook = xlsx::changedWorkbook(m_workbookText, change);
    const auto relationships =
        xlsx::changedRelationships(m_relationshipsText, m_addedRelationships, removed);
    if (!workbook || !relationships) {
        return notUnderstood();
    }
    auto done = writeMember(output, m_workbookName, *workbook);
    if (done) {
        done = writeMember(output, m_relationshipsName, *relationships);
    }
    if (done) {
        done = writeSheetRelationships(output, sheet);
    }
    return done ? call([&] { return output.close(); }, {}) : done;
}

} // namespace corvanta
