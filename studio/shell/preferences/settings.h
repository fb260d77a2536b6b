// The preferences of the user, in one INI file.
//
// Lists of recent things have the newest one first. Values that the user has not changed are not in
// the file. Threads: the GUI thread.
#pragma once
#include <QKeySequence>
#include <QSettings>
#include <QString>
#include <QStringList>

#include <optional>

namespace corvanta::studio {

/// Colours of the windows; System keeps those of the desktop.
enum class Theme { System, Light, Dark };

class Settings final
{
public:
    /// Read and write `fileName`; an empty name is the file of the user. Another process that
    /// writes the same file changes only the values that it sets.
    explicit Settings(const QString &fileName = QString());

    /// Absolute names of graph files, at most kMaxRecent.
    QStringList recentFiles() const;
    /// Put a file first. The name is made absolute.
    void addRecentFile(const QString &fileName);
    void removeRecentFile(const QString &fileName);
    /// Forget all recent files.
    void clearRecentFiles();

    /// Type names of the actions that were added last.
    QStringList recentActions() const;
    void addRecentAction(const QString &type);
    /// Type names that the user has marked, in the order in which they were marked.
    QStringList favouriteActions() const;
    void setFavouriteAction(const QString &type, bool isFavourite);

    /// The shortcut that the user gave a command; nothing if the default is kept. An empty sequence
    /// means that the user removed it.
    std::optional<QKeySequence> shortcut(const QString &command) const;
    /// Without a value: keep the default from now on.
    void setShortcut(const QString &command, const std::optional<QKeySequence> &keys);

    /// Theme::System unless set; also for a word that is not known.
    Theme theme() const;
    void setTheme(Theme theme);
    /// Size of all texts, in percent of the size that the desktop sets, from 50 to 300.
    int fontPercent() const;
    void setFontPercent(int percent);
    /// Language code such as "fr"; empty: that of the desktop.
    QString language() const;
    void setLanguage(const QString &code);
    /// Whether the files of the last session are opened at the start.
    bool reopensFiles() const;
    void setReopensFiles(bool reopens);

    /// The files that are open now, for the next session.
    QStringList openFiles() const;
    void setOpenFiles(const QStringList &files);

    /// Geometry and arrangement of the main window, in the form of QMainWindow.
    QByteArray windowGeometry() const;
    QByteArray windowState() const;
    /// Called when the window is closed.
    void setWindow(const QByteArray &geometry, const QByteArray &state);

    static constexpr int kMaxRecent = 12;
    static constexpr int kMinFontPercent = 50;
    static constexpr int kMaxFontPercent = 300;

private:
    /// Put `item` first in a list of at most kMaxRecent.
    void prepend(const QString &key, const QString &item);

    QSettings m_file;
};

} // namespace corvanta::studio
