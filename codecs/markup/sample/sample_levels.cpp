// The steps: read the first records as shapes, merge maps (JSON only), find tables in the shapes.
#include "codecs/markup/sample/sample_levels.h"

#include "codecs/markup/sample/map_finder.h"
#include "codecs/markup/sample/shape_sampler.h"
#include "codecs/markup/sample/table_finder.h"

namespace corvanta::markup {

void SampledDocument::add(SampledTable table)
{
    tables.push_back(std::move(table));
    if (tables.back().values > tables[largest].values) {
        largest = tables.size() - 1;
    }
}

SampledDocument sampleDocument(MarkupTokenizer &tokenizer, const SampleOptions &options)
{
    ShapeSample sample = sampleShapes(tokenizer, options.records, options.text);
    const bool isXml = tokenizer.asXml() != nullptr;
    // Members of an object may be keys of a map. Elements of XML are never named by data.
    if (!isXml) {
        mergeMapMembers(&sample.shapes);
    }
    SampledDocument document = findTables(sample.shapes, isXml, options.zeroBased);
    document.unnameable = sample.unnameable;
    document.beyondLimits = sample.beyondLimits;
    return document;
}

} // namespace corvanta::markup
