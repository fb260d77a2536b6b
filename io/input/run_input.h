// An input file whose reads fail once the run has ended, so that a long read ends with the run.
//
// The file is not at fault then: check ActionBase::runIsGood() before reporting the failure.
// Threads: one at a time, but getProgress() of `file` from any.
#pragma once
#include "corvanta/action_item.h"
#include "io/input/input_file.h"

namespace corvanta {

/// A source for decoders, which know nothing of runs.
class RunInput final : public ByteSource
{
public:
    /// Open `name` (already expanded); see InputFile and check file.isOpen(). `control` must
    /// outlive this object.
    RunInput(GlobalParameters *parameters, const RunControl &control, const QString &name,
             bool shared, InputFile::Report report = InputFile::Report::Failure)
        : file(parameters, name, shared, report)
        , m_control(control)
    {
    }
    qint64 read(void *buffer, qint64 n) override
    {
        return m_control.isRunning() ? file.read(buffer, n) : -1;
    }
    qint64 size() override { return file.size(); }
    bool seek(qint64 offset) override { return file.seek(offset); }

    /// For what a source does not have: kind, name, progress and failure.
    InputFile file;

private:
    const RunControl &m_control;
};

} // namespace corvanta
