// Follows a path down the open elements of a token stream.
//
// The caller reports the elements that begin inside the open part of the path, and the ends of
// those that were entered. It skips the content of all other elements.
#pragma once
#include "base/occurrences.h"
#include "codecs/markup/tree/path.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace corvanta::markup {

/// Threads: one at a time.
class PathFollower
{
public:
    /// Follow `path`, with no step open. Call restart() before each further stream.
    explicit PathFollower(const std::vector<PathStep> &path)
        : m_path(path)
        , m_passed(path.size())
    {
    }

    /// Begin a stream: no element is open.
    void restart()
    {
        m_open = 0;
        restartCounts();
    }
    /// Count the elements of each name from 0 again.
    void restartCounts() { std::fill(m_passed.begin(), m_passed.end(), 0); }
    /// For appended documents: the root of each would else be one more element of its name.
    /// Count as above, but only if the first step selects the first element of its name.
    void beginRoot()
    {
        if (m_open == 0 && m_path[0].index == 0) {
            m_passed[0] = 0;
        }
    }

    /// Steps whose elements are open.
    size_t openSteps() const { return m_open; }
    /// True when all steps of the path are open: what begins now is inside the container.
    bool isAtEnd() const { return m_open == m_path.size(); }

    /// An element begins inside the last open step; not at the end of the path. Returns true, with
    /// the next step open, when the step selects it. `place` returns the place of the element as
    /// text; it is called for the first element that repeats() counts.
    template <class Place> bool enter(const RawText &name, Place &&place)
    {
        const PathStep &step = m_path[m_open];
        if (!step.anyName && !nameMatches(name, step.name)) {
            return false;
        }
        const quint32 passed = m_passed[m_open]++;
        if (passed != step.index) {
            if (passed > step.index && !step.isIndexed) {
                m_repeats.add(std::forward<Place>(place));
            }
            return false;
        }
        if (++m_open < m_path.size()) {
            m_passed[m_open] = 0;
        }
        return true;
    }
    /// The element of the last open step ends. Its siblings still count for the step, so that a
    /// later one is not selected again.
    void leave() { --m_open; }

    /// Further elements that steps without an index match and do not select.
    const Occurrences &repeats() const { return m_repeats; }
    /// Count them from 0 again, for the next file.
    void resetRepeats() { m_repeats.reset(); }

private:
    /// The path to follow; may be empty, and is then always at its end.
    std::vector<PathStep> m_path;
    /// By step: elements of its name that began.
    std::vector<quint32> m_passed;
    /// Steps whose elements are open.
    size_t m_open = 0;
    Occurrences m_repeats;
};

} // namespace corvanta::markup
