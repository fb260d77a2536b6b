// A module that does what a module must not do. The environment variable CORVANTA_BAD_MODULE names
// what it does while it is loaded; the attribute `does` of its action names what that does in a
// run.
//
// The action derives from ActionItem, not from ActionBase, which would catch its exceptions.
#include "tests/faults/bad_module.h"

#include <chrono>
#include <stdexcept>
#include <thread>

using namespace Qt::StringLiterals;

namespace {

void throwIf(bool condition, const char *text)
{
    if (condition) {
        throw std::runtime_error(text);
    }
}

bool moduleDoes(const char *what)
{
    return qgetenv("CORVANTA_BAD_MODULE") == what;
}

[[noreturn]] void sleepForever()
{
    for (;;) {
        std::this_thread::sleep_for(std::chrono::hours(1));
    }
}

class BadAction final : public ActionItem
{
public:
    BadAction(const XMLNode &saved, GlobalParameters *parameters)
        : ActionItem(saved, parameters)
        , m_does(xmltoa(saved.getAttribute("does", nullptr), QString()))
    {
        throwIf(m_does == "constructor"_L1, "the constructor throws");
        m_nPinIn = m_maxPinIn = 0;
    }
    const char *getTypeName() const override { return "bad"; }
    UpdateClassWidget *createPanel(QWidget *) override { return nullptr; }
    QPixmap *getIcon(double) override { return nullptr; }
    QString getDescription() const override { return u"Do what an action must not do"_s; }
    void showHelp() override {}
    QStringList getKeywords() const override { return {}; }
    void save(std::wostream &out, const QString &name) override { saveAI(out, name, 1); }
    char init() override
    {
        throwIf(m_does == "init"_L1, "init throws");
        return ActionItem::init();
    }
    void prepareRun() override
    {
        if (m_does != "prepare"_L1) {
            m_runFunction = static_cast<RunFunction>(&BadAction::work);
        }
    }
    char close() override
    {
        throwIf(m_does == "close"_L1, "close throws");
        return ActionItem::close();
    }
    void wakeAll() override { throwIf(m_does == "wake"_L1, "wakeAll throws"); }
    float computeCompletion() override
    {
        throwIf(m_does == "completion"_L1, "computeCompletion throws");
        return 0;
    }
    ActionItem *newInstance(XMLNode *saved, GlobalParameters *parameters) override
    {
        const std::unique_ptr<XMLNode> owned(saved);
        return new BadAction(*owned, parameters);
    }

private:
    bool work()
    {
        throwIf(m_does == "run"_L1, "the run function throws");
        if (m_does == "number"_L1) {
            throw 42;
        }
        if (m_does == "sleep"_L1) {
            sleepForever();
        }
        if (m_does == "completion"_L1) {
            std::this_thread::sleep_for(std::chrono::milliseconds(500));
        }
        // The run ends when another action stops it.
        return m_does != "wake"_L1 || !m_control->isRunning();
    }

    QString m_does;
};

} // namespace

BadModule::BadModule()
{
    throwIf(moduleDoes("object"), "the plug-in object throws");
}

void BadModule::initialise()
{
    throwIf(moduleDoes("initialise"), "initialise throws");
}

ActionItem *BadModule::createAction(int index, unsigned int)
{
    throwIf(moduleDoes("create"), "createAction throws");
    if (moduleDoes("number")) {
        throw 42;
    }
    return index == 0 || moduleDoes("endless") ? new BadAction(XMLNode::emptyNode(), nullptr)
                                               : nullptr;
}
