#include "core/commands/researchcommands.h"

using namespace Qt::StringLiterals;

namespace fb::core {

QString SetLanguageCommand::label() const
{
    return u"Edit language"_s;
}

QString SetRandomTableCommand::label() const
{
    return u"Edit random table"_s;
}

QString SetSourceCommand::label() const
{
    return u"Edit source"_s;
}

QString SetStatBlockCommand::label() const
{
    return u"Edit stat block"_s;
}

} // namespace fb::core
