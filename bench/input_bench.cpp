// Reads compressed inputs: MB/s of unpacked bytes. Compare gzip with: time zcat FILE > /dev/null
#include "corvanta/input_source.h"

#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <zlib.h>

#include <vector>

namespace {

using namespace corvanta;

constexpr int kRows = 500'000;
constexpr qint64 kReadBytes = 1 << 20;

/// A table of numbers and texts, compressed by zlib.
QString gzipFile()
{
    static const QTemporaryDir dir;
    static const QString path = [] {
        QByteArray table;
        for (int row = 0; row < kRows; ++row) {
            table += QByteArray::number(row) + ',' + QByteArray::number(row * 0.37, 'f', 3) +
                     ",Product number " + QByteArray::number(row % 3000) +
                     ",some remark on order " + QByteArray::number(row * 7919LL % 10'007) + '\n';
        }
        const QString name = dir.filePath(QStringLiteral("table.csv.gz"));
        const gzFile file = gzopen(QFile::encodeName(name).constData(), "wb");
        gzwrite(file, table.constData(), static_cast<unsigned>(table.size()));
        gzclose(file);
        return name;
    }();
    return path;
}

void readGzip(benchmark::State &state)
{
    const QString path = gzipFile();
    std::vector<char> buffer(kReadBytes);
    qint64 bytes = 0;
    for (auto _ : state) {
        auto source = input::openGzipFile(nullptr, path);
        for (qint64 got = 1; got > 0; bytes += got) {
            got = (*source)->read(buffer.data(), kReadBytes);
        }
    }
    state.SetBytesProcessed(bytes);
}

void readGzipWithZlib(benchmark::State &state)
{
    const QByteArray path = QFile::encodeName(gzipFile());
    std::vector<char> buffer(kReadBytes);
    qint64 bytes = 0;
    for (auto _ : state) {
        const gzFile file = gzopen(path.constData(), "rb");
        for (int got = 1; got > 0; bytes += got) {
            got = gzread(file, buffer.data(), kReadBytes);
        }
        gzclose(file);
    }
    state.SetBytesProcessed(bytes);
}

BENCHMARK(readGzip)->Unit(benchmark::kMillisecond);
BENCHMARK(readGzipWithZlib)->Unit(benchmark::kMillisecond);

} // namespace
