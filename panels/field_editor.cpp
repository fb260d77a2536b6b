#include "panels/field_editor.h"

#include "corvanta/main_ui.h"
#include "panels/basic_editors.h"
#include "panels/column_picker.h"
#include "panels/file_field.h"
#include "panels/glyphs.h"
#include "panels/outline_style.h"
#include "panels/structure_editor.h"

#include <QCoreApplication>
#include <QFontDatabase>
#include <QLabel>
#include <QToolButton>

#include <limits>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

using Type = ParameterInfo::Type;

/// Spin boxes hold an int.
bool fitsSpinBox(const ParameterInfo &info)
{
    return info.low >= std::numeric_limits<int>::min() &&
           info.high <= std::numeric_limits<int>::max();
}

} // namespace

FieldEditor::FieldEditor(FieldContext context)
    : m_context(std::move(context))
{
    setObjectName(m_context.info.name); // tests find fields by it
}

void FieldEditor::showValue(const QString &value)
{
    // Widgets send the same signals for programs and users.
    m_isShowing = true;
    setValue(value);
    m_isShowing = false;
}

void FieldEditor::report(const QString &value, Edit kind)
{
    if (!m_isShowing) {
        m_edited(value, kind);
    }
}

void FieldEditor::setMainControl(QWidget *control)
{
    nameControl(control, m_context.label, toolTipOf(m_context));
    control->setAccessibleDescription(m_context.meaning);
    setFocusProxy(control);
}

void FieldEditor::showProblem(const ParameterProblem &problem)
{
    // Read with the control: the text below it is not reached by Tab.
    const QString text =
        problem.text.isEmpty() ? m_context.meaning : problem.text + u"\n"_s + m_context.meaning;
    mainControl()->setAccessibleDescription(text);
}

void FieldEditor::nameControl(QWidget *control, const QString &name, const QString &toolTip)
{
    showOutline(control);
    control->setAccessibleName(name);
    control->setToolTip(toolTip.isEmpty() ? name : toolTip);
    control->setAccessibleDescription(toolTip.isEmpty() ? m_context.label : toolTip);
}

QToolButton *FieldEditor::makeButton(Glyph glyph, const QString &name,
                                     std::function<void()> clicked, const QKeySequence &key)
{
    auto *const button = new QToolButton(this);
    button->setIcon(glyphIcon(glyph, palette().color(QPalette::ButtonText)));
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::StrongFocus); // tool buttons are skipped by Tab otherwise
    nameControl(button, name);
    if (!key.isEmpty()) {
        button->setToolTip(u"%1 (%2)"_s.arg(name, key.toString(QKeySequence::NativeText)));
    }
    connect(button, &QToolButton::clicked, this, std::move(clicked));
    return button;
}

QString FieldEditor::parameter(const QString &name) const
{
    return m_context.parameters->parameterValue(m_context.parameters->indexOfParameter(name));
}

TableSchema FieldEditor::inputColumns() const
{
    return MainUI::inputColumns(m_context.action, 0);
}

FieldEditor *makeEditor(const FieldContext &context)
{
    const ParameterInfo &info = context.info;
    switch (info.type) {
    case Type::Text:
        if (info.file != ParameterInfo::File::None) {
            return new FileField(context);
        }
        return info.isMultiLine ? static_cast<FieldEditor *>(new TextEditor(context))
                                : new LineEditor(context);
    case Type::Integer:
        if (!info.choices.isEmpty()) {
            return new ChoiceEditor(context);
        }
        return fitsSpinBox(info) ? static_cast<FieldEditor *>(new NumberEditor(context))
                                 : new LineEditor(context);
    case Type::Real:
        return new LineEditor(context); // spin boxes round, and follow the locale
    case Type::Flag:
        return new FlagEditor(context);
    case Type::Strings:
        return new ListEditor(context);
    case Type::Structure:
        break;
    }
    return new StructureEditor(context);
}

QString translated(const QString &text)
{
    return QCoreApplication::translate("Parameters", text.toUtf8().constData());
}

QString unitText(const QString &unit, int count)
{
    const QString text =
        QCoreApplication::translate("Units", unit.toUtf8().constData(), nullptr, count);
    // English has no catalogue with forms for numbers.
    return text == unit && count == 1 && unit.endsWith(u's') ? unit.chopped(1) : text;
}

/// As a field shows it, not as a graph stores it.
QString shownValue(const ParameterInfo &info, const QString &value)
{
    if (info.type == Type::Flag) {
        return value == "0"_L1 ? QCoreApplication::translate("Panels", "off")
                               : QCoreApplication::translate("Panels", "on");
    }
    const bool isLow = !info.lowMeaning.isEmpty() && value == QString::number(info.low);
    const QString text =
        isLow ? info.lowMeaning : info.choices.value(info.choices.isEmpty() ? -1 : value.toInt());
    return text.isEmpty() ? value
                          : QCoreApplication::translate("Panels", "\u201c%1\u201d").arg(text);
}

QFont fixedFont(const QFont &font)
{
    QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    fixed.setPointSizeF(font.pointSizeF());
    return fixed;
}

int fullWidth(const QLabel &label)
{
    // A text is wrapped when it is a fraction of a pixel wider than the label.
    return label.fontMetrics().size(Qt::TextShowMnemonic, label.text()).width() + 1;
}

bool isNarrow(const QWidget &form, int width)
{
    constexpr int characters = 64; // about 380 pixels
    return width < form.fontMetrics().averageCharWidth() * characters;
}

QString captionOf(const QString &label)
{
    // Languages differ in the space before a colon.
    return label.endsWith(u':') || label.endsWith(u')')
               ? label
               : QCoreApplication::translate("Panels", "%1:").arg(label);
}

QString toolTipOf(const FieldContext &context)
{
    // Rich text, so that long lines are wrapped.
    const QString text = u"<p><b>%1</b></p><p>%2</p>"_s.arg(context.info.name.toHtmlEscaped(),
                                                            context.meaning.toHtmlEscaped());
    const QString value = shownValue(context.info, context.info.defaultValue);
    return value.isEmpty() || context.info.type == Type::Structure
               ? text
               : text + u"<p>%1</p>"_s.arg(QCoreApplication::translate("Panels", "Default: %1")
                                               .arg(value.toHtmlEscaped()));
}

} // namespace corvanta
