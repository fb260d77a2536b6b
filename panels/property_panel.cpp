#include "panels/property_panel.h"

#include "corvanta/action_item.h"
#include "corvanta/corvanta_graph.h"
#include "corvanta/edit/edit_history.h"
#include "corvanta/icons.h"
#include "corvanta/main_ui.h"
#include "corvanta/params/saved_form.h"
#include "panels/folding_group.h"
#include "panels/mnemonics.h"
#include "panels/note_label.h"

#include <QApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QScrollArea>
#include <QScrollBar>
#include <QShortcut>
#include <QStyle>
#include <QToolButton>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

using Type = ParameterInfo::Type;

constexpr int kPanelWidth = 460;            // preferred, in pixels
constexpr int kMaxLabelCharacters = 24;     // longer labels are wrapped
constexpr int kMaxConditionCharacters = 36; // longer texts of choices are cut in remarks
constexpr int kValidationDelayMs = 200;
constexpr int kScrollBarGap = 6;   // between the fields and the scroll bar
constexpr double kIconScale = 0.5; // 32 pixels

/// A label, meaning or choice of a parameter table in the language of the user.
QString translated(const QString &text)
{
    return QCoreApplication::translate("Parameters", text.toUtf8().constData());
}

/// The texts of a parameter in the language of the user.
ParameterInfo translatedInfo(ParameterInfo info)
{
    info.label = translated(info.label.isEmpty() ? info.name : info.label);
    info.meaning = translated(info.meaning);
    info.unit = info.unit.isEmpty() ? info.unit : translated(info.unit);
    for (QStringList *const texts : {&info.choices, &info.explanations}) {
        std::transform(texts->begin(), texts->end(), texts->begin(), translated);
    }
    return info;
}

/// The label before a field, with a colon unless it is a sentence.
QString caption(const QString &label)
{
    return label.endsWith(u':') || label.endsWith(u')') ? label : label + u':';
}

/// A value as a remark shows it.
QString valueText(const ParameterInfo &info, const QString &value)
{
    if (info.type == Type::Flag) {
        return value == "0"_L1 ? PropertyPanel::tr("off") : PropertyPanel::tr("on");
    }
    const QString text = info.choices.value(info.choices.isEmpty() ? -1 : value.toInt());
    const bool isLong = text.size() > kMaxConditionCharacters;
    return text.isEmpty() ? value
                          : u"\u201c%1\u201d"_s.arg(
                                isLong ? text.left(kMaxConditionCharacters - 1) + u'\u2026' : text);
}

/// The parameters that a layout names.
QSet<QString> namesIn(const PanelLayout &layout)
{
    QSet<QString> names;
    for (const PanelGroup &group : layout) {
        for (const PanelField &field : group.fields) {
            names.insert(field.parameter);
        }
    }
    return names;
}

} // namespace

PropertyPanel::PropertyPanel(QWidget *parent, ActionItem *action, const PanelLayout &layout)
    : UpdateClassWidget(parent, action)
    , m_parameters(dynamic_cast<ActionParameters *>(action))
    , m_scroll(new QScrollArea)
    , m_problem(new NoteLabel)
{
    // Layouts give their widgets to the panel, which deletes them. The heading does not scroll.
    auto *const column = new QVBoxLayout(this);
    column->addWidget(makeHeading());
    column->addWidget(m_problem);
    column->addWidget(m_scroll);
    m_scroll->setWidget(new QWidget);
    m_scroll->setWidgetResizable(true);
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scroll->setFocusPolicy(Qt::NoFocus);
    if (m_parameters != nullptr) {
        addGroups(layout);
    }

    m_validation.setSingleShot(true);
    m_validation.setInterval(kValidationDelayMs);
    connect(&m_validation, &QTimer::timeout, this, [this] { validate(); });
    auto *const help = new QShortcut(QKeySequence::HelpContents, this);
    help->setContext(Qt::WidgetWithChildrenShortcut);
    connect(help, &QShortcut::activated, this, [this] { this->action()->showHelp(); });
    // Text that is typed into one field without leaving it is one step.
    connect(qApp, &QApplication::focusChanged, this, [this] { m_series = 0; });
    alignLabels();
    updateMinimumWidth();
    refresh();
}

