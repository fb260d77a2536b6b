// The whole graph in small, in a corner of the canvas; a click or drag moves the visible part.
// Threads: the GUI thread.
#pragma once
#include <QTimer>
#include <QWidget>

namespace corvanta::studio {

class CanvasView;

class Overview final : public QWidget
{
    Q_OBJECT

public:
    /// A child of `view`, hidden at first.
    explicit Overview(CanvasView &view);
    QSize sizeHint() const override { return {200, 140}; }

protected:
    // The scene reports its changes only while the overview is shown: it costs time.

    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    /// Draws the nodes and the visible part.
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override { goTo(event); }
    void mouseMoveEvent(QMouseEvent *event) override { goTo(event); }

private:
    /// From the scene to this widget.
    QTransform mapping() const;
    void goTo(const QMouseEvent *event);

    CanvasView &m_view;
    QMetaObject::Connection m_changes;
    QTimer m_timer; // draws soon after a change, not after each
};

} // namespace corvanta::studio
