// Any bytes as CSV: the records do not depend on how the bytes arrive, and formatting them and
// reading the result back gives the same fields.
//
// Byte 0: the separator; the text follows. From 0x80 on: any bytes are a text in any encoding, and
// the options for it follow. Its records do not depend on how the bytes arrive, and what was
// decoded comes back when it is encoded and decoded again.
#include "codecs/csv/text_reader.h"
#include "codecs/encoding/utf8_encoder.h"
#include "fuzz/support/feed.h"
#include "fuzz/support/require.h"

#include <cstdlib>
#include <iterator>

using namespace corvanta;
using namespace corvanta::csv;

namespace {

/// Every field as a quoted field, every record on its own line.
QByteArray normalised(QByteArrayView text, char separator, qint64 piece, size_t blockBytes)
{
    MemorySource source(text, piece);
    RecordReader reader(source, {.separator = separator}, {blockBytes, size_t(1) << 20});
    QByteArray all;
    for (auto found = reader.next(); found && *found; found = reader.next()) {
        for (const Field &field : reader.fields()) {
            QByteArray content(field.text, field.size);
            all += '"' + content.replace("\"", "\"\"") + '"' + separator;
        }
        all.back() = '\n';
    }
    return all;
}

constexpr const char *kEncodings[] = {"auto",     "UTF-8",     "windows-1252", "UTF-16LE",
                                      "UTF-16BE", "shift_jis", "ISO-2022-JP",  "UTF-32"};

TextForm formFrom(Feed &feed)
{
    TextForm form;
    form.encoding = kEncodings[feed.below(std::size(kEncodings))];
    form.fallback = "windows-1252";
    form.findsSeparator = feed.flag();
    form.dialect.quote = feed.flag() ? '"' : feed.flag() ? '\'' : Dialect::kNoQuote;
    form.dialect.comment = feed.flag() ? std::string("#") : std::string();
    const int lines = feed.below(6);
    form.dialect.skippedLines = lines % 3;
    form.findsLineEnd = lines >= 3;
    return form;
}

/// Every record as it is in the decoded text, and what was found out about that.
QByteArray describe(QByteArrayView bytes, qint64 piece, const TextForm &form)
{
    MemorySource source(bytes, piece);
    TextReader text(source, form);
    QByteArray all;
    auto found = text.records().next();
    for (; found && *found; found = text.records().next()) {
        const std::string_view record = text.records().record();
        all.append(record.data(), static_cast<qsizetype>(record.size()));
        all += QByteArray::number(text.records().fields().size()) + '\n';
    }
    if (!found) {
        return all; // how much was read beyond the fault depends on the pieces
    }
    return all + text.separator() + text.text().encoding() +
           text.text().replaced().first().toUtf8();
}

QByteArray decoded(QByteArrayView bytes, const QByteArray &encoding)
{
    MemorySource source(bytes);
    encoding::Utf8Source text(source, encoding);
    QByteArray all(bytes.size() * 8 + 64, '\0');
    all.truncate(readFully(text, all.data(), all.size()));
    return all;
}

/// UTF-16 has all characters.
void checkEncoder(const QByteArray &utf8)
{
    auto encoder = encoding::Utf8Encoder::open("UTF-16LE");
    require(encoder.has_value());
    QByteArray wide = encoder->encode(utf8).toByteArray();
    wide += encoder->finish();
    require(!encoder->replaced().any() && decoded(wide, "UTF-16LE") == utf8);
    auto narrow = encoding::Utf8Encoder::open("latin1");
    require(narrow && narrow->encode(utf8).size() <= utf8.size());
}

void checkText(const uint8_t *data, size_t size)
{
    Feed feed(data, size);
    const TextForm form = formFrom(feed);
    const QByteArrayView bytes = feed.rest();
    require(describe(bytes, -1, form) == describe(bytes, 1, form));
    checkEncoder(decoded(bytes, "shift_jis"));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size > 0 && data[0] >= 0x80) {
        checkText(data + 1, size - 1);
        return 0;
    }
    if (size == 0 || data[0] == '"' || data[0] == '\n' || data[0] == '\r') {
        return 0;
    }
    const char separator = static_cast<char>(data[0]);
    const QByteArrayView text(data + 1, static_cast<qsizetype>(size) - 1);
    const QByteArray whole = normalised(text, separator, -1, size_t(1) << 16);
    if (whole != normalised(text, separator, 3, 7) ||
        whole != normalised(whole, separator, -1, 64)) {
        std::abort();
    }
    return 0;
}