PropertyPanel::~PropertyPanel()
{
    // The base class hides the window, which moves the focus when this object is gone.
    disconnect(qApp, nullptr, this, nullptr);
}

void PropertyPanel::addGroups(const PanelLayout &layout)
{
    const QVector<ParameterInfo> infos = m_parameters->parameters();
    std::transform(infos.begin(), infos.end(), std::back_inserter(m_infos), translatedInfo);
    PanelLayout complete = layout;
    if (complete.empty() || qstrcmp(complete.back().title, kAdvancedGroup) != 0) {
        complete.push_back({kAdvancedGroup, {}, PanelGroup::Fold::Folded});
    }
    std::vector<PanelField> &advanced = complete.back().fields;
    const QSet<QString> named = namesIn(layout);
    for (const ParameterInfo &info : std::as_const(m_infos)) {
        if (!named.contains(info.name)) {
            advanced.push_back(PanelField(info.name));
        }
    }
    Mnemonics mnemonics;
    for (const PanelGroup &group : complete) {
        addGroup(group, mnemonics);
    }
    auto *const groups = new QVBoxLayout(m_scroll->widget());
    groups->setContentsMargins(0, 0, kScrollBarGap, 0);
    groups->setSpacing(4);
    for (FoldingGroup *const group : m_groups) {
        groups->addWidget(group);
    }
    groups->addStretch(1);
}

/// The icon, the type name and the description of the action, and a button for its help page.
QWidget *PropertyPanel::makeHeading()
{
    auto *const heading = new QWidget;
    auto *const layout = new QHBoxLayout(heading);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *const icon = new QLabel;
    icon->setPixmap(resizeIcon(*action()->getIcon(1), kIconScale));
    auto *const text = new QLabel(
        u"<b>%1</b><br>%2"_s.arg(QString::fromLatin1(action()->getTypeName()).toHtmlEscaped(),
                                 translated(action()->getDescription()).toHtmlEscaped()));
    text->setWordWrap(true);
    auto *const help = new QToolButton;
    help->setText(u"?"_s);
    help->setAutoRaise(true);
    help->setFocusPolicy(Qt::StrongFocus); // tool buttons are skipped by Tab otherwise
    help->setAccessibleName(tr("Help"));
    help->setToolTip(tr("Help (F1)"));
    help->setAccessibleDescription(tr("Opens the help page of the action"));
    connect(help, &QToolButton::clicked, this, [this] { action()->showHelp(); });
    layout->addWidget(icon);
    layout->addWidget(text, 1);
    layout->addWidget(help);
    return heading;
}

void PropertyPanel::addGroup(const PanelGroup &group, Mnemonics &mnemonics)
{
    if (group.fields.empty()) {
        return;
    }
    const QString title = QCoreApplication::translate("Panels", group.title);
    m_groups.push_back(new FoldingGroup(mnemonics.assign(title), this));
    const size_t index = m_groups.size() - 1;
    m_groups.back()->setToggled([this, index] {
        updateStatus(index);
        updateMinimumWidth();
    });
    for (const PanelField &field : group.fields) {
        addField(field, mnemonics);
    }
    m_groups.back()->setFolded(group.fold == PanelGroup::Fold::Folded);
}

void PropertyPanel::addField(const PanelField &field, Mnemonics &mnemonics)
{
    const int index = m_parameters->indexOfParameter(field.parameter);
    Q_ASSERT(index >= 0); // a layout names parameters of the table
    const ParameterInfo &info = m_infos[index];
    const FieldContext context{action(), m_parameters, info, info.label, info.meaning};
    Row row;
    row.index = index;
    row.group = m_groups.size() - 1;
    row.editor = field.make != nullptr ? field.make(context) : makeEditor(context);
    row.note = new NoteLabel;
    if (row.editor->showsLabel()) {
        row.editor->setLabel(mnemonics.assign(info.label));
    } else {
        row.label = new QLabel(mnemonics.assign(caption(info.label)));
        row.label->setWordWrap(true);
        row.label->setToolTip(toolTipOf(context));
        row.label->setBuddy(row.editor->focusProxy());
    }
    m_groups.back()->addField(row.label, row.editor, row.note);
    const size_t position = m_rows.size(); // rows move while the list grows
    row.editor->setEdited([this, position](const QString &value, FieldEditor::Edit kind) {
        edit(m_rows[position], value, kind);
    });
    m_rows.push_back(row);
}

