#include "tools/timeline/eventlines.h"

#include "core/storytime.h"
#include "core/timelineevent.h"
#include "tools/common/entitynames.h"
#include "tools/timeline/timelinemodel.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

bool isLineBreak(QChar c)
{
    return c == u'\n' || c == u'\r' || c == QChar::LineSeparator || c == QChar::ParagraphSeparator;
}

} // namespace

void appendEventLine(QString &listing, const core::TimelineEvent &event,
                     const core::Calendar &calendar, const EntityNames &names)
{
    listing += u"- "_s;
    listing += core::formatInstant(calendar, event.startMinute());
    if (const std::optional<qint64> end = eventEnd(event)) {
        listing += u" to "_s;
        listing += core::formatInstant(calendar, *end);
    }
    listing += u" -- **"_s;
    listing += event.title();
    listing += u"**"_s;

    // Participant names are joined by commas, so the two details are set apart by a semicolon.
    bool hasDetail = false;
    const auto openDetail = [&](QStringView lead) {
        listing += hasDetail ? u"; "_s : u" ("_s;
        listing += lead;
        hasDetail = true;
    };
    bool hasParticipant = false;
    for (const QUuid &id : event.participants()) {
        const QString name = names.nameOf(id);
        if (name.isEmpty())
            continue;
        if (hasParticipant)
            listing += u", "_s;
        else
            openDetail(u"with ");
        listing += name;
        hasParticipant = true;
    }
    if (const QString location = names.nameOf(event.locationId()); !location.isEmpty()) {
        openDetail(u"at ");
        listing += location;
    }
    if (hasDetail)
        listing += u')';

    // A description that runs over several lines is folded into this one, so that every event
    // stays one item of the list.
    const QString &stored = event.description();
    const QString description = std::any_of(stored.cbegin(), stored.cend(), isLineBreak)
                                    ? stored.simplified()
                                    : stored.trimmed();
    if (!description.isEmpty()) {
        listing += u": "_s;
        listing += description;
    }
}

} // namespace fb::app
