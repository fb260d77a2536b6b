#include "panels/background/log_lines.h"

#include "corvanta/main_ui.h"

#include <algorithm>

namespace corvanta {

namespace {

constexpr qsizetype kMaxMessages = 1000; // a damaged file may cause millions

} // namespace

void LogLines::add(const LogMessage &message)
{
    const std::lock_guard lock(m_mutex);
    // An error ends the work and so comes last.
    if (m_messages.size() < kMaxMessages || message.level == MainUI::Error) {
        m_messages << message;
    }
}

Note LogLines::worst() const
{
    const std::lock_guard lock(m_mutex);
    for (const int level : {MainUI::Error, MainUI::Warning}) {
        const auto found =
            std::find_if(m_messages.begin(), m_messages.end(),
                         [level](const LogMessage &message) { return message.level == level; });
        if (found == m_messages.end()) {
            continue;
        }
        const bool isError = level == MainUI::Error;
        Note note{isError ? NoteLabel::Kind::Error : NoteLabel::Kind::Warning,
                  found->text.trimmed()};
        // The system's reason follows an error, with the level of an information.
        const auto next = std::next(found);
        if (isError && next != m_messages.end() && next->level == MainUI::Info) {
            note.text += u'\n' + next->text.trimmed();
        }
        return note;
    }
    return {};
}

} // namespace corvanta
