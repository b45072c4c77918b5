#pragma once

// The commands that replace the whole record of a research or game object: a constructed
// language, a random table, a source, a stat block. Each holds the project and the object's id
// and is constructed as (Project &, object id, new record); a step whose object is gone does
// nothing.

#include "core/commands/valuecommands.h"
#include "core/language.h"
#include "core/randomtable.h"
#include "core/source.h"
#include "core/statblock.h"

namespace fb::core {

class SetLanguageCommand final
    : public LookupMemberSwapCommand<Language, LanguageRecord, &Language::record, &Language::setRecord>
{
public:
    using LookupMemberSwapCommand::LookupMemberSwapCommand;
    QString label() const override;
};

class SetRandomTableCommand final
    : public LookupMemberSwapCommand<RandomTable, RandomTableRecord, &RandomTable::record,
                                     &RandomTable::setRecord>
{
public:
    using LookupMemberSwapCommand::LookupMemberSwapCommand;
    QString label() const override;
};

class SetSourceCommand final
    : public LookupMemberSwapCommand<Source, SourceRecord, &Source::record, &Source::setRecord>
{
public:
    using LookupMemberSwapCommand::LookupMemberSwapCommand;
    QString label() const override;
};

class SetStatBlockCommand final
    : public LookupMemberSwapCommand<StatBlock, StatBlockRecord, &StatBlock::record,
                                     &StatBlock::setRecord>
{
public:
    using LookupMemberSwapCommand::LookupMemberSwapCommand;
    QString label() const override;
};

} // namespace fb::core
