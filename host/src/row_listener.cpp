// An action that passes its rows to a function.
#include "corvanta/row_listener.h"

namespace corvanta {

RowListener::RowListener(Callback onRow)
    : ActionItem(XMLNode::emptyNode(), nullptr)
    , m_onRow(std::move(onRow))
{
    m_nPinOut = 0; // one input pin, as by default
}

void RowListener::prepareRun()
{
    m_runFunction = static_cast<RunFunction>(&RowListener::listen);
}

ActionItem *RowListener::newInstance(XMLNode *saved, GlobalParameters *)
{
    delete saved; // the contract transfers it
    return new RowListener(m_onRow);
}

bool RowListener::listen()
{
    // Does not yield: getNextRowFromInPin() returns null when the run ends.
    const OneRow *row = nullptr;
    do {
        row = getNextRowFromInPin(0);
        if (row == nullptr && !m_control->isRunning()) {
            return true; // not the end of the table
        }
        if (!m_onRow(getInputColumns(0)->schema(), row)) {
            // Do not hide a failure that happened since.
            int expected = RunControl::Running;
            m_control->runStatus.compare_exchange_strong(expected, RunControl::Stopped);
            return true;
        }
    } while (row != nullptr);
    return true;
}

QStringList textsOf(const OneRow &row)
{
    QStringList texts;
    for (int i = 0; i < row.numberOfColumns(); ++i) {
        texts << row.text(i);
    }
    return texts;
}

} // namespace corvanta
