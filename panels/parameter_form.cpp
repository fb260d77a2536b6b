#include "panels/parameter_form.h"

#include "corvanta/action_item.h"
#include "corvanta/file_dialogs.h"
#include "corvanta/icons.h"
#include "corvanta/main_ui.h"
#include "panels/string_list_editor.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFontDatabase>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QSpinBox>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <numeric>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

using Type = ParameterInfo::Type;
using File = ParameterInfo::File;

// Visible lines of multi-line fields; longer texts scroll.
constexpr int kStructureLines = 8;
constexpr int kTextLines = 2;
constexpr int kChoiceCharacters = 16; // long choices must not widen the form

/// Files first, structures and lists last; otherwise as declared.
int rank(const ParameterInfo &info)
{
    if (info.file != File::None) {
        return 0;
    }
    return info.type == Type::Strings || info.type == Type::Structure ? 2 : 1;
}

/// Whether the label is above the field, so that the field has the whole width of the form.
bool needsWholeWidth(const ParameterInfo &info)
{
    return rank(info) == 2;
}

/// Show the field in red, or in the colours of its parent again.
void markInvalid(QWidget *field, bool isInvalid)
{
    QPalette palette = field->parentWidget()->palette();
    if (isInvalid) {
        palette.setColor(QPalette::Base, QColor(255, 220, 220));
        palette.setColor(QPalette::Text, QColor(120, 0, 0));
    }
    field->setPalette(palette);
}

/// The filter of a file dialog. Extensions come without a dot.
QString fileFilter(const QStringList &extensions)
{
    QStringList patterns;
    for (const QString &extension : extensions) {
        patterns << u"*."_s + extension.toLower();
    }
    const QString all = u"All files (*)"_s;
    return patterns.isEmpty() ? all : u"Files (%1);;%2"_s.arg(patterns.join(u' '), all);
}

} // namespace

ParameterForm::ParameterForm(QWidget *parent, ActionItem *action)
    : UpdateClassWidget(parent, action)
    , m_parameters(dynamic_cast<ActionParameters *>(action))
{
    const QVector<ParameterInfo> infos =
        m_parameters != nullptr ? m_parameters->parameters() : QVector<ParameterInfo>();
    m_fields.resize(static_cast<size_t>(infos.size()));

    // The fields scroll; the heading does not. Layouts give their widgets to the form, which
    // deletes them.
    auto *const content = new QWidget;
    auto *const column = new QVBoxLayout(content);
    auto *const form = new QFormLayout;
    column->addLayout(form);
    column->addStretch(1);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->setRowWrapPolicy(QFormLayout::WrapLongRows);
    form->setLabelAlignment(Qt::AlignLeft);
    // Fields keep the number of their parameter, whatever their position in the form.
    std::vector<int> order(static_cast<size_t>(infos.size()));
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [&](int a, int b) { return rank(infos[a]) < rank(infos[b]); });
    for (const int index : order) {
        addRow(form, infos[index], index);
    }

    auto *const scroll = new QScrollArea;
    scroll->setWidget(content);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(makeHeading());
    layout->addWidget(scroll);
    refresh();
}

/// The icon, the type name and the description of the action.
QWidget *ParameterForm::makeHeading()
{
    auto *const heading = new QWidget;
    auto *const layout = new QHBoxLayout(heading);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *const icon = new QLabel;
    icon->setPixmap(resizeIcon(*action()->getIcon(1), 0.5));
    auto *const text = new QLabel(
        u"<b>%1</b><br>%2"_s.arg(QString::fromLatin1(action()->getTypeName()).toHtmlEscaped(),
                                 action()->getDescription().toHtmlEscaped()));
    text->setWordWrap(true);
    layout->addWidget(icon);
    layout->addWidget(text, 1);
    return heading;
}

void ParameterForm::addRow(QFormLayout *form, const ParameterInfo &info, int index)
{
    Field &field = m_fields[static_cast<size_t>(index)];
    field = makeField(info, index);
    field.widget->setObjectName(info.name); // tests find fields by it
    field.widget->setToolTip(info.meaning);
    const QString label = info.label.isEmpty() ? info.name : info.label;
    if (info.type == Type::Flag) {
        form->addRow(field.widget); // the check box has the label
    } else if (needsWholeWidth(info)) {
        form->addRow(new QLabel(label));
        form->addRow(field.widget);
    } else {
        auto *const caption = new QLabel(label);
        caption->setToolTip(info.meaning);
        caption->setBuddy(field.widget);
        form->addRow(caption, field.widget);
    }
}

ParameterForm::Field ParameterForm::makeField(const ParameterInfo &info, int index)
{
    // A real number is edited as text: spin boxes would round it, and follow the locale.
    switch (info.type) {
    case Type::Text:
        if (info.file != File::None) {
            return makeFileLine(info, index);
        }
        return info.isMultiLine ? makeText(info, index) : makeLine(info, index);
    case Type::Integer:
        return info.choices.isEmpty() ? makeNumber(info, index) : makeChoice(info, index);
    case Type::Real:
        return makeLine(info, index);
    case Type::Flag:
        return makeFlag(info, index);
    case Type::Strings:
        return makeList(index);
    case Type::Structure:
        break;
    }
    return makeText(info, index);
}

// ---- Fields. Connections use signals that programs cause too, except textEdited(): edit() ignores
// those of refresh().

