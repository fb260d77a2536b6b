// Rows of any content as the sheet of a new workbook: every part is well-formed XML, and texts are
// read back unchanged.
//
// Dates, names and rows on their own: see sheet_values.h. Bytes 0 to 4: options. The formats of
// numbers and dates and the table follow.
#include "codecs/opc/outline.h"
#include "codecs/sheet/column_meter.h"
#include "codecs/xlsx/new_workbook.h"
#include "fuzz/support/require.h"
#include "fuzz/support/sheet_property.h"
#include "fuzz/support/sheet_values.h"

using namespace corvanta;

namespace {

/// Whether an escape of the form _xHHHH_ is at the start of `text`.
bool startsEscape(QStringView text)
{
    const QStringView digits = text.mid(2, 4);
    return text.startsWith(u"_x") && text.mid(6, 1) == u"_" &&
           std::all_of(digits.begin(), digits.end(),
                       [](QChar c) { return QStringView(u"0123456789ABCDEFabcdef").contains(c); });
}

/// A text of a sheet with its escapes decoded.
QString withoutEscapes(const QString &text)
{
    QString plain;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QStringView rest = QStringView(text).sliced(i);
        const bool isEscape = startsEscape(rest);
        plain += isEscape ? QChar(rest.mid(2, 4).toUShort(nullptr, 16)) : text[i];
        i += isEscape ? 6 : 0;
    }
    return plain;
}

/// The texts of the cells with text, in order.
QStringList textsOf(const QByteArray &sheet)
{
    QStringList texts;
    opc::TagCursor cursor(sheet);
    while (cursor.next()) {
        if (cursor.tag().name == "t" && cursor.tag().kind == opc::Tag::Kind::Open) {
            const qsizetype begin = cursor.tag().end;
            require(cursor.next());
            const auto text = QByteArrayView(sheet).sliced(begin, cursor.tag().begin - begin);
            // At the start of what is decoded, U+FEFF would be a byte-order mark.
            texts << withoutEscapes(opc::decoded(' ' + text.toByteArray()).sliced(1));
        }
    }
    return texts;
}

QString written(std::u16string_view text)
{
    // Not fromStdU16String(), which takes U+FFFE at the start as a byte-order mark.
    return QStringView(withoutLoneSurrogates(text)).toString().replace(QChar(0xFFFE), u'_');
}

/// What textsOf() gives for a sheet without formulas, links and dates.
QStringList expectedTexts(const FuzzTable &table)
{
    QStringList texts;
    for (const QString &name : table.names()) {
        texts << written(name.toStdU16String());
    }
    for (int row = 0; row < table.rowCount(); ++row) {
        const RowView view = table.row(row);
        for (int i = 0; i < view.columns; ++i) {
            const bool isText = view.type(i) == cell::Type::Text;
            const auto text = isText ? cell::readText(view.cells[i]).view() : std::u16string_view();
            if (!text.empty()) {
                texts << written(text);
            }
        }
    }
    return texts;
}

SheetSetup setupOf(Feed &feed)
{
    SheetSetup setup;
    const int flags = feed.byte();
    setup.options.noNans = (flags & 1) == 0;
    setup.options.equalIsFormula = (flags & 2) != 0;
    setup.options.urlTag = (flags & 4) != 0;
    setup.options.crop = (flags & 8) != 0;
    setup.options.firstDay = (flags & 16) != 0 ? 1462 : 0;
    setup.end.recalculate = (flags & 32) != 0;
    if ((flags & 64) != 0) {
        setup.end.range = xlsx::NamedRange{QStringLiteral("all"), 1, 9, 30};
    }
    if ((flags & 128) != 0) {
        setup.look = {
            true, true, true, true, true, {12.5, 0, 30}, {{}, QStringLiteral("0.00\"<\"")}};
    }
    setup.kinds = feed.value<quint16>();
    setup.options.floatFormat.set(feed.string(feed.below(16)));
    setup.dateFormat = feed.string(feed.below(24));
    return setup;
}

/// Columns of a sheet have a width that keeps it readable, whatever is in them.
void checkWidths(const FuzzTable &table, const SheetSetup &setup)
{
    const auto columns = static_cast<size_t>(table.row(0).columns);
    sheet::ColumnMeter meter({sheetColumns(table, setup.kinds), setup.options.floatFormat,
                              setup.options.urlTag, std::vector<int>(columns, setup.kinds % 11),
                              QStringList(qsizetype(columns), setup.dateFormat)});
    meter.addHeader(setup.options.crop, setup.options.noNans);
    for (int row = 0; row < table.rowCount(); ++row) {
        const std::vector<double> before = meter.widths();
        meter.add(table.row(row));
        require(std::ranges::equal(before, meter.widths(), std::less_equal<>()));
    }
    require(meter.widths().size() == columns && meter.rows() == table.rowCount());
    constexpr double kWidestInFiles = 255;
    for (const double width : meter.widths()) {
        require(width > 0 && width <= kWidestInFiles);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    sheet::checkSheetValues(Feed(data, size));
    Feed feed(data, size);
    SheetSetup setup = setupOf(feed);
    const int dateFormat = feed.below(13);
    const int more = feed.below(8);
    const FuzzTable table(feed);
    checkWidths(table, setup);
    xlsx::NewWorkbook workbook(QStringLiteral("A&\"'"), dateFormat,
                               {(more & 1) != 0, (more & 2) != 0, (more & 4) != 0});
    MemoryPackage package;
    require(writeWorkbook(workbook, table, setup, package));
    MemorySource source(package.sink.bytes());
    const auto reader = zip::PackageReader::open(source);
    require(bool(reader));
    for (const zip::Member &member : (*reader)->members()) {
        const auto text = (*reader)->readWhole(member);
        require(text && opc::Outline::read(*text));
    }
    const sheet::SheetOptions &options = setup.options;
    if (setup.kinds == 0 && options.noNans && !options.equalIsFormula && !options.urlTag &&
        !options.crop) {
        require(textsOf(*(*reader)->readWhole(xlsx::sheetPart(1))) == expectedTexts(table));
    }
    return 0;
}
