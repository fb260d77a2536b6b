#include "corvanta/target_file.h"

#include "base/platform/files.h"
#include "corvanta/main_ui.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

bool TargetFile::open(const QString &name, int action)
{
    discard();
    if (name.isEmpty()) {
        return false;
    }
    const QFileInfo info(name);
    if (info.exists() && !info.isFile()) {
        m_name = name;
        m_file = info.isDir() ? nullptr : MyWriteFile::open(name, MyWriteFile::Existing::Truncate);
        return isOpen();
    }
    if (info.exists() && !info.isWritable()) {
        return false; // the folder would let it be replaced, but its owner has said no
    }
    // Links are followed: what they lead to is replaced, not a link.
    m_name = !info.isSymLink() ? name
             : info.exists()   ? info.canonicalFilePath()
                               : info.symLinkTarget();
    m_temporary = m_name + u"_tmp_%1_%2"_s.arg(QString::number(action),
                                               QString::number(MainUI::getNearUniqueRandomID()));
    m_file = MyWriteFile::open(m_temporary, MyWriteFile::Existing::Refuse);
    return isOpen();
}

bool TargetFile::commit()
{
    return commit(QFileInfo::exists(m_name), [](const QString &temporary, const QString &target) {
        return renameTMPFile(temporary, target);
    });
}

bool TargetFile::commit(const Move &move)
{
    return commit(true, move);
}

bool TargetFile::commit(bool syncs, const Move &move)
{
    if (!isOpen()) {
        return false;
    }
    const bool isTemporary = !m_temporary.isEmpty();
    bool done = m_file->flush() && (!syncs || !isTemporary || m_file->sync());
    done = m_file->close() && done;
    m_file.reset();
    if (isTemporary) {
        done = done && move(m_temporary, m_name);
        if (!done) {
            corvanta::platform::removeFile(m_temporary);
        }
        m_temporary.clear();
    }
    return done;
}

void TargetFile::discard()
{
    if (isOpen()) {
        m_file.reset();
        if (!m_temporary.isEmpty()) {
            corvanta::platform::removeFile(m_temporary);
        }
    }
    m_temporary.clear();
}
