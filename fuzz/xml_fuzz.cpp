// Reads any bytes as XML or HTML: tokens and rows must not depend on the sizes of buffer and reads.
#include "codecs/markup/sample/html_tables.h"
#include "codecs/markup/tokens/html_tokenizer.h"
#include "fuzz/support/markup_property.h"

#include <tuple>

using namespace corvanta;
using namespace corvanta::markup;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 2) {
        return 0;
    }
    const uint8_t flags = data[0];
    const auto make = [&](ByteSource &source, qint64 buffer) {
        const bool isSoup = (flags & 5) == 5; // HTML without prefixes, which pages do not have
        std::unique_ptr<XMLTokenizer> tokenizer =
            isSoup ? std::make_unique<HtmlTokenizer>(source, buffer)
                   : std::make_unique<XMLTokenizer>(source, buffer);
        tokenizer->setOptions(
            {(flags & 1) != 0, (flags & 2) != 0, (flags & 4) != 0, (flags & 8) != 0});
        if ((data[1] & 0x80) != 0) {
            constexpr CharMode kModes[] = {CharMode::Utf8, CharMode::CodePage, CharMode::Utf16,
                                           CharMode::ShiftJis};
            const auto invalid = (data[1] & 4) != 0 ? InvalidBytes::Fail : InvalidBytes::Discard;
            std::ignore = tokenizer->setEncoding(kModes[data[1] % 4], "CP1252", invalid);
        }
        return tokenizer;
    };
    ExtractOptions options;
    options.text.clearIsText = (flags & 16) != 0;
    options.text.html = (flags & 1) != 0;
    options.allText = (flags & 128) != 0;
    options.expandSpans = (flags & 8) != 0;
    options.zeroBased = (data[1] & 1) != 0;
    options.namesForText = options.ignoreEmpty = (flags & 32) != 0;
    options.tagNames = (flags & 32) != 0 ? TagNames::Summary : TagNames::Runs;
    const QByteArrayView text(data + 2, static_cast<qsizetype>(size - 2));
    const MarkupProperty property(make, text, MarkupVariant(data[1]), options);
    property.check((flags & 64) != 0);
    if ((data[1] & 0x80) == 0) {
        property.checkRestart();
    }
    if ((flags & 1) != 0) {
        MemorySource page(text);
        const auto spans = options.expandSpans ? Spans::Expanded : Spans::Ignored;
        const SampledDocument found = sampleTables(*make(page, 1024), options.zeroBased, spans);
        // Each row of a table is as wide as its widest one.
        if (!found.tables.empty() && found.tables[0].levels[0].items.size() < 100) {
            property.checkLevels(found.tables[0].levels);
        }
    }
    return 0;
}
