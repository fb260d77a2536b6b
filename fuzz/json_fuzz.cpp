// Reads any bytes as JSON: tokens and rows must not depend on the sizes of buffer and reads.
#include "fuzz/support/markup_property.h"

using namespace corvanta;
using namespace corvanta::markup;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 2) {
        return 0;
    }
    const uint8_t flags = data[0];
    const auto make = [&](ByteSource &source, qint64 buffer) {
        auto tokenizer = std::make_unique<JSONTokenizer>(source, buffer, u"");
        tokenizer->setPermissiveNumbers((flags & 1) != 0);
        return tokenizer;
    };
    ExtractOptions options;
    options.keepRoot = (flags & 2) == 0;
    options.outputSubTags = (flags & 4) != 0;
    const QByteArrayView text(data + 2, static_cast<qsizetype>(size - 2));
    const MarkupProperty property(make, text, MarkupVariant(data[1]), options);
    property.check((flags & 8) != 0);
    property.checkRestart();
    return 0;
}
