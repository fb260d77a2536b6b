// The bar has the colours of tool tips, which differ from the window in every theme.
#include "studio/shell/views/message_bar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

MessageBar::MessageBar(QWidget *parent)
    : QFrame(parent)
    , m_text(new QLabel(this))
    , m_layout(new QHBoxLayout(this))
{
    setObjectName(u"messageBar"_s);
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::ToolTipBase);
    m_text->setObjectName(u"messageText"_s);
    // The text may contain a file name, which must not be read as HTML.
    m_text->setTextFormat(Qt::PlainText);
    m_text->setForegroundRole(QPalette::ToolTipText);
    m_text->setWordWrap(true);
    m_text->setMinimumWidth(1); // a long name must not widen the window
    m_layout->addWidget(m_text, 1);
    hide();
}

void MessageBar::show(const QString &text, const QVector<Choice> &choices)
{
    m_text->setText(text);
    setAccessibleName(text);
    // The choices of the message that is replaced.
    for (QPushButton *const button : findChildren<QPushButton *>()) {
        button->hide();
        button->deleteLater(); // the message may be replaced by a click on it
    }
    for (const Choice &choice : choices) {
        addButton(choice);
    }
    // Not show(), which has another meaning in this class.
    setVisible(true);
}

void MessageBar::addButton(const Choice &choice)
{
    auto *const button = new QPushButton(choice.text, this);
    m_layout->addWidget(button);
    connect(button, &QPushButton::clicked, this, [this, run = choice.run] {
        // First: what is run may show another message.
        hide();
        if (run) {
            run();
        }
    });
}

} // namespace corvanta::studio
