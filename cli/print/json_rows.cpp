// One row per line:
//
//   [
//     {"name": "text", "price": 2.5, "missing": null},
//     ...
//   ]
//
// Rows are formatted in memory and written in blocks.
#include "json_rows.h"

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

/// Whether the text of a number is one in JSON too: all but nan, inf and -inf end with a digit.
bool isJsonNumber(const QString &text)
{
    return text.back().isDigit();
}

} // namespace

JsonRows::JsonRows(const TableSchema &columns, std::FILE *out)
    : m_out(out)
{
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
        const bool isBare =
            !text.isEmpty() && row.getMetaType(i).type() != MetaInfo::Unknown && isJsonNumber(text);
        m_text += i > 0 ? ", " : "";
        m_text += m_members[static_cast<size_t>(i)];
        m_text += text.isNull() ? "null" : isBare ? text.toLatin1() : quoted(text);
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

void JsonRows::flush()
{
    std::fwrite(m_text.constData(), 1, static_cast<size_t>(m_text.size()), m_out);
    m_text.clear();
}
