// Reads columns of Parquet files before the rows are delivered, for what their footers do not say:
// whether numbers hold all integers, and whether texts of dates and times have their usual form.
#pragma once
#include "codecs/parquet/read/table_reader.h"
#include "corvanta/action_base.h"
#include "corvanta/action_parameters.h"

namespace corvanta {

/// Threads: one at a time. Failures are not reported: the run reads the same files.
class ColumnScan
{
public:
    /// Files are read as `action` reads them, as long as `control` says that the run is good.
    ColumnScan(const ActionBase &action, const RunControl &control)
        : m_action(action)
        , m_control(control)
    {
    }

    /// Add the 64-bit integer columns of a file to options.textIntegers or options.smallIntegers,
    /// if its statistics do not say that they are small. Reads the values of the others.
    void addIntegers(const QString &name, parquet::ReadOptions *options) const;

    /// What the columns of the files are that `options` select, by the schema of the first one.
    /// With All, columns of dates and times with a text of another form are texts. Nothing if the
    /// first file cannot be read.
    std::optional<QVector<ColumnKind>> kindsOf(const QStringList &names,
                                               const parquet::ReadOptions &options,
                                               ActionParameters::KindExtent extent) const;

private:
    std::unique_ptr<ByteSource> open(const QString &name) const;
    bool areSmall(ByteSource &source, const QString &column) const;
    /// What the columns of a file are by its schema. Nothing if it cannot be read.
    std::optional<QVector<ColumnKind>> kindsIn(const QString &name,
                                               const parquet::ReadOptions &options) const;

    const ActionBase &m_action;
    const RunControl &m_control;
};

} // namespace corvanta
