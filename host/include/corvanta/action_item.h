// corvanta/action_item.h
// The contract between the engine and an action.
#pragma once
#include "corvanta/export.h"
#include "corvanta/global_parameters.h"
#include "corvanta/one_row.h"
#include "corvanta/row_buffer.h"
#include "corvanta/xml_node.h"

#include <QString>
#include <QStringList>

#include <atomic>
#include <iosfwd>

class QPixmap;
class QWidget;
class UpdateClassWidget;

namespace corvanta {
class Ports;
class Run;
} // namespace corvanta

class ActionItem;
CORVANTA_EXPORT char doCheckNameCollision(const OneRow *row, bool check, ActionItem *action,
                                          const QVector<int> &columns, const QString &what);

/// What a run and its actions tell each other.
struct RunControl
{
    enum Status : int { Idle = 0, Running = 2, Stopped = 3, Failed = 5 };

    std::atomic<char> yieldRequest = 0; ///< set: return from the run function soon, with false
    std::atomic<int> runStatus = Idle;  ///< an action that fails sets Failed

    bool isRunning() const { return runStatus.load(std::memory_order_relaxed) == Running; }
};

/// One node of a graph.
///
/// The virtual operations below are called by the host and stand in the order that plug-ins are
/// built against: nothing may be put between them. A run is init, prepareRun, the run function
/// again and again until it answers true, close. Threads: everything but computeCompletion and
/// wakeAll is called by one thread at a time.
class CORVANTA_EXPORT ActionItem
{
public:
    virtual const char *getTypeName() const = 0;
    /// A new panel bound to this action; the caller owns it.
    virtual UpdateClassWidget *createPanel(QWidget *parent) = 0;
    virtual QPixmap *getIcon(double scale) = 0;
    virtual void addPinIn();
    virtual void addPinOut();
    virtual void removePinIn();
    virtual void removePinOut();
    virtual QString getDescription() const = 0;
    virtual void showHelp() = 0;
    virtual QStringList getFileTypes() const; ///< default: none
    virtual QStringList getTags() const;      ///< default: none
    virtual QStringList getKeywords() const = 0;
    virtual QStringList getAlternativeNames() const; ///< default: none
    /// A copy with the same parameters, made through save() and newInstance().
    virtual ActionItem *clone(GlobalParameters *parameters);
    virtual void save(std::wostream &out, const QString &elementName) = 0;
    virtual char init();
    virtual char close();
    virtual void prepareRun() = 0;
    /// Open every wait of the action's own threads: the run has ended. Called from another thread.
    virtual void wakeAll();
    /// Fraction done, 0 to 1; negative: not known. Called from another thread at any time.
    virtual float computeCompletion();
    virtual bool completionIn2Pass();
    virtual char canRunInParallel(const QString &what, bool *answer);
    virtual char fullTableRequiredToComputeMetas(int pin, bool *answer);
    virtual QString getHDFile(int pin, bool create);
    virtual quint64 getHDTime();
    virtual void clearHDFile();
    virtual ~ActionItem();
    /// A new object of the same class from a saved node, which is deleted.
    virtual ActionItem *newInstance(XMLNode *saved, GlobalParameters *parameters) = 0;

    ActionItem(const ActionItem &) = delete;
    ActionItem &operator=(const ActionItem &) = delete;

    // Pins and rows, for run functions.

    /// The next row, or null at the end of the data (or of the run: see RunControl). Valid until
    /// the next call for the same pin. Blocks while no row is there; rows produced so far go out
    /// first.
    const OneRow *getNextRowFromInPin(int pin);
    /// The columns of an input pin, also when it never had a row. After the first row or the end.
    const OneRow *getInputColumns(int pin);
    OneRow *getOutputRowForOutputPin(int pin);
    /// Hand the filled row on; the next getOutputRowForOutputPin() gives a fresh one.
    void setRowReadyForOutput(int pin);
    /// An arena whose cells setRowReadyForOutput() need not copy: cells of the row that is being
    /// filled are best made here. The engine resets it.
    RowBuffer *bufferForOutputPin(int pin);
    /// False when nobody reads the pin: rows need not be made.
    bool isOutputPinRead(int pin) const;

    /// Number of this action in its graph, from 0.
    int getIdx() const { return m_idx; }
    int pinInCount() const { return m_nPinIn; }
    int pinOutCount() const { return m_nPinOut; }
    int maxPinIn() const { return m_maxPinIn; }

    // Names and texts with the graph's variables and folders.

    QString expandFile(const QString &name) const;
    QString expandString(const QString &text) const;
    /// The name of a file to write. `part`, unless null, tells several files of one name apart: it
    /// takes the place of every "*" in the name; without one it becomes the extension of a name
    /// that has none, and goes in front of the extension otherwise. It must be safe in a file name.
    QString expandOutputFile(const QString &name, const QString &part) const;

    GlobalParameters *globalParameters() const { return m_globalParameters; }
    char warningFlag() const { return m_warningFlag; }
    char errorFlag() const { return m_errorFlag; }
    /// The version that decides about defaults: the node's own, else the graph's; infinite when
    /// new.
    double savedVersion() const { return m_savedVersion; }

protected:
    using RunFunction = bool (ActionItem::*)();

    ActionItem(XMLNode saved, GlobalParameters *parameters);
    /// Write the start of the element and what all actions have in common: `<NAME version='V'`.
    void saveAI(std::wostream &out, const QString &elementName, double version) const;

    RunFunction m_runFunction = nullptr;
    char m_warningFlag = 0;
    char m_errorFlag = 0;
    RunControl *m_control = nullptr; ///< set from before init to after close
    int m_nPinIn = 1;
    int m_nPinOut = 1;
    int m_maxPinIn = 1; ///< as many input pins a graph may link
    GlobalParameters *m_globalParameters;

private:
    friend class corvanta::Run;
    friend char doCheckNameCollision(const OneRow *, bool, ActionItem *, const QVector<int> &,
                                     const QString &);
    corvanta::Ports *m_ports = nullptr;
    int m_idx = 0;
    double m_savedVersion;
};
