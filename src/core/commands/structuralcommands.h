#pragma once

// The commands that change which objects the project holds and where documents sit in the
// manuscript tree. An object that is not in the project lives inside its command, so the same
// instance goes back and forth and references that later commands hold stay valid.

#include "core/commands/command.h"
#include "core/ids.h"

#include <QUuid>

#include <map>
#include <memory>

namespace fb::core {

class ContentObject;
class Project;

// Adds a new object. The command owns it until redo hands it to the project, and again after
// undo takes it back.
class AddObjectCommand final : public Command
{
public:
    // A null object makes a command that does nothing, with the null id.
    AddObjectCommand(Project &project, std::unique_ptr<ContentObject> object);
    ~AddObjectCommand() override;

    void redo() override;
    void undo() override;
    QString label() const override;

    const QUuid &objectId() const { return m_id; }

private:
    Project &m_project;
    QUuid m_id;
    std::unique_ptr<ContentObject> m_object;
};

// Removes an object, which then lives in the command until undo gives the same instance back;
// it is destroyed only with the command, if the command still holds it then.
class RemoveObjectCommand final : public Command
{
public:
    RemoveObjectCommand(Project &project, const QUuid &id);
    ~RemoveObjectCommand() override;

    void redo() override;
    void undo() override;
    QString label() const override;

    const QUuid &objectId() const { return m_id; }

private:
    Project &m_project;
    QUuid m_id;
    std::unique_ptr<ContentObject> m_object;
};

// Moves a document under a new parent (the null id for the top level) at a position among the
// new siblings, clamped to the list, and renumbers the old and the new siblings 0, 1, 2, ... in
// their order after the move. A move of a missing document, under a parent that is no document,
// or under the document itself or one of its descendants does nothing.
class MoveDocumentCommand final : public Command
{
public:
    MoveDocumentCommand(Project &project, const QUuid &document, const QUuid &newParent,
                        int position);
    ~MoveDocumentCommand() override;

    void redo() override;
    void undo() override;
    QString label() const override;

private:
    struct Placement
    {
        QUuid parentId;
        qint32 sortIndex;
    };

    Project &m_project;
    QUuid m_document;
    QUuid m_newParent;
    int m_position;
    // Every document the last redo touched, with its parent and sort index from before it.
    std::map<QUuid, Placement, IdTextLess> m_former;
};

} // namespace fb::core
