// The rows are not made again while a cell is edited: its editor would be closed.
#include "studio/shell/views/variable_table.h"

#include "studio/document/graph_document.h"

#include <QAction>
#include <QHeaderView>
#include <QLabel>
#include <QSignalBlocker>
#include <QTableWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

enum VariableColumn { VariableName, VariableValue };

constexpr int kNameRole = Qt::UserRole; // of a name: the one in the graph; empty for a new row

} // namespace

VariableTable::VariableTable(QWidget *parent)
    : QWidget(parent)
    , m_table(new QTableWidget(0, 2, this))
    , m_problem(new QLabel(this))
{
    setObjectName(u"variables"_s);
    m_table->setObjectName(u"variableTable"_s);
    m_table->setAccessibleName(tr("Variables of the graph"));
    m_table->setHorizontalHeaderLabels({tr("Name"), tr("Value")});
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->verticalHeader()->hide();
    m_table->setToolTip(tr("${NAME} in a file name or text is replaced by the value."));
    m_problem->setWordWrap(true);
    m_problem->hide();
    // Also in the context menu, for users who do not know the key.
    auto *const remove = new QAction(tr("Remove the variable"), m_table);
    remove->setObjectName(u"removeVariable"_s);
    remove->setStatusTip(tr("Remove the selected variable of the graph"));
    remove->setShortcut(QKeySequence::Delete);
    // In the editor of a cell the key deletes letters.
    remove->setShortcutContext(Qt::WidgetShortcut);
    m_table->addAction(remove);
    m_table->setContextMenuPolicy(Qt::ActionsContextMenu);
    connect(remove, &QAction::triggered, this, &VariableTable::removeSelected);
    connect(m_table, &QTableWidget::cellChanged, this, &VariableTable::apply);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(m_table);
    layout->addWidget(m_problem);
    fill();
}

void VariableTable::setDocument(GraphDocument *document)
{
    if (m_document != nullptr) {
        m_document->disconnect(this);
    }
    m_document = document;
    if (document != nullptr) {
        connect(document, &GraphDocument::variablesChanged, this, &VariableTable::fill);
        connect(document, &GraphDocument::reloaded, this, &VariableTable::fill);
    }
    fill();
}

void VariableTable::startEditing()
{
    m_table->setFocus(Qt::ShortcutFocusReason);
    if (m_table->currentRow() < 0) {
        m_table->setCurrentCell(0, VariableName);
    }
}

void VariableTable::fill()
{
    // The change comes from the table, which shows it already.
    if (m_isApplying) {
        return;
    }
    const QSignalBlocker blocker(m_table);
    const QTableWidgetItem *const current = m_table->item(m_table->currentRow(), VariableName);
    const QString name = current != nullptr ? current->text().trimmed() : QString();
    const int column = qMax(0, m_table->currentColumn());
    m_table->setRowCount(0);
    m_table->setEnabled(m_document != nullptr);
    if (m_document == nullptr) {
        return;
    }
    const QMap<QString, QString> &variables = m_document->variables();
    for (auto it = variables.begin(); it != variables.end(); ++it) {
        addRow(it.key(), it.value());
    }
    addRow({}, {});
    // After a rename or an undo the row may be another one.
    const auto same = m_table->findItems(name, Qt::MatchExactly);
    m_table->setCurrentCell(same.isEmpty() ? m_table->rowCount() - 1 : same.first()->row(), column);
}

void VariableTable::addRow(const QString &name, const QString &value)
{
    const int row = m_table->rowCount();
    m_table->insertRow(row);
    // Empty: setRowName() sets the name and the one in the graph together.
    m_table->setItem(row, VariableName, new QTableWidgetItem); // the table owns its items
    m_table->setItem(row, VariableValue, new QTableWidgetItem(value));
    setRowName(row, name);
}

void VariableTable::apply(int row, int column)
{
    const QString oldName = nameInGraph(row);
    const QString name = m_table->item(row, VariableName)->text().trimmed();
    const QString problem = column == VariableName ? problemOf(name, oldName) : QString();
    m_problem->setText(problem);
    m_problem->setVisible(!problem.isEmpty());
    // The rows stay while their editor is open.
    m_isApplying = true;
    if (problem.isEmpty()) {
        setVariable(oldName, name, m_table->item(row, VariableValue)->text());
    }
    m_isApplying = false;
    const QSignalBlocker blocker(m_table);
    // A refused name is replaced by the one in the graph.
    setRowName(row, problem.isEmpty() ? name : oldName);
    // The last row is where a new variable is typed.
    if (!nameInGraph(m_table->rowCount() - 1).isEmpty()) {
        addRow({}, {});
    }
}

QString VariableTable::problemOf(const QString &name, const QString &oldName) const
{
    if (name.contains(u'{') || name.contains(u'}')) {
        return tr("A name must not contain braces."); // it ends at the first one
    }
    if (name.isEmpty() && !oldName.isEmpty()) {
        return tr("A variable needs a name.");
    }
    return name != oldName && m_document->variables().contains(name)
               ? tr("There is a variable of this name already.")
               : QString();
}

QString VariableTable::nameInGraph(int row) const
{
    return m_table->item(row, VariableName)->data(kNameRole).toString();
}

void VariableTable::setRowName(int row, const QString &name)
{
    m_table->item(row, VariableName)->setData(kNameRole, name);
    m_table->item(row, VariableName)->setText(name);
}

void VariableTable::setVariable(const QString &oldName, const QString &name, const QString &value)
{
    if (name.isEmpty()) {
        return; // a value that has no name yet
    }
    // Renaming is two changes but one step.
    m_document->undoStack()->beginMacro(tr("Set variable %1").arg(name));
    if (!oldName.isEmpty() && oldName != name) {
        m_document->setVariable(oldName, QString());
    }
    // A null value would remove it.
    m_document->setVariable(name, value.isNull() ? u""_s : value);
    m_document->undoStack()->endMacro();
}

void VariableTable::removeSelected()
{
    const int row = m_table->currentRow();
    if (row >= 0 && !nameInGraph(row).isEmpty()) {
        m_document->setVariable(nameInGraph(row), QString());
    }
}

} // namespace corvanta::studio
