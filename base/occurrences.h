// Counts how often something happened and remembers the first place, for one warning per cause.
#pragma once
#include <QString>

#include <utility>

namespace corvanta {

/// Number and first place of one kind of event, for example of values that were replaced. Threads:
/// one at a time.
class Occurrences
{
public:
    /// Count one event. `place`, a function that returns a text such as "row 7", is called for the
    /// first one only, so that the others cost an addition.
    template <class Place> void add(Place &&place)
    {
        if (m_count++ == 0) {
            m_first = std::forward<Place>(place)();
        }
    }
    /// Count `n` events of one place.
    template <class Place> void add(qint64 n, Place &&place)
    {
        if (n > 0) {
            add(std::forward<Place>(place));
            m_count += n - 1;
        }
    }
    /// Events since the construction or reset().
    qint64 count() const { return m_count; }
    bool any() const { return m_count > 0; }
    /// Place of the first event; empty without one.
    const QString &first() const { return m_first; }
    /// Count from 0 again, for example for the next file.
    void reset() { *this = {}; }

private:
    qint64 m_count = 0;
    QString m_first;
};

} // namespace corvanta
