// The preview of writeJSON and writeXML: the composer of a run, with rows from texts and without a
// file.
#include "actions/shared/level_writer.h"
#include "corvanta/row_buffer.h"

namespace corvanta {

namespace {

/// Fill the row with cells in `buffer`, by the types of its columns.
void setCells(OneRow *row, RowBuffer *buffer, const QStringList &texts)
{
    for (int i = 0; i < row->numberOfColumns(); ++i) {
        const QString text = texts.value(i);
        switch (row->getMetaType(i).type()) {
        case MetaInfo::Key:
            row->setCol(i, keyCell(buffer, text.isNull() ? cell::kMissingKey : text.toUInt()));
            break;
        case MetaInfo::Float:
            row->setCol(
                i, doubleCell(buffer, text.isNull() ? cell::missingDouble() : text.toDouble()));
            break;
        case MetaInfo::Unknown:
            row->setCol(i, bytesFromQString(buffer, text));
            break;
        }
    }
}

} // namespace

LevelWriter::Preview LevelWriter::preview(const TableSchema &columns,
                                          const QVector<QStringList> &rows)
{
    constexpr int kBufferBytes = 1 << 16;
    RowWriter::start(); // for the name of the file in messages
    m_run = std::make_unique<RunState>();
    if (!m_run->floatFormat.set(rowParams().floatToString)) {
        return {{}, message(WriteProblem::BadFloatFormat, rowParams().floatToString).trimmed()};
    }
    OneRow row;
    row.setColName(columns.names);
    row.setMetaData(columns.types);
    const std::vector<WriteLevel> declared = declaredLevels();
    auto levels = compileLevels(declared, row.view());
    if (!levels) {
        return {{}, messageFor(levels.fault(), declared).trimmed()};
    }
    std::string bytes;
    compose::TextBlock block(compose::Encoding::Utf8, [&bytes](const void *data, qint64 n) {
        bytes.append(static_cast<const char *>(data), static_cast<size_t>(n));
        return true;
    });
    compose::LevelComposer composer(*std::move(levels), valueRules(), block);
    RowBuffer buffer(kBufferBytes);
    for (const QStringList &texts : rows) {
        setCells(&row, &buffer, texts);
        composer.putRow(row.view());
    }
    composer.endElements();
    block.drainAll();
    const FileFrame file = frame();
    return {expandString(file.prefix) + QString::fromStdString(bytes) + file.lastLine +
                expandString(file.suffix),
            {}};
}

} // namespace corvanta
