// An editable box. The list is replaced only when the suggestions change, because a new list moves
// the cursor.
#include "panels/suggestion_field.h"

#include "base/mapped.h"
#include "panels/basic_editors.h"
#include "panels/note_label.h"

#include <QComboBox>
#include <QCompleter>
#include <QCoreApplication>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

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

QStringList valuesOf(std::span<const NamedValue> named)
{
    return mapped<QStringList>(
        named, [](const NamedValue &each) { return QString::fromUtf8(each.value); });
}

/// Draws the meaning of a value after it. The text of the item must be the value only, because
/// choosing it sets the text of the field.
class MeaningDelegate final : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        option->text += u"  \u2013  "_s + index.data(Qt::UserRole).toString();
    }
};

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

SuggestionField::SuggestionField(const FieldContext &context, std::span<const NamedValue> values)
    : SuggestionField(context, [values] { return valuesOf(values); })
{
    m_values = values;
    m_meaning = new NoteLabel(this);
    layout()->addWidget(m_meaning);
    m_box->setItemDelegate(new MeaningDelegate(m_box));
    // All values are worth reading, also those that do not contain the current text.
    m_box->setCompleter(nullptr);
    connect(m_box, &QComboBox::editTextChanged, this, [this] { showMeaning(); });
    refreshContext();
}

QString SuggestionField::meaningOf(const QString &text) const
{
    const auto found = std::find_if(m_values.begin(), m_values.end(), [&](const NamedValue &each) {
        return text.compare(QLatin1StringView(each.value), Qt::CaseInsensitive) == 0;
    });
    return found == m_values.end() ? QString()
                                   : QCoreApplication::translate("Panels", found->meaning);
}

void SuggestionField::showMeaning()
{
    m_meaning->setNote(NoteLabel::Kind::Remark, meaningOf(m_box->currentText()));
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
        for (int i = 0; i < m_box->count(); ++i) {
            m_box->setItemData(i, meaningOf(m_box->itemText(i)));
        }
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
