#include "studio/shell/views/data_panel.h"

#include "studio/data/data_view.h"

#include <QComboBox>
#include <QFormLayout>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

DataPanel::DataPanel(const ActionRegistry &registry, QWidget *parent)
    : QWidget(parent)
    , m_pins(new QComboBox(this))
    , m_view(new DataView(registry, this))
{
    setObjectName(u"data"_s);
    m_pins->setObjectName(u"dataPin"_s);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *const form = new QFormLayout;
    form->setContentsMargins(4, 4, 4, 0);
    form->addRow(tr("&Rows of:"), m_pins);
    layout->addLayout(form);
    layout->addWidget(m_view, 1);
    setFocusProxy(m_view);
    connect(m_pins, &QComboBox::activated, this, &DataPanel::showPin);
    showAction(nullptr, {});
}

void DataPanel::showAction(GraphDocument *document, const QString &id)
{
    const bool isSame = document == m_document && id == m_id;
    m_document = document;
    m_id = document != nullptr && document->contains(id) ? id : QString();
    const int pin = m_pins->currentIndex();
    fillPins();
    if (isSame && pin < m_pins->count()) {
        m_pins->setCurrentIndex(pin);
    }
    showPin();
}

void DataPanel::fillPins()
{
    m_pins->clear();
    m_pins->setEnabled(!m_id.isEmpty());
    if (m_id.isEmpty()) {
        return;
    }
    const auto addPin = [this](EngineRunner::PinType type, int pin, const QString &text) {
        m_pins->addItem(text.arg(m_id, QString::number(pin)), QPoint(type, pin));
    };
    for (int pin = 0; pin < m_document->outputCount(m_id); ++pin) {
        addPin(EngineRunner::PinOut, pin, tr("%1, output %2"));
    }
    for (int pin = 0; pin < m_document->inputCount(m_id); ++pin) {
        if (!m_document->linksTo({m_id, pin}).isEmpty()) {
            addPin(EngineRunner::PinIn, pin, tr("%1, input %2"));
        }
    }
}

void DataPanel::showPin()
{
    if (m_pins->currentIndex() < 0) {
        m_view->setPin(nullptr, {}, EngineRunner::PinOut);
        return;
    }
    const QPoint pin = m_pins->currentData().toPoint(); // type, number
    m_view->setPin(m_document, {m_id, pin.y()}, static_cast<EngineRunner::PinType>(pin.x()));
}

} // namespace corvanta::studio
