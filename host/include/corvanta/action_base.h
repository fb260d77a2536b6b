// What all our actions share: self-description, parameters, and the boundary to the engine.
//
// An action derives from ParamAction with its parameter struct, defines one ActionEntry and one
// ParamTable, and implements step(). The engine sees only the operations of ActionItem; they are
// implemented here, catch every exception, and call the functions that a subclass overrides.
#pragma once
#include "base/occurrences.h"
#include "corvanta/action_entry.h"
#include "corvanta/action_item.h"
#include "corvanta/action_parameters.h"
#include "corvanta/main_ui.h"
#include "corvanta/params/param_table.h"

#include <exception>
#include <new>
#include <type_traits>

namespace corvanta {

/// Logs a repeated message a limited number of times, then a closing line once, so that a damaged
/// file with millions of faults does not fill the log. Threads: one at a time.
class CORVANTA_EXPORT CappedLog
{
public:
    /// Log the first `most` messages at `level`; `closingLine` replaces the message after them.
    CappedLog(MainUI::LogLevel level, int most, QString closingLine);
    /// Log `text`, unless the limit is reached; the texts need not be equal.
    void add(const QString &text);
    /// Count from 0 again. Call at the start of each run.
    void reset() { m_count = 0; }

private:
    MainUI::LogLevel m_level;
    int m_most;
    QString m_closingLine;
    int m_count = 0; // messages logged since reset(), the closing line included
};

/// Base of the actions: catalogue texts, failures, and the run function.
///
/// A subclass implements step() (the run function), and start() and finish() when it has something
/// to prepare in init and to complete in close. All three may throw: the failure is logged and
/// fails the run.
/// Threads: as ActionItem.
class CORVANTA_EXPORT ActionBase : public ActionItem, public ActionParameters
{
public:
    // The operations of ActionItem and ActionParameters, answered from the entry or passed on to
    // the functions below.
    const char *getTypeName() const override { return m_entry.typeName; }
    UpdateClassWidget *createPanel(QWidget *parent) override;
    QPixmap *getIcon(double scale) override;
    QString getDescription() const override;
    void showHelp() override;
    QStringList getFileTypes() const override;
    QStringList getTags() const override;
    QStringList getKeywords() const override;
    char init() override;
    char close() override;
    void prepareRun() override;
    QVector<InputTable> inputTables() final;
    bool fillFromInput(int table) final;
    QVector<InputTable> relatedTables() final;
    bool fillFromRelated(int table, const QVector<bool> &areKeys) final;
    std::span<const FileFormat> fileFormats() const final { return m_entry.formats; }
    /// The parameters that name files to write, each as a file that is created.
    QVector<TargetUse> targets() const override;
    /// The parameters that name files to read.
    QStringList inputs() const override;

    /// The registration of this action. Valid as long as the action.
    const ActionEntry &entry() const { return m_entry; }

    // For an action and its helper classes (file series, row writers), which keep a reference to
    // their action.

    /// Log an error and fail the run, if there is one. Returns false, so that a function that
    /// returns true for success ends with `return fail(...)`. `reason` is logged after the text;
    /// see logReason(). Nothing is logged once the run was stopped: files and pipes then fail
    /// because of the stop.
    bool fail(const QString &text, const QString &reason = {});
    /// Log a warning and set the warning flag; the run continues. `reason` is as for fail(). The
    /// level is another one only where saved graphs rely on it.
    void warn(const QString &text, const QString &reason = {},
              MainUI::LogLevel level = MainUI::Warning);
    /// Log one warning for all of `found`, if there are any. `text` has %1 for the name of the
    /// file, %2 for the number with `noun`, and %3 for the first place.
    void warnOf(const Occurrences &found, const QString &file, const QString &noun,
                const QString &text);
    /// True when step() must return soon, so that the engine can end the run or start another
    /// action. Cheap enough for every row.
    bool yieldRequested() const
    {
        return m_control->yieldRequest.load(std::memory_order_relaxed) != 0;
    }
    /// False once this or another action failed, or the run was stopped: targets must then not be
    /// touched.
    bool runIsGood() const
    {
        return m_control != nullptr && m_control->isRunning() && m_errorFlag == 0;
    }
    /// State of the run. Only between init and close.
    const RunControl &control() const { return *m_control; }
    /// Ask the user whether to retry a failed write of `file`, for example when the disk is full.
    /// Returns false without a question once the run failed or was stopped. May be called from any
    /// thread between init and close.
    bool askRetryWrite(const QString &file) const
    {
        return m_control != nullptr && m_control->isRunning() &&
               MainUI::displayOutOfDiskSpace(file, getIdx(), true);
    }

protected:
    /// `saved` is the element of the action in its graph, empty for a new action. `parameters` is
    /// null for prototypes, and otherwise must outlive the action.
    ActionBase(const ActionEntry &entry, XMLNode saved, GlobalParameters *parameters);

