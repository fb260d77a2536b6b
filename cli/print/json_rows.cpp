// One row per line:
//
//   [
//     {"name": "text", "price": 2.5, "missing": null},
//     ...
//   ]
//
// Rows are formatted in memory and written in blocks.
#include "cli/print/json_rows.h"

#include "base/text/json_number.h"
#include "cli/print/output.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSet>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype kFlushBytes = qsizetype(1) << 20;

QByteArray quoted(const QString &text)
{
    // The text of an array with one string, without its brackets.
    const QByteArray array = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    return array.mid(1, array.size() - 2);
}

/// A value of that kind, without quotes where JSON has it so.
QByteArray valueOf(ValueKind kind, const QString &text)
{
    bool isBare = false;
    QString value = text;
    switch (kind) {
    case ValueKind::Integer:
    case ValueKind::Decimal:
        isBare = corvanta::isJsonNumber(std::u16string_view(text.toStdU16String()));
        break;
    case ValueKind::Boolean:
        value = text.toLower();
        isBare = value == u"true" || value == u"false";
        break;
    default:
        break;
    }
    return isBare ? value.toLatin1() : quoted(text);
}

} // namespace

JsonRows::JsonRows(const TableSchema &columns, const QVector<ColumnKind> &kinds)
{
    for (const ColumnKind &kind : kinds) {
        m_kinds.push_back(kind.kind);
    }
    QSet<QString> taken;
    for (const QString &name : columns.names) {
        QString key = name;
        for (int number = 2; taken.contains(key); ++number) {
            key = name + u"_%1"_s.arg(number);
        }
        taken << key;
        m_members.push_back(quoted(key) + ": ");
    }
}

void JsonRows::add(const OneRow &row)
{
    m_text += m_hasRows ? ",\n  {" : "\n  {";
    m_hasRows = true;
    for (int i = 0; i < row.numberOfColumns(); ++i) {
        const QString text = row.text(i);
        const auto column = static_cast<size_t>(i);
        m_text += i > 0 ? ", " : "";
        m_text += m_members[column];
        m_text += text.isNull() ? QByteArray("null") : valueOf(m_kinds[column], text);
    }
    m_text += '}';
    if (m_text.size() >= kFlushBytes) {
        flush();
    }
}

void JsonRows::finish()
{
    m_text += m_hasRows ? "\n]\n" : "]\n";
    flush();
}

/// Rows are collected, because a write per row would cost more than the row.
void JsonRows::flush()
{
    printBytes(m_text);
    m_text.clear();
}
