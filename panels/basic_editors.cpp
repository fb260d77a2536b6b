// Each editor reports what the user does, and ignores what setValue() causes: widgets send the same
// signals for both.
#include "panels/basic_editors.h"

#include "base/mapped.h"
#include "base/number.h"
#include "panels/note_label.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSpinBox>
#include <QStyleOption>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

// Visible lines of a text; longer ones scroll.
constexpr int kTextLines = 2;
constexpr int kChoiceCharacters = 16; // long choices must not widen the panel
constexpr int kWideChoice =
    29; // average characters; a longer choice gets the width of its label too

/// A layout without margins, for controls that form one field.
template <class Layout> Layout *plainLayout(QWidget *parent)
{
    auto *const layout = new Layout(parent);
    layout->setContentsMargins(0, 0, 0, 0);
    return layout;
}

/// Rejects wheel events, which the scroll area around the control then gets.
class WheelFilter final : public QObject
{
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        const bool isIgnored =
            event->type() == QEvent::Wheel && !static_cast<QWidget *>(watched)->hasFocus();
        if (isIgnored) {
            event->ignore();
        }
        return isIgnored;
    }
};

/// Choices of an Integer are saved as their numbers.
QVector<std::pair<QString, QString>> numbered(const QStringList &texts)
{
    QVector<std::pair<QString, QString>> choices;
    for (const QString &text : texts) {
        choices.append({QString::number(choices.size()), text});
    }
    return choices;
}

QVector<std::pair<QString, QString>> named(std::span<const NamedValue> values)
{
    return mapped<QVector<std::pair<QString, QString>>>(values, [](const NamedValue &each) {
        return std::pair(QString::fromUtf8(each.value),
                         QCoreApplication::translate("Panels", each.meaning));
    });
}

} // namespace

void ignoreWheelWithoutFocus(QWidget *control)
{
    // Without it, the wheel would also move the focus to the control.
    control->setFocusPolicy(Qt::StrongFocus);
    control->installEventFilter(new WheelFilter(control));
}

// ---- A line

LineEditor::LineEditor(const FieldContext &context, const QString &hint)
    : FieldEditor(context)
    , m_line(new QLineEdit(this))
{
    auto *const row = plainLayout<QHBoxLayout>(this);
    row->addWidget(m_line);
    if (!context.info.unit.isEmpty()) {
        row->addWidget(new QLabel(unitText(context.info.unit, 2)));
    }
    const ParameterInfo &info = context.info;
    const QString &usual = info.lowMeaning.isEmpty() ? info.defaultValue : info.lowMeaning;
    m_line->setPlaceholderText(hint.isEmpty() ? usual : hint);
    setMainControl(m_line);
    connect(m_line, &QLineEdit::textEdited, this,
            [this](const QString &text) { report(valueOf(text), Edit::Typing); });
}

/// A number without an amount is an empty line, where its meaning is shown.
QString LineEditor::valueOf(const QString &text) const
{
    const ParameterInfo &info = context().info;
    return text.isEmpty() && !info.lowMeaning.isEmpty() ? QString::number(info.low) : text;
}

void LineEditor::setValue(const QString &value)
{
    // Setting an equal text would move the cursor while the user types.
    if (valueOf(m_line->text()) != value) {
        m_line->setText(value == valueOf({}) ? QString() : value);
    }
}

FloatFormatEditor::FloatFormatEditor(const FieldContext &context)
    : LineEditor(context)
    , m_example(new NoteLabel(this))
{
    auto *const row = static_cast<QBoxLayout *>(layout()); // of LineEditor, with the line only
    row->setDirection(QBoxLayout::TopToBottom);
    row->addWidget(m_example);
    connect(line(), &QLineEdit::textChanged, this, [this] { showExample(); });
    showExample();
}

/// The effect of a printf format is hard to imagine, so an example shows it.
void FloatFormatEditor::showExample()
{
    constexpr double example = 1234.56789;
    FloatFormat format;
    QByteArray text;
    if (format.set(line()->text())) {
        format.append(example, &text);
    }
    // A format that is not allowed is reported as a problem instead.
    m_example->setNote(NoteLabel::Kind::Remark,
                       text.isEmpty()
                           ? QString()
                           : tr("1234.56789 is written as %1").arg(QString::fromUtf8(text)));
}

ParameterProblem FloatFormatEditor::problem() const
{
    FloatFormat format;
    if (format.set(line()->text())) {
        return {};
    }
    return {context().info.name,
            tr("expected a printf format with one conversion, for example %.2f"),
            ParameterProblem::Severity::Error};
}

// ---- A number

NumberEditor::NumberEditor(const FieldContext &context)
    : FieldEditor(context)
    , m_box(new QSpinBox(this))
{
    const ParameterInfo &info = context.info;
    m_box->setRange(static_cast<int>(info.low), static_cast<int>(info.high));
    m_box->setLocale(QLocale::c()); // files have no digit groups
    m_box->setSpecialValueText(info.lowMeaning);
    showUnit();
    auto *const row = plainLayout<QHBoxLayout>(this);
    row->addWidget(m_box);
    row->addStretch(1);
    setMainControl(m_box);
    ignoreWheelWithoutFocus(m_box);
    connect(m_box, &QSpinBox::valueChanged, this, [this](int value) {
        showUnit();
        report(QString::number(value), Edit::Typing);
    });
}

