#include "codecs/markup/sample_levels.h"

#include "codecs/markup/json_tokenizer.h"
#include "codecs/markup/path.h"
#include "codecs/markup/xml_tokenizer.h"

#include <QSet>

#include <algorithm>
#include <map>

using namespace Qt::StringLiterals;

namespace corvanta::markup {

namespace {

/// What a sample may hold at most: enough to judge by, little enough to be quick.
constexpr qint64 kMaxTokens = 4'000'000;
constexpr size_t kMaxShapes = 20'000;
constexpr qint64 kMaxDepth = 64;
/// Items of an array of scalars that become columns when the array cannot be a level.
constexpr qint64 kIndexedItems = 8;

/// All elements of one name at one place of the document.
struct Shape
{
    std::u16string name; ///< "@name" for an attribute
    size_t parent = 0;
    std::vector<size_t> children;
    std::map<std::u16string, size_t> byName;
    qint64 count = 0;
    qint64 inParent = 0; ///< in the parent at hand
    qint64 mostInParent = 0;
    bool isItem = false; ///< of an array
    bool hasText = false;

    bool isRepeated() const { return isItem || mostInParent > 1; }
    bool holdsOthers() const { return !children.empty(); }
};

class Sampler
{
public:
    Sampler(MarkupTokenizer &tokenizer, int records)
        : m_tokenizer(tokenizer)
        , m_json(dynamic_cast<JSONTokenizer *>(&tokenizer))
        , m_xml(dynamic_cast<XMLTokenizer *>(&tokenizer))
        , m_records(std::max(records, 1))
        , m_shapes(1)
    {
    }

    void read();
    std::vector<Level> levels();

private:
    static constexpr size_t kNone = ~size_t(0);

    bool take(Token token);
    void begin(const std::u16string &name, bool isItem);
    bool end();
    size_t childOf(size_t parent, const std::u16string &name);
    size_t findRecord() const;
    size_t findInner(size_t record) const;
    Level levelOf(size_t container, size_t record, size_t inner);
    void addItem(Level *level, size_t top, size_t shape);
    std::vector<size_t> descendants(size_t top) const;
    QString pathTo(size_t top, size_t shape) const;
    QString uniqueName(size_t top, size_t shape, const QString &suffix);

