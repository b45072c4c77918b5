#include "tools/codex/references.h"

#include "core/commands/canvascommands.h"
#include "core/commands/commentcommands.h"
#include "core/commands/documentcommands.h"
#include "core/commands/entitycommands.h"
#include "core/commands/projectcommands.h"
#include "core/commands/taskcommands.h"
#include "core/commands/worldcommands.h"
#include "core/contentobjects.h"
#include "core/ids.h"
#include "core/project.h"

#include <QHash>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

// Walks one project for one entity. Each visit counts what the holder points at and, when a
// replacement is wanted, edits a copy of the holder's aspect and keeps the command that writes
// it, so counting and re-pointing can never disagree about what a reference is.
class Walker
{
public:
    Walker(core::Project &project, const QUuid &entityId, const QUuid &replacement)
        : m_project(project)
        , m_id(entityId)
        , m_replacement(replacement)
        , m_link(core::objectLink(entityId))
    {}

    ReferenceWalk run()
    {
        for (core::ContentObject *object : m_project.objects())
            visit(*object);
        visitPlotThreads();
        visitEntityTemplates();
        visitContinuityRules();
        return std::move(m_walk);
    }

private:
    bool repoints() const { return !m_replacement.isNull(); }

    void found(const QString &kind, const QUuid &holder = QUuid())
    {
        m_walk.references.push_back({kind, holder});
    }

    void keep(std::unique_ptr<core::Command> command)
    {
        m_walk.repointing.push_back(std::move(command));
    }

    // Counts a reference held in one id slot, pointing it at the replacement in place.
    bool check(QUuid &slot, const QString &kind, const QUuid &holder)
    {
        if (slot != m_id)
            return false;
        found(kind, holder);
        slot = m_replacement;
        return true;
    }

    void visit(core::ContentObject &object)
    {
        switch (object.type()) {
        case core::ObjectType::Entity:
            visitEntity(static_cast<core::Entity &>(object));
            break;
        case core::ObjectType::Map:
            visitMap(static_cast<core::Map &>(object));
            break;
        case core::ObjectType::TimelineEvent:
            visitEvent(static_cast<core::TimelineEvent &>(object));
            break;
        case core::ObjectType::Comment:
            visitComment(static_cast<core::Comment &>(object));
            break;
        case core::ObjectType::Task:
            visitTask(static_cast<core::Task &>(object));
            break;
        case core::ObjectType::Canvas:
            visitCanvas(static_cast<core::Canvas &>(object));
            break;
        case core::ObjectType::Document:
            visitDocument(static_cast<core::Document &>(object));
            break;
        default:
            break;
        }
    }

    // The label a reference field is shown with, from the holder's category schema; the key
    // itself when the field is no longer defined.
    QString fieldLabel(const core::Entity &holder, const QString &key)
    {
        auto labels = m_labels.find(holder.categoryId());
        if (labels == m_labels.end()) {
            QHash<QString, QString> byKey;
            for (const auto &field : m_project.categories().effectiveSchema(holder.categoryId()))
                byKey.insert(field.definition.key, field.definition.label);
            labels = m_labels.insert(holder.categoryId(), byKey);
        }
        return labels->value(key, key);
    }

    void visitEntity(core::Entity &entity)
    {
        // The entity's own values are no reference "elsewhere"; a merge deals with them itself.
        if (entity.id() == m_id)
            return;
        for (auto it = entity.values().cbegin(); it != entity.values().cend(); ++it) {
            if (!isReferenceTo(it.value(), m_id))
                continue;
            found(u"reference field \"%1\""_s.arg(fieldLabel(entity, it.key())), entity.id());
            if (repoints()) {
                keep(std::make_unique<core::SetFieldValueCommand>(m_project, entity.id(), it.key(),
                                                                  core::idText(m_replacement)));
            }
        }
    }

    void visitMap(core::Map &map)
    {
        QList<core::MapRegion> regions = map.regions();
        bool regionsChanged = false;
        for (core::MapRegion &region : regions)
            regionsChanged |= check(region.linkedEntityId, u"map region"_s, map.id());
        QList<core::MapRoute> routes = map.routes();
        bool routesChanged = false;
        for (core::MapRoute &route : routes) {
            routesChanged |= check(route.fromEntityId, u"map route"_s, map.id());
            routesChanged |= check(route.toEntityId, u"map route"_s, map.id());
        }
        QList<core::MapToken> tokens = map.tokens();
        bool tokensChanged = false;
        for (core::MapToken &token : tokens)
            tokensChanged |= check(token.entityId, u"map token"_s, map.id());
        if (!repoints())
            return;
        if (regionsChanged)
            keep(std::make_unique<core::SetMapRegionsCommand>(m_project, map.id(), regions));
        if (routesChanged)
            keep(std::make_unique<core::SetMapRoutesCommand>(m_project, map.id(), routes));
        if (tokensChanged)
            keep(std::make_unique<core::SetMapTokensCommand>(m_project, map.id(), tokens));
    }