/// The form of the unit depends on the number: "1 row", "2 rows".
void NumberEditor::showUnit()
{
    const QString &unit = context().info.unit;
    m_box->setSuffix(unit.isEmpty() ? QString() : u' ' + unitText(unit, m_box->value()));
}

void NumberEditor::setValue(const QString &value)
{
    m_box->setValue(value.toInt());
}

// ---- A choice

ChoiceEditor::ChoiceEditor(const FieldContext &context, const Choices &choices)
    : FieldEditor(context)
    , m_choices(choices)
    , m_box(new QComboBox(this))
    , m_explanation(new NoteLabel(this))
{
    m_box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_box->setMinimumContentsLength(kChoiceCharacters);
    for (const auto &[value, text] : choices) {
        m_box->addItem(text, value);
    }
    // A default beyond the choices means that the action decides.
    const QString &defaultValue = context.info.defaultValue;
    if (m_box->findData(defaultValue) < 0) {
        m_box->insertItem(0, tr("automatic"), defaultValue);
    }
    auto *const column = plainLayout<QVBoxLayout>(this);
    column->addWidget(m_box);
    column->addWidget(m_explanation);
    setMainControl(m_box);
    ignoreWheelWithoutFocus(m_box);
    connect(m_box, &QComboBox::currentIndexChanged, this, [this] {
        showExplanation();
        report(m_box->currentData().toString());
    });
    showExplanation();
}

ChoiceEditor::ChoiceEditor(const FieldContext &context)
    : ChoiceEditor(context, numbered(context.info.choices))
{
}

ChoiceEditor::ChoiceEditor(const FieldContext &context, std::span<const NamedValue> values)
    : ChoiceEditor(context, named(values))
{
}

bool ChoiceEditor::isWide() const
{
    const QFontMetrics metrics = m_box->fontMetrics();
    return std::any_of(m_choices.begin(), m_choices.end(), [&](const auto &choice) {
        return metrics.horizontalAdvance(choice.second) > metrics.averageCharWidth() * kWideChoice;
    });
}

bool ChoiceEditor::isCut() const
{
    QStyleOptionComboBox option;
    option.initFrom(m_box);
    const int room =
        m_box->style()
            ->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, m_box)
            .width();
    return m_box->fontMetrics().horizontalAdvance(m_box->currentText()) > room;
}

/// A choice that the box cuts is repeated below it, where it is wrapped.
void ChoiceEditor::showExplanation()
{
    bool isNumber = false;
    const int choice = m_box->currentData().toString().toInt(&isNumber);
    QStringList texts{context().info.explanations.value(isNumber ? choice : -1)};
    if (isCut()) {
        texts.prepend(m_box->currentText());
    }
    texts.removeAll(QString());
    m_explanation->setNote(NoteLabel::Kind::Remark, texts.join(u'\n'));
}

/// Whether the choice is cut depends on the width.
void ChoiceEditor::resizeEvent(QResizeEvent *event)
{
    FieldEditor::resizeEvent(event);
    showExplanation();
}

/// A saved value that is not one of the choices is kept until the user chooses another one.
void ChoiceEditor::setValue(const QString &value)
{
    if (m_box->findData(value) < 0) {
        m_box->addItem(tr("other value (%1)").arg(value), value);
    }
    m_box->setCurrentIndex(m_box->findData(value));
}

// ---- A flag

FlagEditor::FlagEditor(const FieldContext &context)
    : FieldEditor(context)
    , m_box(new QCheckBox(this))
    , m_label(new QLabel(context.label, this))
{
    // The text of a check box is never wrapped, so it is a label. The box is on its first line.
    m_box->setMinimumHeight(fontMetrics().lineSpacing());
    m_label->setWordWrap(true);
    m_label->setBuddy(m_box);
    m_label->installEventFilter(this);
    m_label->setToolTip(toolTipOf(context));
    auto *const row = plainLayout<QHBoxLayout>(this);
    row->addWidget(m_box, 0, Qt::AlignTop);
    row->addWidget(m_label, 1);
    setMainControl(m_box);
    connect(m_box, &QCheckBox::toggled, this,
            [this](bool isOn) { report(isOn ? u"1"_s : u"0"_s); });
}

void FlagEditor::setLabel(const QString &text)
{
    m_label->setText(text);
}

void FlagEditor::setValue(const QString &value)
{
    m_box->setChecked(value != "0"_L1);
}

/// The label switches the box, as the text of a check box does.
bool FlagEditor::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::MouseButtonRelease) {
        m_box->click();
    }
    return FieldEditor::eventFilter(watched, event);
}

// ---- A text

TextEditor::TextEditor(const FieldContext &context)
    : FieldEditor(context)
    , m_text(new QPlainTextEdit(this))
{
    m_text->setFont(fixedFont(font()));
    m_text->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_text->setTabChangesFocus(true); // as in the other fields
    const int margins =
        2 * (m_text->frameWidth() + static_cast<int>(m_text->document()->documentMargin()));
    m_text->setFixedHeight(QFontMetrics(m_text->font()).lineSpacing() * kTextLines + margins);
    plainLayout<QVBoxLayout>(this)->addWidget(m_text);
    setMainControl(m_text);
    connect(m_text, &QPlainTextEdit::textChanged, this,
            [this] { report(m_text->toPlainText(), Edit::Typing); });
}

void TextEditor::setValue(const QString &value)
{
    if (m_text->toPlainText() != value) {
        m_text->setPlainText(value);
    }
}

} // namespace corvanta
