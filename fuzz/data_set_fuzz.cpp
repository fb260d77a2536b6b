// Rows of any content as a SAS data set, kept in a spool before they are written: the spool returns
// the blocks unchanged, and the checks of our reader accept the file.
//
// Bytes 0 to 15: widths of texts and labels, also the first bytes of the table.
#include "base/byte_sink.h"
#include "codecs/sas/data_set_writer.h"
#include "codecs/sas/row_packer.h"
#include "codecs/sas/variable_names.h"
#include "codecs/stat/check/header_check.h"
#include "fuzz/support/require.h"
#include "fuzz/support/table.h"
#include "io/spool/block_spool.h"

using namespace corvanta;
using namespace corvanta::sas;

namespace {

std::vector<Variable> variablesOf(const RowView &row, Feed &options)
{
    std::vector<Variable> variables(static_cast<size_t>(row.columns));
    std::vector<QByteArray> names;
    QStringList columns;
    for (int i = 0; i < row.columns; ++i) {
        columns << row.names[i];
        names.push_back(validName(row.names[i], kMaxNameBytes));
        Variable &variable = variables[static_cast<size_t>(i)];
        variable.isText = row.type(i) == cell::Type::Text;
        variable.width = variable.isText ? 1 + options.below(200) : kNumberBytes;
        variable.label = cutUtf8(row.names[i].repeated(options.below(20)).toUtf8(), kMaxLabelBytes);
    }
    makeUnique(names, columns, Qt::CaseInsensitive, kMaxNameBytes);
    for (size_t i = 0; i < names.size(); ++i) {
        variables[i].name = names[i];
    }
    return variables;
}

/// The rows as blocks, in a spool that keeps few of them in memory.
void spoolRows(const FuzzTable &table, RowPacker *packer, BlockSpool *spool, QByteArray *all)
{
    for (int i = 0; i < table.rowCount(); ++i) {
        packer->add(table.row(i).cells, i + 1);
        if (i % 3 == 0 || i + 1 == table.rowCount()) { // blocks of several rows, and of one
            all->append(packer->block().data(), static_cast<qsizetype>(packer->block().size()));
            require(bool(spool->put(packer->block())));
            packer->clear();
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Feed widths(data, std::min<size_t>(size, 16));
    Feed feed(data, size);
    const FuzzTable table(feed);
    const RowView columns = table.row(0);
    const std::vector<Variable> variables = variablesOf(columns, widths);
    std::vector<PackedColumn> packed;
    for (int i = 0; i < columns.columns; ++i) {
        packed.push_back({i, columns.type(i), variables[static_cast<size_t>(i)].width});
    }
    const TextEncoder encoder = TextEncoder::utf8();
    RowPacker packer(encoder, packed);
    BlockSpool spool({{}, 200, {}});
    QByteArray expected;
    spoolRows(table, &packer, &spool, &expected);

    MemorySink sink;
    DataSetWriter writer(sink, variables);
    require(bool(writer.begin(table.rowCount())) && bool(spool.rewind()));
    QByteArray found;
    for (auto block = spool.next(); block && *block; block = spool.next()) {
        found.append((*block)->data(), static_cast<qsizetype>((*block)->size()));
        require(bool(writer.addRows(**block)));
    }
    require(found == expected && bool(writer.finish()));

    MemorySource file(sink.bytes());
    require(bool(stat::checkHeader(file, stat::Format::Sas)));
    return 0;
}
