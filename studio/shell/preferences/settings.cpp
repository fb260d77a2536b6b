// Keys of the INI file, one group per subject.
#include "studio/shell/preferences/settings.h"

#include <QFileInfo>

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

constexpr auto kRecentFiles = "recent/files"_L1;
constexpr auto kRecentActions = "recent/actions"_L1;
constexpr auto kFavourites = "palette/favourites"_L1;
constexpr auto kShortcutGroup = "shortcuts/"_L1;
constexpr auto kTheme = "look/theme"_L1;
constexpr auto kFontPercent = "look/fontPercent"_L1;
constexpr auto kLanguage = "look/language"_L1;
constexpr auto kReopensFiles = "session/reopen"_L1;
constexpr auto kOpenFiles = "session/files"_L1;
constexpr auto kGeometry = "window/geometry"_L1;
constexpr auto kState = "window/state"_L1;

/// The words of the file for the values of Theme.
constexpr QLatin1StringView kThemeNames[] = {"system"_L1, "light"_L1, "dark"_L1};

/// The file of the user, or another one: tests must not change the preferences of the user.
QString settingsFile(const QString &fileName)
{
    return fileName.isEmpty()
               ? QSettings(QSettings::IniFormat, QSettings::UserScope, u"corvanta"_s, u"studio"_s)
                     .fileName()
               : fileName;
}

} // namespace

Settings::Settings(const QString &fileName)
    : m_file(settingsFile(fileName), QSettings::IniFormat)
{
}

void Settings::prepend(const QString &key, const QString &item)
{
    QStringList items = m_file.value(key).toStringList();
    // Each item once.
    items.removeAll(item);
    items.prepend(item);
    m_file.setValue(key, items.mid(0, kMaxRecent));
}

QStringList Settings::recentFiles() const
{
    return m_file.value(kRecentFiles).toStringList();
}

void Settings::addRecentFile(const QString &fileName)
{
    // The next session may start in another folder.
    prepend(kRecentFiles, QFileInfo(fileName).absoluteFilePath());
}

void Settings::removeRecentFile(const QString &fileName)
{
    QStringList files = recentFiles();
    files.removeAll(QFileInfo(fileName).absoluteFilePath());
    m_file.setValue(kRecentFiles, files);
}

void Settings::clearRecentFiles()
{
    m_file.remove(kRecentFiles);
}

QStringList Settings::recentActions() const
{
    return m_file.value(kRecentActions).toStringList();
}

void Settings::addRecentAction(const QString &type)
{
    prepend(kRecentActions, type);
}

QStringList Settings::favouriteActions() const
{
    return m_file.value(kFavourites).toStringList();
}

void Settings::setFavouriteAction(const QString &type, bool isFavourite)
{
    // A mark that is set again moves to the end.
    QStringList types = favouriteActions();
    types.removeAll(type);
    if (isFavourite) {
        types.append(type);
    }
    m_file.setValue(kFavourites, types);
}

std::optional<QKeySequence> Settings::shortcut(const QString &command) const
{
    const QVariant saved = m_file.value(kShortcutGroup + command);
    // An empty text is a shortcut that was removed.
    return saved.isValid() ? std::optional(QKeySequence(saved.toString())) : std::nullopt;
}

void Settings::setShortcut(const QString &command, const std::optional<QKeySequence> &keys)
{
    if (keys) {
        m_file.setValue(kShortcutGroup + command, keys->toString());
    } else {
        // Without an entry the default counts, also that of a later version.
        m_file.remove(kShortcutGroup + command);
    }
}

Theme Settings::theme() const
{
    const QString name = m_file.value(kTheme).toString();
    // An unknown word counts as none: a newer version or a text editor may have written it.
    const auto *const found = std::ranges::find(kThemeNames, name);
    return found == std::end(kThemeNames) ? Theme::System
                                          : static_cast<Theme>(found - std::begin(kThemeNames));
}

void Settings::setTheme(Theme theme)
{
    m_file.setValue(kTheme, QString(kThemeNames[static_cast<int>(theme)]));
}

int Settings::fontPercent() const
{
    // The file may be edited by hand.
    return qBound(kMinFontPercent, m_file.value(kFontPercent, 100).toInt(), kMaxFontPercent);
}

void Settings::setFontPercent(int percent)
{
    m_file.setValue(kFontPercent, qBound(kMinFontPercent, percent, kMaxFontPercent));
}

QString Settings::language() const
{
    return m_file.value(kLanguage).toString();
}

void Settings::setLanguage(const QString &code)
{
    m_file.setValue(kLanguage, code);
}

bool Settings::reopensFiles() const
{
    return m_file.value(kReopensFiles, true).toBool();
}

void Settings::setReopensFiles(bool reopens)
{
    m_file.setValue(kReopensFiles, reopens);
}

QStringList Settings::openFiles() const
{
    return m_file.value(kOpenFiles).toStringList();
}

void Settings::setOpenFiles(const QStringList &files)
{
    m_file.setValue(kOpenFiles, files);
    // Also after a crash the next session finds them.
    m_file.sync();
}

QByteArray Settings::windowGeometry() const
{
    return m_file.value(kGeometry).toByteArray();
}

QByteArray Settings::windowState() const
{
    return m_file.value(kState).toByteArray();
}

void Settings::setWindow(const QByteArray &geometry, const QByteArray &state)
{
    m_file.setValue(kGeometry, geometry);
    m_file.setValue(kState, state);
}

} // namespace corvanta::studio
