// The operations that the engine calls, answered from the entry or passed on to the subclass.
//
// The engine calls actions through virtual functions of another library and expects no exception
// from them. guarded() is the one place that catches: init, the run function, close and the two
// input functions go through it.
#include "corvanta/action_base.h"

#include "base/counted.h"
#include "base/mapped.h"
#include "corvanta/failure_reason.h"
#include "corvanta/help.h"
#include "corvanta/icons.h"
#include "corvanta/lists.h"

#include <QPixmap>

#include <map>
#include <mutex>
#include <string>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// The icon cache of one action class. Shared by all its actions, and never destroyed before the
/// program ends, because the palette keeps pointers to the pixmaps.
struct IconCache
{
    QPixmap pixmap;
    void *key = nullptr;
};

IconCache &iconCacheOf(const char *typeName)
{
    // A map, because its elements keep their addresses. The mutex guards the map; the pixmaps are
    // drawn on the GUI thread only.
    static std::mutex mutex;
    static std::map<std::string, IconCache> caches;
    const std::lock_guard lock(mutex);
    return caches[typeName];
}

} // namespace

CappedLog::CappedLog(MainUI::LogLevel level, int most, QString closingLine)
    : m_level(level)
    , m_most(most)
    , m_closingLine(std::move(closingLine))
{
}

void CappedLog::add(const QString &text)
{
    if (m_count < m_most) {
        MainUI::addLog(m_level, text);
    } else if (m_count == m_most) {
        MainUI::addLog(m_level, m_closingLine);
    } else {
        return;
    }
    ++m_count;
}

/// An entry without a maximum has a fixed number of input pins.
ActionBase::ActionBase(const ActionEntry &entry, XMLNode saved, GlobalParameters *parameters)
    : ActionItem(std::move(saved), parameters)
    , m_entry(entry)
{
    m_nPinIn = entry.pinsIn;
    m_nPinOut = entry.pinsOut;
    m_maxPinIn = entry.maxPinsIn == ActionEntry::kPinsIn ? entry.pinsIn : entry.maxPinsIn;
}

UpdateClassWidget *ActionBase::createPanel(QWidget *parent)
{
    return m_entry.makePanel != nullptr ? m_entry.makePanel(parent, this) : nullptr;
}

QPixmap *ActionBase::getIcon(double scale)
{
    IconCache &cache = iconCacheOf(m_entry.typeName);
    return renderSVG(scale, QString::fromLatin1(m_entry.icon), &cache.pixmap, &cache.key);
}

QString ActionBase::getDescription() const
{
    return QString::fromUtf8(m_entry.description);
}

void ActionBase::showHelp()
{
    openHelp(QString::fromLatin1(m_entry.helpPage), QString());
}

QStringList ActionBase::getFileTypes() const
{
    return m_entry.fileTypes[0] == '\0' ? ActionItem::getFileTypes() : wordsOf(m_entry.fileTypes);
}

QStringList ActionBase::getTags() const
{
    return m_entry.tags[0] == '\0' ? ActionItem::getTags() : wordsOf(m_entry.tags);
}

QStringList ActionBase::getKeywords() const
{
    return wordsOf(m_entry.keywords);
}

/// The values of the parameters that name files of this kind, without empty ones; not expanded.
QStringList ActionBase::filesOf(ParameterInfo::File kind) const
{
    QStringList names;
    const QVector<ParameterInfo> infos = parameters();
    for (int i = 0; i < infos.size(); ++i) {
        if (infos[i].file == kind) {
            names << parameterValue(i);
        }
    }
    names.removeAll(QString());
    return names;
}

QVector<TargetUse> ActionBase::targets() const
{
    return mapped<QVector<TargetUse>>(
        filesOf(ParameterInfo::File::Output),
        [this](const QString &name) { return TargetUse{expandOutputFile(name, QString())}; });
}

QStringList ActionBase::inputs() const
{
    return mapped<QStringList>(filesOf(ParameterInfo::File::Input),
                               [this](const QString &name) { return expandFile(name); });
}

