// A run may write thousands of messages per second: they are added in groups, and only the first
// ones are kept.
#include "studio/run/log_model.h"

#include "corvanta/edit/shown_text.h"
#include "corvanta/main_ui.h"

#include <QApplication>
#include <QStyle>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

/// Information has none, so that problems are easy to see.
QIcon iconOf(int level)
{
    const QStyle &style = *QApplication::style();
    return level == MainUI::Error     ? style.standardIcon(QStyle::SP_MessageBoxCritical)
           : level == MainUI::Warning ? style.standardIcon(QStyle::SP_MessageBoxWarning)
                                      : QIcon();
}

} // namespace

QString severityName(int level)
{
    switch (level) {
    case MainUI::Error:
        return LogModel::tr("Error");
    case MainUI::Warning:
        return LogModel::tr("Warning");
    case MainUI::Info:
        return LogModel::tr("Info");
    default:
        return LogModel::tr("Diagnostic");
    }
}

void LogModel::add(const QVector<RunMessage> &messages)
{
    for (const RunMessage &message : messages) {
        const int level = std::clamp<int>(message.level, MainUI::Error, MainUI::Diagnostic);
        ++m_counts.at(static_cast<size_t>(level));
    }
    // The first messages are kept, because they name the cause of the others.
    const qsizetype room = kMaxMessages - m_messages.size();
    const qsizetype kept = std::min(room, messages.size());
    m_dropped += messages.size() - kept;
    if (kept == 0) {
        return;
    }
    const auto first = static_cast<int>(m_messages.size());
    beginInsertRows({}, first, first + static_cast<int>(kept) - 1);
    for (const RunMessage &message : messages.first(kept)) {
        keep(message);
    }
    endInsertRows();
}

void LogModel::keep(const RunMessage &message)
{
    // The command logs the system's reason directly after the message that it explains.
    const bool isReason = message.text.startsWith("Reason: "_L1) && !m_messages.isEmpty();
    m_messages.append({message, isReason ? m_messages.constLast().level : message.level});
    if (!message.action.isEmpty() && !m_actions.contains(message.action)) {
        m_actions << message.action;
    }
}

/// A log holds one run.
void LogModel::clear()
{
    beginResetModel();
    m_messages.clear();
    m_actions.clear();
    m_counts = {};
    m_dropped = 0;
    endResetModel();
}

int LogModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_messages.size());
}

int LogModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(kColumns);
}

/// A message of several lines takes one line of the table; the tool tip has all of it.
QString LogModel::cellText(const Entry &entry, int column)
{
    switch (column) {
    case Severity:
        return severityName(entry.message.level);
    case Action:
        return entry.message.action;
    default:
        return entry.message.text.simplified();
    }
}

QVariant LogModel::data(const QModelIndex &index, int role) const
{
    const Entry &entry = m_messages[index.row()];
    switch (role) {
    case Qt::DisplayRole:
        return cellText(entry, index.column());
    case Qt::ToolTipRole:
        return index.column() == Text ? plainToolTip(entry.message.text) : QString();
    case Qt::DecorationRole:
        return index.column() == Severity ? iconOf(entry.message.level) : QVariant();
    case LevelRole:
        return entry.level;
    case ActionRole:
        return entry.message.action;
    default:
        return {};
    }
}

QVariant LogModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    const bool isTitle = role == Qt::DisplayRole && orientation == Qt::Horizontal;
    const QStringList titles{tr("Severity"), tr("Action"), tr("Message")};
    return isTitle ? titles.at(section) : QVariant();
}

void LogFilter::setFilter(int maxLevel, const QString &action, const QString &text)
{
    if (maxLevel == m_maxLevel && action == m_action && text == m_text) {
        return;
    }
    m_maxLevel = maxLevel;
    m_action = action;
    m_text = text;
    invalidateFilter();
}

/// The text is that of the table, in which messages have one line.
bool LogFilter::filterAcceptsRow(int row, const QModelIndex &parent) const
{
    const QModelIndex index = sourceModel()->index(row, LogModel::Text, parent);
    return index.data(LogModel::LevelRole).toInt() <= m_maxLevel &&
           (m_action.isEmpty() || index.data(LogModel::ActionRole).toString() == m_action) &&
           (m_text.isEmpty() || index.data().toString().contains(m_text, Qt::CaseInsensitive));
}

} // namespace corvanta::studio
