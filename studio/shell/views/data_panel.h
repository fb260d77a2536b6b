// The rows of a pin of the selected action, with a choice of its pins.
#pragma once
#include "studio/document/graph_document.h"

#include <QPointer>
#include <QWidget>

class QComboBox;

namespace corvanta::studio {

class DataView;

/// Threads: the GUI thread.
class DataPanel final : public QWidget
{
    Q_OBJECT

public:
    /// `registry` must outlive the panel.
    explicit DataPanel(const ActionRegistry &registry, QWidget *parent = nullptr);
    /// Show the first output of an action or, without one, its first input; the pin that is shown
    /// stays if it belongs to the action. An empty id, or a null document: nothing.
    void showAction(GraphDocument *document, const QString &id);
    DataView *view() const { return m_view; }

private:
    /// The pin is the data of the item; outputs are counted before inputs.
    void fillPins();
    void showPin();

    QPointer<GraphDocument> m_document;
    QString m_id;
    QComboBox *m_pins;
    DataView *m_view;
};

} // namespace corvanta::studio