/// Calls `work`. A message is the only thing that can be done with an exception: the caller is a
/// virtual function of the contract, which has no result for it.
template <class F> void ActionBase::guarded(F &&work) noexcept
{
    try {
        work();
    } catch (...) {
        failForException();
    }
}

/// Fails the run for the exception that is being handled. If there is no memory for the message,
/// the program says why the run failed.
void ActionBase::failForException() noexcept
{
    try {
        const auto failFor = [this](const QString &why) {
            fail(u"Error: '%1': %2\n"_s.arg(QLatin1StringView(m_entry.typeName), why));
        };
        try {
            throw;
        } catch (const std::bad_alloc &) {
            failFor(u"not enough memory"_s);
        } catch (const std::exception &error) {
            failFor(QString::fromUtf8(error.what()));
        } catch (...) {
            failFor(u"unknown failure"_s);
        }
    } catch (const std::exception &) {
        setFailed();
    }
}

char ActionBase::init()
{
    // A stop before the start: prepare nothing, the run function is not called.
    if (m_control->yieldRequest != 0) {
        return 0;
    }
    guarded([this] {
        ActionItem::init();
        start();
    });
    return m_errorFlag;
}

QVector<InputTable> ActionBase::inputTables()
{
    QVector<InputTable> tables;
    guarded([&] { tables = listTables(); });
    return tables;
}

bool ActionBase::fillFromInput(int table)
{
    bool isFilled = false;
    // Not part of a run, whose flags init() resets: fail() below must not find an old one.
    m_errorFlag = 0;
    guarded([&] { isFilled = fill(table); });
    return isFilled;
}

void ActionBase::prepareRun()
{
    m_runFunction = static_cast<RunFunction>(&ActionBase::runGuarded);
}

QVector<InputTable> ActionBase::relatedTables()
{
    QVector<InputTable> tables;
    guarded([&] { tables = listRelated(); });
    return tables;
}

bool ActionBase::fillFromRelated(int table, const QVector<bool> &areKeys)
{
    bool isFilled = false;
    m_errorFlag = 0; // as in fillFromInput()
    guarded([&] { isFilled = fillRelated(table, areKeys); });
    return isFilled;
}

/// The run function. The engine's result has the opposite sense of step()'s.
bool ActionBase::runGuarded()
{
    bool hasMore = false; // also after an exception
    guarded([&] { hasMore = step(); });
    return !hasMore;
}

char ActionBase::close()
{
    guarded([this] { finish(); });
    guarded([this] { ActionItem::close(); }); // also when finish() threw
    return m_errorFlag;
}

/// Without a message once the run is stopped: the failure is then a consequence of it.
bool ActionBase::fail(const QString &text, const QString &reason)
{
    if (setFailed()) {
        MainUI::addLog(MainUI::Error, text);
        logReason(reason);
    }
    return false;
}

/// Sets the flag of the action and the status of the run. Returns false when the run was stopped:
/// what fails then is a consequence of the stop and no error.
bool ActionBase::setFailed() noexcept
{
    m_errorFlag = 1;
    // Outside a run, for example in fillFromInput(), there is nothing to fail but the call.
    if (m_control == nullptr) {
        return true;
    }
    int status = m_control->runStatus;
    while (status != RunControl::Stopped) {
        if (m_control->runStatus.compare_exchange_weak(status, RunControl::Failed)) {
            return true;
        }
    }
    return false;
}

void ActionBase::warnOf(const Occurrences &found, const QString &file, const QString &noun,
                        const QString &text)
{
    if (found.any()) {
        warn(text.arg(file, counted(found.count(), noun), found.first()));
    }
}

void ActionBase::warn(const QString &text, const QString &reason, MainUI::LogLevel level)
{
    MainUI::addLog(level, text);
    logReason(reason);
    m_warningFlag = 1;
}

} // namespace corvanta
