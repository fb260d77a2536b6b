// What graph files cannot test of the JSON and XML writers: messages, failing disks, yields, odd
// texts.
#include "actions/shared/split_name.h"
#include "actions/write_json/write_json.h"
#include "actions/write_xml/write_xml.h"
#include "corvanta/plugin_interface.h"
#include "tests/support/graph_folder.h"

#include <gtest/gtest.h>

#include <optional>

using namespace corvanta;
using namespace Qt::StringLiterals;
using corvanta::test::FileSizeLimit;
using corvanta::test::GraphFolder;
using corvanta::test::GraphSettings;

namespace {

struct Table
{
    struct Row
    {
        quint32 k;
        double f;
        std::u16string t;
    };
    QVector<QString> names = {u"k"_s, u"f"_s, u"t"_s};
    std::vector<Row> rows;
};
Table g_table;

struct NoLevelParams
{
};

/// Delivers g_table.
class TableSource final : public ParamAction<TableSource, NoLevelParams>
{
public:
    TableSource(const XMLNode &saved, GlobalParameters *parameters)
        : ParamAction({.typeName = "table", .pinsIn = 0, .pinsOut = 1}, saved, parameters)
    {
    }
    static const ParamTable<NoLevelParams> &paramTable()
    {
        static const ParamTable<NoLevelParams> table{};
        return table;
    }

private:
    void start() override { m_next = 0; }
    bool step() override
    {
        OneRow *row = getOutputRowForOutputPin(0);
        if (m_next == 0) {
            row->setColName(g_table.names);
            row->setMetaData({MetaInfo(MetaInfo::Key, -1), MetaInfo(MetaInfo::Float, -1),
                              MetaInfo(MetaInfo::Unknown, -1)});
        }
        for (; m_next < g_table.rows.size() && !yieldRequested(); ++m_next) {
            const Table::Row &cells = g_table.rows[m_next];
            RowBuffer *const buffer = bufferForOutputPin(0);
            row = getOutputRowForOutputPin(0);
            row->setCol(0, keyCell(buffer, cells.k));
            row->setCol(1, doubleCell(buffer, cells.f));
            row->setCol(2,
                        textCell(buffer, cells.t.data(), static_cast<qsizetype>(cells.t.size())));
            setRowReadyForOutput(0);
        }
        return m_next != g_table.rows.size();
    }
    size_t m_next = 0;
};

template <class Action> ActionItem *makeWriter()
{
    return new Action(XMLNode::emptyNode(), nullptr);
}

class LevelPlugin final : public CorvantaPluginInterface
{
public:
    ActionItem *createAction(int index, unsigned int) override
    {
        constexpr ActionItem *(*kMakers[])() = {
            makeWriter<TableSource>, makeWriter<ActionWriteJSON>, makeWriter<ActionWriteXML>};
        return index < 3 ? kMakers[index]() : nullptr;
    }
    void initialise() override {}
    double getVersion() override { return 1; }
    void *getExtra1() override { return nullptr; }
    void *getExtra2() override { return nullptr; }
    void *createActionFromNode(XMLNode) override { return nullptr; }
};

constexpr char kTwoLevels[] =
    "<Levels><Level><Item text='{\"f\":['/><Item type='4'><s>f</s></Item><Item text='],\"l\":['/>"
    "<Item type='5' calledLevel='l'/><Item text=']}'/></Level>"
    "<Level name='l' partitionCol='f'><Item type='4'><s>k</s></Item></Level></Levels>";

class LevelWriters : public testing::Test
{
protected:
    LevelWriters()
    {
        LevelPlugin plugin;
        m_registry.add(&plugin);
        g_table = {};
        for (quint32 i = 0; i < 2000; ++i) {
            g_table.rows.push_back(
                {i, static_cast<double>(i / 7), u"text " + std::u16string(i % 50, u'x')});
        }
    }
    ~LevelWriters() override { MainUI::setDiskSpaceQuestion({}); }

