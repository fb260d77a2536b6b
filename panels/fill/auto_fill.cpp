#include "panels/fill/auto_fill.h"

#include "corvanta/edit/edit_history.h"
#include "corvanta/main_ui.h"
#include "panels/background/task_row.h"
#include "panels/fill/merge_elements.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

constexpr qsizetype kBeginningChars = 60; // of a table in the list

/// The parameter with the levels. -1 for actions that read sheets and have no levels.
int structureOf(const QVector<ParameterInfo> &infos)
{
    const auto found = std::find_if(infos.begin(), infos.end(), [](const ParameterInfo &info) {
        return info.type == ParameterInfo::Type::Structure;
    });
    return found == infos.end() ? -1 : static_cast<int>(found - infos.begin());
}

/// One line of the list of tables; `number` counts from 1.
QString describe(const InputTable &table, qsizetype number)
{
    const bool isSheet = table.rows == InputTable::kRowsNotKnown;
    QString text = isSheet || table.path.isEmpty()
                       ? u"%1: %2"_s.arg(QString::number(number), table.path)
                       : u"%1: %2 \u2013 %3"_s.arg(QString::number(number), table.path,
                                                   AutoFill::tr("columns: %1").arg(table.columns));
    if (!table.beginning.isEmpty()) {
        text += u" ("_s + table.beginning.left(kBeginningChars).simplified() + u')';
    }
    return text;
}

} // namespace

AutoFill::AutoFill(UpdateClassWidget *panel)
    : PanelExtra(panel)
    , m_parameters(panel->parameters())
    , m_infos(m_parameters->parameters())
    , m_elements(structureOf(m_infos))
{
    const bool hasElements = m_elements >= 0;
    m_row = new TaskRow(hasElements ? tr("Fill from the file") : tr("List the sheets"),
                        hasElements ? tr("Reads the beginning of the file and adds the levels and "
                                         "columns that are missing")
                                    : tr("Lists the sheets of the file, to choose one"),
                        [this] { read(-1); });
    m_picker = makePicker();
    m_picker->setVisible(false);
    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_row);
    column->addWidget(m_picker);
}

/// Shown only for a file with several tables.
QWidget *AutoFill::makePicker()
{
    auto *const picker = new QWidget;
    auto *const row = new QHBoxLayout(picker);
    auto *const label = new QLabel(m_elements >= 0 ? tr("Table:") : tr("Sheet:"));
    auto *const use = new QPushButton(tr("Use"));
    m_tables = new QComboBox;
    m_tables->setObjectName(u"tables"_s);
    m_tables->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_tables->setAccessibleName(tr("Tables of the file"));
    m_tables->setAccessibleDescription(tr("The table that is read"));
    m_tables->setToolTip(m_tables->accessibleName());
    use->setObjectName(u"use"_s);
    use->setAutoDefault(false);
    use->setAccessibleName(tr("Use the table"));
    use->setAccessibleDescription(tr("Sets the parameters that read the chosen table"));
    label->setBuddy(m_tables);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(label);
    row->addWidget(m_tables, 1);
    row->addWidget(use);
    connect(use, &QPushButton::clicked, this, [this] { read(m_tables->currentIndex()); });
    return picker;
}

/// Reads with a copy, because the user may edit the action while the file is read.
void AutoFill::read(int table)
{
    m_picker->setVisible(false);
    if (const QString reason = noFileReason(*m_parameters); !reason.isEmpty()) {
        m_row->setNote({NoteLabel::Kind::Remark, reason});
        return;
    }
    const auto copy = std::make_shared<const ActionCopy>(copyOf(*action()));
    m_row->run([this, copy, table](const std::stop_token &) -> Worker::Show {
        const FileFill fill = fillFromFile(*copy, table);
        return [this, fill] {
            if (fill.tables.size() > 1) {
                offer(fill.tables);
            } else {
                apply(fill);
            }
        };
    });
}

/// Nothing is filled in before the user has chosen a table.
void AutoFill::offer(const QVector<InputTable> &tables)
{
    m_tables->clear();
    for (qsizetype i = 0; i < tables.size(); ++i) {
        m_tables->addItem(describe(tables[i], i + 1));
        if (tables[i].isChosen) {
            m_tables->setCurrentIndex(static_cast<int>(i));
        }
    }
    m_picker->setVisible(true);
    m_tables->setFocus();
    const auto count = static_cast<int>(tables.size());
    m_row->setNote({NoteLabel::Kind::Remark,
                    m_elements >= 0 ? tr("The file has %n tables. Choose one.", nullptr, count)
                                    : tr("The file has %n sheets. Choose one.", nullptr, count)});
}

