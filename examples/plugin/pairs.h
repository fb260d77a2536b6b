// The actions of the module, their parameters and panel, and its plug-in object.
#pragma once
#include <QFile>

#include <corvanta/action_base.h>
#include <corvanta/edit/edit_history.h>
#include <corvanta/plugin_interface.h>
#include <corvanta/target_file.h>
#include <corvanta/update_class_widget.h>

class QLineEdit;

struct PairsParams
{
    QString fileName;
    QString separator = QStringLiteral("=");
};

class ReadPairs final : public corvanta::ParamAction<ReadPairs, PairsParams>
{
public:
    ReadPairs(const XMLNode &saved, GlobalParameters *parameters);
    static const corvanta::ParamTable<PairsParams> &paramTable();

private:
    bool step() override;
    void finish() override;

    QFile m_file;
    qint64 m_line = 0; // the last one read, from 1
    corvanta::Occurrences m_skipped;
};

class WritePairs final : public corvanta::ParamAction<WritePairs, PairsParams>
{
public:
    WritePairs(const XMLNode &saved, GlobalParameters *parameters);
    static const corvanta::ParamTable<PairsParams> &paramTable();

private:
    bool step() override;
    void finish() override;

    TargetFile m_file;
};

// A field for each parameter.
class PairsPanel final : public UpdateClassWidget
{
public:
    PairsPanel(QWidget *parent, ActionItem *action);
    void refresh() override;

private:
    ActionParameters *m_parameters;
    QVector<QLineEdit *> m_edits;
};

class PairsModule final : public QObject, public CorvantaPluginInterface
{
    Q_OBJECT
    Q_INTERFACES(CorvantaPluginInterface)
    Q_PLUGIN_METADATA(IID CorvantaPluginInterface_iid FILE "corvanta/plugin_abi.json")

public:
    ActionItem *createAction(int index, unsigned int reserved) override;
    void initialise() override {}
    double getVersion() override { return 1.0; }
    void *getExtra1() override { return nullptr; }
    void *getExtra2() override { return nullptr; }
    void *createActionFromNode(XMLNode) override { return nullptr; }
};
