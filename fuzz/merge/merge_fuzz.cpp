// Two parts of any content are joined. A merge that succeeds is a part like others: merged alone,
// it has the same rows and, in the forms that are copied as they are, the same bytes.
//
// Byte 0: the format and how columns are joined; bytes 1 and 2: the size of the first part.
#include "base/text/binary_kind.h"
#include "codecs/csv/table_merger.h"
#include "codecs/merge/json_merger.h"
#include "codecs/parquet/merge/file_merger.h"
#include "fuzz/support/require.h"

#include <memory>
#include <optional>
#include <vector>

using namespace corvanta;

namespace {

struct Joined
{
    QByteArray bytes;
    qint64 rows = 0;
};

std::unique_ptr<PartMerger> mergerOf(int choice)
{
    const MergeMatch match = (choice & 4) != 0 ? MergeMatch::Names : MergeMatch::Same;
    switch (choice & 3) {
    case 0:
        return std::make_unique<parquet::FileMerger>(match);
    case 1:
        return std::make_unique<JsonMerger>(JsonMerger::Form::Lines);
    case 2:
        return std::make_unique<JsonMerger>(JsonMerger::Form::Array);
    default:
        break;
    }
    csv::TextForm form;
    form.findsSeparator = (choice & 8) != 0;
    form.findsLineEnd = (choice & 16) != 0;
    return std::make_unique<csv::TableMerger>(match, form);
}

std::optional<Joined> join(int choice, const std::vector<QByteArrayView> &parts)
{
    const auto merger = mergerOf(choice);
    for (const QByteArrayView part : parts) {
        MemorySource source(part);
        if (!merger->addPart(source)) {
            return std::nullopt;
        }
    }
    MemorySink sink;
    if (!merger->begin(sink)) {
        return std::nullopt;
    }
    Joined joined;
    for (const QByteArrayView part : parts) {
        MemorySource source(part, 7);
        const auto rows = merger->copyPart(source, sink);
        if (!rows) {
            return std::nullopt;
        }
        joined.rows += *rows;
    }
    if (!merger->finish(sink)) {
        return std::nullopt;
    }
    joined.bytes = sink.bytes();
    return joined;
}

/// Whether a text begins as a file of another kind does.
bool looksLikeAnother(const QByteArray &text)
{
    return text.startsWith("\xEF\xBB\xBF") || text.startsWith("\xFF\xFE") ||
           text.startsWith("\xFE\xFF") ||
           binaryKind({text.constData(), static_cast<size_t>(text.size())}) != BinaryKind::None;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 3) {
        return 0;
    }
    const int choice = data[0];
    const QByteArrayView rest(data + 3, static_cast<qsizetype>(size) - 3);
    const qsizetype first = qMin<qsizetype>(data[1] + data[2] * 256, rest.size());
    const auto joined = join(choice, {rest.first(first), rest.sliced(first)});
    if (!joined) {
        return 0;
    }
    const auto again = join(choice, {joined->bytes});
    // The bytes of another encoding can look like a mark of one.
    if ((choice & 3) == 3) {
        require(!again || again->rows == joined->rows || (choice & 24) != 0);
        return 0;
    }
    // So can an invalid value, or like another format, once the empty lines before it are gone.
    if ((choice & 3) != 0 && looksLikeAnother(joined->bytes)) {
        return 0;
    }
    require(again.has_value() && again->rows == joined->rows);
    require((choice & 3) == 0 || again->bytes == joined->bytes);
    return 0;
}
