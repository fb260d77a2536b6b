// Shows the rows of a pin of a document as a table, with search, and a summary of its columns.
//
// It follows the edits of the document a moment later, while it is visible. Rows are read in the
// background (PinReader).
// Threads: the GUI thread.
#pragma once
#include "studio/data/pin_reader.h"
#include "studio/data/rows_model.h"
#include "studio/data/summary_model.h"
#include "studio/document/graph_document.h"

#include <QHash>
#include <QPointer>
#include <QWidget>

class QAction;
class QComboBox;
class QLabel;
class QLineEdit;
class QSplitter;
class QTableView;
class QToolBar;

namespace corvanta::studio {

class DataView final : public QWidget
{
    Q_OBJECT

public:
    /// `registry` must outlive the view.
    explicit DataView(const ActionRegistry &registry, QWidget *parent = nullptr);

    /// Show the pin of a document that was shown last; a null document: nothing.
    void setDocument(GraphDocument *document);
    /// Show the first output pin of an action of the document, or its first input pin.
    void showAction(const QString &id);
    void showPin(const PinRef &pin, EngineRunner::PinType type);
    /// A run has written these files: forget the rows that were read from them.
    void filesWritten(const QStringList &files);
    /// The selected cells as CSV, or all rows if at most one cell is selected; without the hidden
    /// columns, in the order of the view.
    QString selectedCsv() const;
    /// What is shown, for tests and other views.
    const PinReader &reader() const { return m_reader; }

protected:
    void showEvent(QShowEvent *event) override;

private:
    // Called once, by the constructor.
    void makeActions();
    void makeTable();
    QWidget *makeSummary();
    QWidget *makeFooter();
    QAction *addAction(const QString &name, const QString &text, const QKeySequence &shortcut,
                       const QString &tip);

    void refreshLater();
    void refresh();
    /// Offer the pins of the action, with the current one chosen.
    void updatePins();
    void renameAction(const QString &oldId, const QString &id);
    void showReplaced();
    void showChanged();
    QString noteText() const;
    void fitColumns();
    /// The numbers of the columns that are shown, in their order.
    QVector<int> shownColumns() const;
    void find(RowsModel::Direction direction);
    void showHeaderMenu(QPoint place);
    /// Move the current column of the summary by `step` places.
    void moveColumn(int step);
    void updateOrder();
    // The order and the hidden columns of the pin, by name, as long as the view exists.
    void saveLayout();
    void restoreLayout();

    struct ShownPin
    {
        PinRef pin;
        EngineRunner::PinType type = EngineRunner::PinOut;
    };
    /// Whether the shown pin is one of the document.
    bool hasPin() const
    {
        return m_document != nullptr && m_document->contains(m_shown.pin.action);
    }
    QString titleOf(const ShownPin &shown) const;

    QPointer<GraphDocument> m_document;
    ShownPin m_shown;
    QHash<const QObject *, ShownPin> m_lastPins; // by document
    PinReader m_reader;
    RowsModel m_rows;
    SummaryModel m_columns;
    QTimer m_delay; // from an edit to the update
    struct Layout
    {
        QStringList order;
        QStringList hidden;
    };
    QHash<QString, Layout> m_layouts; // by the title of the pin
    bool m_isFitted = false;          // the columns have their widths

    QToolBar *m_bar;
    QComboBox *m_pins;
    QLineEdit *m_search;
    QLabel *m_found; // what the search has found
    QSplitter *m_splitter;
    QTableView *m_table;
    QTableView *m_summary;
    QLabel *m_note;
    QAction *m_more = nullptr;
    QAction *m_stop = nullptr;
    QAction *m_all = nullptr;
    QAction *m_showAll = nullptr; // hidden columns
};

} // namespace corvanta::studio
