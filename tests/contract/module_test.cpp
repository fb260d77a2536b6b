// The module as a host sees it: loaded as a plug-in, every action through the contract only.
#include "corvanta/action_item.h"
#include "corvanta/action_parameters.h"
#include "corvanta/action_registry.h"
#include "corvanta/help.h"
#include "corvanta/params/saved_form.h"
#include "corvanta/plugin_interface.h"
#include "corvanta/update_class_widget.h"
#include "tests/contract/fixed_actions.h"

#include <QApplication>
#include <QFileInfo>
#include <QLibrary>
#include <QPixmap>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <sstream>

using namespace Qt::StringLiterals;
using corvanta::isAllowedValue;

namespace {

using Action = std::unique_ptr<ActionItem>;
using InstanceFunction = QObject *(*)();
using TextFunction = const char *(*)();

QLibrary &library()
{
    static QLibrary library(QStringLiteral(CORVANTA_MODULE));
    return library;
}

QObject *instance()
{
    const auto function =
        reinterpret_cast<InstanceFunction>(library().resolve("qt_plugin_instance"));
    return function != nullptr ? function() : nullptr;
}

CorvantaPluginInterface *plugin()
{
    return qobject_cast<CorvantaPluginInterface *>(instance());
}

Action prototype(int index)
{
    return Action(plugin()->createAction(index, 0));
}

XMLNode parsed(const QByteArray &xml)
{
    const auto node = XMLNode::parse(xml);
    EXPECT_TRUE(node) << xml.constData();
    return node ? *node : XMLNode::emptyNode();
}

/// The number of actions in the catalogue.
int actionCount()
{
    int count = 0;
    while (prototype(count)) {
        ++count;
    }
    return count;
}

/// The action that a saved element describes.
Action fromXml(const QByteArray &xml, GlobalParameters *parameters = nullptr)
{
    const XMLNode node = parsed(xml);
    for (int i = 0; i < actionCount(); ++i) {
        const Action type = prototype(i);
        if (node.getName() == QLatin1StringView(type->getTypeName())) {
            return Action(type->newInstance(new XMLNode(node), parameters));
        }
    }
    return nullptr;
}

std::string saved(ActionItem &action)
{
    std::wostringstream out;
    action.save(out, QString::fromLatin1(action.getTypeName()));
    return QString::fromStdWString(out.str()).toStdString();
}

ActionParameters &parametersOf(const Action &action)
{
    return dynamic_cast<ActionParameters &>(*action);
}

int indexOf(const ActionParameters &parameters, const QString &name)
{
    const QVector<ParameterInfo> infos = parameters.parameters();
    for (int i = 0; i < infos.size(); ++i) {
        if (infos[i].name == name) {
            return i;
        }
    }
    return -1;
}

QString valueOf(const Action &action, const QString &name)
{
    return parametersOf(action).parameterValue(indexOf(parametersOf(action), name));
}

} // namespace

TEST(Module, EntryPointsShareOneObject)
{
    QObject *const first = instance();
    ASSERT_NE(first, nullptr) << library().errorString().toStdString();
    EXPECT_STREQ(first->metaObject()->className(), "CorvantaWriteReport");
    EXPECT_EQ(instance(), first);
    bool isGone = false;
    QObject::connect(first, &QObject::destroyed, [&isGone] { isGone = true; });
    delete first;
    EXPECT_TRUE(isGone);
    ASSERT_NE(plugin(), nullptr);
    EXPECT_EQ(plugin()->getVersion(), 4.2);
    EXPECT_EQ(plugin()->getExtra1(), nullptr);
    EXPECT_EQ(plugin()->getExtra2(), nullptr);
    EXPECT_EQ(plugin()->createActionFromNode(XMLNode::emptyNode()), nullptr);

    const auto verification =
        reinterpret_cast<TextFunction>(library().resolve("qt_plugin_query_verification_data"));
    ASSERT_NE(verification, nullptr);
    EXPECT_STREQ(verification(), "pattern=QT_PLUGIN_VERIFICATION_DATA\nversion=4.8.7\ndebug=false\n"
                                 "buildkey=Windows x64 msvc release full-config");
}

