// The edits of notes. Rows do not depend on them, and other programs ignore them.
#include "studio/document/graph_document.h"

#include <algorithm>

namespace corvanta::studio {

int GraphDocument::addNote(QPointF position, const QString &text)
{
    const Note note{m_nextKey++, -1, canvasPosition(position), text};
    push(tr("Add note"), [&](Content &content) { content.notes.append(note); });
    return note.key;
}

QString GraphDocument::noteText(int key) const
{
    const auto found = std::ranges::find(m_content.notes, key, &Note::key);
    return found == m_content.notes.end() ? QString() : found->text;
}

// An empty note would be a sheet that nobody sees.
void GraphDocument::setNoteText(int key, const QString &text)
{
    const auto index =
        std::ranges::find(m_content.notes, key, &Note::key) - m_content.notes.begin();
    if (index == m_content.notes.size() || m_content.notes[index].text == text) {
        return;
    }
    if (text.isEmpty()) {
        remove({}, {}, {key});
    } else {
        push(tr("Edit note"), [&](Content &content) { content.notes[index].text = text; });
    }
}

void GraphDocument::moveNotes(const QMap<int, QPointF> &positions, int series)
{
    QVector<Note> notes = m_content.notes;
    for (Note &note : notes) {
        note.position = canvasPosition(positions.value(note.key, note.position));
    }
    if (notes != m_content.notes) {
        push(
            tr("Move note"), [&](Content &content) { content.notes = notes; }, series);
    }
}

} // namespace corvanta::studio