ParameterForm::Field ParameterForm::makeLine(const ParameterInfo &info, int index)
{
    auto *const line = new QLineEdit(this);
    line->setPlaceholderText(info.defaultValue);
    connect(line, &QLineEdit::textEdited, this,
            [=, this](const QString &text) { edit(line, index, text); });
    return {line, [line](const QString &value) { line->setText(value); }};
}

/// A line with a button that opens a file dialog.
ParameterForm::Field ParameterForm::makeFileLine(const ParameterInfo &info, int index)
{
    const Field field = makeLine(info, index);
    auto *const line = static_cast<QLineEdit *>(field.widget);
    auto *const button = new QToolButton;
    button->setText(u"\u2026"_s);
    button->setToolTip(u"Choose a file"_s);
    connect(button, &QToolButton::clicked, this, [=, this] {
        const QString name = browse(info, line->text());
        if (!name.isNull()) {
            line->setText(name);
            edit(line, index, name);
        }
    });
    auto *const row = new QWidget;
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(line);
    layout->addWidget(button);
    row->setFocusProxy(line); // for the label's shortcut
    return {row, field.show};
}

QString ParameterForm::browse(const ParameterInfo &info, const QString &start)
{
    // A name in a graph may contain variables and may be relative; dialogs need a full one.
    const QString filter = fileFilter(action()->getFileTypes());
    const QString from = action()->expandFile(start);
    const QString name = info.file == File::Input
                             ? tGetOpenFileName(this, info.label, from, filter)
                             : tGetSaveFileName(this, info.label, from, filter);
    const GlobalParameters *const global = action()->globalParameters();
    return name.isNull() || global == nullptr ? name : global->contractFile(name);
}

ParameterForm::Field ParameterForm::makeNumber(const ParameterInfo &info, int index)
{
    // Spin boxes hold an int; a wider range is cut.
    constexpr qint64 low = std::numeric_limits<int>::min();
    constexpr qint64 high = std::numeric_limits<int>::max();
    auto *const box = new QSpinBox(this);
    box->setRange(static_cast<int>(qMax(info.low, low)), static_cast<int>(qMin(info.high, high)));
    connect(box, &QSpinBox::valueChanged, this,
            [=, this](int value) { edit(box, index, QString::number(value)); });
    return {box, [box](const QString &value) { box->setValue(value.toInt()); }};
}

ParameterForm::Field ParameterForm::makeChoice(const ParameterInfo &info, int index)
{
    auto *const box = new QComboBox(this);
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box->setMinimumContentsLength(kChoiceCharacters);
    for (qsizetype i = 0; i < info.choices.size(); ++i) {
        box->addItem(info.choices[i], QString::number(i)); // saved as the number
    }
    // A default beyond the choices means that the action decides.
    if (box->findData(info.defaultValue) < 0) {
        box->insertItem(0, u"automatic"_s, info.defaultValue);
    }
    connect(box, &QComboBox::currentIndexChanged, this,
            [=, this] { edit(box, index, box->currentData().toString()); });
    return {box, [box](const QString &value) {
                if (box->findData(value) < 0) {
                    box->addItem(value, value); // saved by another program: kept
                }
                box->setCurrentIndex(box->findData(value));
            }};
}

ParameterForm::Field ParameterForm::makeFlag(const ParameterInfo &info, int index)
{
    auto *const box = new QCheckBox(info.label.isEmpty() ? info.name : info.label, this);
    connect(box, &QCheckBox::toggled, this,
            [=, this](bool isOn) { edit(box, index, isOn ? u"1"_s : u"0"_s); });
    return {box, [box](const QString &value) { box->setChecked(value != "0"_L1); }};
}

/// ActionParameters holds a list as one text with a line per string.
ParameterForm::Field ParameterForm::makeList(int index)
{
    auto *const editor = new StringListEditor(this);
    editor->setChanged([=, this] { edit(editor, index, editor->strings().join(u'\n')); });
    return {editor, [editor](const QString &value) {
                editor->setStrings(value.isEmpty() ? QStringList() : value.split(u'\n'));
            }};
}

/// Several lines: a text, or the child elements of a structure as XML.
ParameterForm::Field ParameterForm::makeText(const ParameterInfo &info, int index)
{
    auto *const text = new QPlainTextEdit(this);
    const int lines = info.type == Type::Structure ? kStructureLines : kTextLines;
    text->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    text->setLineWrapMode(QPlainTextEdit::NoWrap);
    text->setTabChangesFocus(true); // as in the other fields
    const int margins =
        2 * (text->frameWidth() + static_cast<int>(text->document()->documentMargin()));
    text->setFixedHeight(QFontMetrics(text->font()).lineSpacing() * lines + margins);
    connect(text, &QPlainTextEdit::textChanged, this,
            [=, this] { edit(text, index, text->toPlainText()); });
    return {text, [text](const QString &value) { text->setPlainText(value); }};
}

void ParameterForm::edit(QWidget *field, int index, const QString &value)
{
    // An equal value is not a change: it must not mark the document as modified.
    if (m_isRefreshing || m_parameters->parameterValue(index) == value) {
        return;
    }
    // A rejected text stays in its field, so that the user can correct it.
    const bool isTaken = m_parameters->setParameterValue(index, value);
    markInvalid(field, !isTaken);
    if (isTaken) {
        MainUI::documentWasModified();
    }
}

void ParameterForm::refresh()
{
    // The widgets' signals would pass each value back to the action.
    m_isRefreshing = true;
    for (size_t i = 0; i < m_fields.size(); ++i) {
        m_fields[i].show(m_parameters->parameterValue(static_cast<int>(i)));
    }
    m_isRefreshing = false;
}

} // namespace corvanta
