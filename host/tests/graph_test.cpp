// What a user reads about a graph that cannot be run, and about a file that cannot be used.
#include "corvanta/action_registry.h"
#include "corvanta/corvanta_graph.h"
#include "corvanta/failure_reason.h"
#include "corvanta/run.h"
#include "test_actions.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cerrno>

using namespace test;
using namespace Qt::StringLiterals;

namespace {

QString textOf(const CorvantaGraph::Problems &problems)
{
    QStringList texts;
    for (const CorvantaGraph::Problem &problem : problems) {
        texts << problem.text;
    }
    return texts.join(u'\n');
}

/// The problems of the graph inside <graph>...</graph>: those of its elements, or else of its
/// types, links and variables.
QString problemsOf(const QByteArray &inside)
{
    ActionRegistry registry;
    Plugin plugin;
    registry.add(&plugin);
    const auto graph = CorvantaGraph::parse("<graph>" + inside + "</graph>", u"g"_s);
    return textOf(graph ? graph->validate(registry, {}) : graph.fault().code);
}

} // namespace

TEST(Graph, SaysWhatCannotBeRun)
{
    const QByteArray ab = "<action id='a'><source/></action><action id='b'><sink/></action>\n";
    const std::pair<QByteArray, QString> cases[] = {
        {ab, QString()},
        {"<action><source/></action>", u"g:1: an action has no 'id'"_s},
        {"\n<variable value='1'/>", u"g:2: a variable has no 'name'"_s},
        {ab + "<link from='a:0' to='b:x'/>", u"g:2: a link needs a 'to' of the form ID:PIN"_s},
        {ab + "<link from='a:0' to='b:10001'/>", u"g:2: a link needs a 'to' of the form ID:PIN"_s},
        {ab + "<link from='c:0' to='d:1'/>", u"g:2: link refers to unknown action 'c'\n"
                                             "g:2: link refers to unknown action 'd'"_s},
        {"<action id='table'><source/></action><link from='tabel:0' to='table:0'/>",
         u"g:1: link refers to unknown action 'tabel'; the nearest known name is 'table'\n"
         "g:1: the action 'table' (source) has no input pin 0"_s},
        {ab + "<link from='a:1' to='b:3'/>", u"g:2: the action 'a' (source) has no output pin 1\n"
                                             "g:2: the action 'b' (sink) has no input pin 3"_s},
        {ab + "<link from='b:0' to='a:0'/>", u"g:2: the action 'a' (source) has no input pin 0"_s},
        {ab + "<link from='a:0' to='b:0'/>\n<link from='a:0' to='b:0'/>",
         u"g:3: two links lead to the input pin 'b:0'"_s},
        {ab + "<link from='b:0' to='b:1'/>",
         u"g:1: the links form a loop (actions in it or after it: b)"_s},
        {"<action id='a'>\n<sorce/></action>",
         u"g:2: the action 'a' has the unknown type 'sorce'; the nearest known name is 'source'"_s},
    };
    for (const auto &[inside, problems] : cases) {
        EXPECT_EQ(problemsOf(inside), problems) << inside.toStdString();
    }
    const auto other = CorvantaGraph::parse("<table/>", u"g"_s);
    ASSERT_FALSE(other);
    EXPECT_EQ(textOf(other.fault().code), u"g:1: the document element is 'table', not 'graph'"_s);
    const auto pipe = CorvantaGraph::load(u"/dev/null"_s);
    ASSERT_FALSE(pipe);
    EXPECT_TRUE(textOf(pipe.fault().code).contains("it is not a regular file"_L1));
}

// Otherwise hints make a graph invalid.
TEST(Graph, ProblemsWithoutAFileKeepTheirKinds)
{
    const auto graph = CorvantaGraph::parse(
        "<graph odd='1'><variable name='v'/><variable name='v'/></graph>", QString());
    ASSERT_TRUE(graph);
    ASSERT_EQ(graph->mistakes.size(), 2);
    EXPECT_EQ(graph->mistakes[0].kind, CorvantaGraph::Problem::Kind::Mistake);
    EXPECT_EQ(graph->mistakes[1].kind, CorvantaGraph::Problem::Kind::Hint);
    EXPECT_EQ(graph->findMistakes(ActionRegistry(), {}).size(), 2);
}

