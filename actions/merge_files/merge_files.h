// mergeFiles: joins files of one format to one file without making rows.
//
// The action opens the parts and the target and words the messages; a PartMerger of codecs joins
// the bytes. Output pin 0 has a row per part.
#pragma once
#include "actions/merge_files/merge_files_params.h"
#include "codecs/merge/part_merger.h"
#include "corvanta/action_base.h"
#include "corvanta/params/file_facts.h"
#include "corvanta/target_file.h"

#include <atomic>
#include <memory>

namespace corvanta {

extern const ActionEntry kMergeFilesEntry;

namespace parquet {
class FileMerger;
}

/// A failed or stopped run leaves an existing file unchanged. Parts are read twice, so they cannot
/// be pipes. Threads: the one that runs the action; computeCompletion() from any.
class ActionMergeFiles final : public ParamAction<ActionMergeFiles, MergeFilesParams>,
                               public FileFacts
{
public:
    ActionMergeFiles(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<MergeFilesParams> &paramTable() { return mergeFilesParamTable(); }
    /// By parts: their columns are read first, then their rows.
    float computeCompletion() override { return m_fraction.load(std::memory_order_relaxed); }
    QStringList inputs() const override { return partNames(); }
    QVector<ParameterProblem> problems() const override;
    QString reasonToDecode() override;

private:
    void start() override;
    bool step() override;
    void finish() override;

    QStringList partNames() const;
    // Functions that return a bool return false when the run has failed or ended.
    bool prepare();
    bool openTarget();
    bool readColumns();
    bool copyRows();
    bool complete();
    /// Null after a failure.
    std::unique_ptr<ByteSource> openPart(const QString &name);
    bool failPart(const QString &name, const Fault<MergeError> &fault, const QString &reason);
    bool failWriting();
    void warnOfFindings();
    void putRow(const QString &name, qint64 rows);
    void addFraction();

    // State of a run; finish() resets it.
    QString m_fileName;
    QStringList m_names;
    std::unique_ptr<PartMerger> m_merger;
    parquet::FileMerger *m_parquet = nullptr; // m_merger if it is one
    TargetFile m_target;
    qsizetype m_done = 0; // parts, of twice their number
    qint64 m_rows = 0;
    std::atomic<float> m_fraction = 0;
};

} // namespace corvanta
