#include "panels/property_panel.h"

#include "corvanta/action_item.h"
#include "corvanta/corvanta_graph.h"
#include "corvanta/edit/edit_check.h"
#include "corvanta/edit/edit_history.h"
#include "corvanta/main_ui.h"
#include "corvanta/params/saved_form.h"
#include "panels/colors.h"
#include "panels/folding_group.h"
#include "panels/glyphs.h"
#include "panels/mnemonics.h"
#include "panels/note_label.h"
#include "panels/outline_style.h"
#include "panels/panel_heading.h"

#include <QAction>
#include <QApplication>
#include <QEvent>
#include <QLabel>
#include <QMenuBar>
#include <QScrollArea>
#include <QScrollBar>
#include <QShortcut>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

using Type = ParameterInfo::Type;

constexpr int kPanelWidth = 460;            // preferred, in pixels
constexpr int kMaxConditionCharacters = 80; // of the values in a remark
constexpr int kMaxDefaultCharacters = 40;   // in a menu
constexpr int kValidationDelayMs = 200;
constexpr int kScrollBarGap = 6; // between the fields and the scroll bar

/// The texts of a parameter and of its members in the language of the user.
ParameterInfo translatedInfo(ParameterInfo info)
{
    info.label = translated(info.label.isEmpty() ? info.name : info.label);
    info.meaning = translated(info.meaning);
    info.lowMeaning = translated(info.lowMeaning);
    for (QStringList *const texts : {&info.choices, &info.explanations}) {
        std::transform(texts->begin(), texts->end(), texts->begin(), translated);
    }
    std::transform(info.members.begin(), info.members.end(), info.members.begin(), translatedInfo);
    return info;
}

/// `text` as a sentence of its own begins.
QString capitalized(QString text)
{
    if (!text.isEmpty()) {
        text[0] = text[0].toUpper();
    }
    return text;
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

/// Letters that no menu of the host has. The panel is not in its window yet.
Mnemonics withoutMenus()
{
    Mnemonics mnemonics;
    for (const QWidget *const window : QApplication::topLevelWidgets()) {
        for (const QMenuBar *const bar : window->findChildren<QMenuBar *>()) {
            for (const QAction *const menu : bar->actions()) {
                mnemonics.reserve(menu->text());
            }
        }
    }
    return mnemonics;
}

} // namespace

PropertyPanel::PropertyPanel(QWidget *parent, ActionItem *action, const PanelLayout &layout)
    : UpdateClassWidget(parent, action)
    , m_parameters(parameters())
    , m_heading(new PanelHeading(action, this))
    , m_scroll(new QScrollArea)
    , m_problem(new NoteLabel)
{
    // Layouts give their widgets to the panel, which deletes them. The heading does not scroll.
    updatePalette();
    auto *const column = new QVBoxLayout(this);
    column->addWidget(m_heading);
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
    arrangeLabels(kPanelWidth);
    updateMinimumWidth();
    m_scroll->widget()->installEventFilter(this);
    refresh();
}

PropertyPanel::~PropertyPanel()
{
    // The base class hides the window, which moves the focus when this object is gone. A line of a
    // list that is being edited is an edit until then.
    if (QWidget *const control = focusWidget()) {
        control->clearFocus();
    }
    disconnect(qApp, nullptr, this, nullptr);
}

/// Parameters that no group names are in the advanced group, so that each has a field.
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
    Mnemonics mnemonics = withoutMenus();
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

void PropertyPanel::addGroup(const PanelGroup &group, Mnemonics &mnemonics)
{
    if (group.fields.empty() && group.extra == nullptr) {
        return;
    }
    const QString title = QCoreApplication::translate("Panels", group.title);
    m_groups.push_back(new FoldingGroup(mnemonics.assign(title), this));
    const size_t index = m_groups.size() - 1;
    m_groups.back()->setToggled([this, index] { updateStatus(index); });
    if (group.extra != nullptr) {
        m_extras.push_back(group.extra(this));
        m_groups.back()->addWidget(m_extras.back());
    }
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
        row.label = new QLabel(mnemonics.assign(captionOf(info.label)));
        row.label->setWordWrap(true);
        row.label->setToolTip(toolTipOf(context));
        row.label->setBuddy(row.editor->focusProxy());
    }
    const size_t position = m_rows.size(); // rows move while the list grows
    addReset(row, position);
    m_groups.back()->addField(row.label, row.editor, row.note, row.resetButton);
    row.editor->setEdited([this, position](const QString &value, FieldEditor::Edit kind) {
        edit(m_rows[position], value, kind);
    });
    m_rows.push_back(row);
}