    /// Run the source into a writer; true when the run succeeded.
    bool run(const QByteArray &writer, GraphSettings settings = {})
    {
        settings.registry = &m_registry;
        settings.beforeStart = [this](corvanta::Run &run) { m_running = &run; };
        const auto outcome = m_folder.runChain({"<table/>", writer}, settings);
        EXPECT_TRUE(outcome.ended);
        m_messages = outcome.messages;
        // tests/faults checks the reasons of failures.
        const auto isReason = [](const QString &text) { return text.startsWith(u"3Reason:"_s); };
        m_reason.clear();
        for (const QString &text : std::as_const(m_messages)) {
            m_reason = isReason(text) ? text : m_reason;
        }
        m_messages.removeIf(isReason);
        return outcome.succeeded;
    }
    /// Of the last run.
    std::string messages() const { return m_messages.join(u'|').toStdString(); }
    QString path(const char *name) const { return m_folder.path(QString::fromLatin1(name)); }
    QStringList files() const { return m_folder.files(); }
    QByteArray content(const char *name) const { return m_folder.bytes(QString::fromLatin1(name)); }
    void writeOld() const { m_folder.write(u"old"_s, "what was there"); }

    GraphFolder m_folder;
    ActionRegistry m_registry;
    QStringList m_messages;
    QString m_reason; // the last one
    corvanta::Run *m_running = nullptr;
};

} // namespace

TEST_F(LevelWriters, EveryMistakeInTheLevelsIsOneMessageAndNoFile)
{
    const auto level = [](const QByteArray &items, const QByteArray &second = {}) {
        return "<Levels><Level name='top'>" + items + "</Level>" + second + "</Levels>";
    };
    const struct
    {
        QByteArray attributes;
        QByteArray children;
        const char *json; // after "ERROR writing to JSON file '...': "; null: not for this writer
        const char *xml;  // after "\nERROR writing to XML file '...': "
    } cases[] = {
        {"writeAllRows='0' testCol='%1'",
         {},
         "cannot find column '%1' to test\n",
         "cannot find column '%1' to test\n"},
        {"floatToString='%d'",
         {},
         "'%d' is not a format of a floating-point number\n",
         "'%d' is not a format of a floating-point number\n"},
        {"writeAllColumns='0'", "<ToWrite><s>k</s><s>%2</s></ToWrite>",
         "cannot find column '%2' to write\n", "cannot find column '%2' to write\n"},
        {{},
         level("<Item type='4'><s>no</s></Item>"),
         "cannot find column 'no' to write\n",
         "cannot find column 'no' to write\n"},
        {{},
         level("<Item/>", "<Level name='l' partitionCol='%3'/>"),
         "cannot find partitioning column '%3' in level 'l'\n",
         "cannot find partitioning column '%3' in level 'l'\n"},
        {{},
         level("<Item/>", "<Level name='l'/>"),
         "cannot find partitioning column '' in level 'l'\n",
         "cannot find partitioning column '' in level 'l'\n"},
        // The last level is compiled first.
        {{},
         level("<Item type='2'><s>no</s></Item>",
               "<Level name='l' partitionCol='k'><Item type='2'><s>last</s></Item></Level>"),
         "cannot find column 'last' to write\n",
         "cannot find column 'last' to write\n"},
        {{},
         level("<Item type='5' calledLevel='none'/>"),
         "cannot find the level named 'none'\n",
         nullptr},
        {{},
         level("<Item type='8' calledLevel='none'/>"),
         nullptr,
         "cannot find the level named 'none'\n"},
        {{}, level("<Item type='6'/>"), "previous Item is not a Dictionary\n", nullptr},
        {{},
         level("<Item type='3'/><Item type='6'/>"),
         "previous Item is not a Dictionary\n",
         nullptr},
        {{},
         level("<Item type='7'/>"),
         "no pre-formatedd column to write?",
         "no column to write?\n"},
        {{},
         level("<Item type='7'><s>no</s></Item>"),
         "cannot find column 'no' to write\n",
         "cannot find column 'no' to write\n"},
        {{},
         level("<Item type='5'/>"),
         "cannot find the level named ''\n",
         "no column to write?\n"},
        {{},
         level("<Item type='6'/>"),
         "previous Item is not a Dictionary\n",
         "no column to write?\n"},
        {{},
         level("<Item type='5' calledLevel='top'/><Item type='1'/>"),
         "the level 'top' is a sub-level of itself\n",
         nullptr},
        {{},
         level("<Item type='8' calledLevel='l'/>",
               "<Level name='l' partitionCol='k'><Item type='8' calledLevel='top'/></Level>"),
         nullptr,
         "the level 'top' is a sub-level of itself\n"},
        {{},
         level("<Item type='1'/>",
               "<Level name='l' partitionCol='k'><Item type='5' calledLevel='m'/></Level>"
               "<Level name='m' partitionCol='k'><Item type='5' calledLevel='n'/></Level>"
               "<Level name='n' partitionCol='k'><Item type='5' calledLevel='m'/></Level>"),
         "the level 'n' is a sub-level of itself\n",
         nullptr},
    };
    for (const auto &c : cases) {
        for (const bool isJson : {true, false}) {
            const char *const message = isJson ? c.json : c.xml;
            if (message == nullptr) {
                continue;
            }
            const QByteArray name = isJson ? "writeJSON" : "writeXML";
            EXPECT_FALSE(run('<' + name + " fileName='%1%9.out' " + c.attributes + '>' +
                             c.children + "</" + name + '>'));
            const QString start =
                isJson ? u"1ERROR writing to JSON file '"_s : u"1\nERROR writing to XML file '"_s;
            EXPECT_EQ(
                messages(),
                (start + path("%1%9.out") + u"': "_s + QString::fromLatin1(message)).toStdString());
            EXPECT_EQ(files(), QStringList());
        }
    }
}

