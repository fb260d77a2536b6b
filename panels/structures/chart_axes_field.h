// Edits the axes of a chart: for each kind of data that its type has, the input pin and the column.
//
// Axes count by their place. Those that the type does not have are kept. Threads: the GUI thread.
#pragma once
#include "panels/field_editor.h"
#include "panels/structures/element.h"

#include <QCoreApplication>

#include <vector>

class QComboBox;
class QGridLayout;
class QLabel;

namespace corvanta {

class ChartAxesField final : public FieldEditor
{
    Q_DECLARE_TR_FUNCTIONS(corvanta::ChartAxesField)

public:
    /// `type` returns the number of the type of the chart that is shown.
    ChartAxesField(const FieldContext &context, std::function<int()> type);
    ParameterProblem problem() const override;
    void refreshContext() override;
    bool isWide() const override { return true; }

protected:
    void setValue(const QString &value) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    struct Row
    {
        QLabel *title = nullptr;
        QComboBox *pin = nullptr;
        QComboBox *column = nullptr;
    };

    Row makeRow();
    /// Put the titles left of the boxes, or above them.
    void place(bool isAbove);
    /// Show the rows of the type, with their titles.
    void showRows();
    /// Offer the pins of the action and the columns of the chosen pin.
    void offer(const Row &row);
    /// Take an edit of the row.
    void take(size_t row, Edit kind);

    std::function<int()> m_type;
    QGridLayout *m_grid;
    std::vector<Row> m_rows; // as many as any type has
    size_t m_shown = 0;      // of them
    std::vector<Element> m_axes;
};

} // namespace corvanta
