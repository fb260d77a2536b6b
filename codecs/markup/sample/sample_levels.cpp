#include "codecs/markup/sample/sample_levels.h"

#include "codecs/markup/tokens/json_tokenizer.h"
#include "codecs/markup/tokens/xml_tokenizer.h"
#include "codecs/markup/tree/path.h"

#include <QHash>

#include <algorithm>
#include <map>

using namespace Qt::StringLiterals;

namespace corvanta::markup {

namespace {

/// What a sample may hold at most: enough to judge by, little enough to be quick.
constexpr qint64 kMaxTokens = 4'000'000;
constexpr size_t kMaxShapes = 20'000;
constexpr qint64 kMaxDepth = 64;
/// Values of a repeated scalar that become columns; where there are more they become rows.
constexpr qint64 kIndexedValues = 8;
/// Members of an object that are alike, from which on it is taken for a map: in the document, and
/// in its records. From kManyMembers on they need not be alike.
constexpr size_t kMapMembers = 4;
constexpr size_t kInnerMapMembers = 16;
constexpr size_t kManyMembers = 32;

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
    bool isItem = false;  ///< of an array, or of a map
    bool isNamed = false; ///< an item of a map
    bool isAttribute = false;
    bool hasText = false;

    bool isRepeated() const { return isItem || mostInParent > 1; }
    bool holdsOthers() const { return !children.empty(); }
};

/// Parents come before their children; number 0 is the document.
using Shapes = std::vector<Shape>;

constexpr size_t kNone = ~size_t(0);

/// True for a name that a path can say: blanks at its ends would be dropped, and a saved graph,
/// which is XML, cannot hold every character.
bool fitsPath(QStringView name)
{
    const auto isXml = [](QChar c) {
        return c >= u' ' ? c.unicode() < 0xFFFE : c == u'\t' || c == u'\n' || c == u'\r';
    };
    return name == name.trimmed() && name.isValidUtf16() &&
           std::all_of(name.begin(), name.end(), isXml);
}

/// True for what describes the file, not its data.
bool isNameSpace(QStringView attribute)
{
    return attribute == u"xmlns" || attribute.startsWith(u"xmlns:");
}

/// Reads the sample.
class Sampler
{
public:
    Sampler(MarkupTokenizer &tokenizer, const SampleOptions &options)
        : m_tokenizer(tokenizer)
        , m_json(dynamic_cast<JSONTokenizer *>(&tokenizer))
        , m_xml(tokenizer.asXml())
        , m_records(std::max(options.records, 1))
        , m_clearIsText(options.text.clearIsText)
        , m_shapes(1)
    {
    }

    Shapes read();

private:
    bool take(Token token);
    void begin(const std::u16string &name, bool isItem);
    bool end();
    void addText() { m_shapes[m_current].hasText = m_shapes[m_current].hasText || m_unseen == 0; }
    void addAttributes(size_t shape);
    size_t childOf(size_t parent, const std::u16string &name);

