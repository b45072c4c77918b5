#pragma once

// The commands that change an aspect every content object has (tags, audiences, AI exclusion)
// and the project's pinned list. They hold the project and the object's id; a step whose object
// is gone does nothing.

#include "core/commands/valuecommands.h"

#include <QStringList>

namespace fb::core {

// The whole tag set, kept sorted and free of duplicates.
class SetObjectTagsCommand final
    : public LookupMemberSwapCommand<ContentObject, QStringList, &ContentObject::tags,
                                     &ContentObject::setTags>
{
public:
    using LookupMemberSwapCommand::LookupMemberSwapCommand;
    QString label() const override;
};

// The audiences the object is visible to, alone; an empty list makes it visible to everyone.
class SetObjectVisibilityCommand final
    : public LookupMemberSwapCommand<ContentObject, QStringList, &ContentObject::visibleTo,
                                     &ContentObject::setVisibleTo>
{
public:
    using LookupMemberSwapCommand::LookupMemberSwapCommand;
    QString label() const override;
};

// The audiences an object is visible to, as the agent sets them: the object's list, and the
// project's audience registry extended in the same step by the names it does not know yet, so
// that every audience an object names is one the project defines. Undo restores both.
class SetAudiencesCommand final : public Command
{
public:
    SetAudiencesCommand(Project &project, const QUuid &objectId, const QStringList &audiences);

    void redo() override;
    void undo() override;
    QString label() const override;

    // The names of audiences that the registry lacks, compared without regard to letter case,
    // each once and in the given order: what the command adds to the registry.
    static QStringList unregistered(const QStringList &registry, const QStringList &audiences);

private:
    struct Previous
    {
        QStringList visibleTo;
        QStringList registry;
    };

    Project &m_project;
    QUuid m_id;
    QStringList m_audiences;
    std::optional<Previous> m_previous;
};

class SetAiExclusionCommand final
    : public LookupMemberSwapCommand<ContentObject, bool, &ContentObject::isAiExcluded,
                                     &ContentObject::setAiExcluded>
{
public:
    using LookupMemberSwapCommand::LookupMemberSwapCommand;
    QString label() const override;
};

// Pins the object (appended to the project's pinned list) or unpins it (every entry of its id
// dropped); undo restores the whole list, so an unpinned object returns to its place. Labelled
// "Pin" or "Unpin" after the state it sets.
class SetPinnedCommand final : public EditCommand<QList<QUuid>>
{
public:
    SetPinnedCommand(Project &project, const QUuid &objectId, bool pinned);
    QString label() const override;

private:
    std::optional<QList<QUuid>> read() const override;
    QList<QUuid> edited(QList<QUuid> pinned) const override;
    void write(const QList<QUuid> &pinned) override;

    Project &m_project;
    QUuid m_id;
    bool m_pinned;
};

} // namespace fb::core
