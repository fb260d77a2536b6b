#include "corvanta/host_functions.h"

#include "corvanta/action_item.h"
#include "corvanta/main_ui.h"
#include "corvanta/update_class_widget.h"

#include <QFileDialog>
#include <QGuiApplication>
#include <QInputDialog>
#include <QPainter>
#include <QSet>
#include <QSvgRenderer>

#include <algorithm>
#include <limits>
#include <numeric>

using namespace Qt::StringLiterals;

namespace {

constexpr int kIconPixels = 64;

std::function<void(const QString &, const QString &)> &helpOpener()
{
    static std::function<void(const QString &, const QString &)> opener;
    return opener;
}

QPixmap signIcon(bool plus)
{
    constexpr int size = 16;
    QPixmap icon(size, size);
    icon.fill(Qt::transparent);
    QPainter painter(&icon);
    const QColor colour(plus ? 0x2e7d32 : 0xc62828);
    painter.fillRect(3, 7, 10, 3, colour);
    if (plus) {
        painter.fillRect(6, 3, 3, 10, colour);
    }
    return icon;
}

} // namespace

UpdateClassWidget::UpdateClassWidget(QWidget *parent, ActionItem *action)
    : QWidget(parent)
    , m_action(action)
{
}

void openHelp(const QString &id, const QString &anchor)
{
    if (helpOpener()) {
        helpOpener()(id, anchor);
    }
}

void setHelpOpener(std::function<void(const QString &, const QString &)> opener)
{
    helpOpener() = std::move(opener);
}

QPixmap *renderSVG(double scale, const QString &path, QPixmap *cache, void **key)
{
    const bool hasGui = qobject_cast<QGuiApplication *>(QCoreApplication::instance()) != nullptr;
    const int pixels = qBound(1, qRound(kIconPixels * scale), 4096);
    if (!hasGui || (*key != nullptr && cache->width() == pixels)) {
        return cache;
    }
    QPixmap drawn(pixels, pixels);
    drawn.fill(Qt::transparent);
    QPainter painter(&drawn);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (path.endsWith(".svg"_L1)) {
        QSvgRenderer(path).render(&painter);
    } else {
        painter.drawPixmap(drawn.rect(), QPixmap(path));
    }
    painter.end();
    *cache = drawn;
    *key = cache;
    return cache;
}

QPixmap resizeIcon(const QPixmap &icon, double scale)
{
    return icon.scaled(icon.size() * scale, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

QPixmap getPlusIcon()
{
    return signIcon(true);
}

QPixmap getMinusIcon()
{
    return signIcon(false);
}

bool downloadForWeb(const QString &)
{
    return false;
}

QString stringFromStringList(const QStringList &list, int most)
{
    QStringList quoted;
    for (const QString &text : list.mid(0, most)) {
        quoted << u'\'' + text + u'\'';
    }
    return quoted.join(", "_L1) + (list.size() > most ? ", ..."_L1 : ""_L1);
}

QString detach(const QString &text)
{
    return text.isNull() ? QString() : QString(text.constData(), text.size());
}

void sortIntInt(int *keys, int *values, int from, int to)
{
    std::vector<std::pair<int, int>> pairs;
    for (int i = from; i <= to; ++i) {
        pairs.emplace_back(keys[i], values[i]);
    }
    std::stable_sort(pairs.begin(), pairs.end(),
                     [](const auto &a, const auto &b) { return a.first < b.first; });
    for (int i = from; i <= to; ++i) {
        std::tie(keys[i], values[i]) = pairs[static_cast<size_t>(i - from)];
    }
}

int memConsumptionInByte(int percent)
{
    constexpr qint64 budget = qint64(1) << 30;
    return static_cast<int>(
        qMin<qint64>(budget / 100 * qMax(percent, 0), std::numeric_limits<int>::max()));
}

char doCheckNameCollision(const OneRow *row, bool check, ActionItem *action,
                          const QVector<int> &columns, const QString &what)
{
    QSet<QString> seen;
    for (const int column : columns) {
        const QString name = row->colName(column);
        if (check && seen.contains(name)) {
            MainUI::addLog(
                MainUI::Error,
                u"Error: cannot write '%1': two columns are named '%2'\n"_s.arg(what, name));
            action->m_control->runStatus = RunControl::Failed;
            action->m_errorFlag = 1;
            return 1;
        }
        seen.insert(name);
    }
    return 0;
}

QString tGetOpenFileName(QWidget *parent, const QString &title, const QString &start,
                         const QString &filter)
{
    return QFileDialog::getOpenFileName(parent, title, start, filter);
}

QString tGetSaveFileName(QWidget *parent, const QString &title, const QString &start,
                         const QString &filter)
{
    return QFileDialog::getSaveFileName(parent, title, start, filter);
}

QString browseArchive(QWidget *parent, const QString &name)
{
    bool ok = false;
    const QString member = QInputDialog::getText(parent, u"Archive member"_s,
                                                 u"Name of the member inside %1"_s.arg(name),
                                                 QLineEdit::Normal, QString(), &ok);
    return ok && !member.isEmpty() ? name + u'@' + member : QString();
}
