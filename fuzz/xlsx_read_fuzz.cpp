// A worksheet, shared strings and styles made of any bytes: the columns of a row ascend, and the
// cells do not depend on how the bytes arrive, nor on whether they are parsed or kept from the
// first reading. Whole packages of any bytes are opened too, and their sheets are listed.
//
// The first byte chooses: 0 a whole package, otherwise the sheet, with a "\0" before the strings
// and another before the styles.
#include "codecs/xlsx/read/xlsx_reader.h"
#include "codecs/xlsx/sheet_list.h"
#include "codecs/zip/package_writer.h"
#include "fuzz/support/require.h"
#include "fuzz/support/sheet_content.h"

using namespace corvanta;

namespace {

constexpr size_t kMaxSheets = 4;

void put(zip::PackageWriter &package, const QByteArray &name, const QByteArray &content)
{
    require(bool(package.openMember(name)));
    require(bool(package.write(content)));
    require(bool(package.closeMember()));
}

QByteArray packageOf(const QByteArray &parts)
{
    const QList<QByteArray> texts = parts.split('\0');
    MemorySink sink;
    zip::PackageWriter package(sink, {{}, 0});
    put(package, "xl/workbook.xml",
        "<workbook><sheets><sheet name='a'/><sheet name='b'/></sheets></workbook>");
    put(package, "xl/worksheets/sheet1.xml", texts.value(0));
    put(package, "xl/sharedStrings.xml", texts.value(1));
    put(package, "xl/styles.xml", texts.value(2));
    require(bool(package.close()));
    return sink.bytes();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0) {
        return 0;
    }
    const QByteArray rest(reinterpret_cast<const char *>(data) + 1,
                          static_cast<qsizetype>(size) - 1);
    const QByteArray bytes = data[0] == 0 ? rest : packageOf(rest);
    MemorySource whole(bytes);
    MemorySource pieces(bytes, 7);
    if (const auto package = zip::PackageReader::open(whole)) {
        (void)xlsx::readSheetList(**package);
    }
    auto workbook = xlsx::XlsxReader::open(whole);
    auto again = xlsx::XlsxReader::open(pieces);
    require(bool(workbook) == bool(again));
    if (!workbook) {
        return 0;
    }
    for (size_t i = 0; i < std::min(kMaxSheets, (*workbook)->sheets().size()); ++i) {
        (void)(*workbook)->layout(i);
        constexpr auto kOrder = sheet::RowOrder::Any;
        const QByteArray content = contentOf(**workbook, i, kOrder);
        require(content == contentOf(**again, i, kOrder));
        require(content == contentOf(**workbook, i, kOrder));
    }
    (void)(*workbook)->tables();
    return 0;
}