    MarkupTokenizer &m_tokenizer;
    const JSONTokenizer *m_json;
    const XMLTokenizer *m_xml;
    qint64 m_records;
    std::vector<Shape> m_shapes;
    size_t m_current = 0;
    qint64 m_unseen = 0; ///< open elements below the current shape that are not looked at
    QSet<QString> m_names;
};

size_t Sampler::childOf(size_t parent, const std::u16string &name)
{
    const auto known = m_shapes[parent].byName.find(name);
    if (known != m_shapes[parent].byName.end()) {
        return known->second;
    }
    if (m_shapes.size() == kMaxShapes) {
        return kNone;
    }
    const size_t child = m_shapes.size();
    m_shapes.emplace_back();
    m_shapes[child].name = name;
    m_shapes[child].parent = parent;
    m_shapes[parent].children.push_back(child);
    m_shapes[parent].byName.emplace(name, child);
    return child;
}

void Sampler::begin(const std::u16string &name, bool isItem)
{
    const bool tooDeep = m_tokenizer.depth() > kMaxDepth;
    const size_t child = m_unseen > 0 || tooDeep ? kNone : childOf(m_current, name);
    if (child == kNone) {
        ++m_unseen;
        return;
    }
    Shape &shape = m_shapes[child];
    ++shape.count;
    shape.mostInParent = std::max(shape.mostInParent, ++shape.inParent);
    shape.isItem = isItem;
    m_current = child;
    for (const size_t inner : shape.children) {
        m_shapes[inner].inParent = 0;
    }
    for (size_t i = 0; m_xml != nullptr && i < m_xml->attributes().size(); ++i) {
        const size_t attribute = childOf(child, u"@" + decoded(m_xml->attributeName(i)));
        if (attribute != kNone) {
            m_shapes[attribute].hasText = true;
        }
    }
}

/// The current element ends; false when it was the last record that is wanted.
bool Sampler::end()
{
    if (m_unseen > 0) {
        --m_unseen;
        return true;
    }
    const Shape &shape = m_shapes[m_current];
    bool isOutermost = shape.isRepeated() && shape.holdsOthers();
    for (size_t above = shape.parent; above != 0; above = m_shapes[above].parent) {
        isOutermost = isOutermost && !m_shapes[above].isRepeated();
    }
    m_current = shape.parent;
    return !isOutermost || shape.count < m_records;
}

/// Learn from one token; false when enough is known.
bool Sampler::take(Token token)
{
    switch (token) {
    case Token::Start:
        begin(std::u16string(m_tokenizer.name()),
              m_json != nullptr && m_tokenizer.rawText().isEmpty());
        return true;
    case Token::End:
        return end();
    case Token::Text:
        m_shapes[m_current].hasText = m_shapes[m_current].hasText || m_unseen == 0;
        return true;
    case Token::DocumentStart:
        for (const size_t child : m_shapes[0].children) {
            m_shapes[child].inParent = 0;
        }
        m_shapes[0].count += m_json->documentKind() == JSONTokenizer::DocumentKind::Array ? 0 : 1;
        return true;
    case Token::DocumentEnd:
        return m_shapes[0].count < m_records;
    default:
        return token != Token::EndOfData && token != Token::Error;
    }
}

void Sampler::read()
{
    m_tokenizer.setDocumentMarks(true);
    m_tokenizer.setBalanced(true);
    for (qint64 tokens = 0; tokens < kMaxTokens && take(m_tokenizer.nextToken()); ++tokens) {
    }
}

/// The shape and those below it that are not repeated, and the repeated ones that they hold, in the
/// order in which they appeared.
std::vector<size_t> Sampler::descendants(size_t top) const
{
    std::vector<size_t> found;
    std::vector<size_t> open{top};
    while (!open.empty()) {
        const size_t at = open.back();
        open.pop_back();
        found.push_back(at);
        if (at == top || !m_shapes[at].isRepeated()) {
            const std::vector<size_t> &children = m_shapes[at].children;
            open.insert(open.end(), children.rbegin(), children.rend());
        }
    }
    return found;
}

/// The element whose occurrences are the first level's rows.
size_t Sampler::findRecord() const
{
    if (m_shapes[0].count > 1) {
        return 0; // a stream of documents: each is a record
    }
    size_t best = kNone;
    std::pair<bool, qint64> bestRank;
    const auto depthOf = [&](size_t shape) {
        qint64 depth = 0;
        for (; shape != 0; shape = m_shapes[shape].parent) {
            ++depth;
        }
        return depth;
    };
    for (const size_t shape : descendants(0)) {
        if (shape == 0 || !m_shapes[shape].isRepeated()) {
            continue;
        }
        const std::pair rank{m_shapes[shape].holdsOthers(), -depthOf(shape)};
        if (best == kNone || rank > bestRank ||
            (rank == bestRank && m_shapes[shape].count > m_shapes[best].count)) {
            best = shape;
            bestRank = rank;
        }
    }
    if (best == kNone) {
        best = m_xml != nullptr && m_shapes[0].holdsOthers() ? m_shapes[0].children.front() : 0;
    }
    return best;
}

/// The repeated element inside a record that becomes the next level.
size_t Sampler::findInner(size_t record) const
{
    size_t scalars = kNone;
    for (const size_t shape : descendants(record)) {
        if (shape == record || !m_shapes[shape].isRepeated()) {
            continue;
        }
        if (m_shapes[shape].holdsOthers()) {
            return shape;
        }
        scalars = scalars == kNone ? shape : scalars;
    }
    return scalars;
}

QString Sampler::pathTo(size_t top, size_t shape) const
{
    QString path;
    for (; shape != top; shape = m_shapes[shape].parent) {
        const QString step = QString::fromStdU16String(escapedStep(m_shapes[shape].name));
        path = path.isEmpty() ? step : step + u'/' + path;
    }
    return path;
}

/// The last part of the path, with as many parts before it as make it unique.
QString Sampler::uniqueName(size_t top, size_t shape, const QString &suffix)
{
    const auto partOf = [&](size_t part) {
        const QString name = QString::fromStdU16String(m_shapes[part].name);
        return name.startsWith(u'@') ? name.sliced(1) : name;
    };
    QString name = (shape == top ? u"value"_s : partOf(shape)) + suffix;
    for (size_t at = shape; m_names.contains(name) && at != top; at = m_shapes[at].parent) {
        const size_t parent = m_shapes[at].parent;
        if (parent == top) {
            break;
        }
        name = partOf(parent) + u'.' + name;
    }
    const QString base = name;
    for (int n = 2; m_names.contains(name); ++n) {
        name = base + u'_' + QString::number(n);
    }
    m_names.insert(name);
    return name;
}

void Sampler::addItem(Level *level, size_t top, size_t shape)
{
    level->items.push_back({pathTo(top, shape), uniqueName(top, shape, QString()), false});
}

Level Sampler::levelOf(size_t container, size_t record, size_t inner)
{
    Level level;
    level.initialPath = record == 0 ? QString() : pathTo(container, m_shapes[record].parent);
    level.subtagName = QString::fromStdU16String(m_shapes[record].name);
    for (const size_t shape : descendants(record)) {
        const Shape &at = m_shapes[shape];
        const bool isInside = shape != record && at.isRepeated();
        if (at.hasText && !isInside) {
            addItem(&level, record, shape);
        } else if (isInside && shape != inner && at.isItem && !at.holdsOthers()) {
            const qint64 items = std::min(at.mostInParent, kIndexedItems);
            for (qint64 i = 0; i < items; ++i) {
                const QString index = u'[' + QString::number(i) + u']';
                level.items.push_back({pathTo(record, at.parent) + u'/' + index,
                                       uniqueName(record, at.parent, index), false});
            }
        }
    }
    return level;
}

std::vector<Level> Sampler::levels()
{
    std::vector<Level> levels;
    size_t container = 0;
    size_t record = findRecord();
    while (record != kNone) {
        const size_t inner = findInner(record);
        levels.push_back(levelOf(container, record, inner));
        container = record;
        record = inner;
    }
    const bool hasItems = std::any_of(levels.begin(), levels.end(),
                                      [](const Level &level) { return !level.items.empty(); });
    if (!hasItems) {
        addItem(&levels.back(), 0, 0);
    }
    return levels;
}

} // namespace

std::vector<Level> deriveLevels(MarkupTokenizer &tokenizer, int records)
{
    Sampler sampler(tokenizer, records);
    sampler.read();
    return sampler.levels();
}

} // namespace corvanta::markup
