// Reads any bytes as JSON: tokens and rows must not depend on the sizes of buffer and reads. As the
// text of a value: what counts as an exact number can be read, and an integer has no other form.
#include "base/text/number_value.h"
#include "fuzz/support/markup_property.h"

using namespace corvanta;
using namespace corvanta::markup;

namespace {

void checkValue(std::string_view text)
{
    const values::Form form = values::formOf(text);
    const bool isInteger = form.kind == values::Kind::Integer;
    const bool isExact = form.isExact && (isInteger || form.kind == values::Kind::Decimal);
    double value = 0;
    quint32 key = 0;
    char out[kNumberChars];
    require(!isExact || parseFinite(text, &value));
    require(!form.isKey || (isExact && parseKey(text, &key)));
    require(!isExact || !isInteger ||
            text == std::string_view(out, static_cast<size_t>(putShortest(value, out))));
}

} // namespace

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
    options.nullIsMissing = (flags & 16) != 0;
    const QByteArrayView text(data + 2, static_cast<qsizetype>(size - 2));
    checkValue({text.data(), static_cast<size_t>(text.size())});
    const MarkupProperty property(make, text, MarkupVariant(data[1]), options);
    property.check((flags & 8) != 0);
    property.checkRestart();
    return 0;
}
