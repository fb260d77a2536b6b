// InputFile: messages, size, progress, seeking, and the retry loop.
#include "corvanta/action_item.h"
#include "corvanta/main_ui.h"
#include "io/input/input_file.h"
#include "tests/support/corpus.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace corvanta;
using namespace std::chrono_literals;

namespace {

class Log final : public LogSink
{
public:
    Log() { MainUI::setLogSink(this); }
    ~Log() override { MainUI::setLogSink(nullptr); }
    void add(const LogMessage &message) override
    {
        m_texts << QString::number(message.level) + message.text;
    }
    QStringList take() { return std::exchange(m_texts, {}); }

private:
    QStringList m_texts;
};

QByteArray readAll(InputFile &file)
{
    QByteArray all;
    QByteArray piece(1000, '\0');
    for (qint64 got = 0; (got = file.read(piece.data(), piece.size())) > 0;) {
        all += piece.first(got);
    }
    return all;
}

} // namespace

TEST(InputFile, LogsWhyItDoesNotOpen)
{
    CORVANTA_NEEDS_CORPUS();
    Log log;
    const QString dir = test::corpusFile(QStringLiteral("archives/"));
    struct Case
    {
        QString name;
        QString message;
    };
    const Case cases[] = {
        {QStringLiteral("gz/%2.gz"),
         QStringLiteral("1Cannot open file '%1gz/%2.gz' for read.").arg(dir, QStringLiteral("%2"))},
        {QStringLiteral("Z/no.Z"),
         QStringLiteral("1Cannot open file '%1Z/no.Z' for read.").arg(dir)},
        {QStringLiteral("Z/reserved_flag_bit5.json.Z"), {}},
        {QStringLiteral("zip/no.zip"), {}},
        {QStringLiteral("zip/inner_members.zip@no"), {}},
        {QStringLiteral("zip/inner_members.xlsx@a"), {}},
        {QStringLiteral("rar/no.rar"), {}},
        {QStringLiteral("no.csv"), {}},
        {QStringLiteral("rar/rar15-comment.rar"),
         QStringLiteral("1ERROR: cannot read the RAR file '%1rar/rar15-comment.rar': its entry "
                        "'FILE1.TXT' is packed with the method of RAR 1.5, which is not "
                        "supported\n")
             .arg(dir)},
    };
    for (const Case &c : cases) {
        InputFile file(nullptr, dir + c.name, false);
        EXPECT_FALSE(file.isOpen()) << c.name.toStdString();
        EXPECT_TRUE(file.name().isEmpty()) << c.name.toStdString();
        EXPECT_LT(file.read(nullptr, 0), 0) << c.name.toStdString();
        EXPECT_EQ(file.getProgress(), -1.0F) << c.name.toStdString();
        EXPECT_EQ(log.take().join(QLatin1Char('|')).toStdString(), c.message.toStdString());
    }
}

TEST(InputFile, ReportsSizeProgressAndPositionOfEveryKind)
{
    CORVANTA_NEEDS_CORPUS();
    struct Case
    {
        const char *name;
        double size;
        qint64 bytes;
    };
    const Case cases[] = {{"gz/github_events.json.gz", 9755, 65132},
                          {"Z/github_events.json.Z", 21237, 65132},
                          {"rar/stored_rar5_github_events.rar", 65132, 65132},
                          {"zip/mixed.zip", 48891, 48891},
                          {"zip/inner_members.zip@INNER/a.json", 11356, 11356},
                          {"gz/lorem-ipsum.txt.gz", 38080, 144060}};
    Log log;
    for (const Case &c : cases) {
        InputFile file(nullptr,
                       test::corpusFile(QStringLiteral("archives/") + QString::fromLatin1(c.name)),
                       true);
        ASSERT_TRUE(file.isOpen()) << c.name;
        EXPECT_EQ(file.getSize(), c.size) << c.name;
        const QByteArray all = readAll(file);
        EXPECT_EQ(all.size(), c.bytes) << c.name;
        EXPECT_EQ(file.position(), c.bytes) << c.name;
        EXPECT_FLOAT_EQ(file.getProgress(), 1.0F) << c.name;
        ASSERT_TRUE(file.seek(c.bytes - 10)) << c.name;
        EXPECT_EQ(file.position(), c.bytes - 10) << c.name;
        EXPECT_EQ(readAll(file), all.last(10)) << c.name;
        file.close();
        EXPECT_FALSE(file.isOpen()) << c.name;
    }
    EXPECT_TRUE(log.take().isEmpty());
}

TEST(InputFile, UpperCaseEndingsAreReadUnchanged)
{
    const QTemporaryDir dir;
    for (const char *name : {"a.GZ", "a.RAR", "a.ZIP", "a.z", "empty"}) {
        const QByteArray bytes =
            std::string_view(name) == "empty" ? QByteArray() : QByteArray("\x1F\x8B plain");
        QFile out(dir.filePath(QString::fromLatin1(name)));
        ASSERT_TRUE(out.open(QIODevice::WriteOnly) && out.write(bytes) == bytes.size());
        out.close();
        InputFile file(nullptr, out.fileName(), false);
        ASSERT_TRUE(file.isOpen()) << name;
        EXPECT_EQ(file.kind(), input::Kind::Plain) << name;
        EXPECT_EQ(file.getSize(), static_cast<double>(bytes.size())) << name;
        EXPECT_EQ(readAll(file), bytes) << name;
        EXPECT_FLOAT_EQ(file.getProgress(), 1.0F) << name;
    }
}

TEST(RetryOpening, CountsAttemptsAndWarnings)
{
    struct Case
    {
        int retries;
        int succeedsAt;
        int runStatus;
        bool opens;
        int attempts;
        int warnings;
    };
    const Case cases[] = {
        {0, 1, RunControl::Running, false, 0, 0}, {3, 99, RunControl::Running, false, 3, 3},
        {3, 2, RunControl::Running, true, 2, 2},  {-1, 5, RunControl::Running, true, 5, 0},
        {3, 1, RunControl::Failed, false, 0, 1},  {-1, 1, RunControl::Stopped, false, 0, 0},
    };
    Log log;
    for (const Case &c : cases) {
        RunControl control;
        control.runStatus = c.runStatus;
        int attempts = 0;
        const bool opened = retryOpening(
            QStringLiteral("%1.json"), c.retries, control,
            [&] { return ++attempts == c.succeedsAt; }, 1ms);
        EXPECT_EQ(opened, c.opens) << c.retries;
        EXPECT_EQ(attempts, c.attempts) << c.retries;
        const QStringList texts = log.take();
        EXPECT_EQ(texts.size(), c.warnings) << c.retries;
        EXPECT_EQ(texts.count(
                      QStringLiteral("2Warning: cannot read file '%1.json': Attempting again...")),
                  texts.size());
    }
}
