// A JSON object per line:
//
//   {"file":{"modified":NS,"name":"/in/a.parquet","size":N},
//    "piece":{"first":N,"rows":N,"part":N,"fileRows":N}}
//
// Every task computes all shards. With the sizes and pieces of its own moment, two tasks would run
// one input, or none would, after a file has changed.
#include "cli/batch/batch_inputs.h"

#include "cli/batch/line_file.h"

#include <QFileInfo>
#include <QJsonDocument>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

QJsonObject jsonOf(const InputFile &input)
{
    QJsonObject object{{u"file"_s, input.file.json()}};
    if (input.piece) {
        object.insert(u"piece"_s, QJsonObject{{u"first"_s, input.piece->firstRow},
                                              {u"rows"_s, input.piece->rowCount},
                                              {u"part"_s, input.piece->part},
                                              {u"fileRows"_s, input.piece->fileRows}});
    }
    return object;
}

/// Nothing if the line is not one of jsonOf().
std::optional<InputFile> inputOf(const QByteArray &line, qsizetype index)
{
    const QJsonObject object = QJsonDocument::fromJson(line).object();
    InputFile input{FileState::of(object[u"file"]), index};
    if (const QJsonValue piece = object[u"piece"]; piece.isObject()) {
        input.piece = InputPiece{piece[u"first"].toInteger(), piece[u"rows"].toInteger(),
                                 piece[u"part"].toInt(), piece[u"fileRows"].toInteger()};
    }
    return input.file.name.isEmpty() || !line.endsWith('\n') ? std::nullopt : std::optional(input);
}

} // namespace

QString inputsFileOf(const QString &folder)
{
    return folder + "/inputs.jsonl"_L1;
}

bool isBatchFolder(const QString &word)
{
    return QFileInfo(inputsFileOf(word)).isFile();
}

CommandResult<QVector<InputFile>> inputsOfBatch(const QString &folder)
{
    LineFile file(inputsFileOf(folder)); // no inputs if it cannot be read
    QVector<InputFile> inputs;
    while (file.next()) {
        const auto input = inputOf(file.line(), inputs.size() + 1);
        if (!input) {
            inputs.clear();
            break;
        }
        inputs << *input;
    }
    if (inputs.isEmpty()) {
        return badUsage(u"the list '%1' of a batch cannot be read; start the batch again"_s.arg(
            inputsFileOf(folder)));
    }
    return inputs;
}

QByteArray batchLines(const QVector<InputFile> &inputs)
{
    QByteArray lines;
    for (const InputFile &input : inputs) {
        lines += QJsonDocument(jsonOf(input)).toJson(QJsonDocument::Compact) + '\n';
    }
    return lines;
}
