// A message above the canvas with buttons for what can be done about it. It blocks nothing.
#pragma once
#include <QFrame>

#include <functional>

class QHBoxLayout;
class QLabel;

namespace corvanta::studio {

/// Shows one message at a time; hidden without one. Threads: the GUI thread.
class MessageBar final : public QFrame
{
    Q_OBJECT

public:
    /// A button of the message. It hides the message and calls `run`.
    struct Choice
    {
        QString text;
        std::function<void()> run = {}; ///< empty: only hide the message
    };

    explicit MessageBar(QWidget *parent = nullptr);
    /// Replace the message. `text` is plain text.
    void show(const QString &text, const QVector<Choice> &choices);

private:
    /// Add a button at the end.
    void addButton(const Choice &choice);

    QLabel *m_text;
    QHBoxLayout *m_layout;
};

} // namespace corvanta::studio