    /// Prepare a run: reset all state of an earlier one. Called by init on the thread that starts
    /// the run, before the pins can be used.
    virtual void start() {}
    /// Do the work of one call of the run function. Returns true to be called again, because
    /// yieldRequested() was set; false when the action is finished or failed. State that must
    /// survive a yield is a member.
    virtual bool step() = 0;
    /// Complete or abandon what the run opened (see runIsGood()), and free it. May be called twice,
    /// also without a step() before it.
    virtual void finish() {}
    /// What inputTables(), fillFromInput(), relatedTables() and fillFromRelated() do. They may
    /// throw and fail(), as the above.
    virtual QVector<InputTable> listTables() { return {}; }
    virtual bool fill(int) { return true; }
    virtual QVector<InputTable> listRelated() { return {}; }
    virtual bool fillRelated(int, const QVector<bool> &) { return false; }

private:
    QStringList filesOf(ParameterInfo::File kind) const;
    bool runGuarded();
    bool setFailed() noexcept;
    void failForException() noexcept;
    template <class F> void guarded(F &&work) noexcept;

    ActionEntry m_entry; // a copy; its texts are constants
};

/// An action with a parameter struct `P`, declared in the table that `Self::paramTable()` returns.
///
/// `Self::adjustDefaults(P &, double savedVersion)`, when there is one, sets the defaults that
/// depend on the version that saved the graph; it runs before the attributes are read.
/// `Self::pinsInFor(const P &)`, when there is one, is the number of input pins that the parameters
/// need; it is evaluated again whenever a parameter changes.
///
/// `Base` is ActionBase or a class derived from it that several actions share.
template <class Self, class P, class Base = ActionBase> class ParamAction : public Base
{
public:
    /// Write the version and every parameter that the table saves; see ParamTable.
    void save(std::wostream &out, const QString &elementName) override
    {
        this->saveAI(out, elementName, this->entry().saveVersion);
        Self::paramTable().save(m_params, out, elementName, this->globalParameters());
    }
    /// Null when there is no memory. Deletes `saved` in any case.
    ActionItem *newInstance(XMLNode *saved, GlobalParameters *parameters) override
    {
        const std::unique_ptr<XMLNode> owned(saved);
        try {
            return new Self(*owned, parameters);
        } catch (const std::bad_alloc &) {
            return nullptr;
        }
    }
    QVector<ParameterInfo> parameters() const override { return Self::paramTable().infos(); }
    QString parameterValue(int index) const override
    {
        return Self::paramTable().value(m_params, index);
    }
    bool setParameterValue(int index, const QString &value) override
    {
        const bool isSet = Self::paramTable().setValue(m_params, index, value);
        updatePins();
        return isSet;
    }
    /// The current values. Constant during a run.
    const P &params() const { return m_params; }

protected:
    /// Set the defaults of the saved version, then read the parameters of `saved`.
    ParamAction(const ActionEntry &entry, const XMLNode &saved, GlobalParameters *parameters)
        : Base(entry, saved, parameters)
    {
        if constexpr (requires(P & p) { Self::adjustDefaults(p, 0.0); }) {
            Self::adjustDefaults(m_params, this->savedVersion());
        }
        Self::paramTable().read(m_params, saved);
        updatePins();
    }

    /// Call after a change of m_params, because the number of input pins may depend on it.
    void updatePins()
    {
        if constexpr (requires(const P &p) { Self::pinsInFor(p); }) {
            this->m_nPinIn = Self::pinsInFor(m_params);
        }
    }

    P m_params;
};

} // namespace corvanta
