#include "panels/structures/cell_delegate.h"

#include "panels/colors.h"

#include <QComboBox>
#include <QCompleter>
#include <QCoreApplication>
#include <QLineEdit>
#include <QRegularExpressionValidator>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

using Type = ParameterInfo::Type;

/// Not a spin box for numbers, which cannot be empty.
QLineEdit *makeLine(QWidget *parent, const ParameterInfo &member)
{
    auto *const line = new QLineEdit(parent);
    line->setFrame(false);
    if (member.type == Type::Integer) {
        static const QRegularExpression digits(u"\\d*"_s);
        line->setValidator(new QRegularExpressionValidator(digits, line));
    }
    return line;
}

/// Editable, because a value need not be one of the suggestions.
QComboBox *makeBox(QWidget *parent, const QStringList &texts)
{
    auto *const box = new QComboBox(parent);
    box->setEditable(true);
    box->setInsertPolicy(QComboBox::NoInsert);
    box->addItems(texts);
    box->completer()->setFilterMode(Qt::MatchContains);
    box->completer()->setCompletionMode(QCompleter::PopupCompletion);
    return box;
}

} // namespace

CellDelegate::CellDelegate(const QVector<ParameterInfo> &members, QObject *parent)
    : QStyledItemDelegate(parent)
    , m_members(members)
{
}

/// Only drawn: the cell itself stays empty, and so does the value.
void CellDelegate::initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    if (!index.data(Qt::CheckStateRole).isValid() && option->text.isEmpty()) {
        option->text = m_emptyText;
        option->palette.setColor(QPalette::Text, remarkColor(option->palette));
    }
}

QWidget *CellDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem & /*option*/,
                                    const QModelIndex &index) const
{
    const ParameterInfo &member = m_members[index.column()];
    const QStringList texts = m_suggestions(member);
    QWidget *const editor =
        texts.isEmpty() ? static_cast<QWidget *>(makeLine(parent, member)) : makeBox(parent, texts);
    editor->setAccessibleName(member.label);
    editor->setAccessibleDescription(member.meaning);
    return editor;
}

} // namespace corvanta