void PropertyPanel::alignLabels()
{
    const int limit = fontMetrics().averageCharWidth() * kMaxLabelCharacters;
    int width = 0;
    // Long labels are wrapped at the limit; short ones decide the width otherwise.
    for (const Row &row : m_rows) {
        if (row.label != nullptr && !row.editor->isWide()) {
            row.label->setWordWrap(false); // for its natural width
            width = qMax(width, qMin(limit, row.label->sizeHint().width()));
            row.label->setWordWrap(true);
        }
    }
    for (const Row &row : m_rows) {
        if (row.label != nullptr && !row.editor->isWide()) {
            row.label->setFixedWidth(width);
        }
    }
    for (FoldingGroup *const group : m_groups) {
        group->setLabelWidth(width);
    }
}

void PropertyPanel::updateMinimumWidth()
{
    const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    m_scroll->setMinimumWidth(m_scroll->widget()->minimumSizeHint().width() + bar);
}

QSize PropertyPanel::sizeHint() const
{
    // The hint of a scroll area does not depend on its content.
    const QWidget *const content = m_scroll->widget();
    const int width = qMax(kPanelWidth, minimumSizeHint().width());
    const QMargins margins = layout()->contentsMargins();
    const int inner = width - margins.left() - margins.right();
    const int above = layout()->sizeHint().height() - m_scroll->sizeHint().height();
    const int fields = content->layout()->hasHeightForWidth()
                           ? content->layout()->heightForWidth(inner)
                           : content->sizeHint().height();
    return {width, qMin(kMaxHeight, above + fields)};
}

void PropertyPanel::changeEvent(QEvent *event)
{
    UpdateClassWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        alignLabels();
        updateMinimumWidth();
    }
}

// ---- Values

void PropertyPanel::refresh()
{
    for (Row &row : m_rows) {
        row.editor->refreshContext();
        row.editor->showValue(storedValue(*action(), row.index));
        row.rejected.clear();
    }
    validate();
}

void PropertyPanel::edit(Row &row, const QString &value, FieldEditor::Edit kind)
{
    static int lastSeries = 0; // numbers are used once per program
    // An equal value is not a change: it must not mark the document as modified.
    const bool isSame = m_parameters->parameterValue(row.index) == value;
    const ParameterInfo &info = m_infos[row.index];
    // A rejected text stays in its field, so that the user can correct it.
    const bool isTaken = isSame || m_parameters->setParameterValue(row.index, value);
    row.rejected = isTaken ? QString() : tr("expected %1").arg(allowedValues(info));
    row.isEdited = true;
    if (isTaken && !isSame) {
        m_series = m_series == 0 ? ++lastSeries : m_series;
        MainUI::parameterWasEdited(
            action(), {info.name, value, kind == FieldEditor::Edit::Typing ? m_series : 0});
    }
    updateRows();
    m_validation.start();
}

void PropertyPanel::validate()
{
    m_validation.stop();
    if (m_parameters == nullptr) {
        return;
    }
    const QVector<ParameterProblem> problems = valueProblems(*action());
    for (Row &row : m_rows) {
        row.problem = problemOf(row, problems);
        row.editor->showProblem(row.problem);
    }
    // Of the whole action, or of a value that has no field.
    const auto general =
        std::find_if(problems.begin(), problems.end(), [this](const ParameterProblem &problem) {
            return infoOf(problem.parameter) == nullptr;
        });
    m_problem->setNote(NoteLabel::Kind::Error,
                       general == problems.end() ? QString() : general->text);
    updateRows();
}

