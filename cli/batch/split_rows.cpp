#include "cli/batch/split_rows.h"

#include "cli/file_types.h"
#include "corvanta/params/file_facts.h"

#include <algorithm>
#include <numeric>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

/// Blocks are joined until another one would exceed `rows` by more than it fills.
QVector<InputPiece> joinedBlocks(const QVector<qint64> &blocks, qint64 rows)
{
    QVector<InputPiece> pieces{InputPiece{}};
    for (const qint64 block : blocks) {
        InputPiece &last = pieces.last();
        if (last.rowCount > 0 && block > 2 * (rows - last.rowCount)) {
            pieces.append({last.firstRow + last.rowCount, block, last.part + 1});
        } else {
            last.rowCount += block;
        }
    }
    return pieces;
}

QVector<InputPiece> equalPieces(qint64 all, qint64 rows)
{
    QVector<InputPiece> pieces{{1, std::min(all, rows), 1}};
    while (all - pieces.last().firstRow + 1 > rows) {
        const qint64 first = pieces.last().firstRow + rows;
        pieces.append({first, std::min(rows, all - first + 1), pieces.last().part + 1});
    }
    return pieces;
}

} // namespace

Result<QVector<InputPiece>, QString> splitInput(const QString &name, qint64 rows,
                                                const ActionRegistry &registry)
{
    const auto file = inputFile({}, name, registry);
    const auto reader = file ? makeFileAction(registry, FileFormat::Read, *file, {})
                             : CommandResult<std::unique_ptr<ActionItem>>(file.fault());
    if (!reader) {
        return Fault{reader.fault().detail};
    }
    auto *const facts = dynamic_cast<FileFacts *>(reader->get());
    if (facts == nullptr) {
        return Fault{
            u"files of its format can only be read from their beginning; Parquet, SAS, SPSS and Stata files can be divided"_s};
    }
    const auto blocks = facts->rowBlocks();
    if (!blocks) {
        return Fault{blocks.fault().code};
    }
    QVector<InputPiece> pieces = blocks->isDivisible ? equalPieces(blocks->rows.value(0), rows)
                                                     : joinedBlocks(blocks->rows, rows);
    const qint64 all = std::accumulate(blocks->rows.begin(), blocks->rows.end(), qint64(0));
    for (InputPiece &piece : pieces) {
        piece.fileRows = all;
    }
    return pieces;
}