TEST(Module, TheCatalogueBeginsWithTheFixedActionsAndHasAnEnd)
{
    const int count = actionCount();
    for (const int index :
         {count, count + 1, -1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        EXPECT_EQ(plugin()->createAction(index, 0), nullptr) << index;
    }
    ASSERT_GE(count, kFixedActions);
    for (int i = 0; i < kFixedActions; ++i) {
        const Action a(plugin()->createAction(i, 0));
        const Action b(plugin()->createAction(i, 0xFFFFFFFFU));
        ASSERT_TRUE(a && b) << i;
        EXPECT_NE(a.get(), b.get());
        EXPECT_STREQ(a->getTypeName(), kRows[i].type);
        EXPECT_STREQ(b->getTypeName(), kRows[i].type);
    }
}

TEST(Module, IsFoundByOtherRegistriesOfTheProgram)
{
    // As in an editor that has its modules in a folder of its own: previews load them again.
    const QString plugins = QFileInfo(QStringLiteral(CORVANTA_MODULE)).canonicalPath();
    const QTemporaryDir editor;
    const QString folder = editor.filePath(QStringLiteral("modules"));
    ASSERT_TRUE(QFile::link(plugins, folder));
    corvanta::ActionRegistry::addSearchFolder(folder);
    corvanta::ActionRegistry preview;
    preview.loadAll();
    EXPECT_NE(preview.prototype(QStringLiteral("readParquet")), nullptr);
    EXPECT_TRUE(preview.modules().at(0).file.startsWith(folder));
}

TEST(Module, SelfDescriptions)
{
    QStringList pages;
    setHelpOpener([&pages](const QString &id, const QString &anchor) { pages << id + anchor; });
    std::set<QByteArray> icons;
    for (int i = 0; i < kFixedActions; ++i) {
        const Row &row = kRows[i];
        const Action action = prototype(i);
        pages.clear();
        action->showHelp();
        EXPECT_EQ(pages, QStringList(QString::fromLatin1(row.helpPage))) << row.type;
        EXPECT_EQ(action->getFileTypes().join(u' '), QLatin1StringView(row.fileTypes)) << row.type;
        EXPECT_EQ(action->getTags().join(u' '), QLatin1StringView(row.tags)) << row.type;
        EXPECT_EQ(action->maxPinIn(), row.maxPinsIn) << row.type;
        EXPECT_EQ(action->pinOutCount(), row.pinsOut) << row.type;
        EXPECT_FALSE(action->getDescription().isEmpty()) << row.type;
        const bool isReader = QByteArray(row.type).toLower().startsWith("read");
        EXPECT_EQ(action->getKeywords().last(), isReader ? u"in"_s : u"out"_s) << row.type;

        const QImage icon = action->getIcon(1)->toImage();
        ASSERT_EQ(icon.size(), QSize(64, 64)) << row.type;
        icons.emplace(reinterpret_cast<const char *>(icon.constBits()), icon.sizeInBytes());
    }
    setHelpOpener({});
    QImage blank(64, 64, QImage::Format_ARGB32_Premultiplied);
    blank.fill(Qt::transparent);
    icons.emplace(reinterpret_cast<const char *>(blank.constBits()), blank.sizeInBytes());
    EXPECT_EQ(icons.size(), kFixedActions + 1U) << "two actions look the same, or an icon is empty";
    EXPECT_EQ(prototype(3)->getDescription(), u"Read Sheet Names from MS-Excel files(old&&new)"_s);
    EXPECT_EQ(prototype(14)->getKeywords().join(u' '),
              u"file export output save xpt sas xport write out"_s);
}

TEST(Parameters, PrototypesSaveWhatIsAlwaysSaved)
{
    for (int i = 0; i < kFixedActions; ++i) {
        const Action action = prototype(i);
        EXPECT_EQ(saved(*action), kRows[i].savedDefaults);
        const auto problems = corvanta::savedFormProblems(
            parsed(kRows[i].savedDefaults), parametersOf(action).parameters(), nullptr);
        EXPECT_TRUE(problems.empty()) << kRows[i].savedDefaults;
    }
}

/// One item of a structure, with a value for each attribute.
QString sampleItem(const ParameterInfo &structure)
{
    QString item = u"<%1"_s.arg(structure.itemElement);
    for (const ParameterInfo &member : structure.members) {
        item += u" %1='1'"_s.arg(member.name);
    }
    item += u"/>"_s;
    return structure.itemElement == structure.name ? item
                                                   : u"<%1>%2</%1>"_s.arg(structure.name, item);
}

/// Every attribute and child element of a saved form is one that the parameters declare.
void expectDeclared(const XMLNode &node, const QVector<ParameterInfo> &infos)
{
    const KnownNames known = knownNames(infos);
    for (const QString &name : node.attributeNames()) {
        EXPECT_TRUE(known.attributes.contains(name) || name == "version"_L1) << name.toStdString();
    }
    for (int i = 0; i < node.nChildNode(); ++i) {
        const XMLNode child = node.getChildNode(i);
        EXPECT_TRUE(known.elements.contains(child.getName())) << child.getName().toStdString();
        for (const ParameterInfo &info : infos) {
            if (info.type != ParameterInfo::Type::Structure || info.name != child.getName()) {
                continue;
            }
            const bool isWrapped = info.itemElement != info.name;
            for (int item = 0; isWrapped && item < child.nChildNode(); ++item) {
                EXPECT_EQ(child.getChildNode(item).getName(), info.itemElement);
                expectDeclared(child.getChildNode(item), info.members);
            }
            if (!isWrapped) {
                expectDeclared(child, info.members);
            }
        }
    }
}

void expectDescribed(const QVector<ParameterInfo> &infos, const char *type)
{
    for (const ParameterInfo &info : infos) {
        EXPECT_FALSE(info.meaning.isEmpty() || info.label.isEmpty())
            << type << ' ' << info.name.toStdString();
        EXPECT_EQ(info.members.isEmpty(), info.type != ParameterInfo::Type::Structure);
        // What messages about wrong values say, and the values that a run cannot do without.
        EXPECT_TRUE(isAllowedValue(info, info.defaultValue)) << type << info.name.toStdString();
        const bool isOpen = info.low < 0 || info.high >= info.choices.size();
        EXPECT_FALSE((info.isNumberText || (!info.choices.isEmpty() && isOpen)) &&
                     info.otherwise.isEmpty())
            << type << ' ' << info.name.toStdString();
        // A second file, with the labels of the first one, may be missing.
        const bool isOptional = info.name == QLatin1StringView("catalogFile");
        EXPECT_TRUE(info.isRequired || info.file == ParameterInfo::File::None || isOptional)
            << type << ' ' << info.name.toStdString();
        const QStringList names = knownNames(infos).attributes + knownNames(infos).elements;
        for (const ParameterInfo::Condition &condition : info.conditions) {
            EXPECT_TRUE(names.contains(condition.parameter))
                << type << ' ' << info.name.toStdString();
        }
        expectDescribed(info.members, type);
    }
}

TEST(Parameters, EveryOneComesBackFromItsSavedForm)
{
    // An example of each structure; all hold what must be escaped.
    const QMap<QString, QString> structures{
        {u"Level"_s,
         u"<Level initialPath='a/b' subtagName='&lt;'><e name='n&#10;' path='@x'/><e path='[0]' tagName='1'/></Level>"_s},
        {u"Levels"_s,
         u"<Levels><Level name='l' partitionCol='&apos;' commaSeparated='0'><Item type='2' text=' "
         u"&amp;' "
         u"calledLevel='m' p1='p_'><s> a</s><s/></Item></Level><Level name='m'/></Levels>"_s},
        {u"StringColDef"_s, u"<StringColDef><CD n='&lt;c&gt;' l='12' ol='9'/></StringColDef>"_s},
        {u"v"_s, u"<v markerName='T1' colWidths='100,200' styleID='S' includeHeaders='1'/><v/>"_s},
        {u"Chart"_s,
         u"<Chart type='13' name='r'><axis pinIdx='1'>x &amp; y</axis><axis pinIdx='0'> z</axis></Chart>"_s}};
    for (int i = 0; i < actionCount(); ++i) {
        const Action action = prototype(i);
        const char *const type = action->getTypeName();
        const QVector<ParameterInfo> infos = parametersOf(action).parameters();
        for (int p = 0; p < infos.size(); ++p) {
            const ParameterInfo &info = infos[p];
            const QString before = parametersOf(action).parameterValue(p);
            QString value = u" a'\"<&>\n\t\r\u00e9\U0001F600 ]]> "_s;
            if (info.type == ParameterInfo::Type::Integer) {
                value = before == "1"_L1 ? u"2"_s : u"1"_s;
            } else if (info.type == ParameterInfo::Type::Flag) {
                value = before == "1"_L1 ? u"0"_s : u"1"_s;
            } else if (info.type == ParameterInfo::Type::Real) {
                value = u"0.1"_s;
            } else if (info.type == ParameterInfo::Type::Structure) {
                value = structures.value(info.name, sampleItem(info));
            }
            ASSERT_TRUE(parametersOf(action).setParameterValue(p, value))
                << type << ' ' << info.name.toStdString();
            EXPECT_NE(parametersOf(action).parameterValue(p), before)
                << type << ' ' << info.name.toStdString();
        }
        expectDescribed(infos, type);
        const std::string text = saved(*action);
        expectDeclared(parsed(QByteArray::fromStdString(text)), infos);
        const Action copy = fromXml(QByteArray::fromStdString(text));
        for (int p = 0; p < infos.size(); ++p) {
            EXPECT_EQ(parametersOf(copy).parameterValue(p), parametersOf(action).parameterValue(p))
                << type << ' ' << infos[p].name.toStdString();
        }
        EXPECT_EQ(saved(*copy), text);
        EXPECT_EQ(saved(*Action(copy->clone(nullptr))), text);
    }
}

TEST(Parameters, WhatIsNotOfTheTypeIsNotTaken)
{
    const Action action = fromXml("<readJSON fileName='x' bufferSize='7'/>");
    for (const auto &[name, value] :
         {std::pair(u"bufferSize"_s, u"many"_s), std::pair(u"newMode"_s, u"yes"_s),
          std::pair(u"Level"_s, u"<Level"_s)}) {
        const QString before = valueOf(action, name);
        EXPECT_FALSE(
            parametersOf(action).setParameterValue(indexOf(parametersOf(action), name), value));
        EXPECT_EQ(valueOf(action, name), before);
    }
}

TEST(Parameters, SavedForms)
{
    const struct
    {
        const char *read;
        const char *saved;
    } cases[] = {
        // Without Level children the element is the one level; an item may have no name.
        {"<readJSON initialPath='a' subtagName='b' fileName='f'><e path='p'/><e name='n' path='q' "
         "tagName='1'/></readJSON>",
         "<readJSON version='3.92' fileName='f'>\n <Level initialPath='a' subtagName='b'>\n  <e "
         "path='p'/>\n"
         "  <e name='n' path='q' tagName='1'/>\n </Level>\n</readJSON>\n"},
        {"<readXML encoding='UTF-16' bufferSize='99999' tagNameSummary='0' fileName='f'/>",
         "<readXML version='2.93' encoding='UTF-16' bufferSize='2047' fileName='f' "
         "tagNameSummary='0'/>\n"},
        // The element's text wins over the attribute.
        {"<readParquet fileName='a' columnSelection='1'>\n b.parquet <ColumnsToRead><s> x</s> "
         "<s>y</s></ColumnsToRead></readParquet>",
         "<readParquet version='2.08' columnSelection='1' fileName='b.parquet'>\n"
         "  <ColumnsToRead><s> x</s><s>y</s></ColumnsToRead>\n</readParquet>\n"},
        {"<writeJSON><Prefix/><Suffix> \n</Suffix><ToWrite><s>a</s></ToWrite></writeJSON>",
         "<writeJSON version='2.8'>\n  <Prefix></Prefix>\n  <Suffix> &#10;</Suffix>\n"
         "  <ToWrite><s>a</s></ToWrite>\n</writeJSON>\n"},
        {"<writeXML><Levels><Level><Item type='8' calledLevel='x'/></Level></Levels></writeXML>",
         "<writeXML version='4.11'>\n  <Prefix>&lt;data&gt;</Prefix>\n  "
         "<Suffix>&lt;/data&gt;</Suffix>\n"
         "\t<Levels>\n\t\t<Level>\n\t\t\t<Item type='8' "
         "calledLevel='x'></Item>\n\t\t</Level>\n\t</Levels>\n</writeXML>\n"},
        {"<writeDocTable><v/><v markerName='X' includeHeaders='1'/></writeDocTable>",
         "<writeDocTable version='2.2'>\n  <v markerName='T1' colWidths='' styleID='TableGrid'/>\n"
         "  <v markerName='X' colWidths='' styleID='TableGrid' "
         "includeHeaders='1'/>\n</writeDocTable>\n"},
        // A pie has two axes, but the template may have another type.
        {"<writeReport nPinIn='3'><Chart type='4' name='r'><axis "
         "pinIdx='2'>a</axis><axis>b</axis><axis>c</axis></Chart></writeReport>",
         "<writeReport version='2.08' nPinIn='3' output='' template=''>\n  <Chart type='4' "
         "name='r'>\n"
         "    <axis pinIdx='2'>a</axis>\n    <axis pinIdx='0'>b</axis>\n"
         "    <axis pinIdx='0'>c</axis>\n  </Chart>\n</writeReport>\n"},
        {"<writeSAS f1='0.12345678901234566' fileName='x'><StringColDef><CD n='c' "
         "l='8'/></StringColDef></writeSAS>",
         "<writeSAS version='2.08' fileName='x' f1='0.12345678901234566'>\n  <StringColDef>\n    "
         "<CD n='c' l='8' "
         "ol='0'/>\n"
         "  </StringColDef>\n</writeSAS>\n"},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(saved(*fromXml(c.read)), c.saved);
    }
}

TEST(Parameters, OnlyTransportFilesHaveWidthsOfNumbers)
{
    const auto attributes = [](const QByteArray &type) {
        const Action action = fromXml('<' + type + "/>");
        const ActionParameters &parameters = parametersOf(action);
        const int index = parameters.indexOfParameter(u"VariableDef"_s);
        return knownNames(parameters.parameters()[index].members).attributes;
    };
    EXPECT_EQ(attributes("writeSAS"), (QStringList{u"n"_s, u"label"_s, u"format"_s}));
    EXPECT_EQ(attributes("writeSASXPT"), (QStringList{u"n"_s, u"label"_s, u"format"_s, u"l"_s}));
}

TEST(Parameters, DefaultsHangOnTheVersionThatSavedTheGraph)
{
    const struct
    {
        const char *type;
        const char *parameter;
        double version;
        const char *value;
    } cases[] = {{"readJSON", "newMode", 3.9, "0"},
                 {"readJSON", "newMode", 3.92, "1"},
                 {"writeJSON", "specialBool", 2.78, "0"},
                 {"writeJSON", "specialBool", 2.79, "1"},
                 {"writeExcel", "nrIncludeTitleRow", 2.56, "1"},
                 {"writeExcel", "nrIncludeTitleRow", 2.57, "0"},
                 {"writeExcel", "excelHack", 3.03, "0"},
                 {"writeExcel", "excelHack", 3.04, "1"}};
    for (const auto &c : cases) {
        const QByteArray version = QByteArray::number(c.version);
        const QString name = QString::fromLatin1(c.parameter);
        const QByteArray start = QByteArray("<") + c.type;
        GlobalParameters graph;
        graph.setGraphVersion(c.version);
        EXPECT_EQ(valueOf(fromXml(start + " version='" + version + "'/>"), name),
                  QLatin1StringView(c.value))
            << c.parameter;
        EXPECT_EQ(valueOf(fromXml(start + "/>", &graph), name), QLatin1StringView(c.value))
            << c.parameter;
        // What the file says wins; the action's own version wins over the graph's.
        const QByteArray other = c.value[0] == '1' ? "0" : "1";
        const QByteArray said =
            start + " version='" + version + "' " + c.parameter + "='" + other + "'/>";
        EXPECT_EQ(valueOf(fromXml(said), name).toLatin1(), other);
        graph.setGraphVersion(1);
        EXPECT_EQ(valueOf(fromXml(start + " version='" + version + "'/>", &graph), name),
                  QLatin1StringView(c.value));
        // Saved by this version, it keeps its value.
        const Action old = fromXml(start + " version='" + version + "'/>");
        EXPECT_EQ(valueOf(fromXml(QByteArray::fromStdString(saved(*old))), name),
                  QLatin1StringView(c.value));
    }
}

TEST(Parameters, NewActionsOnPagesStartInHtmlMode)
{
    const struct
    {
        const char *xml;
        const char *readHtml;
        const char *zeroBased;
    } cases[] = {{"<readXML fileName='a.html'/>", "1", "0"},
                 {"<readXML fileName='a.htm' zeroBased='1'/>", "1", "1"},
                 {"<readXML fileName='a.HTML'/>", "0", "1"},
                 {"<readXML version='2.93' fileName='a.html'/>", "0", "1"}};
    for (const auto &c : cases) {
        const Action action = fromXml(c.xml);
        EXPECT_EQ(valueOf(action, u"readHTML"_s), QLatin1StringView(c.readHtml)) << c.xml;
        EXPECT_EQ(valueOf(action, u"zeroBased"_s), QLatin1StringView(c.zeroBased)) << c.xml;
        EXPECT_EQ(valueOf(action, u"ignoreEmptyTag"_s), QLatin1StringView(c.readHtml)) << c.xml;
    }
}

TEST(Pins, FollowTheParameters)
{
    const struct
    {
        const char *xml;
        int pinsIn;
    } cases[] = {{"<readExcelSheets/>", 0},
                 {"<readExcelSheets fileNameFromPin='1'/>", 1},
                 {"<readParquet/>", 0},
                 {"<readParquet fileNameFromPin='1'/>", 1},
                 {"<readParquet columnSelection='2'/>", 2},
                 {"<readJSON/>", 0},
                 {"<readJSON fromInputPin='1'/>", 1},
                 {"<readJSON readTagsFromInPin='1'/>", 2},
                 {"<readXML fromInputPin='1'/>", 1},
                 {"<readStat fileNameFromPin='1'/>", 1},
                 {"<ReadXBF/>", 0},
                 {"<writeReport nPinIn='4'/>", 4},
                 {"<writeDocTable><v/><v/><v/></writeDocTable>", 3}};
    for (const auto &c : cases) {
        EXPECT_EQ(fromXml(c.xml)->pinInCount(), c.pinsIn) << c.xml;
    }

    const Action tables = fromXml("<writeDocTable/>");
    tables->addPinIn();
    EXPECT_EQ(tables->pinInCount(), 2);
    EXPECT_TRUE(valueOf(tables, u"v"_s).contains("markerName='T2'"_L1));
    tables->removePinIn();
    tables->removePinIn();
    EXPECT_EQ(tables->pinInCount(), 1) << "one table stays";

    const Action report = fromXml("<writeReport nPinIn='2'><Chart><axis "
                                  "pinIdx='1'>a</axis><axis>b</axis></Chart></writeReport>");
    report->removePinIn();
    EXPECT_EQ(valueOf(report, u"nPinIn"_s), u"1"_s);
    EXPECT_TRUE(valueOf(report, u"Chart"_s).contains("<axis pinIdx='0'></axis>"_L1))
        << "its pin is gone";
    report->addPinIn();
    EXPECT_EQ(fromXml(QByteArray::fromStdString(saved(*report)))->pinInCount(), 2);
}

TEST(Panels, EveryActionHasItsFormWithAFieldPerParameter)
{
    for (int i = 0; i < actionCount(); ++i) {
        const Action action = prototype(i);
        const std::string before = saved(*action);
        const std::unique_ptr<UpdateClassWidget> panel(action->createPanel(nullptr));
        ASSERT_NE(panel, nullptr) << action->getTypeName();
        if (i < kFixedActions) {
            EXPECT_STREQ(panel->metaObject()->className(), kRows[i].panel);
        }
        EXPECT_EQ(panel->action(), action.get());
        for (const ParameterInfo &info : parametersOf(action).parameters()) {
            EXPECT_NE(panel->findChild<QWidget *>(info.name), nullptr)
                << action->getTypeName() << ' ' << info.name.toStdString();
        }
        EXPECT_EQ(saved(*action), before) << "showing is not editing";
    }
}

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