ParameterProblem PropertyPanel::problemOf(const Row &row,
                                          const QVector<ParameterProblem> &problems) const
{
    const ParameterInfo &info = m_infos[row.index];
    const QString value = action()->expandString(m_parameters->parameterValue(row.index));
    const auto error = [&](const QString &text) {
        return ParameterProblem{info.name, text, ParameterProblem::Severity::Error};
    };
    if (!row.rejected.isEmpty()) {
        return error(row.rejected);
    }
    // A value that is not used cannot be wrong.
    if (m_parameters->failedCondition(info) != nullptr) {
        return {};
    }
    if (info.isRequired && value.trimmed().isEmpty()) {
        return error(tr("A value is required"));
    }
    if (!isAllowedValue(info, value)) {
        return error(tr("expected %1").arg(allowedValues(info)));
    }
    const auto found =
        std::find_if(problems.begin(), problems.end(), [&](const ParameterProblem &problem) {
            return problem.parameter == info.name;
        });
    return found != problems.end() ? *found : row.editor->problem();
}

void PropertyPanel::updateRows()
{
    for (Row &row : m_rows) {
        const auto *const failed = m_parameters->failedCondition(m_infos[row.index]);
        row.condition = failed == nullptr ? QString() : conditionText(*failed);
        row.editor->setEnabled(failed == nullptr);
        if (row.label != nullptr) {
            row.label->setEnabled(failed == nullptr);
        }
    }
    for (size_t i = 0; i < m_rows.size(); ++i) {
        // Neighbours with the same reason share one remark.
        const bool isLast = i + 1 == m_rows.size() || m_rows[i + 1].group != m_rows[i].group ||
                            m_rows[i + 1].condition != m_rows[i].condition;
        showNote(m_rows[i], isLast);
    }
    // The numbers in the headings depend on all rows.
    for (size_t i = 0; i < m_groups.size(); ++i) {
        updateStatus(i);
    }
}

void PropertyPanel::showNote(Row &row, bool showsCondition)
{
    const bool isMissing = m_infos[row.index].isRequired && !row.isEdited &&
                           m_parameters->parameterValue(row.index).isEmpty();
    if (!row.problem.text.isEmpty() && row.condition.isEmpty()) {
        const bool isError = row.problem.severity == ParameterProblem::Severity::Error;
        // A new action is not a mistake yet.
        row.note->setNote(isMissing ? NoteLabel::Kind::Remark
                          : isError ? NoteLabel::Kind::Error
                                    : NoteLabel::Kind::Warning,
                          row.problem.text);
    } else {
        row.note->setNote(NoteLabel::Kind::Remark, showsCondition ? row.condition : QString());
    }
}

/// The heading of a folded group says what the user does not see.
void PropertyPanel::updateStatus(size_t group)
{
    int set = 0;
    int problems = 0;
    for (const Row &row : m_rows) {
        if (row.group == group) {
            set += m_parameters->parameterValue(row.index) != m_infos[row.index].defaultValue;
            problems += !row.problem.text.isEmpty() &&
                        row.problem.severity == ParameterProblem::Severity::Error;
        }
    }
    FoldingGroup *const box = m_groups[group];
    // Of an unfolded group the user sees the fields themselves.
    if (!box->isFolded()) {
        box->setStatus({}, false);
    } else if (problems > 0) {
        box->setStatus(tr("%n problem(s)", nullptr, problems), true);
    } else {
        box->setStatus(set > 0 ? tr("%n value(s) set", nullptr, set) : QString(), false);
    }
}

QString PropertyPanel::conditionText(const ParameterInfo::Condition &condition) const
{
    QStringList parts;
    for (const ParameterInfo::Condition &rule :
         QVector<ParameterInfo::Condition>{condition} + condition.alternatives) {
        const ParameterInfo &info = *infoOf(rule.parameter);
        QStringList values;
        for (const QString &value : rule.values) {
            values << (value.isEmpty() ? tr("empty") : valueText(info, value));
        }
        const QString list = values.join(tr(" or "));
        parts << (rule.isExcluded ? tr("\u201c%1\u201d is not %2") : tr("\u201c%1\u201d is %2"))
                     .arg(info.label, list);
    }
    return tr("Used only when %1").arg(parts.join(tr(" or ")));
}

const ParameterInfo *PropertyPanel::infoOf(const QString &name) const
{
    const auto found = std::find_if(m_infos.begin(), m_infos.end(),
                                    [&](const ParameterInfo &info) { return info.name == name; });
    return found == m_infos.end() ? nullptr : &*found;
}

} // namespace corvanta
