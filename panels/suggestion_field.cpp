#include "panels/suggestion_field.h"

#include "panels/basic_editors.h"

#include <QComboBox>
#include <QCompleter>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace corvanta {

namespace {

QStringList textsOf(const QComboBox &box)
{
    QStringList texts;
    for (int i = 0; i < box.count(); ++i) {
        texts << box.itemText(i);
    }
    return texts;
}

} // namespace

SuggestionField::SuggestionField(const FieldContext &context, Suggestions suggestions)
    : FieldEditor(context)
    , m_suggestions(std::move(suggestions))
    , m_box(new QComboBox(this))
{
    m_box->setEditable(true);
    m_box->setInsertPolicy(QComboBox::NoInsert);
    m_box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    // Matches anywhere in the text; the default completes only beginnings.
    m_box->completer()->setFilterMode(Qt::MatchContains);
    m_box->completer()->setCompletionMode(QCompleter::PopupCompletion);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_box);
    setMainControl(m_box);
    ignoreWheelWithoutFocus(m_box);
    connect(m_box, &QComboBox::editTextChanged, this,
            [this](const QString &text) { report(text, Edit::Typing); });
}

void SuggestionField::setPlaceholder(const QString &text)
{
    m_box->lineEdit()->setPlaceholderText(text);
}

QString SuggestionField::text() const
{
    return m_box->currentText();
}

void SuggestionField::refreshContext()
{
    const QStringList texts = m_suggestions();
    if (texts != textsOf(*m_box)) { // keeps the cursor otherwise
        const QSignalBlocker blocker(m_box);
        const QString text = m_box->currentText();
        m_box->clear();
        m_box->addItems(texts);
        m_box->setEditText(text);
    }
}

void SuggestionField::setValue(const QString &value)
{
    refreshContext();
    if (m_box->currentText() != value) {
        m_box->setEditText(value);
    }
}

} // namespace corvanta