TEST_F(LevelWriters, AMisspelledNameIsFollowedByTheNearestOne)
{
    EXPECT_FALSE(run("<writeXML fileName='a.xml'><Levels><Level name='top'>"
                     "<Item type='8' calledLevel='Tops'/></Level></Levels></writeXML>"));
    EXPECT_EQ(m_reason, u"3Reason: there is no such level; the nearest known name is 'top'.\n"_s);
    EXPECT_FALSE(run("<writeXML fileName='a.xml'><Levels><Level name='top'>"
                     "<Item type='4'><s>K</s></Item></Level></Levels></writeXML>"));
    EXPECT_EQ(m_reason,
              u"3Reason: the input has no such column; the nearest known name is 'k'.\n"_s);
}

TEST_F(LevelWriters, OtherMistakesHaveTheirMessages)
{
    EXPECT_FALSE(run("<writeJSON fileName='a.json' splitFile='1' splitCol='%1'/>"));
    EXPECT_EQ(messages(),
              (u"1ERROR writing to multiple JSON files: cannot find column '%1' for split."_s)
                  .toStdString());
    EXPECT_FALSE(run("<writeJSON fileName='no/a.json'/>"));
    EXPECT_EQ(messages(),
              (u"1ERROR: cannot open JSON file '"_s + path("no/a.json") + u"' for write\n"_s)
                  .toStdString());
    EXPECT_FALSE(run("<writeXML fileName='no/a.xml' fileMode='1'/>"));
    EXPECT_EQ(messages(),
              (u"1\nERROR: cannot open XML file '"_s + path("no/a.xml") + u"' for write\n"_s)
                  .toStdString());
    EXPECT_FALSE(run("<writeXML/>"));
    EXPECT_EQ(messages(), (u"1\nERROR: cannot open XML file '' for write\n"_s).toStdString());
    g_table.names = {u"k"_s, u"k"_s, u"t"_s};
    EXPECT_FALSE(run("<writeJSON fileName='a.json'/>"));
    EXPECT_EQ(
        messages(),
        (u"1Error: cannot write '"_s + path("a.json") +
         u"': two columns are named 'k'; uniqueNames='1' of readCSV (convert: --reader uniqueNames=1) numbers them\n"_s)
            .toStdString());
    EXPECT_TRUE(run("<writeJSON fileName='b.json' "
                    "writeAllColumns='0'><ToWrite><s>k</s><s>k</s></ToWrite></writeJSON>"));
    EXPECT_TRUE(run("<writeXML fileName='c.xml' checkNameCollision='0'/>"));
    EXPECT_EQ(files(), (QStringList{u"b.json"_s, u"c.xml"_s}));
}

TEST_F(LevelWriters, TheOutputDoesNotDependOnBatchesAndYields)
{
    const QByteArray writers[] = {
        "<writeJSON fileName='out'>" + QByteArray(kTwoLevels) + "</writeJSON>",
        "<writeJSON fileName='out'/>", "<writeXML fileName='out' charMode='2'/>"};
    for (const QByteArray &writer : writers) {
        ASSERT_TRUE(run(writer));
        const QByteArray expected = content("out");
        EXPECT_GT(expected.size(), 10000);
        for (const int batchRows : {1, 2, 7, 100}) {
            ASSERT_TRUE(run(writer, {batchRows, true}));
            EXPECT_EQ(content("out"), expected) << batchRows;
        }
    }
}

