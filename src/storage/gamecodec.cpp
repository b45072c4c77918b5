#include "storage/gamecodec.h"

#include "core/language.h"
#include "core/randomtable.h"
#include "core/statblock.h"
#include "storage/storedvalues.h"

using namespace Qt::StringLiterals;

namespace fb::app {

using namespace core;

void readLanguage(JsonReader &reader, Language &language)
{
    LanguageRecord record;
    record.name = reader.string("name"_L1);
    record.consonants = reader.string("consonants"_L1, record.consonants);
    record.vowels = reader.string("vowels"_L1, record.vowels);
    record.patterns = reader.string("patterns"_L1, record.patterns);
    record.minSyllables = reader.int32("minSyllables"_L1, record.minSyllables);
    record.maxSyllables = reader.int32("maxSyllables"_L1, record.maxSyllables);
    record.grammarNotes = reader.string("grammarNotes"_L1);
    record.lexicon = reader.list<LexiconEntry>("lexicon"_L1, [](JsonReader &item) {
        return LexiconEntry{item.string("word"_L1), item.string("gloss"_L1),
                            item.string("partOfSpeech"_L1), item.string("notes"_L1)};
    });
    language.setRecord(record);
}

void writeLanguage(const Language &language, QJsonObject &json)
{
    const LanguageRecord &record = language.record();
    json.insert("name"_L1, record.name);
    json.insert("consonants"_L1, record.consonants);
    json.insert("vowels"_L1, record.vowels);
    json.insert("patterns"_L1, record.patterns);
    json.insert("minSyllables"_L1, record.minSyllables);
    json.insert("maxSyllables"_L1, record.maxSyllables);
    json.insert("grammarNotes"_L1, record.grammarNotes);
    json.insert("lexicon"_L1, jsonArray(record.lexicon, [](const LexiconEntry &entry) {
                    return QJsonObject{{"word"_L1, entry.word},
                                       {"gloss"_L1, entry.gloss},
                                       {"partOfSpeech"_L1, entry.partOfSpeech},
                                       {"notes"_L1, entry.notes}};
                }));
}

void readRandomTable(JsonReader &reader, RandomTable &table)
{
    RandomTableRecord record;
    record.title = reader.string("title"_L1);
    record.entries = reader.list<TableEntry>("entries"_L1, [](JsonReader &item) {
        TableEntry entry;
        entry.text = item.string("text"_L1);
        entry.weight = item.int32("weight"_L1, entry.weight);
        return entry;
    });
    table.setRecord(record);
}

void writeRandomTable(const RandomTable &table, QJsonObject &json)
{
    json.insert("title"_L1, table.title());
    json.insert("entries"_L1, jsonArray(table.entries(), [](const TableEntry &entry) {
                    return QJsonObject{{"text"_L1, entry.text}, {"weight"_L1, entry.weight}};
                }));
}

void readStatBlock(JsonReader &reader, StatBlock &block)
{
    StatBlockRecord record;
    record.title = reader.string("title"_L1);
    record.system = reader.string("system"_L1);
    record.notes = reader.string("notes"_L1);
    record.stats = reader.list<StatLine>("stats"_L1, [](JsonReader &item) {
        return StatLine{item.string("label"_L1), storedValueText(item.value("value"_L1))};
    });
    record.actions = reader.list<StatAction>("actions"_L1, [](JsonReader &item) {
        return StatAction{item.string("name"_L1), item.string("text"_L1)};
    });
    block.setRecord(record);
}

void writeStatBlock(const StatBlock &block, QJsonObject &json)
{
    json.insert("title"_L1, block.title());
    json.insert("system"_L1, block.system());
    json.insert("notes"_L1, block.notes());
    json.insert("stats"_L1, jsonArray(block.stats(), [](const StatLine &line) {
                    return QJsonObject{{"label"_L1, line.label}, {"value"_L1, line.value}};
                }));
    json.insert("actions"_L1, jsonArray(block.actions(), [](const StatAction &action) {
                    return QJsonObject{{"name"_L1, action.name}, {"text"_L1, action.text}};
                }));
}

} // namespace fb::app
