#include "panels/structures/chart_axes_field.h"

#include "codecs/charts/chart_kinds.h"
#include "corvanta/action_item.h"
#include "corvanta/main_ui.h"
#include "panels/basic_editors.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

constexpr auto kPin = "pinIdx"_L1;
constexpr auto kColumn = "column"_L1;
constexpr int kMaxPins = 1000; // that an action can have; a damaged graph may name any number

/// By the local names of DrawingML.
QString titleOf(QByteArrayView element)
{
    static const QHash<QByteArrayView, const char *> titles{
        {"cat", QT_TRANSLATE_NOOP("corvanta::ChartAxesField", "Categories")},
        {"val", QT_TRANSLATE_NOOP("corvanta::ChartAxesField", "Values")},
        {"xVal", QT_TRANSLATE_NOOP("corvanta::ChartAxesField", "X values")},
        {"yVal", QT_TRANSLATE_NOOP("corvanta::ChartAxesField", "Y values")},
        {"bubbleSize", QT_TRANSLATE_NOOP("corvanta::ChartAxesField", "Bubble sizes")},
        {"plus", QT_TRANSLATE_NOOP("corvanta::ChartAxesField", "Plus error bars")},
        {"minus", QT_TRANSLATE_NOOP("corvanta::ChartAxesField", "Minus error bars")},
    };
    return ChartAxesField::tr(titles.value(element, ""));
}

/// As an axis is that the user has not edited.
bool isNewAxis(const Element &axis, const ParameterInfo &list)
{
    return axis.xml() == newElement(list).xml();
}

} // namespace

ChartAxesField::ChartAxesField(const FieldContext &context, std::function<int()> type)
    : FieldEditor(context)
    , m_type(std::move(type))
    , m_grid(new QGridLayout(this))
{
    m_grid->setContentsMargins(0, 0, 0, 0);
    for (int i = 0; i < charts::kMaxAxes; ++i) {
        m_rows.push_back(makeRow());
    }
    place(false);
    setMainControl(m_rows.front().column);
    refreshContext();
}

ChartAxesField::Row ChartAxesField::makeRow()
{
    const Row row{new QLabel(this), new QComboBox(this), new QComboBox(this)};
    row.title->setBuddy(row.column);
    // The input may not have the column yet.
    row.column->setEditable(true);
    row.column->setInsertPolicy(QComboBox::NoInsert);
    // Long names must not widen the panel.
    row.column->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    row.column->lineEdit()->setPlaceholderText(tr("No data"));
    ignoreWheelWithoutFocus(row.pin);
    ignoreWheelWithoutFocus(row.column);
    const size_t index = m_rows.size();
    connect(row.pin, &QComboBox::currentIndexChanged, this,
            [this, index] { take(index, Edit::Step); });
    connect(row.column, &QComboBox::editTextChanged, this,
            [this, index] { take(index, Edit::Typing); });
    return row;
}

/// Next to a title and a pin, the names of columns would be cut in a narrow panel.
void ChartAxesField::resizeEvent(QResizeEvent *event)
{
    FieldEditor::resizeEvent(event);
    place(isNarrow(*this, width()));
}

void ChartAxesField::place(bool isAbove)
{
    int line = 0;
    const int first = isAbove ? 0 : 1; // column of the grid that has the pins
    for (const Row &row : m_rows) {
        for (QWidget *const part :
             std::initializer_list<QWidget *>{row.title, row.pin, row.column}) {
            m_grid->removeWidget(part);
        }
        m_grid->addWidget(row.title, line, 0, 1, isAbove ? 2 : 1);
        line += isAbove ? 1 : 0;
        m_grid->addWidget(row.pin, line, first);
        m_grid->addWidget(row.column, line++, first + 1);
    }
    m_grid->setColumnStretch(1, isAbove ? 1 : 0);
    m_grid->setColumnStretch(2, isAbove ? 0 : 1);
}

void ChartAxesField::refreshContext()
{
    for (const Row &row : m_rows) {
        offer(row);
    }
}

