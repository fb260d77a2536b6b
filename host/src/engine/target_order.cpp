// Two actions use one file when their names lead to it: through links, "." and "..", or relative
// parts. A pattern is compared as a text, because the names that match it are not known: two
// equal patterns are one file. Pipes and devices may have any number of writers.
//
// Waits are edges between the two stages of each action, run and close, and form no circle: writers
// take turns in an order that respects all earlier waits, and a wait for a reader that depends on
// the writer is left out. Such a reader opens its file before the run (writeExcel), or starts after
// the writer when there is no file yet.
#include "engine/target_order.h"

#include "base/platform/files.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QMap>
#include <QRegularExpression>

#include <algorithm>
#include <unordered_map>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

using Access = TargetUse::Access;

/// One action's use of a file.
struct Use
{
    int action = 0;
    Access access = Access::Create;
};

/// Folder and last part of a name, with the links of the folder resolved.
struct Place
{
    QString folder;
    QString entry;
};

/// Follows names to their files, each once: graphs have many actions and few files.
class FinalNames
{
public:
    QString of(const QString &name)
    {
        auto known = m_known.find(name);
        if (known == m_known.end()) {
            known = m_known.emplace(name, platform::finalName(name).value_or(name)).first;
        }
        return known->second;
    }
    Place placeOf(const QString &name)
    {
        const QFileInfo info(name);
        return {of(info.path()), info.fileName()};
    }
    /// The text by which targets are compared; empty for a pipe or device, and for any name.
    QString keyOf(const TargetUse &use)
    {
        if (use.isPattern) {
            const Place place = placeOf(use.name);
            // Any name: several actions may write different files to one folder.
            if (place.entry == "*"_L1) {
                return {};
            }
            return place.folder + "/\\*/"_L1 + place.entry; // no file name contains a slash
        }
        const QFileInfo info(of(use.name));
        if (info.exists() && !info.isFile() && !info.isDir()) {
            return {};
        }
        // A file that is created replaces one of the names only.
        const QString identity = use.access == Access::Create
                                     ? QString()
                                     : platform::identityOfLinkedFile(info.filePath());
        return identity.isEmpty() ? of(use.name) : identity;
    }
    /// Whether a reader of `input`, a name or a pattern, reads the target.
    bool isRead(const TargetUse &target, const QString &input);

private:
    std::unordered_map<QString, QString> m_known;
};

bool isMatch(const QString &pattern, const QString &entry)
{
    const QString expression =
        QRegularExpression::wildcardToRegularExpression(QString(pattern).replace(u'[', "[[]"_L1));
    return QRegularExpression(QRegularExpression::anchoredPattern(expression),
                              QRegularExpression::NoPatternOption)
        .match(entry)
        .hasMatch();
}

bool FinalNames::isRead(const TargetUse &target, const QString &input)
{
    const Place from = placeOf(input);
    if (from.entry.contains(u'*') || from.entry.contains(u'?')) {
        const Place to = placeOf(target.isPattern ? target.name : of(target.name));
        return from.folder == to.folder && isMatch(from.entry, to.entry);
    }
    // The names that match a pattern of targets are known only during the run. Other names of the
    // file (hard links) keep the old content when it is replaced, not when it is extended.
    return !target.isPattern &&
           (of(target.name) == of(input) ||
            (target.access == Access::Append && platform::isSameFile(target.name, input)));
}

/// Builds the order; see the head of this file.
class Orderer
{
public:
    Orderer(const QVector<FileUser> &users, const QVector<std::pair<int, int>> &links)
        : m_users(users)
        , m_needs(2 * users.size())
    {
        m_order.startAfter.resize(users.size());
        m_order.closeAfter.resize(users.size());
        for (int i = 0; i < users.size(); ++i) {
            m_needs[close(i)] << run(i);
        }
        // The end of the data comes after close.
        for (const auto &[from, to] : links) {
            m_needs[run(to)] << close(from);
        }
    }

    TargetOrder order()
    {
        QMap<QString, QVector<Use>> files; // sorted, so that messages have one order
        for (int i = 0; i < m_users.size(); ++i) {
            for (const TargetUse &target : m_users[i].targets) {
                files[m_names.keyOf(target)].append({i, target.access});
            }
        }
        files.remove(QString());
        for (auto file = files.cbegin(); file != files.cend(); ++file) {
            orderWriters(*file);
        }
        for (int i = 0; i < m_users.size(); ++i) {
            for (const TargetUse &target : m_users[i].targets) {
                orderReaders(i, target);
            }
        }
        return std::move(m_order);
    }

private:
    // The two stages of an action.
    static int run(int action) { return 2 * action; }
    static int close(int action) { return 2 * action + 1; }

