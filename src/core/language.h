#pragma once

#include "core/contentobject.h"

#include <QList>

namespace fb::core {

// A dictionary entry of a constructed language; a word occurs at most once per lexicon.
struct LexiconEntry
{
    QString word;
    QString gloss;
    QString partOfSpeech;
    QString notes;

    bool operator==(const LexiconEntry &) const = default;
};

// The whole definition of a constructed language, which its edit command replaces in one
// step. The defaults seed a sound system that can generate words at once.
struct LanguageRecord
{
    QString name;
    QString consonants = QStringLiteral("p t k s m n l r th sh"); // space-separated phonemes
    QString vowels = QStringLiteral("a e i o u");
    QString patterns = QStringLiteral("CV CVC V"); // syllable shapes of C and V slots
    qint32 minSyllables = 1;
    qint32 maxSyllables = 3;
    QString grammarNotes; // Markdown
    QList<LexiconEntry> lexicon;

    bool operator==(const LanguageRecord &) const = default;
};

// A constructed language: sound system, grammar notes and lexicon.
class Language final : public ContentObject
{
public:
    static constexpr ObjectType staticType = ObjectType::Language;

    explicit Language(const QUuid &id = QUuid::createUuid());
    explicit Language(const QString &name, const QUuid &id = QUuid::createUuid());
    ~Language() override;

    const LanguageRecord &record() const { return m_record; }
    void setRecord(const LanguageRecord &record)
    {
        m_record = record;
        markChanged();
    }

    const QString &name() const { return m_record.name; }
    void setName(const QString &name)
    {
        m_record.name = name;
        markChanged();
    }

    const QString &consonants() const { return m_record.consonants; }
    void setConsonants(const QString &phonemes)
    {
        m_record.consonants = phonemes;
        markChanged();
    }

    const QString &vowels() const { return m_record.vowels; }
    void setVowels(const QString &phonemes)
    {
        m_record.vowels = phonemes;
        markChanged();
    }

    const QString &patterns() const { return m_record.patterns; }
    void setPatterns(const QString &patterns)
    {
        m_record.patterns = patterns;
        markChanged();
    }

    qint32 minSyllables() const { return m_record.minSyllables; }
    void setMinSyllables(qint32 count)
    {
        m_record.minSyllables = count;
        markChanged();
    }

    qint32 maxSyllables() const { return m_record.maxSyllables; }
    void setMaxSyllables(qint32 count)
    {
        m_record.maxSyllables = count;
        markChanged();
    }

    const QString &grammarNotes() const { return m_record.grammarNotes; }
    void setGrammarNotes(const QString &notes)
    {
        m_record.grammarNotes = notes;
        markChanged();
    }

    const QList<LexiconEntry> &lexicon() const { return m_record.lexicon; }
    void setLexicon(const QList<LexiconEntry> &entries)
    {
        m_record.lexicon = entries;
        markChanged();
    }

private:
    LanguageRecord m_record;
};

} // namespace fb::core
