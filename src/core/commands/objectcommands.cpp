#include "core/commands/objectcommands.h"

#include "core/project.h"

using namespace Qt::StringLiterals;

namespace fb::core {

QString SetObjectTagsCommand::label() const
{
    return u"Set tags"_s;
}

QString SetObjectVisibilityCommand::label() const
{
    return u"Set visibility"_s;
}

SetAudiencesCommand::SetAudiencesCommand(Project &project, const QUuid &objectId,
                                         const QStringList &audiences)
    : m_project(project)
    , m_id(objectId)
    , m_audiences(audiences)
{}

QStringList SetAudiencesCommand::unregistered(const QStringList &registry,
                                              const QStringList &audiences)
{
    QStringList result;
    for (const QString &audience : audiences) {
        if (!registry.contains(audience, Qt::CaseInsensitive)
            && !result.contains(audience, Qt::CaseInsensitive)) {
            result.append(audience);
        }
    }
    return result;
}

void SetAudiencesCommand::redo()
{
    m_previous.reset();
    ContentObject *object = m_project.object(m_id);
    if (!object)
        return;
    m_previous = Previous{object->visibleTo(), m_project.audiences()};
    object->setVisibleTo(m_audiences);
    const QStringList added = unregistered(m_previous->registry, m_audiences);
    if (!added.isEmpty())
        m_project.setAudiences(m_previous->registry + added);
}

void SetAudiencesCommand::undo()
{
    ContentObject *object = m_project.object(m_id);
    if (!m_previous || !object)
        return;
    object->setVisibleTo(m_previous->visibleTo);
    if (m_project.audiences() != m_previous->registry)
        m_project.setAudiences(m_previous->registry);
}

QString SetAudiencesCommand::label() const
{
    return u"Edit audiences"_s;
}

QString SetAiExclusionCommand::label() const
{
    return u"Set AI exclusion"_s;
}

SetPinnedCommand::SetPinnedCommand(Project &project, const QUuid &objectId, bool pinned)
    : m_project(project)
    , m_id(objectId)
    , m_pinned(pinned)
{}

std::optional<QList<QUuid>> SetPinnedCommand::read() const
{
    return m_project.contains(m_id) ? std::optional<QList<QUuid>>(m_project.pinned())
                                    : std::nullopt;
}

QList<QUuid> SetPinnedCommand::edited(QList<QUuid> pinned) const
{
    if (!m_pinned)
        pinned.removeAll(m_id);
    else if (!pinned.contains(m_id))
        pinned.append(m_id);
    return pinned;
}

void SetPinnedCommand::write(const QList<QUuid> &pinned)
{
    if (m_project.contains(m_id))
        m_project.setPinned(pinned);
}

QString SetPinnedCommand::label() const
{
    return m_pinned ? u"Pin"_s : u"Unpin"_s;
}

} // namespace fb::core
