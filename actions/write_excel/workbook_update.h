// writers/workbook_update.h
// An existing workbook on its way into a new package: a few parts are changed as text, all others
// are copied as they are.
//
// Order of the calls: open, addSheet or changeSheet, changeStyles, copyMembers, openSheet, the
// rows, finishSheet, finishWorkbook. Nothing is logged here. What is written:
// docs/formats/xlsx-update.md.
#pragma once
#include "actions/write_excel/sheet_writer.h"
#include "codecs/opc/package_parts.h"
#include "codecs/xlsx/sheet_splitter.h"
#include "codecs/xlsx/styles_part.h"
#include "codecs/xlsx/workbook_part.h"
#include "io/package_file/package_file.h"

#include <functional>
#include <memory>
#include <set>

namespace corvanta {

/// Threads: one at a time.
class WorkbookUpdate
{
public:
    /// The fault's detail is the member's name, where one is meant.
    enum class Problem : quint8 {
        NotUnderstood, ///< no package, or parts that are not as expected
        Damaged,       ///< a member that cannot be read whole
        NoMember,      ///< a member that is missing or cannot be opened
        NotAdded,      ///< a member that cannot be put into the new package
        Write,
        Stopped, ///< the run has ended meanwhile
    };
    /// What the update asks on its way.
    struct Asked
    {
        std::function<bool()> retry;   ///< after a failed write: shall it be tried again?
        std::function<bool()> isGoing; ///< does the run still go on?
    };

    static Result<std::unique_ptr<WorkbookUpdate>, Problem> open(GlobalParameters *parameters,
                                                                 const QString &file, Asked asked);

    const xlsx::Workbook &workbook() const { return m_workbook; }

    /// Rows go into a new sheet behind the others.
    void addSheet(const QString &name);
    /// Rows go into sheet `index` (from 0), from row `startRow1` on or, for SheetSplitter::kAppend,
    /// behind its last row.
    Result<void, Problem> changeSheet(size_t index, quint64 startRow1);
    const QString &sheetName() const { return m_sheetName; }

    enum class Styles : quint8 {
        Added,
        AddedTable, ///< the part had no table of cell formats
        NotAdded,   ///< no part, which is made, or one that is not understood
    };
    /// Add the formats of date and hyperlink cells; `newPart` is the part for a workbook without
    /// one.
    Styles changeStyles(const xlsx::DateFormat &dateFormat, const QByteArray &newPart);
    quint64 dateStyle() const { return m_dateStyle; }
    quint64 hyperlinkStyle() const { return m_hyperlinkStyle; }

    Result<void, Problem> copyMembers(zip::PackageWriter &output);
    /// Start the sheet's member, up to where the rows go.
    Result<void, Problem> openSheet(zip::PackageWriter &output, SheetWriter &sheet);
    Result<void, Problem> finishSheet(zip::PackageWriter &output, SheetWriter &sheet);
    Result<void, Problem> finishWorkbook(zip::PackageWriter &output, const SheetWriter &sheet,
                                         xlsx::WorkbookChange change);

private:
    explicit WorkbookUpdate(Asked asked)
        : m_asked(std::move(asked))
    {
    }

    Result<void, Problem> readParts();
    Result<QByteArray, Problem> readPart(const QByteArray &partName);
    const xlsx::Relationship *relationshipOfType(const char *type) const;
    QByteArray addRelationship(const char *type, const QByteArray &part);
    void declarePart(const QByteArray &part, const char *contentType);
    QByteArray freeSheetPart() const;
    Result<void, Problem> writeMember(zip::PackageWriter &output, const QByteArray &name,
                                      const QByteArray &content);
    Result<void, Problem> copyMember(zip::PackageWriter &output, const zip::Member &member);
    Result<void, Problem> streamSheet(SheetWriter &sheet);
    Result<void, Problem> writeSheetRelationships(zip::PackageWriter &output,
                                                  const SheetWriter &sheet);
    template <class F> Result<void, Problem> call(F operation, const QByteArray &member);

    Asked m_asked;
    std::unique_ptr<PackageInput> m_input;
    xlsx::MemberNames m_members;

    QByteArray m_workbookPart; // with "/"
    // Member names as the package stores them, and the texts to be changed.
    QByteArray m_workbookName;
    QByteArray m_workbookText;
    QByteArray m_relationshipsName;
    QByteArray m_relationshipsText;
    QByteArray m_typesName;
    QByteArray m_typesText;
    QByteArray m_stylesName;
    QByteArray m_stylesText; // empty: not changed

    xlsx::Workbook m_workbook;
    std::vector<xlsx::Relationship> m_relationships;
    std::vector<xlsx::Relationship> m_addedRelationships;

    QString m_sheetName;
    QByteArray m_sheetMember;
    QByteArray m_sheetRelationshipsName;
    QByteArray m_sheetRelationshipsText; // empty: the sheet has none
    std::optional<xlsx::SheetEntry> m_addedSheet;
    std::optional<xlsx::SheetSplitter> m_splitter; // of a changed sheet
    quint64 m_firstFreeLink = 0;                   // relationship numbers up to here are taken
    quint64 m_dateStyle = 1;
    quint64 m_hyperlinkStyle = 2;
};

} // namespace corvanta
