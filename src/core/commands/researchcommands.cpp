#include "core/commands/researchcommands.h"

namespace fb::core {

QString SetLanguageCommand::label() const
{
    return QStringLiteral("Edit language");
}

QString SetRandomTableCommand::label() const
{
    return QStringLiteral("Edit random table");
}

QString SetSourceCommand::label() const
{
    return QStringLiteral("Edit source");
}

QString SetStatBlockCommand::label() const
{
    return QStringLiteral("Edit stat block");
}

} // namespace fb::core