/// A long default would make the menu too wide, so only a short one is shown.
void PropertyPanel::addReset(Row &row, size_t position)
{
    const ParameterInfo &info = m_infos[row.index];
    const QString value = shownValue(info, info.defaultValue);
    const bool isShort = !value.isEmpty() && value.size() <= kMaxDefaultCharacters &&
                         info.type != Type::Structure && !value.contains(u'\n');
    row.reset = new QAction(
        isShort ? tr("Reset to the default: %1").arg(value) : tr("Reset to the default"), this);
    row.resetButton = new QToolButton;
    showOutline(row.resetButton);
    row.resetButton->setIcon(glyphIcon(Glyph::Reset, palette().color(QPalette::ButtonText)));
    row.resetButton->setAutoRaise(true);
    row.resetButton->setFocusPolicy(Qt::StrongFocus); // tool buttons are skipped by Tab otherwise
    row.resetButton->setObjectName(u"reset"_s);
    row.resetButton->setToolTip(row.reset->text());
    row.resetButton->setAccessibleName(tr("Reset \u201c%1\u201d").arg(info.label));
    row.resetButton->setAccessibleDescription(row.reset->text());
    connect(row.resetButton, &QToolButton::clicked, row.reset, &QAction::trigger);
    connect(row.reset, &QAction::triggered, this, [this, position] { reset(m_rows[position]); });
    for (QWidget *const target : std::initializer_list<QWidget *>{row.label, row.editor}) {
        if (target != nullptr) {
            target->addAction(row.reset);
            target->setContextMenuPolicy(Qt::ActionsContextMenu);
        }
    }
}

/// One width in all groups, so that the fields of the panel are aligned.
void PropertyPanel::arrangeLabels(int panelWidth)
{
    int width = 0;
    for (const FoldingGroup *const group : m_groups) {
        width = qMax(width, group->longestLabel());
    }
    width = qMin(width, panelWidth / kLabelShare);
    const bool isLeft = !isNarrow(*this, panelWidth) && panelWidth >= widthWithLabels(width);
    const int arranged = isLeft ? width : 0;
    if (arranged == m_labelWidth) {
        return;
    }
    m_labelWidth = arranged;
    for (FoldingGroup *const group : m_groups) {
        group->setLabelWidth(arranged);
    }
}

int PropertyPanel::widthWithLabels(int labelWidth) const
{
    int width = 0;
    for (const FoldingGroup *const group : m_groups) {
        width = qMax(width, group->minimumWidth(labelWidth));
    }
    const QMargins margins = layout()->contentsMargins();
    return width + kScrollBarGap + style()->pixelMetric(QStyle::PM_ScrollBarExtent) +
           margins.left() + margins.right();
}

/// The fields do not scroll sideways, so the panel is never narrower than they are below their
/// labels.
void PropertyPanel::updateMinimumWidth()
{
    const QMargins margins = layout()->contentsMargins();
    m_scroll->setMinimumWidth(widthWithLabels(0) - margins.left() - margins.right());
}

QSize PropertyPanel::sizeHint() const
{
    // The hint of a scroll area does not depend on its content.
    const QWidget *const content = m_scroll->widget();
    const int width = qMax(kPanelWidth, minimumSizeHint().width());
    const QMargins margins = layout()->contentsMargins();
    const int inner = width - margins.left() - margins.right();
    // Before it is shown, layouts keep the sizes that they had first. Later they follow by events,
    // and to invalidate them would cause more events without an end.
    const QList<QLayout *> stale = isVisible() ? QList<QLayout *>() : findChildren<QLayout *>();
    for (QLayout *const inside : stale) {
        inside->invalidate();
    }
    int height = margins.top() + margins.bottom();
    if (content->layout() != nullptr) {
        height += content->layout()->heightForWidth(inner);
    }
    for (const QWidget *const above : std::initializer_list<QWidget *>{m_heading, m_problem}) {
        height += above->isHidden() ? 0 : above->heightForWidth(inner) + layout()->spacing();
    }
    return {width, qMin(kMaxHeight, height)};
}

/// The colors of a desktop may have too little contrast.
void PropertyPanel::updatePalette()
{
    const QPalette base =
        parentWidget() != nullptr ? parentWidget()->palette() : QApplication::palette(this);
    const QPalette readable = readablePalette(base);
    if (readable != palette()) { // setPalette() calls changeEvent()
        setPalette(readable);
    }
}

void PropertyPanel::changeEvent(QEvent *event)
{
    UpdateClassWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        updateMinimumWidth();
        arrangeLabels(width());
    } else if (event->type() == QEvent::PaletteChange) {
        updatePalette();
    }
}

void PropertyPanel::resizeEvent(QResizeEvent *event)
{
    UpdateClassWidget::resizeEvent(event);
    arrangeLabels(width());
}

/// The fields know their widths when they have been shown.
bool PropertyPanel::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::LayoutRequest) {
        updateMinimumWidth();
        arrangeLabels(width());
    }
    return UpdateClassWidget::eventFilter(watched, event);
}

// ---- Values

/// The values may have changed outside of the panel: rejected texts are replaced.
void PropertyPanel::refresh()
{
    for (Row &row : m_rows) {
        row.editor->refreshContext();
        row.editor->showValue(storedValue(*action(), row.index));
        row.rejected.clear();
    }
    showProblems();
    validate();
}