void ChartAxesField::offer(const Row &row)
{
    const QSignalBlocker pinBlocker(row.pin);
    const QSignalBlocker columnBlocker(row.column);
    const int pin = row.pin->currentIndex();
    const int pins = qMax(context().action->pinInCount(), pin + 1); // a saved pin is kept
    while (row.pin->count() < pins) {
        row.pin->addItem(tr("Pin %1").arg(row.pin->count()));
    }
    // Filling the list would replace what the user has typed.
    const QString text = row.column->currentText();
    row.column->clear();
    row.column->addItems(MainUI::inputColumns(context().action, qMax(0, pin)).names);
    row.column->setEditText(text);
}

void ChartAxesField::showRows()
{
    const auto axes = charts::axisElements(static_cast<charts::ChartType>(
        qBound(0, m_type(), static_cast<int>(charts::ChartType::Radar))));
    // Hidden axes keep their data: the type may change back.
    m_shown = axes.size();
    for (size_t i = 0; i < m_rows.size(); ++i) {
        const Row &row = m_rows[i];
        const QString title = i < m_shown ? titleOf(axes[i]) : QString();
        row.title->setText(captionOf(title));
        nameControl(row.pin, tr("Input pin: %1").arg(title));
        nameControl(row.column, tr("Column: %1").arg(title));
        for (QWidget *const part :
             {static_cast<QWidget *>(row.title), static_cast<QWidget *>(row.pin),
              static_cast<QWidget *>(row.column)}) {
            part->setVisible(i < m_shown);
        }
    }
}

void ChartAxesField::setValue(const QString &value)
{
    m_axes = elementsOf(context().info, value);
    showRows();
    for (size_t i = 0; i < m_rows.size(); ++i) {
        const Element axis = i < m_axes.size() ? m_axes[i] : newElement(context().info);
        const int pin = qBound(0, memberValue(axis, context().info, kPin).toInt(), kMaxPins - 1);
        const QString column = memberValue(axis, context().info, kColumn);
        // A saved pin is shown even if the action has fewer pins now.
        while (m_rows[i].pin->count() <= pin) {
            m_rows[i].pin->addItem(tr("Pin %1").arg(m_rows[i].pin->count()));
        }
        const bool isOtherPin = m_rows[i].pin->currentIndex() != pin;
        m_rows[i].pin->setCurrentIndex(pin);
        if (isOtherPin) {
            offer(m_rows[i]);
        }
        // Setting an equal text would move the cursor while the user types.
        if (m_rows[i].column->currentText() != column) {
            m_rows[i].column->setEditText(column);
        }
    }
}

void ChartAxesField::take(size_t row, Edit kind)
{
    const ParameterInfo &list = context().info;
    std::vector<Element> axes = m_axes;
    while (axes.size() <= row) {
        axes.push_back(newElement(list));
    }
    setMember(&axes[row], *memberOf(list, kPin), QString::number(m_rows[row].pin->currentIndex()));
    setMember(&axes[row], *memberOf(list, kColumn), m_rows[row].column->currentText());
    // Without data at the end, the place of the others does not change.
    while (!axes.empty() && axes.size() > m_axes.size() && isNewAxis(axes.back(), list)) {
        axes.pop_back();
    }
    offer(m_rows[row]);
    report(valueOf(list, axes), kind);
}

ParameterProblem ChartAxesField::problem() const
{
    for (size_t i = 0; i < qMin(m_shown, m_axes.size()); ++i) {
        const int pin = memberValue(m_axes[i], context().info, kPin).toInt();
        const QString column = memberValue(m_axes[i], context().info, kColumn);
        const QVector<QString> known = MainUI::inputColumns(context().action, pin).names;
        // Without a linked input no column is known, so none is wrong.
        if (!known.isEmpty() && !column.isEmpty() && !known.contains(column)) {
            return {context().info.name,
                    tr("input pin %1 has no column '%2'").arg(QString::number(pin), column),
                    ParameterProblem::Severity::Warning};
        }
    }
    return {};
}

} // namespace corvanta
