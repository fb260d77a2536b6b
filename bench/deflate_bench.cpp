// Writes and reads sheet XML in a package: MB/s of XML, and the compression ratio.
#include "codecs/zip/package_reader.h"
#include "codecs/zip/package_writer.h"

#include <benchmark/benchmark.h>

#include <random>

namespace {

using namespace corvanta;
using namespace corvanta::zip;

constexpr qsizetype kSheetBytes = 64'000'000;

// Rows of two integers, three doubles and four texts.
const QByteArray &sheetXml()
{
    static const QByteArray xml = [] {
        const char *const cities[] = {"M\xc3\xbcnchen", "S\xc3\xa3o Paulo", "Reykjav\xc3\xadk",
                                      "Lyon"};
        std::mt19937 random(1);
        QByteArray text;
        text.reserve(kSheetBytes + 2000);
        for (int row = 1; text.size() < kSheetBytes; ++row) {
            const QByteArray number = QByteArray::number(row);
            text += "<row r=\"" + number + "\">";
            for (int col = 0; col < 9; ++col) {
                const QByteArray name = QByteArray(1, static_cast<char>('A' + col)) + number;
                if (col < 5) {
                    const double value = col < 2 ? random() % 100'000 : random() / 1e5;
                    text += "<c r=\"" + name + "\"><v>" + QByteArray::number(value, 'g', 9) +
                            "</v></c>";
                } else {
                    text += "<c r=\"" + name + "\" t=\"inlineStr\"><is><t>" + cities[random() % 4] +
                            ' ' + QByteArray::number(random() % 3000) + "</t></is></c>";
                }
            }
            text += "</row>";
        }
        return text;
    }();
    return xml;
}

QByteArray packageOf(deflate::StreamOptions options)
{
    MemorySink sink;
    PackageWriter writer(sink, options);
    const QByteArray &xml = sheetXml();
    bool isGood = bool(writer.openMember("sheet1.xml"));
    for (qsizetype at = 0; at < xml.size(); at += 4000) {
        isGood = isGood && writer.write(QByteArrayView(xml).sliced(at).first(
                               qMin<qsizetype>(4000, xml.size() - at)));
    }
    isGood = isGood && writer.closeMember() && writer.close();
    return isGood ? sink.bytes() : QByteArray();
}

void write(benchmark::State &state)
{
    const auto engine = static_cast<deflate::Engine>(state.range(0));
    const deflate::StreamOptions options{{engine, int(state.range(1))}, int(state.range(2))};
    qsizetype packed = 1;
    for (auto _ : state) {
        packed = packageOf(options).size();
    }
    state.SetBytesProcessed(state.iterations() * sheetXml().size());
    state.counters["ratio"] = double(sheetXml().size()) / double(packed);
}

void read(benchmark::State &state)
{
    const QByteArray package = packageOf({});
    MemorySource source(package);
    const auto reader = PackageReader::open(source);
    QByteArray buffer(state.range(0), '\0');
    for (auto _ : state) {
        const auto stream = (*reader)->openStream("sheet1.xml");
        while ((*stream)->read(buffer.data(), buffer.size()) > 0) {
        }
    }
    state.SetBytesProcessed(state.iterations() * sheetXml().size());
}

void rawCopy(benchmark::State &state)
{
    const QByteArray package = packageOf({});
    MemorySource source(package);
    const auto reader = PackageReader::open(source);
    for (auto _ : state) {
        MemorySink sink;
        PackageWriter writer(sink);
        if (!writer.copyRaw(**reader, (*reader)->members()[0])) {
            state.SkipWithError("not copied");
        }
    }
    state.SetBytesProcessed(state.iterations() * sheetXml().size());
}

constexpr int kIsal = int(deflate::Engine::Isal);
constexpr int kZlib = int(deflate::Engine::Zlib);

BENCHMARK(write)
    ->ArgNames({"engine", "level", "workers"})
    ->Args({kIsal, 1, 0})
    ->Args({kIsal, 2, 0})
    ->Args({kIsal, 2, 1})
    ->Args({kIsal, 2, 2})
    ->Args({kIsal, 3, 0})
    ->Args({kIsal, 3, 2})
    ->Args({kZlib, 1, 2})
    ->Args({kZlib, 6, 2})
    ->UseRealTime()
    ->MeasureProcessCPUTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(read)->Arg(4096)->Arg(65536)->Arg(1 << 20)->Unit(benchmark::kMillisecond);
BENCHMARK(rawCopy)->Unit(benchmark::kMillisecond);

} // namespace