void PropertyPanel::edit(Row &row, const QString &value, FieldEditor::Edit kind)
{
    static int lastSeries = 0; // numbers are used once per program
    // An equal value is not a change: it must not mark the document as modified.
    const bool isSame = m_parameters->parameterValue(row.index) == value;
    const ParameterInfo &info = m_infos[row.index];
    // A rejected text stays in its field, so that the user can correct it.
    m_series = m_series == 0 ? ++lastSeries : m_series;
    const bool isTaken =
        isSame || editParameter(row.index, value, kind == FieldEditor::Edit::Typing ? m_series : 0);
    row.rejected = isTaken ? QString() : tr("expected %1").arg(allowedValues(info));
    row.isEdited = true;
    if (isTaken && !isSame) {
        for (const Row &other : m_rows) {
            other.editor->parameterEdited(info.name);
        }
    }
    showProblems(); // those that need no file; the others follow
    m_validation.start();
}

/// A required value without a default has nothing to be reset to.
bool PropertyPanel::hasOtherDefault(const Row &row) const
{
    const ParameterInfo &info = m_infos[row.index];
    const bool isSet =
        !row.rejected.isEmpty() || m_parameters->parameterValue(row.index) != info.defaultValue;
    return isSet && !(info.isRequired && info.defaultValue.isEmpty());
}

/// A step of its own, so that undo brings back the value before it.
void PropertyPanel::reset(Row &row)
{
    const QString value = m_infos[row.index].defaultValue;
    row.editor->showValue(value);
    row.editor->focusProxy()->setFocus(); // the button vanishes
    edit(row, value, FieldEditor::Edit::Step);
}

/// In another thread, because a check may open files.
void PropertyPanel::validate()
{
    m_validation.stop();
    if (m_parameters == nullptr) {
        return;
    }
    const auto show = [this](const QVector<ParameterProblem> &problems) {
        m_problems = problems;
        showProblems();
    };
    m_worker.start(
        [show, check = std::make_shared<EditCheck>(*action())](const std::stop_token &)
            -> Worker::Show { return [show, problems = check->problems()] { show(problems); }; },
        [show](const QString &reason) {
            show({ParameterProblem{{}, reason}});
        });
}

void PropertyPanel::showProblems()
{
    for (Row &row : m_rows) {
        row.problem = problemOf(row);
        row.editor->showProblem(row.problem);
        row.editor->actionChanged();
    }
    // Of the whole action, or of a value that has no field.
    const auto general =
        std::find_if(m_problems.begin(), m_problems.end(), [this](const ParameterProblem &problem) {
            return infoOf(problem.parameter) == nullptr;
        });
    m_problem->setNote(NoteLabel::Kind::Error,
                       general == m_problems.end() ? QString() : capitalized(general->text));
    updateRows();
}

ParameterProblem PropertyPanel::problemOf(const Row &row) const
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
        std::find_if(m_problems.begin(), m_problems.end(), [&](const ParameterProblem &problem) {
            return problem.parameter == info.name;
        });
    return found != m_problems.end() ? *found : row.editor->problem();
}

/// All rows, because the condition of one depends on the values of others.
void PropertyPanel::updateRows()
{
    for (Row &row : m_rows) {
        const auto *const failed = m_parameters->failedCondition(m_infos[row.index]);
        row.condition = failed == nullptr ? QString() : conditionText(*failed);
        row.editor->setEnabled(failed == nullptr);
        row.reset->setEnabled(failed == nullptr && hasOtherDefault(row));
        row.resetButton->setVisible(row.reset->isEnabled());
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
    for (PanelExtra *const extra : m_extras) {
        extra->parametersChanged();
    }
}

/// A row that is not used shows its condition in place of its problems.
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
                          capitalized(row.problem.text));
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
        box->setStatus(tr("Problems: %1").arg(problems), true);
    } else {
        box->setStatus(set > 0 ? tr("Values set: %1").arg(set) : QString(), false);
    }
}

/// A long list of values would hide the name of the parameter, so it is left out.
QString PropertyPanel::conditionText(const ParameterInfo::Condition &condition) const
{
    QStringList parts;
    for (const ParameterInfo::Condition &rule :
         QVector<ParameterInfo::Condition>{condition} + condition.alternatives) {
        const ParameterInfo &info = *infoOf(rule.parameter);
        QStringList values;
        for (const QString &value : rule.values) {
            values << (value.isEmpty() ? tr("empty") : shownValue(info, value));
        }
        const QString list = values.join(tr(" or "));
        if (list.size() > kMaxConditionCharacters) {
            parts << tr("\u201c%1\u201d has another value").arg(info.label);
        } else {
            parts << (rule.isExcluded ? tr("\u201c%1\u201d is not %2") : tr("\u201c%1\u201d is %2"))
                         .arg(info.label, list);
        }
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
