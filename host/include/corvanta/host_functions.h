// corvanta/host_functions.h
// Free functions of the host that actions and panels call.
#pragma once
#include "corvanta/export.h"

#include <QPixmap>
#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>

class ActionItem;
class OneRow;
class QWidget;

/// Open the help page `id` (empty: the action has none). `anchor` is a place on the page.
CORVANTA_EXPORT void openHelp(const QString &id, const QString &anchor);
/// Who shows help pages; without one openHelp() does nothing.
CORVANTA_EXPORT void
setHelpOpener(std::function<void(const QString &id, const QString &anchor)> opener);

/// Draw the SVG or PNG resource `path` at `scale` (1: 64 by 64 pixels) into `cache` and return it.
/// Drawn again only when the scale changes; `key` is the place where that is remembered, null
/// before the first call. Needs a GUI application; without one `cache` stays empty.
CORVANTA_EXPORT QPixmap *renderSVG(double scale, const QString &path, QPixmap *cache, void **key);
CORVANTA_EXPORT QPixmap resizeIcon(const QPixmap &icon, double scale);
CORVANTA_EXPORT QPixmap getPlusIcon();
CORVANTA_EXPORT QPixmap getMinusIcon();

/// Nothing is served over the web here: false.
CORVANTA_EXPORT bool downloadForWeb(const QString &name);
/// The first `most` strings in single quotes, separated by comma and blank, "..." when some are
/// left out.
CORVANTA_EXPORT QString stringFromStringList(const QStringList &list, int most);
/// A copy of `text` that shares nothing with it.
CORVANTA_EXPORT QString detach(const QString &text);
/// Sort keys[from .. to] ascending, and values along with them; stable.
CORVANTA_EXPORT void sortIntInt(int *keys, int *values, int from, int to);
/// A rough figure of the bytes that the process may use for caches, for the share `percent`.
CORVANTA_EXPORT int memConsumptionInByte(int percent);

/// Look for columns of `columns` that have exactly the same name. With a collision and `check` on,
/// log the error, fail the action and return 1; otherwise return 0. `what` is the file that would
/// be written.
CORVANTA_EXPORT char doCheckNameCollision(const OneRow *row, bool check, ActionItem *action,
                                          const QVector<int> &columns, const QString &what);

/// File dialogs of the panels; a null string when cancelled.
CORVANTA_EXPORT QString tGetOpenFileName(QWidget *parent, const QString &title,
                                         const QString &start, const QString &filter);
CORVANTA_EXPORT QString tGetSaveFileName(QWidget *parent, const QString &title,
                                         const QString &start, const QString &filter);
/// Choose a member of the archive `name`; the name to give to a reader, ARCHIVE@MEMBER.
CORVANTA_EXPORT QString browseArchive(QWidget *parent, const QString &name);
