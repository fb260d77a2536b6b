#include "actions/shared/composed_file.h"

#include "base/platform/files.h"

#include <QFileInfo>

namespace corvanta {

bool ComposedFile::open(const QString &name, Mode mode, int action)
{
    discard();
    if (mode == Mode::Replace) {
        return m_target.open(name, action);
    }
    m_name = name;
    m_wasThere = QFileInfo::exists(name);
    m_appended = MyWriteFile::open(name, MyWriteFile::Existing::Append);
    m_oldSize = m_appended ? m_appended->position() : 0;
    return m_appended != nullptr;
}

bool ComposedFile::commit()
{
    if (!m_appended) {
        return m_target.commit();
    }
    if (!m_appended->flush() || !m_appended->sync()) {
        discard();
        return false;
    }
    const bool isClosed = m_appended->close();
    m_appended.reset();
    if (!m_wasThere) {
        platform::syncFolder(QFileInfo(m_name).absolutePath());
    }
    return isClosed;
}

void ComposedFile::discard()
{
    m_target.discard();
    if (m_appended) {
        m_appended->truncate(m_oldSize);
        m_appended.reset();
        if (!m_wasThere) {
            platform::removeFile(m_name);
        }
    }
}

} // namespace corvanta
