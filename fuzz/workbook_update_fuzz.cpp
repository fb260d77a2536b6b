// Adds rows to workbooks whose parts have any content: the new package can be read, parts that were
// well-formed XML are it still, and parts that do not change are copied.
//
// Bytes 0 to 3: options. The parts follow, each "NAME\nCONTENT" and a NUL byte.
#include "codecs/opc/outline.h"
#include "codecs/xlsx/updated_workbook.h"
#include "fuzz/support/require.h"
#include "fuzz/support/sheet_property.h"

using namespace corvanta;

namespace {

QByteArray packageOf(QByteArrayView parts)
{
    MemoryPackage package;
    for (const QByteArray &part : parts.toByteArray().split('\0')) {
        const qsizetype line = part.indexOf('\n');
        // A part without a name, or one that is there already, is left out.
        if (line > 0 && package.writer.openMember(part.first(line))) {
            require(package.writer.write(part.mid(line + 1)) && package.writer.closeMember());
        }
    }
    require(bool(package.writer.close()));
    return package.sink.bytes();
}

/// Whether the text is well-formed XML. The limit of the outline does not concern it.
bool isXml(const QByteArray &text)
{
    const auto outline = opc::Outline::read(text);
    return outline || outline.fault().code == opc::Error::TooLarge;
}

void checkMembers(zip::PackageReader &before, zip::PackageReader &after)
{
    for (const zip::Member &member : after.members()) {
        const auto now = after.readWhole(member);
        require(bool(now));
        const auto then = before.readWhole(member.name);
        require((then && (*then == *now || !isXml(*then))) || isXml(*now));
    }
    for (const zip::Member &member : before.members()) {
        const bool isRemoved = after.find(member.name) == nullptr;
        require(!isRemoved || member.name.toLower().contains("calcchain"));
    }
}

/// Choose the sheet that gets the rows.
bool chooseSheet(xlsx::UpdatedWorkbook &workbook, int choice, int row)
{
    const QStringList names = workbook.workbook().sheetNames();
    if ((choice & 1) == 0) {
        workbook.addSheet(xlsx::freeSheetName(names.front(), names));
        return true;
    }
    const auto index = static_cast<size_t>(choice / 2 % names.size());
    return bool(workbook.changeSheet(index, static_cast<quint64>(row)));
}

SheetSetup setupOf(int flags)
{
    SheetSetup setup;
    setup.options.urlTag = setup.options.equalIsFormula = true;
    setup.end.recalculate = (flags & 16) != 0;
    if ((flags & 32) != 0) {
        setup.end.range = xlsx::NamedRange{QStringLiteral("N"), 1, 2, 3};
    }
    if ((flags & 64) != 0) {
        setup.look = {true, true, true, true, (flags & 128) != 0, {9}, {QStringLiteral("0.00")}};
    }
    return setup;
}

/// The package with the rows; nothing if the workbook cannot be changed.
std::optional<QByteArray> updated(zip::PackageReader &reader, Feed options)
{
    constexpr uint8_t kTable[] = {3,   0,   1,   'a', 1,   1,   'b', 2,   0,   23,  'U', 'R', 'L',
                                  '(', '"', 'x', '"', ',', '"', 'h', ':', '/', '<', '&', '"', ')',
                                  ' ', ' ', ' ', ' ', ' ', 108, 7,   2,   '=', 0,   0};
    auto workbook = xlsx::UpdatedWorkbook::open(reader, [] { return true; });
    const int choice = options.byte();
    const int row = options.byte();
    if (!workbook || !chooseSheet(**workbook, choice, row)) {
        return std::nullopt;
    }
    const int flags = options.byte();
    (*workbook)->addCellFormats(flags % 16, {false, (flags & 16) != 0, (flags & 32) != 0});
    Feed feed(kTable, sizeof kTable);
    MemoryPackage package;
    return writeWorkbook(**workbook, FuzzTable(feed), setupOf(flags), package)
               ? std::optional(package.sink.bytes())
               : std::nullopt;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Feed feed(data, size);
    const Feed options(data, qMin<size_t>(size, 4));
    feed.bytes(4);
    const QByteArray before = packageOf(feed.rest());
    MemorySource source(before);
    const auto reader = zip::PackageReader::open(source);
    require(bool(reader));
    const auto after = updated(**reader, options);
    if (after) {
        MemorySource changed(*after);
        const auto again = zip::PackageReader::open(changed);
        require(bool(again));
        checkMembers(**reader, **again);
        require(updated(**again, Feed(nullptr, 0)).has_value());
    }
    return 0;
}
