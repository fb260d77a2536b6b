// Stops readStat at 1,000 random moments: the run ends soon, without an error, and leaves no file.
//
// The inputs make the stops meet all states of the two threads: the header of a file, the middle of
// one, a full ring whose consumer is slow, and the end.
#include "tests/support/graph_folder.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <random>

using namespace corvanta::test;
using namespace Qt::StringLiterals;

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::microseconds;

constexpr int kStops = 250;           // of each input
constexpr qint64 kLongestRun = 20000; // microseconds before a stop

struct Input
{
    const char *name;
    const char *file; ///< one of the graph cases; "": a large one
    int times;        ///< how often it is read in a run
};

void PrintTo(const Input &input, std::ostream *out)
{
    *out << input.name;
}

/// A table of which a row needs more of the ring than of a batch: the parser is ahead and waits.
QByteArray largeTable()
{
    QByteArray csv = "text,number\n";
    for (int i = 0; i < 4000; ++i) {
        csv += QByteArray(400, 'x') + ',' + QByteArray::number(i) + '\n';
    }
    return csv;
}

class StatStop : public testing::TestWithParam<Input>
{
protected:
    void SetUp() override
    {
        QByteArray name = "large.sas7bdat";
        if (*GetParam().file == '\0') {
            m_folder.write(u"in.csv"_s, largeTable());
            ASSERT_TRUE(m_folder
                            .runChain({"<readCSV fileName='in.csv' types='U,F'/>",
                                       "<writeSAS fileName='large.sas7bdat' autoWidth='1'/>"})
                            .succeeded);
        } else {
            name = QByteArray(CORVANTA_SOURCE_DIR "/tests/graphs/read_stat/") + GetParam().file;
        }
        m_folder.write(u"names.csv"_s, "name\n" + (name + '\n').repeated(GetParam().times));
        m_files = m_folder.files();
    }

    GraphOutcome run(const GraphSettings &settings = {}) const
    {
        return m_folder.runChain({"<readCSV fileName='names.csv'/>",
                                  "<readStat fileNameFromPin='1' bufferSize='1' fileName=''/>",
                                  "<writeCSV fileName='rows.csv'/>"},
                                 settings);
    }

    /// The target is complete or missing. A stop can come between its completion and the end of the
    /// run. Removes it.
    void checkFiles(const GraphOutcome &outcome, const QByteArray &rows) const
    {
        const QByteArray target = m_folder.bytes(u"rows.csv"_s);
        EXPECT_TRUE(target == rows || (target.isEmpty() && !outcome.succeeded)) << target.size();
        m_folder.remove(u"rows.csv"_s);
        EXPECT_EQ(m_folder.files(), m_files);
    }

    GraphFolder m_folder;
    QStringList m_files;
};

} // namespace

TEST_P(StatStop, EndsSoonAndLeavesNoFile)
{
    const Clock::time_point begin = Clock::now();
    ASSERT_TRUE(run().succeeded);
    const QByteArray rows = m_folder.bytes(u"rows.csv"_s);
    m_folder.remove(u"rows.csv"_s);
    const auto whole = std::chrono::duration_cast<microseconds>(Clock::now() - begin).count();
    std::mt19937 chance(1);
    std::uniform_int_distribution<qint64> moment(0, std::min<qint64>(whole, kLongestRun));
    int stopped = 0;
    for (int i = 0; i < kStops; ++i) {
        const microseconds delay(moment(chance));
        SCOPED_TRACE(testing::Message() << "stop after " << delay.count() << " microseconds");
        const GraphOutcome outcome = run({.stopAfter = delay});
        ASSERT_TRUE(outcome.ended);
        EXPECT_FALSE(outcome.failed) << outcome.errors.join(u'\n').toStdString();
        EXPECT_TRUE(outcome.errors.isEmpty());
        checkFiles(outcome, rows);
        stopped += outcome.succeeded ? 0 : 1;
    }
    EXPECT_GT(stopped, 0);
}

INSTANTIATE_TEST_SUITE_P(, StatStop,
                         testing::Values(Input{"Headers", "values/v.sav", 2000},
                                         Input{"OneFile", "values/v.dta", 1},
                                         Input{"LargeFile", "", 1}, Input{"LargeFiles", "", 20}),
                         [](const auto &info) { return info.param.name; });

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv); // the module is searched next to the program
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