TEST(Graph, NamesTheActionsThatCannotShareAFile)
{
    ActionRegistry registry;
    Plugin plugin;
    registry.add(&plugin);
    const auto conflict = [&](const char *a, const char *b) {
        const auto graph =
            CorvantaGraph::parse("<graph><action id='a'>" + QByteArray(a) +
                                     "</action><action id='b'>" + b + "</action></graph>",
                                 u"g"_s);
        return textOf(corvanta::Run(*graph, registry, {}).problems());
    };
    // 0: creates the file, 1: updates it, 2: appends to it.
    EXPECT_EQ(conflict("<sink file='/f' access='1'/>", "<sink file='/f' access='2'/>"), QString());
    EXPECT_EQ(conflict("<source file='/f'/>", "<sink file='/f' access='0'/>"), QString());
    EXPECT_TRUE(conflict("<sink file='/f' access='0'/>", "<sink file='/./f' access='0'/>")
                    .contains("the actions 'a' and 'b' create the same file '/./f'"_L1));
    EXPECT_TRUE(conflict("<sink file='/f' access='2'/>", "<sink file='/f' access='0'/>")
                    .contains("the action 'b' creates the file '/f' after the action 'a' has "
                              "written to it"_L1));
    EXPECT_TRUE(conflict("<source file='/?'/>", "<sink file='/f' access='2'/>")
                    .contains("the action 'a' reads the file '/f', to which the action 'b' "
                              "appends"_L1));
}

// Tests that run as root meet few of these.
TEST(FailureReason, SaysWhatToDo)
{
    const QTemporaryDir dir;
    const QString file = dir.filePath(u"file"_s);
    ASSERT_TRUE(QFile(file).open(QIODevice::WriteOnly));
    ASSERT_TRUE(QFile::link(u"nothing"_s, dir.filePath(u"link"_s)));
    const auto in = [&](const char *name) { return dir.filePath(QString::fromLatin1(name)); };
    using enum FileUse;
    const struct
    {
        QString file;
        FileUse use;
        int error;
        QString reason;
    } cases[] = {
        {QString(), Read, ENOENT, u"the name of the file is empty"_s},
        {in("none"), Read, ENOENT, u"there is no file with this name"_s},
        {in("no?e*"), Read, ENOENT,
         u"there is no file with this name, and none matches it as a pattern"_s},
        {in("none"), Write, ENOENT, u"the folder '%1' accepts no such file"_s},
        {in("link"), Read, ENOENT, u"the link leads to '%1/nothing', which is not there"_s},
        {in("d/e/none"), Read, ENOENT, u"the folder '%1/d/e' does not exist"_s},
        {in("file/d/none"), Write, ENOENT,
         u"the folder '%1/file/d' does not exist, and '%1/file' is not a folder"_s},
        {in("file/none"), Write, ENOTDIR, u"'%1/file' is not a folder"_s},
        {dir.path(), Read, EISDIR, u"'%1' is a folder, not a file"_s},
        {file, Read, EACCES, u"no permission to read the file"_s},
        {in("none"), Write, EPERM, u"no permission to create files in the folder '%1'"_s},
        {file, Write, ENOSPC, u"the disk is full"_s},
        {file, Write, EDQUOT, u"the disk quota is used up"_s},
        {file, Write, EROFS, u"the file system is read-only"_s},
        {file, Write, ETXTBSY, u"another program uses the file"_s},
        {file, Read, EMFILE, u"the program has too many open files: raise its limit (ulimit -n)"_s},
        {file, Read, ESPIPE, u"it is a pipe or a device, which is only read from start to end"_s},
        {file, Write, EDOM, u"the system refuses it"_s},
    };
    for (const auto &each : cases) {
        const QString text = failureReason(each.file, each.use, {each.error}, u"a remedy"_s);
        const QString words = QString(each.reason).replace("%1"_L1, dir.path());
        EXPECT_TRUE(text.startsWith(words + " ("_L1)) << text.toStdString();
        // The folder could be created.
        EXPECT_EQ(text.endsWith("): a remedy"_L1), words.contains("does not exist"_L1));
    }
    EXPECT_EQ(failureReason(file, Read, {}), QString());
}
