// Draws and edits the cells of an ElementTable: digits only for numbers, and a list to choose from
// where there are suggestions. Threads: the GUI thread.
#pragma once
#include "corvanta/action_parameters.h"

#include <QStyledItemDelegate>

#include <functional>

class QComboBox;
class QLineEdit;

namespace corvanta {

class CellDelegate final : public QStyledItemDelegate
{
public:
    /// `members` are the columns of the table.
    CellDelegate(const QVector<ParameterInfo> &members, QObject *parent);
    /// Texts that can be chosen for a member; none by default.
    using Suggestions = std::function<QStringList(const ParameterInfo &member)>;
    void setSuggestions(Suggestions suggestions) { m_suggestions = std::move(suggestions); }
    /// What a cell without a value shows.
    void setEmptyText(const QString &text) { m_emptyText = text; }

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;
    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;

private:
    QVector<ParameterInfo> m_members;
    Suggestions m_suggestions = [](const ParameterInfo &) { return QStringList(); };
    QString m_emptyText;
};

} // namespace corvanta
