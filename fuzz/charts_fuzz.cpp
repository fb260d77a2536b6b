// Fills the series of a chart part, whose text is the input. A well-formed part stays well-formed,
// data that is written again gives the same part, and without data nothing changes.
#include "codecs/charts/series_writer.h"
#include "codecs/opc/outline.h"
#include "fuzz/support/require.h"

#include <cstddef>
#include <cstdint>

using namespace corvanta;
using namespace corvanta::charts;

namespace {

/// The part with the data of its usable tags, which become their references if `isCleaned`.
QByteArray filled(const QByteArray &part, const std::vector<ChartTag> &tags,
                  const SeriesValues &values, bool isCleaned = false)
{
    QByteArray out;
    SeriesWriter writer(part, [&](QByteArrayView block) -> Result<void, opc::Error> {
        out += block;
        return {};
    });
    for (const ChartTag &tag : tags) {
        require(tag.begin >= 0 && tag.begin < tag.end && tag.end <= part.size());
        if (tag.use == TagUse::Series) {
            require(!tag.axes.empty() && (!isCleaned || writer.replaceTag(tag)));
            require(bool(writer.series(tag, values)));
        }
    }
    require(bool(writer.finish()));
    return out;
}

bool isWellFormed(const QByteArray &part)
{
    const auto outline = opc::Outline::read(part);
    return outline || outline.fault().code == opc::Error::TooLarge;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray part(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const auto tags = findTags(part);
    if (!tags) {
        return 0;
    }
    ValueList texts;
    ValueList numbers;
    for (const char16_t *text : {u"<&>\r", u"", u"1e5", u"-", u"caf\u00e9"}) {
        texts.append(text);
        numbers.append(u"2.5");
    }
    const SeriesValues values{&texts, &numbers, &numbers, &texts};
    const QByteArray once = filled(part, *tags, values);
    if (opc::Outline::read(part)) {
        require(isWellFormed(once) && isWellFormed(filled(part, *tags, values, true)));
        const auto again = findTags(once);
        require(again && filled(once, *again, values) == once);
    }
    require(filled(part, *tags, {}) == part);
    return 0;
}
