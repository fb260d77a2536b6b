// The variables of a graph, as a table that is edited in place.
#pragma once
#include <QPointer>
#include <QWidget>

class QLabel;
class QTableWidget;

namespace corvanta::studio {

class GraphDocument;

/// The last row is empty: typing a name there adds a variable. Delete removes the selected ones.
/// Every change is one step of the undo stack. Threads: the GUI thread.
class VariableTable final : public QWidget
{
    Q_OBJECT

public:
    explicit VariableTable(QWidget *parent = nullptr);
    /// Show a document; null for none.
    void setDocument(GraphDocument *document);
    /// Put the keyboard focus on the table.
    void startEditing();

private:
    /// Show all variables and an empty row.
    void fill();
    /// Add a row at the end; an empty name is the row for a new variable.
    void addRow(const QString &name, const QString &value);
    /// A cell was edited: `row` and `column` count from 0.
    void apply(int row, int column);
    /// Why a variable cannot have this name; empty if it can. `oldName` is its name so far.
    QString problemOf(const QString &name, const QString &oldName) const;
    /// The name of the variable of a row; empty for a row that is not in the graph yet.
    QString nameInGraph(int row) const;
    /// Show the name of a row, and remember that the graph has it.
    void setRowName(int row, const QString &name);
    /// Set or rename a variable, as one step.
    void setVariable(const QString &oldName, const QString &name, const QString &value);
    /// Remove the variable of the current row.
    void removeSelected();

    QPointer<GraphDocument> m_document;
    QTableWidget *m_table;
    QLabel *m_problem;
    bool m_isApplying = false; // an edit of the table itself
};

} // namespace corvanta::studio
