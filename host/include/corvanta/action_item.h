// The contract between the engine and an action.
//
// The upper part of ActionItem is what the engine, the editor and the palette call; the lower part
// is what an action calls: pins, rows, names. Rows are described in one_row.h, cells in
// base/cell.h.
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

/// State that a run shares with its actions. Threads: any.
struct RunControl
{
    /// The numbers are fixed: plug-ins are compiled with them.
    enum Status : int { Idle = 0, Running = 2, Stopped = 3, Failed = 5 };

    std::atomic<char> yieldRequest = 0; ///< set: run functions return false soon
    std::atomic<int> runStatus = Idle;  ///< a Status; an action that fails sets Failed

    bool isRunning() const { return runStatus.load(std::memory_order_relaxed) == Running; }
};

/// One node of a graph.
///
/// The host calls the virtual operations below. Plug-ins are built against their order, so nothing
/// may be inserted between them. A run calls init, prepareRun, the run function until it returns
/// true, and close. Threads: computeCompletion and wakeAll may be called from any thread, all other
/// operations from one thread at a time.
class CORVANTA_EXPORT ActionItem
{
public:
    /// Name of the type, and of the element that holds the parameters. A constant.
    virtual const char *getTypeName() const = 0;
    /// A new panel bound to this action, or null if the action has none. `parent` owns it; without
    /// a parent the caller does.
    virtual UpdateClassWidget *createPanel(QWidget *parent) = 0;
    virtual QPixmap *getIcon(double scale) = 0; ///< owned by the action's class
    // Pins, as the editor adds and removes them; the last one is removed.
    virtual void addPinIn();
    virtual void addPinOut();
    virtual void removePinIn();
    virtual void removePinOut();
    virtual QString getDescription() const = 0; ///< one line
    virtual void showHelp() = 0;
    virtual QStringList getFileTypes() const;        ///< default: none
    virtual QStringList getTags() const;             ///< default: none
    virtual QStringList getKeywords() const = 0;     ///< search words
    virtual QStringList getAlternativeNames() const; ///< default: none
    /// A copy with the same parameters, made through save() and newInstance().
    virtual ActionItem *clone(GlobalParameters *parameters);
    /// Write the element with the action's parameters.
    virtual void save(std::wostream &out, const QString &elementName) = 0;
    /// Prepare a run, on the thread that starts it. Returns 0 on success; the run function is not
    /// called after a failure, but close() is.
    virtual char init();
    /// End a run: complete the files of a good run, abandon those of a failed one, free everything.
    /// Called once for every action that was initialised. Returns 0 on success.
    virtual char close();
    /// Set m_runFunction, which does a part of the work and returns true when the action is
    /// finished, false to be called again. It must return soon after RunControl::yieldRequest is
    /// set.
    virtual void prepareRun() = 0;
    /// Release every wait of the action's own threads, because the run has ended. Called from
    /// another thread.
    virtual void wakeAll();
    /// The fraction that is done, 0 to 1; negative if it is not known. Called from another thread
    /// at any time.
    virtual float computeCompletion();
    // Reserved operations of the contract; the engine does not call them.
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

    /// The next row, or null at the end of the data or of the run (see RunControl). Valid until
    /// the next call for the same pin. Blocks until a row arrives; sends the rows produced so far
    /// before it waits.
    const OneRow *getNextRowFromInPin(int pin);
    /// The columns of an input pin, also if it never had a row. Call after the first row or the
    /// end. Valid until the next call of getNextRowFromInPin() for the same pin.
    const OneRow *getInputColumns(int pin);
    /// The row to fill next; owned by the pin, and the same object for every row.
    OneRow *getOutputRowForOutputPin(int pin);
    /// Send the filled row. Afterwards all cells of the row are missing again.
    void setRowReadyForOutput(int pin);
    /// The arena for the cells of the next row. setRowReadyForOutput() copies cells from anywhere
    /// else. The engine resets the arena.
    RowBuffer *bufferForOutputPin(int pin);
    /// False when no action reads the pin, so that its rows need not be made.
    bool isOutputPinRead(int pin) const;

    /// Number of this action in its graph, from 0; -1 for an action of no graph.
    int getIdx() const { return m_idx; }
    /// For an editor, which makes the actions of the graph that it edits (MainUI::editedGraph). In
    /// a run the engine sets the number.
    void setIdx(int idx) { m_idx = idx; }
    // Number of pins; during a run, of pins up to the highest linked one.
    int pinInCount() const { return m_nPinIn; }
    int pinOutCount() const { return m_nPinOut; }
    int maxPinIn() const { return m_maxPinIn; }

    // Names and texts with the graph's variables and folders; unchanged without a graph.

    QString expandFile(const QString &name) const;
    QString expandString(const QString &text) const;
    /// The name of a file to write. `part`, unless null, distinguishes several files of one name:
    /// it replaces every "*" in the name. If there is none, it becomes the extension of a name that
    /// has no extension, and else is inserted before the extension. It must be safe in a file name.
    QString expandOutputFile(const QString &name, const QString &part) const;

    GlobalParameters *globalParameters() const { return m_globalParameters; }
    // Flags of the last run: 1 if the action logged a warning or failed, otherwise 0. Read them
    // after the run.
    char warningFlag() const { return m_warningFlag; }
    char errorFlag() const { return m_errorFlag; }
    /// The version that determines defaults: the node's own, else the graph's; infinite for a new
    /// action.
    double savedVersion() const { return m_savedVersion; }

protected:
    using RunFunction = bool (ActionItem::*)();

    /// `saved` is the element with the parameters, of which only the version is read here.
    /// `parameters` may be null and must outlive the action.
    ActionItem(XMLNode saved, GlobalParameters *parameters);
    /// Write the beginning of the element with the common attributes: `<NAME version='V'`.
    void saveAI(std::wostream &out, const QString &elementName, double version) const;

    RunFunction m_runFunction = nullptr; ///< set by prepareRun()
    char m_warningFlag = 0;
    char m_errorFlag = 0;            ///< set to 1 together with RunControl::Failed
    RunControl *m_control = nullptr; ///< set from before init to after close
    int m_nPinIn = 1;
    int m_nPinOut = 1;
    int m_maxPinIn = 1; ///< number of input pins that a graph may link
    GlobalParameters *m_globalParameters;

private:
    friend class corvanta::Run;
    corvanta::Ports *m_ports = nullptr; // the pins; null outside a run
    int m_idx = -1;
    double m_savedVersion;
};