    void visitEvent(core::TimelineEvent &event)
    {
        core::TimelineEventRecord record = event.record();
        bool changed = false;
        QList<QUuid> participants;
        for (QUuid participant : record.participants) {
            changed |= check(participant, u"timeline participant"_s, event.id());
            if (!participants.contains(participant))
                participants.append(participant);
        }
        record.participants = participants;
        changed |= check(record.locationId, u"timeline location"_s, event.id());
        if (changed && repoints())
            keep(std::make_unique<core::SetTimelineEventCommand>(m_project, event.id(), record));
    }

    void visitComment(core::Comment &comment)
    {
        QUuid target = comment.targetId();
        if (check(target, u"comment"_s, comment.id()) && repoints())
            keep(std::make_unique<core::SetCommentTargetCommand>(m_project, comment.id(), target));
    }

    void visitTask(core::Task &task)
    {
        QUuid target = task.targetId();
        if (check(target, u"task"_s, task.id()) && repoints())
            keep(std::make_unique<core::SetTaskTargetCommand>(task, target));
    }

    void visitCanvas(core::Canvas &canvas)
    {
        for (core::CanvasCard card : canvas.cards()) {
            if (check(card.objectId, u"research-canvas card"_s, canvas.id()) && repoints())
                keep(std::make_unique<core::SetCanvasCardCommand>(m_project, canvas.id(), card));
        }
    }

    // A prose link is the object's canonical link written into a document body, in Markdown
    // "[text](fablery://object/<id>)" or as a rich-text href alike; each occurrence counts.
    void visitDocument(core::Document &document)
    {
        const qsizetype count = document.body().count(m_link, Qt::CaseInsensitive);
        for (qsizetype i = 0; i < count; ++i)
            found(u"prose link"_s, document.id());
        if (count > 0 && repoints()) {
            QString body = document.body();
            body.replace(m_link, core::objectLink(m_replacement), Qt::CaseInsensitive);
            keep(std::make_unique<core::SetDocumentBodyCommand>(document, body));
        }
    }

    void visitPlotThreads()
    {
        QList<core::PlotThread> threads = m_project.plotThreads();
        bool changed = false;
        for (core::PlotThread &thread : threads)
            changed |= check(thread.characterId, u"plot-thread character arc"_s, QUuid());
        if (changed && repoints())
            keep(std::make_unique<core::SetPlotThreadsCommand>(m_project, threads));
    }

    void visitEntityTemplates()
    {
        QList<core::EntityTemplate> templates = m_project.entityTemplates();
        bool changed = false;
        for (core::EntityTemplate &entityTemplate : templates) {
            for (auto it = entityTemplate.fieldValues.begin();
                 it != entityTemplate.fieldValues.end(); ++it) {
                if (!isReferenceTo(it.value(), m_id))
                    continue;
                found(u"entity-template default \"%1\""_s.arg(entityTemplate.name));
                it.value() = core::idText(m_replacement);
                changed = true;
            }
        }
        if (changed && repoints())
            keep(std::make_unique<core::SetEntityTemplatesCommand>(m_project, templates));
    }

    void visitContinuityRules()
    {
        QList<core::ContinuityRule> rules = m_project.continuityRules();
        bool changed = false;
        for (core::ContinuityRule &rule : rules)
            changed |= check(rule.entityId, u"continuity rule"_s, QUuid());
        if (changed && repoints())
            keep(std::make_unique<core::SetContinuityRulesCommand>(m_project, rules));
    }

    core::Project &m_project;
    QUuid m_id;
    QUuid m_replacement;
    QString m_link;
    QHash<QUuid, QHash<QString, QString>> m_labels;
    ReferenceWalk m_walk;
};

} // namespace

bool isReferenceTo(const QString &value, const QUuid &entityId)
{
    // Only the two textual forms of an id can name one, which spares parsing every value.
    const qsizetype length = value.trimmed().size();
    return (length == 36 || length == 38) && core::idFromText(value) == entityId;
}

ReferenceWalk walkReferences(core::Project &project, const QUuid &entityId, const QUuid &replacement)
{
    if (entityId.isNull())
        return {};
    return Walker(project, entityId, replacement).run();
}

} // namespace fb::app
