// A button that starts work in the background, with a progress bar, a button that stops it, and a
// line for its result.
//
// Threads: the GUI thread.
#pragma once
#include "corvanta/edit/worker.h"
#include "panels/background/log_lines.h"

#include <QCoreApplication>
#include <QWidget>

class QProgressBar;
class QPushButton;

namespace corvanta {

class TaskRow final : public QWidget
{
    Q_DECLARE_TR_FUNCTIONS(corvanta::TaskRow)

public:
    /// `text` is that of the button, `description` what it does. `clicked` calls run().
    TaskRow(const QString &text, const QString &description, std::function<void()> clicked);
    /// Do the work and show progress. Its result calls setNote().
    void run(Worker::Work work);
    void setNote(const Note &note);

private:
    /// Show either the button or the progress. The focus stays in the row.
    void showRunning(bool isRunning);
    void stop();

    Worker m_worker;
    QPushButton *m_start;
    QProgressBar *m_progress;
    QPushButton *m_stop;
    NoteLabel *m_note;
};

} // namespace corvanta
