// The corpus of XML documents, read by the tokenizer and by expat: elements, attributes and text
// are the same.
//
// On purpose otherwise, and made equal here before the comparison:
//  - blanks in front of a text and texts of blanks alone are no text (what joins the pieces of an element's
//    text puts them back between two of them),
//  - line ends and blanks in attributes stay as they are written,
//  - default attributes of a DTD are not added, "&nbsp;" and its like in any case are known.
// Documents with entities of their own (DTD) are left out: what they name is an unknown entity
// here.
#include "codecs/markup/xml_tokenizer.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QString>

#include <expat.h>
#include <gtest/gtest.h>

using namespace corvanta;
using namespace corvanta::markup;
using namespace Qt::StringLiterals;

namespace {

/// A document as one line per tag and text, in a form that does not show the differences above.
class Outline
{
public:
    void start(const QString &name) { put(u'<' + name); }
    void attribute(const QString &name, const QString &value)
    {
        QString blanks = value;
        for (QChar &c : blanks) {
            c = c == u'\t' || c == u'\n' || c == u'\r' ? QChar(u' ') : c;
        }
        put(u' ' + name + u'=' + blanks.replace(u"  "_s, u" "_s));
    }
    void end() { put(u">"_s); }
    void text(const QString &piece) { m_text += piece; }
    QString lines()
    {
        put(QString());
        return m_lines;
    }

private:
    void put(const QString &line)
    {
        const QString text = m_text.simplified().remove(u' ');
        m_lines += text.isEmpty() ? QString() : u'\'' + text + u'\n';
        m_lines += line + u'\n';
        m_text.clear();
    }
    QString m_lines;
    QString m_text;
};

/// False when the document is not well-formed, or has what is left out.
struct ExpatRun
{
    Outline outline;
    XML_Parser parser = nullptr;
    bool hasEntities = false;
};

ExpatRun &runOf(void *data)
{
    return *static_cast<ExpatRun *>(data);
}

bool readWithExpat(const QByteArray &bytes, QString *lines)
{
    ExpatRun run;
    run.parser = XML_ParserCreate(nullptr);
    XML_SetUserData(run.parser, &run);
    XML_SetElementHandler(
        run.parser,
        [](void *data, const XML_Char *name, const XML_Char **attributes) {
            runOf(data).outline.start(QString::fromUtf8(name));
            const int written = XML_GetSpecifiedAttributeCount(runOf(data).parser);
            for (int i = 0; i < written; i += 2) {
                runOf(data).outline.attribute(QString::fromUtf8(attributes[i]),
                                              QString::fromUtf8(attributes[i + 1]));
            }
        },
        [](void *data, const XML_Char *) { runOf(data).outline.end(); });
    XML_SetCharacterDataHandler(run.parser, [](void *data, const XML_Char *text, int n) {
        runOf(data).outline.text(QString::fromUtf8(text, n));
    });
    XML_SetEntityDeclHandler(run.parser,
                             [](void *data, const XML_Char *, int, const XML_Char *, int,
                                const XML_Char *, const XML_Char *, const XML_Char *,
                                const XML_Char *) { runOf(data).hasEntities = true; });
    const bool isGood = XML_Parse(run.parser, bytes.constData(), static_cast<int>(bytes.size()),
                                  1) == XML_STATUS_OK;
    XML_ParserFree(run.parser);
    *lines = run.outline.lines();
    return isGood && !run.hasEntities;
}

QString readWithTokenizer(const QByteArray &bytes)
{
    MemorySource source(bytes);
    XMLTokenizer tokenizer(source, 0);
    // What is shorter than the guess asks for is UTF-8 for expat.
    if (bytes.size() < 25 && !bytes.startsWith("\xFE\xFF") && !bytes.startsWith("\xFF\xFE")) {
        tokenizer.setEncoding(CharMode::Utf8, QByteArray(), InvalidBytes::Fail);
    }
    tokenizer.setBalanced(true);
    Outline outline;
    const auto text = [](std::u16string_view units) {
        return QString::fromUtf16(units.data(), static_cast<qsizetype>(units.size()));
    };
    for (;;) {
        const Token token = tokenizer.nextToken();
        if (token == Token::Start) {
            outline.start(text(tokenizer.name()));
            for (size_t i = 0; i < tokenizer.attributes().size(); ++i) {
                outline.attribute(text(decoded(tokenizer.attributeName(i))),
                                  text(decoded(tokenizer.attributeValue(i))));
            }
        } else if (token == Token::End) {
            outline.end();
        } else if (token == Token::Text ||
                   (token == Token::Clear && tokenizer.clearKind() == ClearKind::CData)) {
            outline.text(text(tokenizer.text()));
        } else if (token == Token::EndOfData) {
            return outline.lines();
        } else if (token == Token::Error) {
            return u"error %1 at line %2"_s.arg(QString::number(int(tokenizer.errorCode())),
                                                QString::number(tokenizer.line()));
        }
    }
}

} // namespace

/// Entities of a DTD that expat does not read either, and a DOCTYPE whose "]" and ">" stand apart.
const QStringList kOtherwise{u"undeclared-entity.xml"_s, u"xhtml1.xhtml"_s, u"intsubset2.xml"_s};

TEST(Expat, ReadsTheSameFromValidDocuments)
{
    QString corpus = qEnvironmentVariable("CORVANTA_CORPUS");
    corpus = corpus.isEmpty() ? QStringLiteral(CORVANTA_DEFAULT_CORPUS) : corpus;
    if (!QDir(corpus).exists()) {
        GTEST_SKIP() << "no corpus: set CORVANTA_CORPUS";
    }
    int compared = 0;
    QDirIterator files(corpus + u"/xml"_s, {u"*.xml"_s, u"*.osm"_s, u"*.rdf"_s, u"*.xhtml"_s},
                       QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        if (kOtherwise.contains(files.fileName())) {
            continue;
        }
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        QString expected;
        if (readWithExpat(bytes, &expected)) {
            ++compared;
            EXPECT_EQ(readWithTokenizer(bytes).toStdString(), expected.toStdString())
                << file.fileName().toStdString();
        }
    }
    EXPECT_GT(compared, 60);
}
