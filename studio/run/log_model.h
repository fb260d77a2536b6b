// The messages of a run as a table, and the rows of it that the user wants to see.
//
// Threads: the GUI thread.
#pragma once
#include "studio/run/run_lines.h"

#include <QAbstractTableModel>
#include <QSortFilterProxyModel>

#include <array>

namespace corvanta::studio {

class LogModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { Severity, Action, Text, kColumns };
    /// For data(), in addition to the usual roles.
    enum Role {
        /// 1 to 4, see MainUI::LogLevel. The reason of an error or a warning has the level of what
        /// it explains, so that a filter keeps both or none.
        LevelRole = Qt::UserRole,
        ActionRole, ///< id; empty: none
    };

    using QAbstractTableModel::QAbstractTableModel;

    void add(const QVector<RunMessage> &messages);
    void clear();
    const RunMessage &message(int row) const { return m_messages[row].message; }
    /// The ids of the actions with messages, in the order of their first ones.
    const QStringList &actions() const { return m_actions; }
    /// Number of messages with a level, from 1 to 4, also of those that are not kept.
    qint64 count(int level) const { return m_counts.at(static_cast<size_t>(level)); }
    /// Number of messages that are not kept: those after the first kMaxMessages.
    qint64 droppedCount() const { return m_dropped; }
    /// A damaged file may cause millions of messages.
    static constexpr int kMaxMessages = 100'000;

    // Operations of QAbstractTableModel.
    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    struct Entry
    {
        RunMessage message;
        int level = 0; // see LevelRole
    };
    void keep(const RunMessage &message);
    static QString cellText(const Entry &entry, int column);

    QVector<Entry> m_messages;
    QStringList m_actions;
    std::array<qint64, 5> m_counts{}; // by level
    qint64 m_dropped = 0;
};

/// Keeps the messages of some levels, of one action, with a text.
class LogFilter final : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    using QSortFilterProxyModel::QSortFilterProxyModel;

    /// Hide the levels above `maxLevel`, and other actions and texts. An empty id or text: all of
    /// them. Ignores case in texts. Does nothing if all are as before.
    void setFilter(int maxLevel, const QString &action, const QString &text);

protected:
    bool filterAcceptsRow(int row, const QModelIndex &parent) const override;

private:
    int m_maxLevel = 3;
    QString m_action;
    QString m_text;
};

/// "Error", "Warning", "Info" or "Diagnostic", in the language of the user.
QString severityName(int level);

} // namespace corvanta::studio