    MarkupTokenizer &m_tokenizer;
    const JSONTokenizer *m_json;
    const XMLTokenizer *m_xml;
    qint64 m_records;
    bool m_clearIsText;
    Shapes m_shapes;
    size_t m_current = 0;
    qint64 m_unseen = 0; ///< open elements below the current shape that are not looked at
};

size_t Sampler::childOf(size_t parent, const std::u16string &name)
{
    const auto known = m_shapes[parent].byName.find(name);
    if (known != m_shapes[parent].byName.end()) {
        return known->second;
    }
    if (m_shapes.size() == kMaxShapes || !fitsPath(name)) {
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
    if (m_xml != nullptr) {
        addAttributes(child);
    }
}

void Sampler::addAttributes(size_t shape)
{
    for (size_t i = 0; i < m_xml->attributes().size(); ++i) {
        const std::u16string name = decoded(m_xml->attributeName(i));
        const size_t attribute = isNameSpace(name) ? kNone : childOf(shape, u"@" + name);
        if (attribute != kNone) {
            m_shapes[attribute].hasText = m_shapes[attribute].isAttribute = true;
            ++m_shapes[attribute].count;
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
        addText();
        return true;
    case Token::Clear:
        if (m_clearIsText &&
            (m_xml->clearKind() == ClearKind::CData || m_xml->clearKind() == ClearKind::Pre)) {
            addText();
        }
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

Shapes Sampler::read()
{
    m_tokenizer.setDocumentMarks(true);
    m_tokenizer.setBalanced(true);
    for (qint64 tokens = 0; tokens < kMaxTokens && take(m_tokenizer.nextToken()); ++tokens) {
    }
    return std::move(m_shapes);
}

// ---- Objects that are used as maps: their members become like the items of an array.

class MapFinder
{
public:
    explicit MapFinder(Shapes &shapes)
        : m_shapes(shapes)
    {
    }

    void find()
    {
        for (size_t i = 0; i < m_shapes.size(); ++i) {
            if (isMap(i)) {
                takeForArray(i);
            }
        }
    }

private:
    bool isMap(size_t shape) const;
    bool isInRecord(size_t shape) const;
    void takeForArray(size_t map);
    void merge(size_t from, size_t into);

    Shapes &m_shapes;
};

bool MapFinder::isInRecord(size_t shape) const
{
    while (shape != 0 && !m_shapes[shape].isRepeated()) {
        shape = m_shapes[shape].parent;
    }
    return m_shapes[shape].isRepeated() || m_shapes[0].count > 1;
}

/// True when all members are objects that have, on average, half of all names.
bool MapFinder::isMap(size_t shape) const
{
    const std::vector<size_t> &members = m_shapes[shape].children;
    if (members.size() < (isInRecord(shape) ? kInnerMapMembers : kMapMembers)) {
        return false;
    }
    std::map<std::u16string, size_t> names;
    size_t named = 0;
    for (const size_t member : members) {
        const Shape &at = m_shapes[member];
        if (at.isRepeated() || at.hasText || !at.holdsOthers()) {
            return false;
        }
        for (const size_t inner : at.children) {
            if (m_shapes[inner].isItem && !m_shapes[inner].isNamed) {
                return false;
            }
            ++names[m_shapes[inner].name];
            ++named;
        }
    }
    return 2 * named >= names.size() * members.size() || members.size() >= kManyMembers;
}

void MapFinder::takeForArray(size_t map)
{
    const std::vector<size_t> members = std::exchange(m_shapes[map].children, {m_shapes.size()});
    m_shapes[map].byName.clear();
    const size_t item = m_shapes.size();
    m_shapes.emplace_back();
    m_shapes[item].parent = map;
    for (const size_t member : members) {
        merge(member, item);
    }
    m_shapes[item].isItem = m_shapes[item].isNamed = true;
    m_shapes[item].mostInParent = static_cast<qint64>(members.size());
}

void MapFinder::merge(size_t from, size_t into)
{
    m_shapes[into].count += m_shapes[from].count;
    m_shapes[into].mostInParent =
        std::max(m_shapes[into].mostInParent, m_shapes[from].mostInParent);
    m_shapes[into].isItem = m_shapes[into].isItem || m_shapes[from].isItem;
    m_shapes[into].hasText = m_shapes[into].hasText || m_shapes[from].hasText;
    for (const size_t child : m_shapes[from].children) {
        const auto [known, isNew] =
            m_shapes[into].byName.try_emplace(m_shapes[child].name, m_shapes.size());
        const size_t target = known->second;
        if (isNew) {
            m_shapes.emplace_back();
            m_shapes[target].name = m_shapes[child].name;
            m_shapes[target].parent = into;
            m_shapes[into].children.push_back(target);
        }
        merge(child, target);
    }
}

// ---- From shapes to levels.

class LevelFinder
{
public:
    LevelFinder(const Shapes &shapes, bool isXml, bool zeroBased)
        : m_shapes(shapes)
        , m_isXml(isXml)
        , m_zeroBased(zeroBased)
        , m_twins(shapes.size())
    {
        for (const Shape &shape : shapes) {
            std::map<std::u16string, qint64> names;
            for (const size_t child : shape.children) {
                m_twins[child] = names[toLowerCase(shapes[child].name)]++;
            }
        }
    }

    SampledDocument document() const;

private:
    /// What an item is made of, until its name is known.
    struct Place
    {
        size_t level = 0;
        size_t shape = 0;
        QString suffix;
        QStringList parts; ///< that its name may be made of, the last one first
        qsizetype used = 1;
    };
    struct Draft
    {
        SampledTable table;
        std::vector<Place> places;
        size_t record = 0;
    };

    std::vector<size_t> descendants(size_t top) const;
    std::vector<size_t> findRecords() const;
    bool hasScalars() const;
    size_t findInner(size_t record) const;
    SampledTable tableOf(size_t record) const;
    void addLevel(Draft *draft, size_t container, size_t top, size_t inner) const;
    void addItem(Draft *draft, size_t top, size_t shape, const QString &path,
                 const QString &suffix) const;
    void addIndexed(Draft *draft, size_t top, size_t shape) const;
    QStringList partsOf(const Draft &draft, size_t shape) const;
    static void nameItems(Draft *draft);
    QString index(qint64 number) const;
    QString stepTo(size_t shape) const;
    QString pathTo(size_t top, size_t shape) const;

    const Shapes &m_shapes;
    bool m_isXml;
    bool m_zeroBased;
    std::vector<qint64>
        m_twins; ///< siblings before a shape whose names differ in letter case alone
};

/// The shape and those below it that are not repeated, and the repeated ones that they hold, in the
/// order in which they appeared.
std::vector<size_t> LevelFinder::descendants(size_t top) const
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

/// True when the document has values that are not repeated.
bool LevelFinder::hasScalars() const
{
    const std::vector<size_t> all = descendants(0);
    return std::any_of(all.begin(), all.end(), [&](size_t shape) {
        const Shape &at = m_shapes[shape];
        return at.hasText && !at.isRepeated() && !at.isAttribute;
    });
}

/// The elements whose occurrences can be rows.
std::vector<size_t> LevelFinder::findRecords() const
{
    if (m_shapes[0].count > 1) {
        return {0}; // a stream of documents: each is a record
    }
    std::vector<size_t> containers;
    std::vector<size_t> scalars;
    for (const size_t shape : descendants(0)) {
        if (shape != 0 && m_shapes[shape].isRepeated()) {
            (m_shapes[shape].holdsOthers() ? containers : scalars).push_back(shape);
        }
    }
    if (!containers.empty()) {
        return containers;
    }
    if (!scalars.empty() && !hasScalars()) {
        return scalars;
    }
    return {m_isXml && m_shapes[0].holdsOthers() ? m_shapes[0].children.front() : 0};
}

/// The repeated element inside a record that becomes the next level: the most frequent one that
/// holds others, else one with more values than become columns.
size_t LevelFinder::findInner(size_t record) const
{
    size_t best = kNone;
    for (const size_t shape : descendants(record)) {
        const Shape &at = m_shapes[shape];
        const bool isFit = shape != record && at.isRepeated() &&
                           (at.holdsOthers() || (at.hasText && at.mostInParent > kIndexedValues));
        const auto rank = [&](size_t of) {
            return std::pair(m_shapes[of].holdsOthers(), m_shapes[of].count);
        };
        if (isFit && (best == kNone || rank(shape) > rank(best))) {
            best = shape;
        }
    }
    return best;
}

QString LevelFinder::index(qint64 number) const
{
    return u'[' + QString::number(m_zeroBased ? number : number + 1) + u']';
}

/// The step that leads to a shape from its parent. Names that differ in letter case alone are the
/// same for a path: they are told apart by their number.
QString LevelFinder::stepTo(size_t shape) const
{
    const QString step = QString::fromStdU16String(escapedStep(m_shapes[shape].name));
    const bool isFirst = m_twins[shape] == 0 || m_shapes[shape].isAttribute;
    return isFirst ? step : step + index(m_twins[shape]);
}

QString LevelFinder::pathTo(size_t top, size_t shape) const
{
    QStringList steps;
    for (; shape != top; shape = m_shapes[shape].parent) {
        steps.prepend(stepTo(shape));
    }
    return steps.join(u'/');
}

/// The names that lead to a shape, the last one first: from the document's record on, for an inner
/// level too.
QStringList LevelFinder::partsOf(const Draft &draft, size_t shape) const
{
    QStringList parts;
    const auto add = [&](size_t at) {
        const QString name = QString::fromStdU16String(m_shapes[at].name);
        if (!name.isEmpty()) {
            parts << (m_shapes[at].isAttribute ? name.sliced(1) : name);
        }
    };
    for (size_t at = shape; at != draft.record; at = m_shapes[at].parent) {
        add(at);
    }
    for (size_t at = draft.record; at != 0 && parts.isEmpty(); at = m_shapes[at].parent) {
        add(at);
    }
    return parts.isEmpty() ? QStringList(u"value"_s) : parts;
}

void LevelFinder::addItem(Draft *draft, size_t top, size_t shape, const QString &path,
                          const QString &suffix) const
{
    draft->places.push_back(
        {draft->table.levels.size() - 1, shape, suffix, partsOf(*draft, shape)});
    draft->table.levels.back().items.push_back(
        {path.isNull() ? pathTo(top, shape) : path, QString(), false});
}

/// The first values of a repeated scalar, each a column.
void LevelFinder::addIndexed(Draft *draft, size_t top, size_t shape) const
{
    const Shape &at = m_shapes[shape];
    const qint64 values = std::min(at.mostInParent, kIndexedValues);
    for (qint64 i = 0; i < values; ++i) {
        const QString container = pathTo(top, at.isItem ? at.parent : shape);
        const QString between = at.isItem && !container.isEmpty() ? u"/"_s : QString();
        addItem(draft, top, shape, container + between + index(i),
                u'[' + QString::number(i) + u']');
    }
}

void LevelFinder::addLevel(Draft *draft, size_t container, size_t top, size_t inner) const
{
    Level level;
    level.initialPath = top == 0 ? QString() : pathTo(container, m_shapes[top].parent);
    level.subtagName = QString::fromStdU16String(m_shapes[top].name);
    draft->table.levels.push_back(std::move(level));
    draft->table.namesAreData = draft->table.namesAreData || m_shapes[top].isNamed;
    for (const size_t shape : descendants(top)) {
        const Shape &at = m_shapes[shape];
        if (shape == top || !at.isRepeated()) {
            if (at.hasText) {
                addItem(draft, top, shape, QString(), QString());
            }
        } else if (shape == inner) {
            continue;
        } else if (at.hasText && !at.holdsOthers() && at.mostInParent <= kIndexedValues) {
            addIndexed(draft, top, shape);
        } else if (at.hasText || at.holdsOthers()) {
            draft->table.leftOut << pathTo(draft->record, at.isItem ? at.parent : shape);
        }
    }
}

/// Give every column a name of its own: the last name of its path, with as many before it as it
/// takes.
void LevelFinder::nameItems(Draft *draft)
{
    const auto nameOf = [](const Place &place) {
        QStringList parts = place.parts.first(place.used);
        std::reverse(parts.begin(), parts.end());
        return parts.join(u'.') + place.suffix;
    };
    for (bool hasGrown = true; hasGrown;) {
        hasGrown = false;
        QHash<QString, int> uses;
        for (const Place &place : draft->places) {
            ++uses[nameOf(place)];
        }
        for (Place &place : draft->places) {
            if (uses[nameOf(place)] > 1 && place.used < place.parts.size()) {
                ++place.used;
                hasGrown = true;
            }
        }
    }
    QHash<QString, int> uses;
    std::vector<size_t> next(draft->table.levels.size());
    for (const Place &place : draft->places) {
        QString name = nameOf(place);
        for (const QString base = name; uses[name]++ > 0;) {
            name = base + u'_' + QString::number(uses[base]++);
        }
        draft->table.levels[place.level].items[next[place.level]++].name = name;
        draft->table.beginning << name;
    }
}

SampledTable LevelFinder::tableOf(size_t record) const
{
    Draft draft;
    draft.record = record;
    draft.table.path = pathTo(0, m_shapes[record].isItem ? m_shapes[record].parent : record);
    draft.table.rows = m_shapes[record].count;
    size_t container = 0;
    for (size_t top = record; top != kNone;) {
        const size_t inner = findInner(top);
        addLevel(&draft, container, top, inner);
        container = top;
        top = inner;
    }
    if (draft.places.empty()) {
        addItem(&draft, record, record, QString(), QString());
    }
    for (const Place &place : draft.places) {
        draft.table.values += m_shapes[place.shape].count;
    }
    nameItems(&draft);
    return std::move(draft.table);
}

SampledDocument LevelFinder::document() const
{
    SampledDocument document;
    for (const size_t record : findRecords()) {
        document.add(tableOf(record));
    }
    return document;
}

} // namespace

void SampledDocument::add(SampledTable table)
{
    tables.push_back(std::move(table));
    if (tables.back().values > tables[largest].values) {
        largest = tables.size() - 1;
    }
}

SampledDocument sampleDocument(MarkupTokenizer &tokenizer, const SampleOptions &options)
{
    Shapes shapes = Sampler(tokenizer, options).read();
    const bool isXml = tokenizer.asXml() != nullptr;
    if (!isXml) {
        MapFinder(shapes).find();
    }
    return LevelFinder(shapes, isXml, options.zeroBased).document();
}

} // namespace corvanta::markup
