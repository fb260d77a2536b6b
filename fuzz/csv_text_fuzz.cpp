// Any bytes as a text in any encoding: its records do not depend on how the bytes arrive, and what
// was decoded comes back when it is encoded and decoded again.
//
// The options come first: encoding, form of the records. The text follows.
#include "codecs/csv/text_reader.h"
#include "codecs/encoding/utf8_encoder.h"
#include "fuzz/support/feed.h"
#include "fuzz/support/require.h"

#include <iterator>

using namespace corvanta;
using namespace corvanta::csv;

namespace {

constexpr const char *kEncodings[] = {"auto",     "UTF-8",     "windows-1252", "UTF-16LE",
                                      "UTF-16BE", "shift_jis", "ISO-2022-JP",  "UTF-32"};

TextForm formFrom(Feed &feed)
{
    TextForm form;
    form.encoding = kEncodings[feed.below(std::size(kEncodings))];
    form.fallback = "windows-1252";
    form.findsSeparator = feed.flag();
    form.dialect.quote = feed.flag() ? '"' : feed.flag() ? '\'' : Dialect::kNoQuote;
    form.dialect.comment = feed.flag() ? "#" : "";
    form.dialect.skippedLines = feed.below(3);
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

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Feed feed(data, size);
    const TextForm form = formFrom(feed);
    const QByteArrayView bytes = feed.rest();
    require(describe(bytes, -1, form) == describe(bytes, 1, form));
    checkEncoder(decoded(bytes, "shift_jis"));
    return 0;
}
