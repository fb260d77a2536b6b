#include "actions/shared/tables/unique_names.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta::shared {

/// A name with a number may be taken by a column that has that name itself.
QString UniqueNames::add(const QString &name)
{
    QString unique = name;
    int &count = m_counts[name];
    while (m_taken.contains(unique)) {
        count = std::max(count, 1) + 1;
        unique = u"%1_%2"_s.arg(name, QString::number(count));
    }
    m_taken.insert(unique);
    return unique;
}

} // namespace corvanta::shared
