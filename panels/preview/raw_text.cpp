// A line of bytes, with those that are not ASCII characters as points:
//
//     00000010  50 4b 03 04 14 00 06 00  PK......
#include "panels/preview/raw_text.h"

#include "codecs/encoding/text_decoder.h"
#include "corvanta/files.h"
#include "io/input/input_file.h"
#include "io/input/kept_pipe.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QStringDecoder>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

constexpr qsizetype kTextBytes = 16384;
constexpr qsizetype kShownBytes = 2048; // of a binary file
constexpr qsizetype kBytesPerLine = 8;

struct RawTexts
{
    Q_DECLARE_TR_FUNCTIONS(corvanta::Preview)
};

QByteArray readBeginning(InputFile &file)
{
    QByteArray bytes(kTextBytes, Qt::Uninitialized);
    qsizetype size = 0;
    qint64 n = 1;
    while (size < bytes.size() && n > 0) {
        n = file.read(bytes.data() + size, bytes.size() - size);
        size += std::max<qint64>(n, 0);
    }
    return bytes.first(size);
}

/// RawTexts have no control characters other than these.
bool isBinary(const QByteArray &bytes)
{
    return std::any_of(bytes.begin(), bytes.end(), [](char byte) {
        const auto code = static_cast<uchar>(byte);
        return code < ' ' && !QByteArrayView("\t\n\f\r").contains(byte);
    });
}

bool isPrintable(char byte)
{
    return byte >= ' ' && byte <= '~';
}

QString hexLine(qsizetype offset, QByteArrayView bytes)
{
    QByteArray characters = bytes.toByteArray();
    std::replace_if(
        characters.begin(), characters.end(), [](char byte) { return !isPrintable(byte); }, '.');
    const QByteArray digits = bytes.toByteArray().toHex(' ').leftJustified(3 * kBytesPerLine);
    return u"%1  %2 %3\n"_s.arg(QString::number(offset, 16).rightJustified(8, u'0'),
                                QLatin1StringView(digits), QLatin1StringView(characters));
}

QString hexText(QByteArrayView bytes)
{
    QString text;
    for (qsizetype at = 0; at < std::min(bytes.size(), kShownBytes); at += kBytesPerLine) {
        text += hexLine(at, bytes.sliced(at, std::min(kBytesPerLine, bytes.size() - at)));
    }
    return text;
}

QString decoded(const QByteArray &bytes, QStringConverter::Encoding encoding, bool *isGood)
{
    // Where the bytes are cut, a character may be cut too. That is not an error.
    const bool isCut = bytes.size() == kTextBytes;
    QStringDecoder decoder(encoding, isCut ? QStringConverter::Flag::Default
                                           : QStringConverter::Flag::Stateless);
    QString text = decoder(bytes);
    *isGood = !decoder.hasError();
    return text;
}

} // namespace

RawText textOfBytes(const QByteArray &bytes, const QString &encoding)
{
    const auto marked = QStringConverter::encodingForData(bytes);
    if (!marked && isBinary(bytes)) {
        return {{}, RawForm::Bytes, hexText(bytes)};
    }
    bool isGood = false;
    RawText raw;
    raw.text = decoded(bytes, marked.value_or(QStringConverter::Utf8), &isGood);
    const auto named = encoding.isEmpty() ? std::nullopt : encoding::TextDecoder::open(encoding);
    if (!marked && named) {
        raw.text = named->decode(bytes);
    } else if (!marked && !isGood) {
        raw.text = encoding::TextDecoder::windows1252().decode(bytes);
    }
    return raw;
}

RawText beginningOf(const QString &pattern, const QString &encoding)
{
    QStringList files;
    listFiles(pattern, &files);
    const QString name = files.value(0);
    RawText raw;
    raw.isPipe = input::isPipe(name);
    if (raw.isPipe) {
        raw.problem = RawTexts::tr("A pipe can be read only once.");
        return raw;
    }
    InputFile file(nullptr, name, true, InputFile::Report::Nothing);
    const QByteArray bytes = file.isOpen() ? readBeginning(file) : QByteArray();
    if (file.isOpen() && file.failure().isEmpty()) {
        raw = textOfBytes(bytes, encoding);
    } else {
        raw.problem = file.reason();
    }
    const QString member = file.memberName();
    raw.name = QFileInfo(name).fileName();
    if (!member.isEmpty() && !raw.name.contains(member)) {
        raw.name += u'@' + member;
    }
    return raw;
}

} // namespace corvanta
