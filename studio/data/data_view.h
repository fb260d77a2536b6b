// Shows the rows of a pin of a document as a table, with search, and a summary of its columns.
//
// It follows the edits of the document a moment later, while it is visible. Rows are read in the
// background (PinReader).
// Threads: the GUI thread.
#pragma once
#include "studio/data/column_layout.h"
#include "studio/data/pin_reader.h"
#include "studio/data/rows_model.h"
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

class SummaryPanel;

class DataView final : public QWidget
{
    Q_OBJECT

public:
    /// `registry` must outlive the view.
    explicit DataView(const ActionRegistry &registry, QWidget *parent = nullptr);

    /// Show the pin of a document that was shown last; a null document: nothing.
    void setDocument(GraphDocument *document);
    /// Show the first output pin of an action of the document, or its first input pin. The pin that
    /// is shown stays if it is one of the action, or if there is no such action.
    void showAction(const QString &id);
    void showPin(const PinRef &pin, EngineRunner::PinType type);
    /// A run has written these files: forget the rows that were read from them.
    void filesWritten(const QStringList &files);
    /// The rows and columns of the selected cells as CSV, or all rows if at most one cell is
    /// selected; without the hidden columns, in the order of the view.
    QString selectedCsv() const;
    /// What is shown, for tests and other views.
    const PinReader &reader() const { return m_reader; }

protected:
    void showEvent(QShowEvent *event) override;

private:
    /// A pin of the document.
    struct ShownPin
    {
        PinRef pin;
        EngineRunner::PinType type = EngineRunner::PinOut;
        bool operator==(const ShownPin &) const = default;
    };

    // Called once, by the constructor.
    void makeBar();
    void makeSearch();
    void makePins();
    QAction *makeColumnsAction();
    void connectSummary();
    QWidget *makeFooter();

    // The pin.
    bool hasPin() const
    {
        return m_document != nullptr && m_document->contains(m_shown.pin.action);
    }
    /// The name of a pin in the list, such as "table: output 0".
    static QString titleOf(const ShownPin &shown);
    /// Update the view after edits of `document`, until another one is shown.
    void follow(GraphDocument *document);
    void renameAction(const QString &oldId, const QString &id);
    /// Show pin `index` of m_listed.
    void choosePin(int index);
    /// List the pins of the action again, because their number may have changed.
    void updatePins();
    QVector<ShownPin> pinsOfAction() const;
    /// Typing causes many edits; only the last one reads the rows again.
    void refreshLater() { m_delay.start(); }
    /// Read the pin if it has changed and the view is visible.
    void refresh();

    // What is read.
    /// The reader has begun with other rows.
    void showReplaced();
    /// The reader has more rows, or has ended.
    void showChanged();
    void showNewColumns();
    /// What the footer says: progress, the number of rows, or why there are none.
    QString noteText() const;
    /// How many rows of how many are shown.
    QString rowsText() const;

    /// Select the next cell with the text of m_search, and say if there is none.
    void find(RowsModel::Direction direction);
    /// Copy the text of one cell, or several as CSV.
    void copyCells() const;

    QPointer<GraphDocument> m_document;
    ShownPin m_shown;
    QVector<ShownPin> m_listed;                  // the pins of its action, in the order of m_pins
    QHash<const QObject *, ShownPin> m_lastPins; // by document
    PinReader m_reader;
    RowsModel m_rows;
    QTimer m_delay;          // from an edit to the update
    bool m_isFitted = false; // the columns have their widths

    QToolBar *m_bar;
    QComboBox *m_pins; // the output pins of the action, then its input pins
    QLineEdit *m_search;
    QLabel *m_found; // what the search has found
    QSplitter *m_splitter;
    QTableView *m_table;
    SummaryPanel *m_summary;
    ColumnLayout m_layout;
    QLabel *m_note;
    QAction *m_more = nullptr;
    QAction *m_stop = nullptr;
};

} // namespace corvanta::studio
