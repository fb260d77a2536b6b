// Finds the category of an action by its keywords: the modules' own tags only say how common it is.
#include "studio/canvas/catalogue.h"

#include "corvanta/action_parameters.h"
#include "corvanta/action_registry.h"

#include <QCoreApplication>

#include <algorithm>
#include <climits>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

/// In the order of the palette. Tags that are not one of these groups name further categories.
enum Group { Readers, Writers, Tables, Tagged };

Group groupOf(const QStringList &keywords, const QStringList &tags)
{
    // Not by the type name, which another module may choose freely.
    if (keywords.contains("import"_L1)) {
        return Readers;
    }
    if (keywords.contains("export"_L1)) {
        return Writers;
    }
    // "Common" and "Uncommon" say how often an action is used, not what it does.
    const QString tag = tags.value(0);
    return tag.isEmpty() || tag == "Common"_L1 || tag == "Uncommon"_L1 ? Tables : Tagged;
}

QString categoryTitle(Group group, const QStringList &tags)
{
    switch (group) {
    case Readers:
        return QCoreApplication::translate("Catalogue", "Read files");
    case Writers:
        return QCoreApplication::translate("Catalogue", "Write files");
    case Tables:
        return QCoreApplication::translate("Catalogue", "Change tables");
    case Tagged:
        break;
    }
    return tags.value(0);
}

QStringList searchWords(ActionItem &action)
{
    QStringList words = action.getKeywords() + action.getTags() + action.getAlternativeNames() +
                        action.getFileTypes();
    // A user who looks for a reader often knows the extension of the file only.
    if (const auto *const parameters = dynamic_cast<const ActionParameters *>(&action)) {
        for (const FileFormat &format : parameters->fileFormats()) {
            words += QString::fromLatin1(format.extensions).split(u' ');
        }
    }
    for (QString &word : words) {
        word = word.toLower();
        word.remove(0, word.startsWith(u'.') ? 1 : 0); // ".pptx"
    }
    // Keywords and extensions often are the same.
    words.removeDuplicates();
    return words;
}

/// How well one word of the search fits, 0 for best; kNoMatch if it does not.
constexpr int kNoMatch = INT_MAX;
int distance(const CatalogueEntry &entry, const QString &word)
{
    // Users who know an action enter the beginning of its name.
    if (entry.type.startsWith(word, Qt::CaseInsensitive)) {
        return 0;
    }
    if (entry.type.contains(word, Qt::CaseInsensitive)) {
        return 1;
    }
    const auto starts = [&](const QString &each) { return each.startsWith(word); };
    if (std::any_of(entry.words.begin(), entry.words.end(), starts)) {
        return 2;
    }
    const bool isInText = entry.description.contains(word, Qt::CaseInsensitive) ||
                          entry.category.contains(word, Qt::CaseInsensitive);
    return isInText ? 3 : kNoMatch;
}

/// The sum over all words.
int distance(const CatalogueEntry &entry, const QStringList &words)
{
    int sum = 0;
    // Every word must match, so that more words find less.
    for (const QString &word : words) {
        const int each = distance(entry, word);
        if (each == kNoMatch) {
            return kNoMatch;
        }
        sum += each;
    }
    return sum;
}

} // namespace

Catalogue::Catalogue(const ActionRegistry &registry)
{
    QVector<std::pair<Group, CatalogueEntry>> all;
    all.reserve(static_cast<qsizetype>(registry.prototypes().size()));
    for (const auto &action : registry.prototypes()) {
        const QStringList tags = action->getTags();
        const Group group = groupOf(action->getKeywords(), tags);
        CatalogueEntry entry;
        entry.type = QString::fromLatin1(action->getTypeName());
        entry.description =
            QCoreApplication::translate("Parameters", action->getDescription().toUtf8());
        entry.category = categoryTitle(group, tags);
        entry.words = searchWords(*action);
        entry.isReader = group == Readers;
        entry.isUncommon = tags.contains("Uncommon"_L1);
        all.push_back({group, entry});
    }
    // Stable, so that the modules decide about the order of equal ones.
    std::stable_sort(all.begin(), all.end(), [](const auto &a, const auto &b) {
        return std::tie(a.first, a.second.isUncommon) < std::tie(b.first, b.second.isUncommon);
    });
    m_entries.reserve(all.size());
    for (auto &each : all) {
        m_entries.push_back(std::move(each.second));
    }
}

const CatalogueEntry *Catalogue::find(const QString &type) const
{
    const auto found = std::find_if(m_entries.begin(), m_entries.end(),
                                    [&](const auto &entry) { return entry.type == type; });
    return found == m_entries.end() ? nullptr : &*found;
}

QVector<const CatalogueEntry *> Catalogue::search(const QString &text, bool readersLast) const
{
    const QStringList words = text.toLower().split(u' ', Qt::SkipEmptyParts);
    QVector<std::pair<int, const CatalogueEntry *>> found;
    for (const CatalogueEntry &entry : m_entries) {
        if (const int sum = distance(entry, words); sum != kNoMatch) {
            found.push_back({sum, &entry});
        }
    }
    // Equal results stay in the order of the palette.
    const auto rank = [readersLast](const auto &each) {
        return std::pair(readersLast && each.second->isReader, each.first);
    };
    std::stable_sort(found.begin(), found.end(),
                     [&](const auto &a, const auto &b) { return rank(a) < rank(b); });
    QVector<const CatalogueEntry *> entries;
    entries.reserve(found.size());
    for (const auto &each : found) {
        entries.push_back(each.second);
    }
    return entries;
}

} // namespace corvanta::studio
