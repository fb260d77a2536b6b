// Reads handmade streams of every version, shared texts that are split at every place, and compound
// files with every kind of damage.
#include "base/bytes.h"
#include "codecs/xls/legacy_workbook.h"
#include "codecs/xls/records.h"
#include "tests/support/sweeps.h"

#include <QFile>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

using namespace corvanta;
using namespace corvanta::xls;
using namespace Qt::StringLiterals;
using sheet::CellKind;
using sheet::NumberForm;
using sheet::SheetProblem;
using sheet::WorkbookError;

namespace {

template <class T> QByteArray le(T value)
{
    QByteArray bytes(sizeof value, '\0');
    storeLE(value, bytes.data());
    return bytes;
}
QByteArray u16(int value)
{
    return le(static_cast<quint16>(value));
}
QByteArray record(int id, const QByteArray &data = {})
{
    return u16(id) + u16(static_cast<int>(data.size())) + data;
}
QByteArray cellHead(int row, int column, int xf = 0)
{
    return u16(row) + u16(column) + u16(xf);
}
QByteArray number(int row, int column, double value, int xf = 0)
{
    return record(kNumber, cellHead(row, column, xf) + le(value));
}
QByteArray formula(int row, int column, const QByteArray &result, int id = kFormula)
{
    return record(id, cellHead(row, column) + result + QByteArray(8, '\0'));
}
QByteArray bof(int id, int version, int type)
{
    return record(id, u16(version) + u16(type));
}
QByteArray text8(const QByteArray &latin1)
{
    return u16(static_cast<int>(latin1.size())) + '\0' + latin1;
}

/// A BIFF 8 workbook of one sheet; `version` 0x0500 makes it BIFF 5.
QByteArray book(const QByteArray &cells, const QByteArray &globals = {}, int version = 0x0600)
{
    const QByteArray name = version == 0x0600 ? QByteArray("\1\0S", 3) : QByteArray("\1S", 2);
    const auto head = [&](quint32 offset) {
        return bof(kBof, version, kGlobals) + globals +
               record(kBoundSheet, le(offset) + u16(0) + name) + record(kEof);
    };
    return head(static_cast<quint32>(head(0).size())) + bof(kBof, version, kWorksheetStream) +
           cells + record(kEof);
}

/// What a workbook holds, one line per cell: place, kind, form and value.
struct Content
{
    QStringList cells;
    QString fault;
    std::array<qint64, sheet::kSheetProblems> problems{};
    std::vector<qint64> hiddenRows;
    qint64 problem(SheetProblem which) const { return problems[static_cast<size_t>(which)]; }
};

QString textOf(const sheet::SheetRow &row, const sheet::SheetCell &cell)
{
    const bool isNumber = cell.kind == CellKind::Number || cell.kind == CellKind::Boolean;
    const QString value =
        isNumber ? QString::number(cell.number, 'g', 15)
                 : QString::fromUtf16(cell.text.data(), static_cast<qsizetype>(cell.text.size()));
    return QStringLiteral("%1,%2 %3%4 %5")
        .arg(QString::number(row.number), QString::number(cell.column),
             QStringLiteral("NTBE").mid(static_cast<int>(cell.kind), 1),
             cell.form == NumberForm::General ? QString()
                                              : QString::number(static_cast<int>(cell.form)),
             value);
}

void readSheet(LegacyWorkbook &workbook, size_t index, Content *content)
{
    auto rows = workbook.openSheet(index);
    if (!rows) {
        content->fault = rows.fault().detail;
        return;
    }
    sheet::SheetRow row;
    for (;;) {
        const auto found = (*rows)->next(&row);
        if (!found || !*found) {
            content->fault = found ? QString() : found.fault().detail;
            break;
        }
        for (const sheet::SheetCell &cell : row.cells) {
            content->cells << textOf(row, cell);
        }
        if (row.isHidden) {
            content->hiddenRows.push_back(row.number);
        }
    }
    for (size_t i = 0; i < content->problems.size(); ++i) {
        content->problems[i] += (*rows)->problems()[i].count();
    }
}

Content read(const QByteArray &bytes, qint64 piece = -1)
{
    Content content;
    MemorySource source(bytes, piece);
    auto workbook = LegacyWorkbook::open(source);
    if (!workbook) {
        content.fault =
            QString::number(static_cast<int>(workbook.fault().code)) + workbook.fault().detail;
        return content;
    }
    for (size_t i = 0; i < (*workbook)->sheets().size(); ++i) {
        readSheet(**workbook, i, &content);
    }
    return content;
}

/// The bytes of a table of shared texts, and where CONTINUE records can begin in it: their data
/// then begins with the bytes given.
struct Table
{
    QByteArray bytes;
    std::vector<std::pair<qsizetype, QByteArray>> splits;
    QStringList texts;

