// Makes the names of columns differ.
#pragma once
#include <QString>

#include <set>
#include <unordered_map>

namespace corvanta::shared {

/// Threads: one at a time.
class UniqueNames
{
public:
    /// `name`, or with "_2", "_3", ... if it was returned before.
    QString add(const QString &name);

private:
    std::set<QString> m_taken;
    std::unordered_map<QString, int> m_counts; // the last number after each name
};

} // namespace corvanta::shared
