#include "tools/timeline/eventfields.h"

#include "core/project.h"
#include "core/storytime.h"
#include "storage/workspace.h"
#include "tools/common/entitynames.h"
#include "tools/common/storydates.h"
#include "tools/common/toolarguments.h"
#include "tools/common/toolcontext.h"
#include "tools/timeline/timelinemodel.h"

using namespace Qt::StringLiterals;

namespace fb::app {

Result<qint64> dateArgument(ToolContext &context, const ToolArguments &arguments, const QString &key)
{
    return parseStoryDate(context.workspace().project().calendar(), arguments.text(key));
}

Result<qint64> storableDuration(ToolContext &context, qint64 start, qint64 end)
{
    const std::optional<qint64> span = minutesBetween(start, end);
    if (!span) {
        const core::Calendar &calendar = context.workspace().project().calendar();
        return makeError(
            u"The dates '%1' and '%2' lie too far apart for one event."_s
                .arg(core::formatInstant(calendar, start), core::formatInstant(calendar, end)));
    }
    return *span;
}

Result<QList<QUuid>> participantsArgument(ToolContext &context, const ToolArguments &arguments)
{
    return resolveEntityReferences(context, u"participants"_s,
                                   arguments.textList(u"participants"_s));
}

Result<QUuid> locationArgument(ToolContext &context, const ToolArguments &arguments)
{
    const QString location = arguments.trimmed(u"location"_s);
    if (location.isEmpty())
        return QUuid();
    return resolveEntityReference(context, u"location"_s, location);
}

} // namespace fb::app
