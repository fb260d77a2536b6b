// A pass over a file without its rows: the variables are skipped, and the labels come one by one,
// before or after the metadata that names their encoding.
//
//   (set, value, label)   the bytes of the file, as RawLabel
//   set -> entries        decoded at the end of the pass; the order of the file within a set
#include "codecs/stat/label_reader.h"

#include "codecs/encoding/text_decoder.h"
#include "codecs/stat/check/header_check.h"
#include "codecs/stat/library_parser.h"
#include "codecs/stat/long_texts.h"

#include <optional>

namespace corvanta::stat {

namespace {

/// A label as the file has it: its encoding is known only at the end of the pass.
struct RawLabel
{
    QByteArray set;
    QByteArray label;
    LabelSet::Entry entry;
};

/// The context of the handlers below: what is known before the pass, and what it finds.
struct LabelPass
{
    Format format;
    QString wantedEncoding;
    QString encoding;
    std::vector<RawLabel> labels = {};
    std::optional<Fault<Error>> failure = {};

    // Both return true: the pass continues.
    bool useMetadata(readstat_metadata_t *metadata);
    bool add(const char *set, const readstat_value_t &value, const char *label);
};

/// The label's value is a text: bytes in the encoding of the file, as the cells have them.
LabelSet::Entry entryOfText(const readstat_value_t &value)
{
    LabelSet::Entry entry;
    entry.isText = true;
    entry.text = readstat_string_value(value);
    return entry;
}

/// Only tagged missing values have a tag.
LabelSet::Entry entryOfNumber(const readstat_value_t &value)
{
    LabelSet::Entry entry;
    entry.number = readstat_double_value(value);
    entry.tag = readstat_value_tag(value);
    return entry;
}

bool LabelPass::useMetadata(readstat_metadata_t *metadata)
{
    encoding = encodingOf(format, wantedEncoding, metadata);
    return true;
}

bool LabelPass::add(const char *set, const readstat_value_t &value, const char *label)
{
    const bool isText = readstat_value_type_class(value) == READSTAT_TYPE_CLASS_STRING;
    labels.push_back({set, label, isText ? entryOfText(value) : entryOfNumber(value)});
    return true;
}

int onMetadata(readstat_metadata_t *metadata, void *context)
{
    auto &pass = *static_cast<LabelPass *>(context);
    return noexceptCallback(pass, [&] { return pass.useMetadata(metadata); });
}

int onLabel(const char *set, readstat_value_t value, const char *label, void *context)
{
    auto &pass = *static_cast<LabelPass *>(context);
    return noexceptCallback(pass, [&] { return pass.add(set, value, label); });
}

/// Stops the pass before the rows of a format that has its labels before them.
int onVariable(int, readstat_variable_t *, const char *, void *)
{
    return READSTAT_HANDLER_SKIP_VARIABLE;
}

/// Group the labels by the name of their set. Their order within a set is that of the file, because
/// of several labels of one value the first one counts.
Result<LabelSets, Error> decode(const LabelPass &pass)
{
    const auto decoder = encoding::TextDecoder::open(pass.encoding);
    if (!decoder) {
        return Fault{Error::UnknownEncoding, pass.encoding};
    }
    LabelSets sets;
    for (const RawLabel &raw : pass.labels) {
        LabelSet &set = sets[decoder->decodeCut(raw.set)];
        set.entries.push_back(raw.entry);
        set.entries.back().label = decoder->decodeCut(raw.label);
    }
    for (auto &[name, set] : sets) {
        set.name = name;
    }
    return sets;
}

void attachHandlers(const LibraryParser &parser)
{
    readstat_set_metadata_handler(parser.handle(), onMetadata);
    readstat_set_variable_handler(parser.handle(), onVariable);
    readstat_set_value_label_handler(parser.handle(), onLabel);
}

/// `parse` calls the function of the library for the kind of file. A fault of a handler explains
/// the failure better than the library, which knows only that the handler has ended the pass.
template <class Parse>
Result<LabelSets, Error> runPass(ByteSource &source, LabelPass pass, Parse &&parse)
{
    LibrarySource input(source);
    const auto longTexts = pass.format == Format::Stata ? LongTexts::of(source) : nullptr;
    if (longTexts) {
        longTexts->attachTo(&input);
    }
    if (pass.format == Format::SpssPor) {
        input.setStart(distinctPorStart(source));
    }
    LibraryParser parser(input);
    attachHandlers(parser);
    const readstat_error_t error = parse(parser, pass);
    if (pass.failure) {
        return *pass.failure;
    }
    if (error != READSTAT_OK) {
        return Fault{input.hasFailed() ? Error::Unreadable : Error::Library, messageOf(error)};
    }
    return decode(pass);
}

} // namespace

Result<LabelSets, Error> readLabelSets(ByteSource &source, Format format, const QString &encoding)
{
    return runPass(
        source, {format, encoding, encoding},
        [format](LibraryParser &parser, LabelPass &pass) { return parser.parse(format, &pass); });
}

/// The last read of the library is that of the length of a further set.
bool endsInLabels(ByteSource &source)
{
    CheckedReader in(source);
    if (readStataHeader(in)) {
        return false;
    }
    LabelPass pass{Format::Stata, {}, {}};
    LibrarySource input(source);
    LibraryParser parser(input);
    attachHandlers(parser);
    return parser.parse(Format::Stata, &pass) == READSTAT_OK && input.endsInside();
}

Result<LabelSets, Error> readCatalogue(ByteSource &source, const QString &encoding)
{
    return runPass(
        source, {Format::Sas, encoding, encoding},
        [](LibraryParser &parser, LabelPass &pass) { return parser.parseCatalogue(&pass); });
}

} // namespace corvanta::stat