    /// Whether stage `from` waits for stage `to`, directly or through others.
    bool needs(int from, int to) const
    {
        QVector<bool> isSeen(m_needs.size(), false);
        QVector<int> open{from};
        while (!open.isEmpty()) {
            const int stage = open.takeLast();
            if (stage == to) {
                return true;
            }
            for (const int next : m_needs[stage]) {
                if (!isSeen[next]) {
                    isSeen[next] = true;
                    open << next;
                }
            }
        }
        return false;
    }

    /// The writers of one file by turn: each follows those whose rows it needs, else the order of
    /// the graph.
    QVector<Use> byTurn(QVector<Use> uses) const
    {
        QVector<Use> sorted;
        while (!uses.isEmpty()) {
            const auto isFree = [&](const Use &use) {
                return std::none_of(uses.begin(), uses.end(), [&](const Use &other) {
                    return other.action != use.action &&
                           needs(run(use.action), close(other.action));
                });
            };
            // Always found: the waits form no circle.
            const auto next = std::find_if(uses.begin(), uses.end(), isFree);
            sorted << *next;
            uses.erase(next);
        }
        return sorted;
    }

    void orderWriters(const QVector<Use> &uses)
    {
        const QVector<Use> turns = byTurn(uses);
        for (qsizetype i = 1; i < turns.size(); ++i) {
            const Use &earlier = turns[i - 1];
            const Use &later = turns[i];
            for (qsizetype j = 0; j < i; ++j) {
                m_order.shared.insert(std::minmax(turns[j].action, turns[i].action));
            }
            if (later.access == Access::Create) {
                addConflict(
                    later.action,
                    earlier.access == Access::Create
                        ? QCoreApplication::translate(
                              "Problems", "the actions '%1' and '%2' create the same file '%3'")
                        : QCoreApplication::translate("Problems",
                                                      "the action '%2' creates the file '%3' after "
                                                      "the action '%1' has written to it"),
                    earlier.action, fileOf(later.action, earlier.action));
            } else {
                // No circle: the later action is not one that the earlier one needs.
                m_order.startAfter[later.action] << earlier.action;
                m_needs[run(later.action)] << close(earlier.action);
            }
        }
    }

    /// The name of a file that both actions write, as the first one has it.
    QString fileOf(int action, int other)
    {
        for (const TargetUse &target : m_users[action].targets) {
            for (const TargetUse &same : m_users[other].targets) {
                if (m_names.keyOf(target) == m_names.keyOf(same)) {
                    return target.name;
                }
            }
        }
        return {};
    }

    void orderReaders(int writer, const TargetUse &target)
    {
        for (int reader = 0; reader < m_users.size(); ++reader) {
            const QStringList &inputs = m_users[reader].inputs;
            const bool reads = std::any_of(inputs.begin(), inputs.end(), [&](const QString &input) {
                return m_names.isRead(target, input);
            });
            if (!reads || reader == writer) {
                continue;
            }
            if (target.access == Access::Append) {
                addConflict(
                    writer,
                    QCoreApplication::translate(
                        "Problems",
                        "the action '%1' reads the file '%3', to which the action '%2' appends"),
                    reader, target.name);
            } else if (!needs(run(reader), close(writer))) {
                m_order.closeAfter[writer] << reader;
                m_needs[close(writer)] << run(reader);
            } else if (!QFileInfo::exists(target.name)) {
                // There is no old content to see: the reader gets what it depends on.
                m_order.startAfter[reader] << writer;
            }
        }
    }

    /// `text` has places for the other action, for `action`, and for the file.
    void addConflict(int action, const QString &text, int other, const QString &file)
    {
        m_order.conflicts.append({m_users[action].line,
                                  text.arg(m_users[other].id, m_users[action].id, file), action,
                                  other});
    }

    const QVector<FileUser> &m_users;
    FinalNames m_names;
    QVector<QVector<int>> m_needs; // by stage: the stages that end before it ends
    TargetOrder m_order;
};

} // namespace

bool writesFiles(const ActionItem &action)
{
    const auto *const parameters = dynamic_cast<const ActionParameters *>(&action);
    if (parameters == nullptr || !parameters->targets().isEmpty()) {
        return true;
    }
    // The name of a file may depend on the rows.
    const QVector<ParameterInfo> infos = parameters->parameters();
    return std::any_of(infos.begin(), infos.end(), [](const ParameterInfo &info) {
        return info.file == ParameterInfo::File::Output;
    });
}

TargetOrder orderByTargets(const QVector<FileUser> &users,
                           const QVector<std::pair<int, int>> &links)
{
    return Orderer(users, links).order();
}

} // namespace corvanta