    void add(const QString &text, bool isWide, int runs, int phoneticBytes)
    {
        texts << text;
        put(u16(static_cast<int>(text.size())));
        put(QByteArray(1, static_cast<char>((isWide ? 1 : 0) | (runs > 0 ? 8 : 0) |
                                            (phoneticBytes > 0 ? 4 : 0))));
        put(runs > 0 ? u16(runs) : QByteArray());
        put(phoneticBytes > 0 ? le(static_cast<quint32>(phoneticBytes)) : QByteArray());
        for (const QChar c : text) {
            splits.emplace_back(bytes.size(), QByteArray(1, isWide ? '\1' : '\0'));
            bytes += isWide ? u16(c.unicode()) : QByteArray(1, static_cast<char>(c.unicode()));
        }
        put(QByteArray(runs * 4 + phoneticBytes, 'r'));
    }
    void put(const QByteArray &some)
    {
        for (qsizetype i = 0; i < some.size(); ++i) {
            splits.emplace_back(bytes.size() + i, QByteArray());
        }
        bytes += some;
    }
};

Table sampleTable()
{
    Table table;
    table.put(QByteArray(8, '\0'));
    table.add(QStringLiteral("plain"), false, 0, 0);
    table.add(QString(), false, 0, 0);
    table.add(QStringLiteral("wide €Ж"), true, 0, 0);
    table.add(QStringLiteral("rich é"), false, 3, 0);
    table.add(QStringLiteral("読み"), true, 1, 6);
    table.add(QStringLiteral("last"), true, 0, 2);
    return table;
}

QStringList sharedTexts(const QByteArray &records)
{
    MemorySource source(records);
    RecordReader reader(source);
    Record record;
    SharedTexts shared;
    const TextReader rules(Biff::V8, 0);
    if (reader.next(&record)) {
        shared.read(reader, record, rules);
    }
    QStringList texts;
    for (size_t i = 0; i < shared.size(); ++i) {
        texts << QString::fromUtf16(shared.at(i).data(),
                                    static_cast<qsizetype>(shared.at(i).size()));
    }
    return texts;
}

QByteArray sampleFile()
{
    QFile file(QStringLiteral(CORVANTA_SOURCE_DIR "/tests/graphs/read_excel_sheets/names/c.xls"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

TEST(SharedTexts, ContinueAtEveryPlace)
{
    const Table table = sampleTable();
    EXPECT_EQ(sharedTexts(record(kSst, table.bytes)), table.texts);
    for (size_t i = 0; i < table.splits.size(); ++i) {
        const auto &[at, flags] = table.splits[i];
        const QByteArray first = record(kSst, table.bytes.first(at));
        EXPECT_EQ(sharedTexts(first + record(kContinue, flags + table.bytes.sliced(at))),
                  table.texts)
            << at;
        // A second split, and a record without data between them.
        for (size_t k = i + 1; k < table.splits.size(); k += 5) {
            const auto &[end, endFlags] = table.splits[k];
            EXPECT_EQ(sharedTexts(first +
                                  record(kContinue, flags + table.bytes.sliced(at, end - at)) +
                                  record(kContinue) +
                                  record(kContinue, endFlags + table.bytes.sliced(end))),
                      table.texts)
                << at << ' ' << end;
        }
    }
    // A continued text may change its width.
    EXPECT_EQ(sharedTexts(record(kSst, QByteArray(8, '\0') + u16(3) + QByteArray("\0a", 2)) +
                          record(kContinue, '\1' + u16(0x20AC) + u16('c'))),
              QStringList{QStringLiteral("a€c")});
}

TEST(LegacyWorkbook, ReadsCellsOfBiff8)
{
    const QByteArray formats = record(kFormat, u16(164) + text8("[h]:mm")) +
                               record(kFormat, u16(165) + text8("d/m/yy h:mm")) +
                               record(kXf, u16(0) + u16(0)) + record(kXf, u16(0) + u16(14)) +
                               record(kXf, u16(0) + u16(164)) + record(kXf, u16(0) + u16(165)) +
                               record(kSst, QByteArray(8, '\0') + text8("shared"));
    const QByteArray rk = u16(0) + le(quint32(125 << 2 | 3)) + u16(1) + le(quint32(-4 << 2 | 2)) +
                          u16(0) + le(quint32(0x40590000)) + u16(0) + le(quint32(0x40590001));
    const auto special = [](int kind, int value) {
        return QByteArray(1, static_cast<char>(kind)) + '\0' + static_cast<char>(value) +
               QByteArray(3, '\0') + "\xFF\xFF";
    };
    const Content content = read(
        book(number(0, 0, 1.5) + number(0, 1, 2, 1) + number(0, 2, 3, 2) + number(0, 3, 4, 3) +
                 number(0, 4, 5, 99) + record(kMulRk, u16(1) + u16(2) + rk + u16(5)) +
                 record(kRk, cellHead(2, 0) + le(quint32(7 << 2 | 2))) +
                 record(kLabelSst, cellHead(3, 0) + le(quint32(0))) +
                 record(kLabelSst, cellHead(3, 1) + le(quint32(1))) +
                 record(kLabel, cellHead(3, 2) + text8("own \xE9")) +
                 record(kRString, cellHead(3, 3) + u16(2) + '\1' + u16(0x416) + u16('x') + u16(0)) +
                 record(0x0201, cellHead(3, 4)) +
                 record(kBoolErr, cellHead(4, 0) + QByteArray("\1\0", 2)) +
                 record(kBoolErr, cellHead(4, 1) + "\x2A\1") +
                 record(kBoolErr, cellHead(4, 2) + "\x55\1") + formula(5, 0, le(0.25)) +
                 formula(5, 1, special(0, 0)) + record(0x04BC, "shared formula") +
                 record(kString, text8("result")) + formula(5, 2, special(1, 1)) +
                 formula(5, 3, special(2, 7)) + formula(5, 4, special(3, 0)) +
                 formula(5, 5, special(0, 0)) + number(5, 6, 6) + bof(kBof, 0x0600, kChartStream) +
                 number(5, 7, 9) + record(kEof) + number(5, 8, 8),
             formats));
    EXPECT_EQ(
        content.cells,
        (QStringList{u"0,0 N 1.5"_s,  u"0,1 N1 2"_s,     u"0,2 N4 3"_s,     u"0,3 N3 4"_s,
                     u"0,4 N 5"_s,    u"1,2 N 1.25"_s,   u"1,3 N1 -4"_s,    u"1,4 N 100"_s,
                     u"1,5 N 1"_s,    u"2,0 N 7"_s,      u"3,0 T shared"_s, u"3,2 T own é"_s,
                     u"3,3 T Жx"_s,   u"4,0 B 1"_s,      u"4,1 E #N/A"_s,   u"4,2 E #ERROR!"_s,
                     u"5,0 N 0.25"_s, u"5,1 T result"_s, u"5,2 B 1"_s,      u"5,3 E #DIV/0!"_s,
                     u"5,4 T "_s,     u"5,6 N 6"_s,      u"5,8 N 8"_s}));
    EXPECT_EQ(content.problem(SheetProblem::NoSuchText), 1);
    EXPECT_EQ(content.problem(SheetProblem::BadValue), 1);
    EXPECT_EQ(content.problem(SheetProblem::NoResult), 1);
    EXPECT_EQ(content.fault, QString());
}

TEST(LegacyWorkbook, ReadsOlderVersions)
{
    // BIFF 2: cells of their own, formats in the cell or through XF and IXFE records.
    const auto head2 = [](int row, int column, int xf, int format) {
        return u16(row) + u16(column) + static_cast<char>(xf) + static_cast<char>(format) + '\0';
    };
    const QByteArray text2 =
        record(kLabel2, head2(1, 0, 0, 0) + "\3a\x80z") +
        record(kFormula, head2(1, 1, 0, 0) + QByteArray("\0\0\0\0\0\0\xFF\xFF", 8)) +
        record(kString2, "\2ok") + record(kBoolErr2, head2(1, 2, 0, 0) + "\7\1");
    EXPECT_EQ(read(bof(kBof2, 2, kWorksheetStream) +
                   record(kInteger2, head2(0, 0, 0, 12) + u16(7)) +
                   record(kNumber2, head2(0, 1, 0, 0) + le(0.5)) + text2 + record(kEof))
                  .cells,
              (QStringList{u"0,0 N1 7"_s, u"0,1 N 0.5"_s, u"1,0 T a€z"_s, u"1,1 T ok"_s,
                           u"1,2 E #DIV/0!"_s}));
    const QByteArray xf2 =
        record(kXf2, QByteArray(4, '\0')) + record(kXf2, QByteArray("\0\0\x0E\0", 4));
    EXPECT_EQ(read(bof(kBof2, 2, kWorksheetStream) + xf2 +
                   record(kInteger2, head2(0, 0, 1, 0) + u16(7)) + record(kIxfe, u16(1)) +
                   record(kInteger2, head2(0, 1, 63, 0) + u16(8)) + record(kEof))
                  .cells,
              (QStringList{u"0,0 N1 7"_s, u"0,1 N1 8"_s}));
    // The same if the cells must be sorted.
    EXPECT_EQ(read(bof(kBof2, 2, kWorksheetStream) + xf2 +
                   record(kInteger2, head2(1, 0, 0, 0) + u16(7)) + record(kIxfe, u16(1)) +
                   record(kInteger2, head2(0, 1, 63, 0) + u16(8)) + record(kEof))
                  .cells,
              (QStringList{u"0,1 N1 8"_s, u"1,0 N 7"_s}));
    // BIFF 3 and 4: formats are numbered in their order.
    for (const int version : {3, 4}) {
        const QByteArray code =
            version == 3 ? record(kFormat2, "\1#") + record(kFormat2, "\6yyyy-m")
                         : record(kFormat, u16(9) + "\1#") + record(kFormat, u16(9) + "\6yyyy-m");
        const QByteArray xf =
            record(version == 3 ? kXf3 : kXf4, QByteArray("\0\1", 2) + QByteArray(10, '\0'));
        EXPECT_EQ(read(bof(version == 3 ? kBof3 : kBof4, version, kWorksheetStream) + code + xf +
                       record(kCodePage, u16(1251)) + number(0, 0, 3) +
                       record(kLabel, cellHead(0, 1) + u16(2) + "\xC6x") +
                       formula(0, 2, le(1.0), version == 3 ? kFormula3 : kFormula4) + record(kEof))
                      .cells,
                  (QStringList{u"0,0 N1 3"_s, u"0,1 T Жx"_s, u"0,2 N1 1"_s}));
    }
    // A BIFF 4 workspace of two sheets.
    const QByteArray inner = bof(kBof4, 4, kWorksheetStream) + number(0, 0, 1) + record(kEof);
    const QByteArray header = record(kSheetHeader, le(static_cast<quint32>(inner.size())) + "\1A");
    EXPECT_EQ(
        read(bof(kBof4, 4, kWorkspace) + header + inner + header + inner + record(kEof)).cells,
        (QStringList{u"0,0 N 1"_s, u"0,0 N 1"_s}));
    // BIFF 5: bytes in a code page of several bytes per character, and a text of two records.
    EXPECT_EQ(read(book(record(kLabel, cellHead(0, 0) + u16(4) + "\x93\xFA") +
                            record(kContinue, "\x96\x7B") +
                            record(kLabel, cellHead(0, 1) + u16(2) + "\x81\xFF"),
                        record(kCodePage, u16(932)), 0x0500))
                  .cells.first(),
              u"0,0 T 日本"_s);
}

TEST(LegacyWorkbook, SortsCellsThatAreNotInOrder)
{
    QByteArray byColumn;
    for (int column = 0; column < 2; ++column) {
        for (int row = 0; row < 3; ++row) {
            byColumn +=
                column == 0
                    ? number(row, column, row)
                    : record(kLabel, cellHead(row, column) + text8("r" + QByteArray::number(row)));
        }
    }
    const Content content = read(book(byColumn));
    EXPECT_EQ(content.cells, (QStringList{u"0,0 N 0"_s, u"0,1 T r0"_s, u"1,0 N 1"_s, u"1,1 T r1"_s,
                                          u"2,0 N 2"_s, u"2,1 T r2"_s}));
    // In one row: another order, and a cell twice, of which the last one counts.
    const Content twice =
        read(book(number(0, 3, 3) + number(0, 1, 1) + number(0, 3, 4) + number(0, 2, 2)));
    EXPECT_EQ(twice.cells, (QStringList{u"0,1 N 1"_s, u"0,2 N 2"_s, u"0,3 N 4"_s}));
    EXPECT_EQ(twice.problem(SheetProblem::RepeatedCell), 1);
    EXPECT_EQ(read(book(number(0, 20000, 3))).problem(SheetProblem::OutOfSheet), 1);
}

TEST(LegacyWorkbook, KnowsLayoutNamesAndSheets)
{
    const QByteArray names =
        record(kSupBook, u16(1) + u16(0x0401)) +
        record(kExternSheet, u16(1) + u16(0) + u16(0) + u16(0)) +
        record(kName, u16(0) + QByteArray("\0\4", 2) + u16(11) + QByteArray(8, '\0') + '\0' +
                          "Area" + '\x3B' + u16(0) + u16(9) + u16(1) + u16(2) + u16(3)) +
        record(kName, u16(0x20) + QByteArray("\0\1", 2) + u16(7) + u16(0) + u16(1) +
                          QByteArray(4, '\0') + '\0' + '\6' + '\x3A' + u16(0) + u16(4) + u16(5)) +
        record(kName, u16(2) + QByteArray("\0\1", 2) + u16(0) + QByteArray(8, '\0') + '\0' + 'f');
    const QByteArray cells = record(kColInfo, u16(1) + u16(2) + u16(0) + u16(0) + u16(1)) +
                             record(kRow, u16(1) + QByteArray(10, '\0') + u16(0x20)) +
                             number(0, 0, 1) + number(1, 0, 2) +
                             record(kMergedCells, u16(9) + u16(0) + u16(3) + u16(1) + u16(2));
    const QByteArray bytes = book(cells, record(kDateMode, u16(1)) + names);
    MemorySource source(bytes);
    auto workbook = LegacyWorkbook::open(source);
    ASSERT_TRUE(workbook);
    EXPECT_TRUE((*workbook)->uses1904());
    ASSERT_EQ((*workbook)->definedNames().size(), 2U);
    const auto &area = (*workbook)->definedNames()[0];
    EXPECT_EQ(area.name, u"Area"_s);
    EXPECT_EQ(area.sheet, 0);
    EXPECT_EQ(area.area->firstRow, 1);
    EXPECT_EQ(area.area->lastRow, 9);
    EXPECT_EQ(area.area->lastColumn, 3);
    const auto &builtIn = (*workbook)->definedNames()[1];
    EXPECT_EQ(builtIn.name, u"_xlnm.Print_Area"_s);
    EXPECT_EQ(builtIn.scope, 0);
    EXPECT_EQ(builtIn.area->firstColumn, 5);
    auto layout = (*workbook)->layout(0);
    ASSERT_TRUE(layout);
    ASSERT_EQ(layout->merged.size(), 1U);
    EXPECT_EQ(layout->merged[0].lastRow, 3);
    ASSERT_EQ(layout->hiddenColumns.size(), 1U);
    EXPECT_EQ(layout->hiddenColumns[0].lastColumn, 2);
    EXPECT_EQ(read(bytes).hiddenRows, std::vector<qint64>{1});
}

TEST(LegacyWorkbook, NamesWhatItCannotRead)
{
    const auto code = [](WorkbookError error) { return QString::number(static_cast<int>(error)); };
    const QString none = code(WorkbookError::NotAWorkbook) + u"it is not a legacy workbook"_s;
    EXPECT_EQ(read("text").fault, none);
    EXPECT_EQ(read({}).fault, none);
    const auto encrypted = [&](const QString &method) {
        return code(WorkbookError::Encrypted) +
               u"it is encrypted (%1); save it without a password"_s.arg(method);
    };
    EXPECT_EQ(read(book({}, record(kFilePass, u16(0) + u16(1) + u16(2)))).fault,
              encrypted(u"XOR obfuscation"_s));
    EXPECT_EQ(read(book({}, record(kFilePass, u16(1) + u16(1) + u16(1)))).fault,
              encrypted(u"RC4"_s));
    EXPECT_EQ(read(book({}, record(kFilePass, u16(1) + u16(2) + u16(2)))).fault,
              encrypted(u"RC4 CryptoAPI"_s));
    EXPECT_EQ(read(book({}, record(kFilePass, u16(1) + u16(2)), 0x0500)).fault,
              encrypted(u"XOR obfuscation"_s));
    // The rows before the damage are delivered.
    const QByteArray whole = book(number(0, 0, 1) + number(1, 0, 2));
    const Content cut = read(whole.chopped(6));
    EXPECT_EQ(cut.cells, QStringList{u"0,0 N 1"_s});
    EXPECT_EQ(cut.fault, u"it ends inside the sheet"_s);
    EXPECT_EQ(read(whole.chopped(4)).cells.size(), 2);
    EXPECT_EQ(read(whole.chopped(4)).fault, QString());
    EXPECT_EQ(read(whole.first(27)).fault, u"it is damaged: the sheet has no beginning"_s);
    EXPECT_EQ(read(whole.first(22)).fault,
              code(WorkbookError::Damaged) + u"it is damaged: the list of sheets has no end"_s);
}

TEST(CompoundFile, SurvivesEveryDamage)
{
    const QByteArray bytes = sampleFile();
    ASSERT_GT(bytes.size(), 2000);
    const QByteArrayView wide = bytes;
    EXPECT_EQ(read(bytes).fault, QString());
    EXPECT_EQ(read(bytes, 3).fault, QString());
    test::forEveryTruncation(bytes, [](const QByteArray &cut) { read(cut); });
    // Every four bytes of the file as a number of a sector that leads elsewhere or nowhere.
    for (qsizetype at = 0; at + 4 <= wide.size(); at += 4) {
        for (const quint32 value : {0U, 1U, 2U, 5U, 0xFFFFFFFEU, 0x7FFFFFFFU}) {
            QByteArray damaged = bytes;
            storeLE(value, damaged.data() + at);
            read(damaged);
        }
    }
}
