#include "panels/background/task_row.h"

#include <QHBoxLayout>
#include <QProgressBar>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace corvanta {

TaskRow::TaskRow(const QString &text, const QString &description, std::function<void()> clicked)
    : m_start(new QPushButton(text))
    , m_progress(new QProgressBar)
    , m_stop(new QPushButton(tr("Stop")))
    , m_note(new NoteLabel)
{
    auto *const column = new QVBoxLayout(this);
    auto *const row = new QHBoxLayout;
    column->setContentsMargins(0, 0, 0, 0);
    column->addLayout(row);
    column->addWidget(m_note);
    row->addWidget(m_start);
    row->addWidget(m_progress, 1);
    row->addWidget(m_stop);
    row->addStretch(0);
    m_progress->setRange(0, 0); // how much there is to do is not known
    m_progress->setTextVisible(false);
    m_progress->setAccessibleName(text);
    m_start->setObjectName(u"start"_s);
    m_start->setAccessibleName(text);
    m_start->setAccessibleDescription(description);
    m_start->setToolTip(description);
    m_stop->setObjectName(u"stop"_s);
    m_stop->setAccessibleName(tr("Stop"));
    m_stop->setAccessibleDescription(tr("Stops the reading of the file; nothing is changed"));
    // A dialog must not make one of them its default button.
    m_start->setAutoDefault(false);
    m_stop->setAutoDefault(false);
    connect(m_start, &QPushButton::clicked, this, std::move(clicked));
    connect(m_stop, &QPushButton::clicked, this, [this] { stop(); });
    showRunning(false);
}

void TaskRow::run(Worker::Work work)
{
    setNote({});
    showRunning(true);
    // The row is idle again before the result is shown: that may call run().
    m_worker.start(
        [this, work = std::move(work)](const std::stop_token &stop) -> Worker::Show {
            return [this, show = work(stop)] {
                showRunning(false);
                show();
            };
        },
        [this](const QString &reason) {
            showRunning(false);
            setNote({NoteLabel::Kind::Error, reason});
        });
}

void TaskRow::setNote(const Note &note)
{
    m_note->setNote(note.kind, note.text);
}

/// The focus moves with the buttons. A hidden button would pass it to another field.
void TaskRow::showRunning(bool isRunning)
{
    const bool hasFocus = m_start->hasFocus() || m_stop->hasFocus();
    m_start->setVisible(!isRunning);
    m_progress->setVisible(isRunning);
    m_stop->setVisible(isRunning);
    if (hasFocus) {
        (isRunning ? m_stop : m_start)->setFocus();
    }
}

/// The row is idle immediately, even if the reading takes a moment to end.
void TaskRow::stop()
{
    m_worker.stop();
    showRunning(false);
    setNote({NoteLabel::Kind::Remark, tr("Stopped.")});
}

} // namespace corvanta