TEST_F(LevelWriters, AFailedWriteIsAskedAboutAndLeavesWhatWasThere)
{
    const struct
    {
        QByteArray writer;
        QString message;
    } cases[] = {
        {"<writeJSON fileName='old' ", u"1ERROR: cannot write to JSON file '%1'\n"_s},
        {"<writeXML fileName='old' ", u"1\nERROR: cannot write to XML file '%1'\n"_s},
    };
    for (int i = 0; i < 2; ++i) { // more than one drain
        g_table.rows.insert(g_table.rows.end(), g_table.rows.begin(), g_table.rows.end());
    }
    for (const auto &c : cases) {
        int asked = 0;
        for (const QByteArray &mode : {QByteArray("0"), QByteArray("1")}) {
            writeOld();
            MainUI::setDiskSpaceQuestion([&](const QString &) { return ++asked < 3; });
            for (const qint64 limit : {14, 17, 5'000, 120'000, 160'000}) {
                asked = 0;
                const FileSizeLimit full(limit);
                EXPECT_FALSE(run(c.writer + "fileMode='" + mode + "'/>"));
                EXPECT_EQ(messages(), (c.message.arg(path("old"))).toStdString()) << limit;
                EXPECT_EQ(asked, 3);
            }
            EXPECT_EQ(content("old"), "what was there");
            EXPECT_EQ(files(), QStringList{u"old"_s});
        }
        const FileSizeLimit full(100);
        EXPECT_FALSE(run(QByteArray(c.writer).replace("old", "new") + "fileMode='1'/>"));
        EXPECT_EQ(files(), QStringList{u"old"_s});
    }
}

TEST_F(LevelWriters, ARunThatIsStoppedWhileTheDiskIsFullLeavesWhatWasThere)
{
    for (const char *mode : {"0", "1"}) {
        writeOld();
        bool failed = true;
        MainUI::setDiskSpaceQuestion([&](const QString &) {
            m_running->stop();
            failed = m_running->failed();
            return true;
        });
        const FileSizeLimit full(5'000);
        EXPECT_FALSE(run("<writeJSON fileName='old' fileMode='" + QByteArray(mode) + "'/>"));
        EXPECT_FALSE(failed);
        EXPECT_EQ(messages(), "");
        EXPECT_EQ(content("old"), "what was there");
        EXPECT_EQ(files(), QStringList{u"old"_s});
    }
}

TEST_F(LevelWriters, AWriteThatIsTriedAgainLosesAndDoublesNothing)
{
    ASSERT_TRUE(run("<writeJSON fileName='expected'/>"));
    for (const char *mode : {"0", "1"}) {
        std::optional<FileSizeLimit> full(100'000);
        MainUI::setDiskSpaceQuestion([&](const QString &) {
            full.reset();
            return true;
        });
        EXPECT_TRUE(
            run("<writeJSON fileName='out" + QByteArray(mode) + "' fileMode='" + mode + "'/>"));
        EXPECT_EQ(content(mode[0] == '0' ? "out0" : "out1"), content("expected"));
    }
}

TEST_F(LevelWriters, TextsUpToTheBlockAreWrittenAndLongerOnesFailTheRun)
{
    m_folder.write(u"old.json"_s, "old");
    g_table.rows = {{1, 1, u"first"}, {2, 2, std::u16string(1'999'900, u'\u20AC')}};
    EXPECT_TRUE(run("<writeJSON fileName='fits.json'/>"));
    EXPECT_EQ(
        content("fits.json").size(),
        QByteArray("[{\"k\":1,\"f\":1,\"t\":\"first\"},{\"k\":2,\"f\":2,\"t\":\"\"}]").size() +
            3 * 1'999'900);
    g_table.rows[1].t = std::u16string(1'000'100, u'"'); // two units each
    EXPECT_FALSE(run("<writeJSON fileName='old.json'/>"));
    EXPECT_EQ(messages(), (u"1ERROR writing to JSON file '"_s + path("old.json") +
                           u"': output buffer too small\n"_s)
                              .toStdString());
    EXPECT_EQ(content("old.json"), "old");
    g_table.rows[1].t = std::u16string(400'000, u'\''); // six units each
    EXPECT_FALSE(run("<writeXML fileName='new.xml'/>"));
    EXPECT_EQ(messages(), (u"1\nERROR writing to XML file '"_s + path("new.xml") +
                           u"': output buffer too small\n"_s)
                              .toStdString());
    EXPECT_EQ(files(), (QStringList{u"fits.json"_s, u"old.json"_s}));
}

TEST_F(LevelWriters, LoneSurrogatesAreReplacedInUtf8AndStayInUtf16)
{
    g_table.rows = {{1, 1, u"a\xD83D"}, {2, 2, u"\xDE00z"}, {3, 3, u"\xD83D\xDE00"}};
    const QByteArray levels =
        "<Prefix/><Suffix/><Levels><Level commaSeparated='0'><Item type='7'><s>t</s></Item>"
        "<Item text='|'/></Level></Levels>";
    ASSERT_TRUE(run("<writeJSON fileName='out'>" + levels + "</writeJSON>"));
    EXPECT_EQ(content("out"), "a\xEF\xBF\xBD|\xEF\xBF\xBDz|\xF0\x9F\x98\x80|");
    ASSERT_TRUE(
        run("<writeXML fileName='out' charMode='3' fileMode='0'>" + levels + "</writeXML>"));
    const std::u16string text = u"a\xD83D|\xDE00z|\xD83D\xDE00|";
    const auto bytes = static_cast<qsizetype>(text.size() * sizeof(char16_t));
    EXPECT_EQ(content("out").mid(80),
              QByteArray(reinterpret_cast<const char *>(text.data()), bytes));
}

TEST_F(LevelWriters, AChainOfManyLevelsNeedsNoStack)
{
    constexpr int kLevels = 20'000;
    QByteArray levels = "<Levels>";
    for (int i = 0; i < kLevels; ++i) {
        const QByteArray next = QByteArray::number(i + 1);
        levels += "<Level name='" + QByteArray::number(i) + "' partitionCol='k'><Item text='['/>" +
                  (i + 1 < kLevels ? "<Item type='5' calledLevel='" + next + "'/>"
                                   : QByteArray("<Item type='7'><s>k</s></Item>")) +
                  "<Item text=']'/></Level>";
    }
    g_table.rows.resize(2);
    EXPECT_TRUE(
        run("<writeJSON fileName='deep'><Prefix/><Suffix/>" + levels + "</Levels></writeJSON>"));
    const QByteArray open(kLevels, '[');
    const QByteArray close(kLevels, ']');
    EXPECT_EQ(content("deep"), open + '0' + close + ',' + open + '1' + close);
}

TEST(SplitName, DifferentValuesHaveDifferentSafeNames)
{
    const std::pair<const char *, const char *> cases[] = {{"plain value.x", "plain value.x"},
                                                           {"a/b\\c", "a%2Fb%5Cc"},
                                                           {"%2F", "%252F"},
                                                           {"5%", "5%"},
                                                           {"%zz", "%zz"},
                                                           {".", "%2E"},
                                                           {"..", "%2E%2E"},
                                                           {"...", "..."},
                                                           {"a\nb\x7F", "a%0Ab%7F"},
                                                           {"C:<>\"|?*", "C%3A%3C%3E%22%7C%3F%2A"},
                                                           {"", ""}};
    for (const auto &[value, part] : cases) {
        EXPECT_EQ(fileNamePart(QString::fromLatin1(value)).toStdString(), part);
    }
    EXPECT_EQ(fileNamePart(QString(1, QChar(u'\0'))), u"%00"_s);
    const QString longValue(300, u'é');
    EXPECT_LE(fileNamePart(longValue).toUtf8().size(), 200);
    EXPECT_NE(fileNamePart(longValue), fileNamePart(longValue + u'e'));
    // A pair of units is not divided: no half of it has a name in the file system.
    EXPECT_TRUE(
        fileNamePart(u"\U0001F600"_s.repeated(99)).startsWith(u"\U0001F600"_s.repeated(45) + u'~'));
}

TEST(SplitName, ThePartGoesInFrontOfTheExtension)
{
    const std::pair<const char *, const char *> cases[] = {
        {"a.json", "aV.json"},   {"a", "aV"},  {"d.d/a", "d.d/aV"}, {"d.d\\a", "d.d\\aV"},
        {"d/a.b.c", "d/a.bV.c"}, {"d/", "d/V"}};
    for (const auto &[name, whole] : cases) {
        EXPECT_EQ(withPartBeforeExtension(QString::fromLatin1(name), u"V"_s).toStdString(), whole);
    }
}
