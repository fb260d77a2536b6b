// Small actions that behave and misbehave, for tests of the engine.
#pragma once
#include "corvanta/action_base.h"
#include "corvanta/plugin_interface.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stdexcept>
#include <thread>

namespace test {

using namespace corvanta;

/// What the actions of a test have counted.
struct Seen
{
    std::atomic<int> opened = 0;
    std::atomic<int> closed = 0;
    std::atomic<qint64> made = 0; ///< rows by sources
    std::atomic<qint64> rows = 0; ///< rows taken
    std::atomic<quint64> sum = 0; ///< of the keys, to notice lost and doubled rows
    std::atomic<int> disordered = 0;
    std::atomic<qint64> firstLead = 0;   ///< rows made but not taken, when the first one is taken
    std::atomic<qint64> largestLead = 0; ///< the same at any later time
    std::atomic<int> writing = 0;        ///< sinks with a file that run
    std::atomic<int> overlapping = 0;    ///< of these, those that started while another one ran
    void reset()
    {
        opened = closed = disordered = writing = overlapping = 0;
        made = rows = firstLead = largestLead = 0, sum = 0;
    }
};
inline Seen g_seen;

inline ActionEntry describe(const char *name, int in, int out)
{
    ActionEntry d;
    d.typeName = name;
    d.description = name;
    d.pinsIn = in;
    d.pinsOut = out;
    return d;
}

struct Params
{
    qint64 rows = 1000;
    QString text = QStringLiteral("x");
    qint64 failAt = -1;
    QString how;
    QString file;      ///< that a source pretends to read, a sink to write
    qint64 access = 0; ///< of a sink to the file, a number of TargetUse::Access
};

template <class Self> class TestAction : public ParamAction<Self, Params>
{
public:
    static const ParamTable<Params> &paramTable()
    {
        static const ParamTable<Params> table{
            number("rows", &Params::rows),     text("text", &Params::text),
            number("failAt", &Params::failAt), text("how", &Params::how),
            text("file", &Params::file),       number("access", &Params::access)};
        return table;
    }

protected:
    using ParamAction<Self, Params>::ParamAction;
    void start() override
    {
        ++g_seen.opened;
        if (this->m_params.how == QLatin1String("init")) {
            this->fail(QStringLiteral("init fails"));
        }
    }
    void finish() override { ++g_seen.closed; }
};

/// Rows 0, 1, 2, ... with a text.
class Source final : public TestAction<Source>
{
public:
    Source(const XMLNode &saved, GlobalParameters *parameters)
        : TestAction(describe("source", 0, 1), saved, parameters)
    {
    }
    QStringList inputs() const override
    {
        return m_params.file.isEmpty() ? QStringList() : QStringList(m_params.file);
    }

private:
    void start() override
    {
        TestAction::start();
        m_next = 0;
    }
    bool step() override
    {
        OneRow *const row = getOutputRowForOutputPin(0);
        if (m_next == 0) {
            row->setColName({QStringLiteral("n"), QStringLiteral("text")});
            row->setMetaType(0, MetaInfo(MetaInfo::Key, -1));
        }
        const std::u16string text = m_params.text.toStdU16String();
        while (!yieldRequested()) {
            if (m_next == m_params.failAt) {
                return fail(QStringLiteral("source fails"));
            }
            if (m_next == m_params.rows) {
                return false;
            }
            row->setCol(0, keyCell(bufferForOutputPin(0), static_cast<quint32>(m_next)));
            row->setCol(1, textCell(bufferForOutputPin(0), text.data(),
                                    static_cast<qsizetype>(text.size())));
            setRowReadyForOutput(0);
            ++m_next;
            ++g_seen.made;
        }
        return true;
    }
    qint64 m_next = 0;
};

/// Reads its pins one after the other, the last one first, and passes the rows of pin 0 on.
class Sink final : public TestAction<Sink>
{
public:
    Sink(const XMLNode &saved, GlobalParameters *parameters)
        : TestAction(describe("sink", 3, 1), saved, parameters)
    {
    }
    QVector<TargetUse> targets() const override
    {
        if (m_params.file.isEmpty()) {
            return {};
        }
        return {{m_params.file, static_cast<TargetUse::Access>(m_params.access)}};
    }

private:
    void start() override
    {
        TestAction::start();
        m_pin = pinInCount() - 1;
        m_expected = 0;
        m_isWriting = false;
    }
    void finish() override
    {
        g_seen.writing -= m_isWriting ? 1 : 0;
        TestAction::finish();
    }
    bool step() override
    {
        if (!m_isWriting && !m_params.file.isEmpty()) {
            m_isWriting = true;
            g_seen.overlapping += g_seen.writing.fetch_add(1);
        }
        while (m_pin >= 0) {
            const OneRow *const row = getNextRowFromInPin(m_pin);
            if (row == nullptr) {
                --m_pin;
                m_expected = 0;
                continue;
            }
            take(*row);
            if (m_expected == m_params.failAt) {
                if (m_params.how == QLatin1String("throw")) {
                    throw std::runtime_error("sink throws");
                }
                return m_params.how != QLatin1String("leave") && fail(QStringLiteral("sink fails"));
            }
            if (yieldRequested()) {
                return true;
            }
        }
        return false;
    }
    void take(const OneRow &row)
    {
        const unsigned key = row.colAsKey(0, nullptr);
        g_seen.disordered += key == static_cast<unsigned>(m_expected++) ? 0 : 1;
        g_seen.sum += key;
        ++g_seen.rows;
        if (m_pin == 0) {
            getOutputRowForOutputPin(0)->copyFrom(&row);
            setRowReadyForOutput(0);
        }
    }
    int m_pin = 0;
    qint64 m_expected = 0;
    bool m_isWriting = false;
};

/// Renames the first column of each row that it passes on.
class Renamer final : public TestAction<Renamer>
{
public:
    Renamer(const XMLNode &saved, GlobalParameters *parameters)
        : TestAction(describe("renamer", 1, 1), saved, parameters)
    {
    }

private:
    bool step() override
    {
        while (const OneRow *const row = getNextRowFromInPin(0)) {
            OneRow *const out = getOutputRowForOutputPin(0);
            out->copyFrom(row);
            g_seen.disordered += out->colName(0) == QLatin1String("n") ? 0 : 1;
            out->setColName(0, QStringLiteral("renamed"));
            setRowReadyForOutput(0);
        }
        return false;
    }
};

/// Reads pin 1 to its end, and then pin 0 slowly.
class Late final : public TestAction<Late>
{
public:
    Late(const XMLNode &saved, GlobalParameters *parameters)
        : TestAction(describe("late", 2, 0), saved, parameters)
    {
    }

private:
    bool step() override
    {
        while (getNextRowFromInPin(1) != nullptr) {
        }
        while (getNextRowFromInPin(0) != nullptr) {
            const qint64 lead = g_seen.made - m_taken;
            g_seen.firstLead = m_taken++ == 0 ? lead : g_seen.firstLead.load();
            g_seen.largestLead = std::max<qint64>(g_seen.largestLead, lead);
            ++g_seen.rows;
            if (m_taken % 64 == 0) {
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
        }
        return false;
    }
    qint64 m_taken = 0; // of pin 0
};

/// Takes `rows` rows of pin 1, then `failAt` rows of pin 0, in turn to the end of both.
class Turns final : public TestAction<Turns>
{
public:
    Turns(const XMLNode &saved, GlobalParameters *parameters)
        : TestAction(describe("turns", 2, 0), saved, parameters)
    {
    }

private:
    bool step() override
    {
        std::array<qint64, 2> expected{};
        std::array<bool, 2> hasMore{true, true};
        for (int pin = 1; hasMore[0] || hasMore[1]; pin = 1 - pin) {
            const qint64 end = expected[pin] + (pin == 1 ? m_params.rows : m_params.failAt);
            while (hasMore[pin] && (expected[pin] < end || !hasMore[1 - pin])) {
                const OneRow *const row = getNextRowFromInPin(pin);
                hasMore[pin] = row != nullptr;
                g_seen.rows += hasMore[pin] ? 1 : 0;
                const bool isNext = !hasMore[pin] || row->colAsKey(0, nullptr) == expected[pin]++;
                g_seen.disordered += isNext ? 0 : 1;
            }
        }
        return false;
    }
};

/// Blocks in a wait of its own until the host wakes it.
class Blocker final : public TestAction<Blocker>
{
public:
    Blocker(const XMLNode &saved, GlobalParameters *parameters)
        : TestAction(describe("blocker", 1, 1), saved, parameters)
    {
    }
    void wakeAll() override
    {
        const std::lock_guard lock(m_mutex);
        m_woken = true;
        m_wake.notify_all();
    }

private:
    bool step() override
    {
        std::unique_lock lock(m_mutex);
        m_wake.wait(lock, [this] { return m_woken; });
        return false;
    }
    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_woken = false;
};

/// An action that does not catch what it throws: in "init", "run" or "close".
class Thrower final : public ActionItem
{
public:
    explicit Thrower(QString where)
        : ActionItem(XMLNode::emptyNode(), nullptr)
        , m_where(std::move(where))
    {
        m_nPinOut = 0;
    }
    const char *getTypeName() const override { return "thrower"; }
    UpdateClassWidget *createPanel(QWidget *) override { return nullptr; }
    QPixmap *getIcon(double) override { return nullptr; }
    QString getDescription() const override { return {}; }
    void showHelp() override {}
    QStringList getKeywords() const override { return {}; }
    void save(std::wostream &, const QString &) override {}
    ActionItem *newInstance(XMLNode *, GlobalParameters *) override { return nullptr; }
    char init() override { return throwAt("init"); }
    char close() override { return throwAt("close"); }
    void prepareRun() override { m_runFunction = static_cast<RunFunction>(&Thrower::step); }

private:
    bool step()
    {
        throwAt("run");
        return true;
    }
    char throwAt(const char *where) const
    {
        return m_where == QLatin1String(where) ? throw std::runtime_error(where) : 0;
    }
    QString m_where;
};

class Plugin final : public CorvantaPluginInterface
{
public:
    ActionItem *createAction(int index, unsigned int) override
    {
        switch (index) {
        case 0:
            return new Source(XMLNode::emptyNode(), nullptr);
        case 1:
            return new Sink(XMLNode::emptyNode(), nullptr);
        case 2:
            return new Blocker(XMLNode::emptyNode(), nullptr);
        case 3:
            return new Renamer(XMLNode::emptyNode(), nullptr);
        case 4:
            return new Late(XMLNode::emptyNode(), nullptr);
        case 5:
            return new Turns(XMLNode::emptyNode(), nullptr);
        default:
            return nullptr;
        }
    }
    void initialise() override {}
    double getVersion() override { return 1; }
    void *getExtra1() override { return nullptr; }
    void *getExtra2() override { return nullptr; }
    void *createActionFromNode(XMLNode) override { return nullptr; }
};

} // namespace test
