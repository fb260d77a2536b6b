// The state of the runs of the current document for a status bar: what it does, the elapsed time
// and how much is done.
//
// Threads: the GUI thread.
#pragma once
#include <QPointer>
#include <QTimer>
#include <QWidget>

class QLabel;
class QProgressBar;

namespace corvanta::studio {

class RunController;

class RunStatus final : public QWidget
{
    Q_OBJECT

public:
    explicit RunStatus(QWidget *parent = nullptr);
    /// Show the runs of another document; null: nothing.
    void setController(RunController *controller);

private:
    void refresh();

    QPointer<RunController> m_controller;
    QLabel *m_text;
    QProgressBar *m_progress;
    QTimer m_clock; // the elapsed time changes without an event
};

} // namespace corvanta::studio
