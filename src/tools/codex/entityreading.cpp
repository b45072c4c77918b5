#include "core/calendar.h"
#include "core/contentobjects.h"
#include "core/ids.h"
#include "core/project.h"
#include "core/storytime.h"
#include "storage/workspace.h"
#include "tools/codex/entityhandlers.h"
#include "tools/codex/entitysupport.h"
#include "tools/codex/mentions.h"
#include "tools/common/manuscript.h"
#include "tools/common/objectlookup.h"
#include "tools/common/toolcontext.h"
#include "tools/common/visibility.h"

#include <QSet>
#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

// "Mentioned in" names this many documents and counts the rest, so that a character who appears
// in every chapter of a long novel does not flood the sheet.
constexpr qsizetype listedMentions = 10;

// The object an id names, looked up first in the project that owns the entity showing it and
// then in the open project and the mounted libraries, since a reference may cross from one
// into the other.
const core::ContentObject *referencedObject(Workspace &workspace, const core::Project &owner,
                                            const QUuid &id)
{
    if (const core::ContentObject *object = owner.object(id))
        return object;
    if (const core::ContentObject *object = workspace.project().object(id))
        return object;
    for (const MountedLibrary &library : workspace.libraries()) {
        if (library.project) {
            if (const core::ContentObject *object = library.project->object(id))
                return object;
        }
    }
    return nullptr;
}

// A reference value as the agent reads it: the target's name. A target withheld from the agent
// is never named, and a value that names nothing (any more) says so instead of showing a bare
// id.
QString referenceText(ToolContext &context, const core::Project &owner, const QString &value)
{
    const QUuid id = core::idFromText(value);
    if (id.isNull())
        return value;
    const core::ContentObject *target = referencedObject(context.workspace(), owner, id);
    if (!target)
        return u"(missing entity)"_s;
    if (!context.visibility().isVisible(*target))
        return u"(excluded from AI)"_s;
    return core::objectTitle(*target);
}

QString categoryName(const core::Project &owner, const core::Entity &entity)
{
    const core::Category *category = owner.categories().category(entity.categoryId());
    return category ? category->name() : u"uncategorized"_s;
}

QStringList fieldLines(ToolContext &context, const core::Project &owner, const core::Entity &entity)
{
    QStringList lines;
    QSet<QString> shown;
    for (const auto &field : owner.categories().effectiveSchema(entity.categoryId())) {
        const QString &key = field.definition.key;
        const QString value = entity.value(key);
        if (value.isEmpty() || shown.contains(key))
            continue;
        shown.insert(key);
        const bool isReference = field.definition.type == core::FieldType::Reference;
        lines.append(u"- %1: %2"_s.arg(field.definition.label,
                                       isReference ? referenceText(context, owner, value) : value));
    }
    // Values whose field is no longer defined (a removed field keeps its data) are shown by key;
    // one holding an id still reads as the name it points at.
    for (auto it = entity.values().cbegin(); it != entity.values().cend(); ++it) {
        if (shown.contains(it.key()) || it.value().isEmpty())
            continue;
        const bool looksLikeId = !core::idFromText(it.value()).isNull();
        lines.append(u"- %1: %2"_s.arg(it.key(), looksLikeId
                                                     ? referenceText(context, owner, it.value())
                                                     : it.value()));
    }
    return lines;
}

QStringList timedValueLines(const core::Project &owner, const core::Entity &entity)
{
    QHash<QString, QString> labels;
    for (const auto &field : owner.categories().effectiveSchema(entity.categoryId()))
        labels.insert(field.definition.key, field.definition.label);
    // Chronological, as the state unfolds; values of one instant keep their stored order.
    QList<core::TimedValue> values = entity.timedValues();
    std::stable_sort(values.begin(), values.end(),
                     [](const core::TimedValue &a, const core::TimedValue &b) {
                         return a.instant < b.instant;
                     });
    QStringList lines;
    for (const core::TimedValue &value : values) {
        lines.append(
            u"- %1: \"%2\" from %3"_s.arg(labels.value(value.fieldKey, value.fieldKey), value.value,
                                          core::formatInstant(owner.calendar(), value.instant)));
    }
    return lines;
}

QString mentionLine(ToolContext &context, const core::Entity &entity)
{
    // Mentions are looked for in the open project's manuscript, also for a library entity:
    // what the writer wants to know is where their own text uses it.
    const std::vector<const core::Document *> documents
        = documentsMentioning(visibleManuscript(context),
                              QStringList{entity.name()} + entity.aliases());
    if (documents.empty())
        return {};
    QStringList titles;
    for (std::size_t i = 0; i < documents.size() && qsizetype(i) < listedMentions; ++i)
        titles.append(documents[i]->title());
    if (const qsizetype more = qsizetype(documents.size()) - listedMentions; more > 0)
        titles.append(u"+%1 more"_s.arg(QString::number(more)));
    return u"Mentioned in: %1."_s.arg(titles.join(u", "_s));
}

} // namespace

McpToolResult getEntity(ToolContext &context, const ToolArguments &arguments)
{
    ObjectQuery query = objectQuery(arguments, u"name"_s);
    if (query.name.isEmpty() && query.id.isEmpty())
        return McpToolResult::failure(u"get_entity needs \"name\" (or \"id\")."_s);
    // A document or map that shares the entity's name is no candidate.
    query.entitiesOnly = true;
    const Result<LocatedObject> located = findObject(context, query);
    if (!located)
        return McpToolResult::failure(located.error());
    const auto *entity = core::objectCast<core::Entity>(located->object);
    if (!entity) {
        return McpToolResult::failure(
            u"'%1' is not an entity."_s.arg(core::objectTitle(*located->object)));
    }
    // A library entity's dates are read in its own project's calendar, the one they were
    // written in.
    const core::Project &owner = *located->project;

    // The lifespan and gallery lines always stand, saying "unknown" and 0 when there is nothing,
    // as the alias and tag lines do not; the lists under a heading (fields, state over time,
    // mentions) are left out with their heading when they would be empty.
    QStringList lines{u"# %1 (%2)"_s.arg(entity->name(), categoryName(owner, *entity))};
    if (located->isInLibrary())
        lines.append(u"From the mounted library '%1'."_s.arg(located->libraryName));
    if (!entity->aliases().isEmpty())
        lines.append(u"Aliases: %1"_s.arg(entity->aliases().join(u", "_s)));
    if (!entity->tags().isEmpty())
        lines.append(u"Tags: %1"_s.arg(entity->tags().join(u", "_s)));
    const auto date = [&](std::optional<qint64> instant) {
        return instant ? core::formatInstant(owner.calendar(), *instant) : u"unknown"_s;
    };
    lines.append(
        u"Lifespan: %1 -- %2"_s.arg(date(entity->birthInstant()), date(entity->deathInstant())));
    lines.append(u"Gallery: %1 image(s)"_s.arg(QString::number(entity->gallery().size())));
    if (const QStringList fields = fieldLines(context, owner, *entity); !fields.isEmpty())
        lines += QStringList{u"Fields:"_s} + fields;
    if (const QStringList timed = timedValueLines(owner, *entity); !timed.isEmpty())
        lines += QStringList{u"State over time:"_s} + timed;
    if (const QString mentions = mentionLine(context, *entity); !mentions.isEmpty())
        lines.append(mentions);
    return McpToolResult::success(lines.join(u'\n'));
}

} // namespace fb::app
