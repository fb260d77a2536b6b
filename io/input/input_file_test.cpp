// InputFile: messages, size, progress, seeking, and the retry loop.
#include "corvanta/action_item.h"
#include "corvanta/main_ui.h"
#include "io/input/input_file.h"
#include "io/input/kept_pipe.h"
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

namespace {

/// Bytes of a pipe.
class Bytes final : public input::InputSource
{
public:
    explicit Bytes(QByteArray bytes)
        : m_bytes(std::move(bytes))
        , m_source(m_bytes, 7)
    {
    }
    qint64 read(void *buffer, qint64 n) override { return m_source.read(buffer, n); }
    qint64 size() override { return -1; }
    bool seek(qint64) override { return false; }
    qint64 progressPosition() const override { return 0; }

private:
    QByteArray m_bytes;
    MemorySource m_source;
};

} // namespace

TEST(ReplayedSource, KeepsWhatFitsMemoryAndTheRestInAFile)
{
    QByteArray bytes;
    for (int i = 0; i < 500; ++i) {
        bytes += QByteArray::number(i) + ' ';
    }
    input::ReplayedSource source(std::make_unique<Bytes>(bytes), 100);
    const auto read = [&](qint64 n) {
        QByteArray all;
        QByteArray piece(13, '\0');
        for (qint64 got = 1; got > 0 && all.size() < n;) {
            got = source.read(piece.data(), std::min<qint64>(piece.size(), n - all.size()));
            all += piece.first(std::max<qint64>(got, 0));
        }
        return all;
    };
    // A sample, a scan of the whole, a second one that stops, and the run.
    source.rewind(true);
    EXPECT_EQ(read(150), bytes.first(150));
    source.rewind(true);
    EXPECT_EQ(read(bytes.size() + 1), bytes);
    EXPECT_TRUE(source.seek(120));
    EXPECT_EQ(read(60), bytes.mid(120, 60));
    source.rewind(false);
    EXPECT_EQ(read(bytes.size() + 1), bytes);
}

TEST(ReplayedSource, ReportsBytesThatItCannotKeep)
{
    qputenv("TMPDIR", "/nope");
    input::ReplayedSource source(std::make_unique<Bytes>(QByteArray(500, 'x')), 100);
    source.rewind(true);
    QByteArray all(500, '\0');
    qint64 got = 1;
    while (got > 0) {
        got = source.read(all.data(), all.size());
    }
    qunsetenv("TMPDIR");
    EXPECT_EQ(got, -1);
    EXPECT_TRUE(source.failure().startsWith(QStringLiteral(
        "the data of the pipe cannot be kept in a temporary file in the folder '/nope': ")))
        << source.failure().toStdString();
    source.rewind(false);
    qint64 kept = 0; // whole reads of the pipe
    while ((got = source.read(all.data(), all.size())) > 0) {
        kept += got;
    }
    EXPECT_EQ(kept, 98);
    EXPECT_EQ(got, -1);
}

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
        int notes = 0;
    };
    const Case cases[] = {
        {0, 1, RunControl::Running, false, 0, 0}, {3, 99, RunControl::Running, false, 3, 3},
        {3, 2, RunControl::Running, true, 2, 2},  {-1, 5, RunControl::Running, true, 5, 0, 2},
        {3, 1, RunControl::Failed, false, 0, 1},  {-1, 1, RunControl::Stopped, false, 0, 0},
    };
    Log log;
    for (const Case &c : cases) {
        RunControl control;
        control.runStatus = c.runStatus;
        int attempts = 0;
        const bool opened = retryOpening(
            QStringLiteral("%1.json"), QStringLiteral("%1 is missing"), c.retries, control,
            [&] { return ++attempts == c.succeedsAt; }, 1ms);
        EXPECT_EQ(opened, c.opens) << c.retries;
        EXPECT_EQ(attempts, c.attempts) << c.retries;
        const QStringList texts = log.take();
        EXPECT_EQ(texts.size(), c.warnings + c.notes) << c.retries;
        EXPECT_EQ(texts.count(
                      QStringLiteral("2Warning: cannot read file '%1.json': Attempting again...")),
                  texts.size() - c.notes);
        if (c.notes > 0) {
            EXPECT_EQ(texts,
                      QStringList({QStringLiteral("3Waiting: cannot read file '%1.json' yet\n"),
                                   QStringLiteral("3Reason: %1 is missing.\n")}));
        }
    }
}