/// A file that cannot be read changes nothing.
void AutoFill::apply(const FileFill &fill)
{
    if (fill.problem.kind == NoteLabel::Kind::Error) {
        m_row->setNote(fill.problem);
    } else if (m_elements >= 0) {
        applyElements(fill);
    } else {
        applySettings(fill);
    }
}

/// Adds what is missing: levels and columns that the user has changed stay.
void AutoFill::applyElements(const FileFill &fill)
{
    const auto found =
        std::find_if(fill.values.begin(), fill.values.end(),
                     [this](const FileFill::Value &value) { return value.index == m_elements; });
    const QString existing = storedValue(*action(), m_elements);
    const bool hadItems = hasItems(m_infos[m_elements], existing);
    const MergedElements merged = mergeElements(
        m_infos[m_elements], existing, found == fill.values.end() ? QString() : found->value);
    QStringList lines{resultOf(merged)};
    const QString settings = labelsOf(fill).join(u", "_s);
    if (merged.items > 0) {
        // Existing levels were made with other settings.
        if (!settings.isEmpty()) {
            lines << (hadItems ? tr("Settings for new levels are not changed: %1")
                               : tr("Also set: %1"))
                         .arg(settings);
        }
        setSettings(hadItems ? FileFill() : fill);
        reportEdit(m_elements, merged.xml);
    }
    m_row->setNote({NoteLabel::Kind::Remark, lines.join(u'\n')});
}

/// A level that is not added is named: the user may want to remove the one in its place.
QString AutoFill::resultOf(const MergedElements &merged)
{
    QStringList lines;
    if (merged.items == 0) {
        lines << tr("Nothing new was found in the file.");
    } else if (merged.levels == 0) {
        lines << tr("Columns added: %1.").arg(merged.items);
    } else {
        lines << tr("Columns added: %1; new levels: %2.")
                     .arg(QString::number(merged.items), QString::number(merged.levels));
    }
    if (!merged.conflict.isEmpty()) {
        lines << tr("The level \u201c%1\u201d of the file is not added: another level is in its "
                    "place.")
                     .arg(merged.conflict);
    }
    return lines.join(u'\n');
}

/// A choice of a sheet.
void AutoFill::applySettings(const FileFill &fill)
{
    if (fill.values.isEmpty()) {
        m_row->setNote({NoteLabel::Kind::Remark, fill.tables.size() == 1
                                                     ? tr("The file has only this sheet.")
                                                     : tr("This sheet is read already.")});
        return;
    }
    setSettings(fill);
    const FileFill::Value &last = fill.values.last();
    reportEdit(last.index, last.value);
    const ParameterInfo &info = m_infos[last.index];
    const bool isUsed = m_parameters->failedCondition(info) == nullptr;
    m_row->setNote({isUsed ? NoteLabel::Kind::Remark : NoteLabel::Kind::Warning,
                    isUsed ? tr("Set: %1").arg(labelsOf(fill).join(u", "_s))
                           : tr("\u201c%1\u201d is set, but other settings ignore it.")
                                 .arg(labelsOf(fill).last())});
}

/// Not the levels: reportEdit() sets them last, and saves everything in one step.
void AutoFill::setSettings(const FileFill &fill)
{
    for (const FileFill::Value &value : fill.values) {
        if (value.index != m_elements) {
            m_parameters->setParameterValue(value.index, value.value);
        }
    }
}

/// One step for all parameters: the host saves the whole action.
void AutoFill::reportEdit(int index, const QString &value)
{
    m_parameters->setParameterValue(index, value);
    MainUI::parameterWasEdited(action(), {m_infos[index].name, value});
    panel()->refresh();
}

/// Without the levels, which are reported by their number.
QStringList AutoFill::labelsOf(const FileFill &fill) const
{
    QStringList labels;
    for (const FileFill::Value &value : fill.values) {
        if (value.index != m_elements) {
            labels << translated(m_infos[value.index].label);
        }
    }
    return labels;
}

} // namespace corvanta
