#include "core/commands/structuralcommands.h"

#include "core/document.h"
#include "core/project.h"

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace fb::core {

AddObjectCommand::AddObjectCommand(Project &project, std::unique_ptr<ContentObject> object)
    : m_project(project)
    , m_id(object ? object->id() : QUuid())
    , m_object(std::move(object))
{}

AddObjectCommand::~AddObjectCommand() = default;

void AddObjectCommand::redo()
{
    // The project would destroy an object whose id it already holds; keeping it here instead
    // leaves that other object alone and this one intact.
    if (m_object && !m_project.contains(m_id))
        m_project.addObject(std::move(m_object));
}

void AddObjectCommand::undo()
{
    // Only an object this command handed over is taken back.
    if (!m_object && !m_id.isNull())
        m_object = m_project.takeObject(m_id);
}

QString AddObjectCommand::label() const
{
    return u"Add object"_s;
}

RemoveObjectCommand::RemoveObjectCommand(Project &project, const QUuid &id)
    : m_project(project)
    , m_id(id)
{}

RemoveObjectCommand::~RemoveObjectCommand() = default;

void RemoveObjectCommand::redo()
{
    if (!m_object)
        m_object = m_project.takeObject(m_id);
}

void RemoveObjectCommand::undo()
{
    if (m_object && !m_project.contains(m_id))
        m_project.addObject(std::move(m_object));
}

QString RemoveObjectCommand::label() const
{
    return u"Remove object"_s;
}

MoveDocumentCommand::MoveDocumentCommand(Project &project, const QUuid &document,
                                         const QUuid &newParent, int position)
    : m_project(project)
    , m_document(document)
    , m_newParent(newParent)
    , m_position(position)
{}

MoveDocumentCommand::~MoveDocumentCommand() = default;

void MoveDocumentCommand::redo()
{
    m_former.clear();
    Document *document = m_project.objectAs<Document>(m_document);
    if (!document)
        return;
    if (!m_newParent.isNull()
        && (!m_project.objectAs<Document>(m_newParent)
            || m_project.isInDocumentSubtree(m_newParent, m_document))) {
        return;
    }

    const QUuid oldParent = document->parentId();
    std::vector<Document *> oldSiblings = m_project.childrenOf(oldParent);
    std::erase(oldSiblings, document);
    const bool sameParent = oldParent == m_newParent;
    std::vector<Document *> newSiblings = sameParent ? oldSiblings
                                                     : m_project.childrenOf(m_newParent);
    const auto position = std::clamp<qsizetype>(m_position, 0, qsizetype(newSiblings.size()));
    newSiblings.insert(newSiblings.begin() + position, document);

    const auto record = [this](const Document *touched) {
        m_former.try_emplace(touched->id(), Placement{touched->parentId(), touched->sortIndex()});
    };
    std::for_each(newSiblings.begin(), newSiblings.end(), record);
    if (!sameParent)
        std::for_each(oldSiblings.begin(), oldSiblings.end(), record);

    // Every setter stamps its document as changed; documents that keep their place are left
    // alone, so the next save does not rewrite their files.
    const auto renumber = [](const std::vector<Document *> &siblings) {
        for (qint32 index = 0; index < qint32(siblings.size()); ++index) {
            if (siblings[index]->sortIndex() != index)
                siblings[index]->setSortIndex(index);
        }
    };
    if (!sameParent)
        document->setParentId(m_newParent);
    renumber(newSiblings);
    if (!sameParent)
        renumber(oldSiblings);
}

void MoveDocumentCommand::undo()
{
    for (const auto &[id, placement] : m_former) {
        Document *document = m_project.objectAs<Document>(id);
        if (!document)
            continue;
        if (document->parentId() != placement.parentId)
            document->setParentId(placement.parentId);
        if (document->sortIndex() != placement.sortIndex)
            document->setSortIndex(placement.sortIndex);
    }
}

QString MoveDocumentCommand::label() const
{
    return u"Move document"_s;
}

} // namespace fb::core
