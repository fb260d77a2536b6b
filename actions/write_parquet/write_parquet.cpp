#include "actions/write_parquet/write_parquet.h"

#include "actions/shared/split_name.h"
#include "corvanta/name_collision.h"
#include "plugin/catalogue.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <thread>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

constexpr double kBytesPerMiB = 1048576;
constexpr int kSplitByValue = 1;

/// Threads that compress pages beside the one that takes rows.
int workerCount()
{
    constexpr int kMost = 8;
    return std::clamp(static_cast<int>(std::thread::hardware_concurrency()) - 1, 1, kMost);
}

/// By the value of the parameter `codec`.
constexpr std::array kCodecs{parquet::kSnappy, parquet::kUncompressed, parquet::kGzip,
                             parquet::kZstd,   parquet::kLz4Raw,       parquet::kBrotli};

} // namespace

ActionWriteParquet::ActionWriteParquet(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(catalogueRow("writeParquet"), saved, parameters)
{
}

void ActionWriteParquet::start()
{
    m_run = std::make_unique<RunState>();
    m_run->options.pageSizeKiB = m_params.pageSize;
    m_run->options.rowGroupMiB = m_params.rowGroupSize;
    m_run->options.dictionaryPages = m_params.dictionaryPages;
    m_run->options.statistics = m_params.statistics;
    if (m_params.file.isEmpty()) {
        fail(u"No filename?"_s);
        return;
    }
    m_run->file = expandOutputFile(m_params.file, QString());
    m_run->compressor = std::make_unique<parquet::PageCompressor>(
        kCodecs[static_cast<size_t>(m_params.codec)], workerCount());
}

parquet::Storage ActionWriteParquet::storageOf(const OneRow *row, int column) const
{
    switch (row->getMetaType(column).type()) {
    case MetaInfo::Float:
        return parquet::Storage::Double;
    case MetaInfo::Unknown:
        return parquet::Storage::Text;
    case MetaInfo::Key:
        break;
    }
    constexpr std::array kKeys{parquet::Storage::KeyAsUint32, parquet::Storage::KeyAsInt32,
                               parquet::Storage::KeyAsInt64};
    return kKeys[static_cast<size_t>(m_params.keyStorage)];
}

/// Fail the run because the input has no such column; false.
bool ActionWriteParquet::failWithoutColumn(const QString &name, const char *purpose)
{
    return fail(u"\nERROR writing to Parquet File '%1': cannot find column '%2' %3\n"_s.arg(
        m_run->file, name, QString::fromLatin1(purpose)));
}

bool ActionWriteParquet::findColumns(const OneRow *row)
{
    QVector<int> inputs;
    bool isGood = true;
    if (m_params.writeAllColumns) {
        for (int i = 0; i < row->numberOfColumns(); ++i) {
            inputs << i;
        }
    } else if (m_params.toWrite.isEmpty()) {
        return fail(
            u"\nERROR writing to Parquet File '%1': no column to write?\n"_s.arg(m_run->file));
    }
    for (const QString &name : m_params.writeAllColumns ? QStringList() : m_params.toWrite) {
        const int column = row->getIndexOfColumn(name);
        isGood = (column >= 0 || failWithoutColumn(name, "to write")) && isGood;
        inputs << column;
    }
    isGood = isGood && (m_run->filter.begin(m_params, *row) ||
                        failWithoutColumn(m_params.testCol, "to test"));
    if (!isGood ||
        doCheckNameCollision(row, m_params.checkNameCollision, this, inputs, m_run->file) != 0) {
        return false;
    }
    for (const int column : inputs) {
        m_run->columns.push_back({row->colName(column).toUtf8(), storageOf(row, column), column});
    }
    if (m_params.split != kSplitByValue) {
        return true;
    }
    m_run->splitColumn = row->getIndexOfColumn(m_params.splitVar);
    return m_run->splitColumn >= 0 || failWithoutColumn(m_params.splitVar, "for split");
}

bool ActionWriteParquet::begin(const OneRow *row)
{
    m_run->isFirst = false;
    if (!findColumns(row)) {
        return false;
    }
    if (m_params.createDir) {
        QDir().mkpath(QFileInfo(m_run->file).absolutePath());
    }
    if (m_run->splitColumn < 0) {
        return openOutput(QString());
    }
    const QVector<SortInfos> &order = row->sortInfos();
    m_run->isSorted = !order.isEmpty() && order.first().column == m_params.splitVar;
    if (!m_run->isSorted) {
        warn(
            u"\nWARNING writing to Parquet file: The table to split is not sorted on the split variable: The number of splits (i.e. the number of files) is limited to the maximum number of simultaneous opened file allowed by the OS and by the available RAM memory.\n"_s);
    }
    return true;
}

/// The name of the next file for a split value, different from all names before.
QString ActionWriteParquet::nextTarget(const QString &value)
{
    const QString part = m_run->splitColumn < 0 ? QString() : "__"_L1 + fileNamePart(value);
    QString target = withPartBeforeExtension(m_run->file, part);
    for (int i = 2; m_run->targets.contains(target); ++i) {
        target = withPartBeforeExtension(m_run->file, part + "__"_L1 + QString::number(i));
    }
    m_run->targets.insert(target);
    return target;
}

bool ActionWriteParquet::openOutput(const QString &value)
{
    const QString target = nextTarget(value);
    const auto output = std::make_shared<ParquetOutput>(target, [this, target] {
        return runIsGood() && MainUI::displayOutOfDiskSpace(target, getIdx(), true);
    });
    const QString message = output->open(m_run->columns, m_run->options, *m_run->compressor);
    m_run->outputs[value] = output;
    m_run->output = output;
    m_run->value = value;
    return message.isEmpty() || fail(message);
}

bool ActionWriteParquet::closeOutput(const QString &value)
{
    const QString message = m_run->outputs[value]->commit();
    m_run->outputs.remove(value);
    m_run->output.reset();
    return message.isEmpty() || fail(message);
}

/// Make `output` the file that the row belongs to.
bool ActionWriteParquet::chooseOutput(const OneRow *row)
{
    if (m_run->splitColumn < 0) {
        return m_run->output || openOutput(QString()); // the next segment
    }
    const QStringView text = row->textView(m_run->splitColumn);
    if (m_run->output && text == m_run->value) {
        return true;
    }
    const QString value = text.toString();
    if (m_run->isSorted && m_run->output && !closeOutput(m_run->value)) {
        return false;
    }
    const auto open = m_run->outputs.constFind(value);
    if (open == m_run->outputs.constEnd()) {
        return openOutput(value);
    }
    m_run->output = *open;
    m_run->value = value;
    return true;
}

bool ActionWriteParquet::writeRow(const OneRow *row)
{
    if (!chooseOutput(row)) {
        return false;
    }
    if (const QString message = m_run->output->addRow(row->getAllColForWrite());
        !message.isEmpty()) {
        return fail(message);
    }
    const bool isSegmentFull = isSplit() && static_cast<double>(m_run->output->bytesWritten()) >
                                                m_params.segmentSize * kBytesPerMiB;
    return !isSegmentFull || closeOutput(m_run->value);
}

bool ActionWriteParquet::step()
{
    while (!yieldRequested()) {
        const OneRow *const row = getNextRowFromInPin(0);
        if (row == nullptr) {
            const bool isGood = runIsGood() && (!m_run->isFirst || begin(getInputColumns(0)));
            m_run->isComplete = isGood;
            return false;
        }
        if (m_run->isFirst && !begin(row)) {
            return false;
        }
        if (m_run->filter.isWanted(*row) && !writeRow(row)) {
            return false;
        }
    }
    return true;
}

void ActionWriteParquet::finish()
{
    if (!m_run) {
        return;
    }
    const bool isOwnFailure = m_errorFlag != 0;
    QStringList values = m_run->outputs.keys();
    values.sort();
    for (const QString &value : values) {
        if (m_run->isComplete && runIsGood()) {
            closeOutput(value);
        } else if (!isOwnFailure) {
            m_run->outputs[value]->discard();
        }
    }
    m_run.reset();
}

} // namespace corvanta
