#include "actions/read_xbf/declared_encoding.h"

#include "actions/read_xbf/memo_name.h"
#include "codecs/dbf/code_page.h"

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// The text of the .cpg file, which programs for maps write; empty without one.
QByteArray cpgText(GlobalParameters *parameters, const QString &file, const InputFile &table)
{
    constexpr qint64 kMaxBytes = 64;
    for (const QString &name : companionNames(u".cpg"_s, file, table)) {
        InputFile cpg(parameters, name, true, InputFile::Report::Nothing);
        QByteArray text(kMaxBytes, '\0');
        const qint64 got = cpg.isOpen() ? readFully(cpg, text.data(), kMaxBytes) : 0;
        if (got > 0) {
            return text.first(got).trimmed();
        }
    }
    return {};
}

/// A mark that no list has.
QString numberOfMark(uchar mark)
{
    return mark == 0 ? QString() : u"0x%1"_s.arg(uint(mark), 2, 16, QChar(u'0'));
}

} // namespace

DeclaredEncoding declaredEncodingOf(GlobalParameters *parameters, const QString &file,
                                    const InputFile &table, const dbf::TableHeader &header)
{
    const QByteArray text = cpgText(parameters, file, table);
    QString name =
        text.isEmpty() ? dbf::encodingOfMark(header.encodingMark) : dbf::encodingOfCpg(text);
    if (name.isEmpty()) {
        return {numberOfMark(header.encodingMark), std::nullopt};
    }
    // Our own table: iconv knows no character for five bytes of this code page.
    std::optional<encoding::TextDecoder> decoder = name == "CP1252"_L1
                                                       ? encoding::TextDecoder::windows1252()
                                                       : encoding::TextDecoder::open(name);
    return {std::move(name), std::move(decoder)};
}

} // namespace corvanta
