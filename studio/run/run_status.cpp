// The controller reports changes; only the elapsed time needs a clock, which is stopped between
// runs.
#include "studio/run/run_status.h"

#include "studio/run/run_controller.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

RunStatus::RunStatus(QWidget *parent)
    : QWidget(parent)
    , m_text(new QLabel)
    , m_progress(new QProgressBar)
{
    constexpr int kClockMs = 200;
    constexpr int kProgressWidth = 120; // pixels
    setObjectName(u"runStatus"_s);
    m_text->setObjectName(u"runStatusText"_s);
    m_text->setAccessibleName(tr("State of the run"));
    m_progress->setObjectName(u"runProgress"_s);
    m_progress->setAccessibleName(tr("Progress of the run"));
    m_progress->setMaximumWidth(kProgressWidth);
    // Otherwise the start and the end of a run change the height of the canvas.
    QSizePolicy policy = m_progress->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    m_progress->setSizePolicy(policy);
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_text);
    layout->addWidget(m_progress);
    m_clock.setInterval(kClockMs);
    connect(&m_clock, &QTimer::timeout, this, &RunStatus::refresh);
    refresh();
}

/// Another tab has been chosen; its run may be running.
void RunStatus::setController(RunController *controller)
{
    if (m_controller != nullptr) {
        m_controller->disconnect(this);
    }
    m_controller = controller;
    if (controller != nullptr) {
        connect(controller, &RunController::statusChanged, this, &RunStatus::refresh);
        connect(controller, &RunController::runningChanged, this, &RunStatus::refresh);
    }
    refresh();
}

void RunStatus::refresh()
{
    const bool isRunning = m_controller != nullptr && m_controller->isRunning();
    const QString status = m_controller == nullptr ? QString() : m_controller->status();
    m_text->setText(isRunning ? u"%1 %2"_s.arg(status, elapsedText(m_controller->elapsedMs()))
                              : status);
    m_progress->setVisible(isRunning);
    if (isRunning) {
        // Without a known fraction the bar shows that something happens.
        const double fraction = m_controller->fraction();
        m_progress->setRange(0, fraction < 0 ? 0 : 100);
        m_progress->setValue(qRound(100 * fraction));
        m_clock.start();
    } else {
        m_clock.stop();
    }
}

} // namespace corvanta::studio
