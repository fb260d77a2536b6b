// Edits a list of child elements without lists of their own in a table: a row per element, a column
// per member. For lists of many small elements, such as the columns of a level.
//
// A cell is edited in place, with suggestions where the owner has some. Attributes and elements
// that the parameter table does not know are kept. Threads: the GUI thread.
#pragma once
#include "panels/field_editor.h"
#include "panels/structures/element.h"

#include <QCoreApplication>

#include <vector>

class QTableWidget;
class QTableWidgetItem;

namespace corvanta {

class CellDelegate;
class NoteLabel;

class ElementTable : public FieldEditor
{
    Q_DECLARE_TR_FUNCTIONS(corvanta::ElementTable)

public:
    /// Names of the buttons.
    struct Texts
    {
        QString add;
        QString remove;
    };
    ElementTable(const FieldContext &context, const Texts &texts);

    /// Texts that a user can choose for a member; others can be typed.
    using Suggestions = std::function<QStringList(const ParameterInfo &member)>;
    void setSuggestions(Suggestions suggestions);
    /// Why the value of a member needs attention; an empty text: it does not.
    using Remark = std::function<QString(const Element &element, const ParameterInfo &member)>;
    void setRemark(Remark remark) { m_remark = std::move(remark); }

    ParameterProblem problem() const override;
    void refreshContext() override { updateCells(); }
    bool isWide() const override { return true; }

protected:
    // What an editor of one list can replace.

    /// An element that is only shown, because it has no value yet, is not reported.
    virtual bool isReported(const Element & /*element*/) const { return true; }
    /// The user has edited a cell of the element.
    virtual void cellEdited(Element * /*element*/) {}
    /// The user adds a row, or removes the current one.
    virtual void addRow();
    virtual void removeRow();

    const std::vector<Element> &elements() const { return m_elements; }
    /// Keep what the value has around its elements. setValue() does it.
    void keepWrapper(const QString &value) { m_wrapper = wrapperOf(context().info, value); }
    /// Show these elements without reporting them; the current cell stays current.
    void showElements(std::vector<Element> elements);
    void reportElements();
    /// Mark the cells again.
    void updateCells();
    /// Do not show the member of that name.
    void hideMember(const QString &name);
    /// Show the numbers of the rows, from 0. `toolTip` has them in the place of %1.
    void showRowNumbers(const QString &toolTip);
    /// The text of a cell without a value.
    void setEmptyText(const QString &text);

    void setValue(const QString &value) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void setUpTable();
    void setUpHeader();
    void updateMinimumWidth();
    /// Show what the values of the current column mean.
    void showMeaning();
    void updateCell(int row, int column);
    /// Take the text that the user has entered.
    void take(const QTableWidgetItem &cell);
    /// Move the current row; negative: up.
    void moveRow(int by);

    std::vector<Element> m_elements; // by row
    Element m_wrapper;               // of the value
    QTableWidget *m_table;
    CellDelegate *m_delegate;
    NoteLabel *m_meaning;
    QString m_rowToolTip; // empty: rows have no titles
    Remark m_remark = [](const Element &, const ParameterInfo &) { return QString(); };
};

} // namespace corvanta
