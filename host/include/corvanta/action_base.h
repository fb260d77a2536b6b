// What all our actions share: self-description, parameters, and the boundary that nothing is thrown
// across.
#pragma once
#include "corvanta/action_entry.h"
#include "corvanta/action_item.h"
#include "corvanta/action_parameters.h"
#include "corvanta/main_ui.h"
#include "corvanta/params/param_table.h"

#include <exception>
#include <new>
#include <type_traits>

namespace corvanta {

/// Logs a repeated message a limited number of times, then a closing line once.
class CORVANTA_EXPORT CappedLog
{
public:
    CappedLog(MainUI::LogLevel level, int most, QString closingLine);
    void add(const QString &text);
    void reset() { m_count = 0; }

private:
    MainUI::LogLevel m_level;
    int m_most;
    QString m_closingLine;
    int m_count = 0;
};

/// Base of the actions: catalogue texts, failures, and the run function.
///
/// A subclass implements step() (the run function), and start() and finish() when it has something
/// to prepare in init and to complete in close. All three may throw: the failure is logged and
/// fails the run.
class CORVANTA_EXPORT ActionBase : public ActionItem, public ActionParameters
{
public:
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
    std::span<const FileFormat> fileFormats() const final { return m_entry.formats; }

    const ActionEntry &entry() const { return m_entry; }

    // For an action and its helper classes (file series, row writers).

    /// Log an error and fail the run, if there is one. Returns false, so that a function that
    /// returns true for success ends with `return fail(...)`.
    bool fail(const QString &text);
    /// Log a warning and set the warning flag.
    void warn(const QString &text);
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
    ActionBase(const ActionEntry &entry, XMLNode saved, GlobalParameters *parameters);

    /// Prepare a run: reset all state of an earlier one.
    virtual void start() {}
    /// Do the work of one call of the run function. Returns true to be called again, because
    /// yieldRequested() was set; false when the action is finished or failed.
    virtual bool step() = 0;
    /// Complete or abandon what the run opened (see runIsGood()), and free it. May be called twice.
    virtual void finish() {}
    /// What inputTables() and fillFromInput() do. They may throw and fail(), as the above.
    virtual QVector<InputTable> listTables() { return {}; }
    virtual bool fill(int) { return true; }

private:
    bool runGuarded();
    template <class F> void guarded(F &&work) noexcept;

    ActionEntry m_entry;
};

/// An action with a parameter struct `P`, declared in the table that `Self::paramTable()` returns.
///
/// `Self::adjustDefaults(P &, double savedVersion)`, when there is one, sets the defaults that hang
/// on the version that saved the graph; it runs before the attributes are read.
/// `Self::pinsInFor(const P &)`, when there is one, is the number of input pins that the parameters
/// ask for.
///
/// `Base` is ActionBase or a class derived from it that several actions share.
template <class Self, class P, class Base = ActionBase> class ParamAction : public Base
{
public:
    void save(std::wostream &out, const QString &elementName) override
    {
        this->saveAI(out, elementName, this->entry().saveVersion);
        Self::paramTable().save(m_params, out, elementName, this->globalParameters());
    }
    ActionItem *newInstance(XMLNode *saved, GlobalParameters *parameters) override
    {
        const std::unique_ptr<XMLNode> owned(saved);
        return new (std::nothrow) Self(*owned, parameters);
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
    const P &params() const { return m_params; }

protected:
    ParamAction(const ActionEntry &entry, const XMLNode &saved, GlobalParameters *parameters)
        : Base(entry, saved, parameters)
    {
        if constexpr (requires(P & p) { Self::adjustDefaults(p, 0.0); }) {
            Self::adjustDefaults(m_params, this->savedVersion());
        }
        Self::paramTable().read(m_params, saved);
        updatePins();
    }

    void updatePins()
    {
        if constexpr (requires(const P &p) { Self::pinsInFor(p); }) {
            this->m_nPinIn = Self::pinsInFor(m_params);
        }
    }

    P m_params;
};

} // namespace corvanta
