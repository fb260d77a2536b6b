// Any bytes as an input file of any kind: content and failure do not depend on the sizes of reads,
// and the file can be read again from any position. The bytes as a pipe, from which a sample is
// read.
//
// Byte 0: the name, which decides the kind. The file follows.
#include "corvanta/main_ui.h"
#include "fuzz/support/feed.h"
#include "fuzz/support/require.h"
#include "io/input/kept_pipe.h"
#include "io/input/whole_input.h"

#include <QFile>
#include <QTemporaryDir>

using namespace corvanta;

namespace {

/// The first bytes of the content, and whether the end was reached; a small archive may unpack to
/// any size.
constexpr qsizetype kMaxBytes = 1 << 20;

struct NoLog final : LogSink
{
    NoLog() { MainUI::setLogSink(this); }
    void add(const LogMessage &) override {}
};

struct Read
{
    QByteArray content;
    bool isGood = true;
    bool operator==(const Read &) const = default;
};

Read read(InputFile &file, qint64 pieceBytes)
{
    Read all;
    QByteArray piece(pieceBytes, '\0');
    qint64 got = 1;
    while (got > 0 && all.content.size() < kMaxBytes) {
        got = file.read(piece.data(), qMin(pieceBytes, kMaxBytes - all.content.size()));
        require(got <= pieceBytes && file.getProgress() <= 1);
        all.content.append(piece.constData(), qMax<qint64>(got, 0));
    }
    all.isGood = got >= 0;
    require(all.isGood == file.failure().isEmpty());
    require(file.position() == all.content.size());
    return all;
}

void checkSeek(InputFile &file, const Read &all)
{
    const qsizetype middle = all.content.size() / 2;
    if (!all.isGood || !file.seek(middle)) {
        require(!all.isGood);
        return;
    }
    QByteArray rest(qMin<qsizetype>(1000, all.content.size() - middle), '\0');
    require(readFully(file, rest.data(), rest.size()) == rest.size());
    require(rest == QByteArrayView(all.content).sliced(middle, rest.size()));
}

/// A whole input in memory is the same.
void checkWhole(const QString &name, const Read &all)
{
    RunControl control;
    control.runStatus = RunControl::Running;
    const auto whole = randomAccess(std::make_unique<RunInput>(nullptr, control, name, true));
    require(whole || !all.isGood);
    if (whole) {
        QByteArray bytes(all.content.size(), '\0');
        require((*whole)->seek(0) &&
                readFully(**whole, bytes.data(), bytes.size()) == bytes.size());
        require(bytes == all.content);
        require((*whole)->seek(bytes.size()) && readToEnd(**whole) == all.isGood);
    }
}

/// A pipe, which cannot be read twice.
class Pipe final : public input::InputSource
{
public:
    explicit Pipe(QByteArrayView bytes)
        : m_memory(bytes)
    {
    }
    qint64 read(void *buffer, qint64 n) override { return m_memory.read(buffer, n); }
    qint64 size() override { return -1; }
    bool seek(qint64) override { return false; }
    qint64 progressPosition() const override { return 0; }

private:
    MemorySource m_memory;
};

QByteArray readFrom(ByteSource &source, qsizetype n)
{
    QByteArray bytes(n, '\0');
    bytes.truncate(readFully(source, bytes.data(), n));
    return bytes;
}

/// What a sample has read of a pipe is read again, wherever it is kept, and the rest follows.
void checkPipe(QByteArrayView bytes)
{
    const qsizetype third = bytes.size() / 3;
    input::ReplayedSource source(std::make_unique<Pipe>(bytes), third / 2);
    source.rewind(true);
    require(readFrom(source, third) == bytes.first(third));
    require(!source.seek(-1) && !source.seek(third + 1) && source.seek(third / 2));
    require(readFrom(source, third) == bytes.sliced(third / 2, third));
    source.rewind(true);
    require(readFrom(source, 2 * third) == bytes.first(2 * third));
    source.rewind(false);
    require(!source.seek(0));
    require(readFrom(source, bytes.size() + 1) == bytes);
}

} // namespace

/// The libraries for RAR archives ask for any size that a header names, and can be refused.
extern "C" const char *__asan_default_options()
{
    return "allocator_may_return_null=1";
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static NoLog log;
    static const QTemporaryDir dir;
    constexpr const char *kNames[] = {
        "a.gz", "a.Z", "a.rar", "a.zip", "a.zip@a", "a.xlsx@a", "a.csv.zip@A/b.csv", "a.csv"};
    Feed feed(data, size);
    const QString name = dir.filePath(QString::fromLatin1(kNames[feed.below(8)]));
    QFile file(name.section(u'@', 0, 0));
    require(file.open(QIODevice::WriteOnly) &&
            file.write(feed.rest().data(), feed.rest().size()) >= 0);
    file.close();
    checkPipe(feed.rest());

    InputFile input(nullptr, name, true);
    InputFile again(nullptr, name, false);
    require(input.isOpen() == again.isOpen());
    if (!input.isOpen()) {
        return 0;
    }
    const Read all = read(input, 1 << 16);
    require(all == read(again, 7));
    require(input.kind() != input::Kind::Plain || all.content == feed.rest());
    require(input.size() < 0 || !all.isGood || all.content.size() == kMaxBytes ||
            input.size() == all.content.size());
    if (all.content.size() < kMaxBytes) {
        checkSeek(input, all);
        checkWhole(name, all);
    }
    return 0;
}
