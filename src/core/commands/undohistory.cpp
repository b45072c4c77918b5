#include "core/commands/undohistory.h"

#include "core/commands/command.h"

namespace fb::core {

UndoHistory::UndoHistory(std::size_t capacity)
    : m_capacity(capacity < 1 ? 1 : capacity)
{}

UndoHistory::~UndoHistory()
{
    clear();
}

void UndoHistory::push(std::unique_ptr<Command> command)
{
    if (!command)
        return;
    command->redo();
    if (m_group)
        m_group->append(std::move(command));
    else
        record(std::move(command));
}

void UndoHistory::beginGroup(const QString &label)
{
    if (m_groupDepth++ == 0)
        m_group = std::make_unique<CompositeCommand>(label);
}

void UndoHistory::endGroup()
{
    if (m_groupDepth == 0 || --m_groupDepth > 0)
        return;
    std::unique_ptr<CompositeCommand> group = std::move(m_group);
    if (!group->isEmpty())
        record(std::move(group));
}

void UndoHistory::record(std::unique_ptr<Command> step)
{
    m_steps.push_back(std::move(step));
    if (m_stepsSinceSave >= 0)
        ++m_stepsSinceSave;
    while (m_steps.size() > m_capacity)
        m_steps.pop_front();
}

QString UndoHistory::undoLabel() const
{
    return m_steps.empty() ? QString() : m_steps.back()->label();
}

void UndoHistory::undo()
{
    if (!canUndo())
        return;
    m_steps.back()->undo();
    m_steps.pop_back();
    // Undoing a step that was on disk moves away from the saved state for good, since the
    // step is forgotten and cannot be redone.
    m_stepsSinceSave = m_stepsSinceSave > 0 ? m_stepsSinceSave - 1 : -1;
}

void UndoHistory::markSaved()
{
    m_stepsSinceSave = 0;
}

bool UndoHistory::isSaved() const
{
    return m_stepsSinceSave == 0;
}

void UndoHistory::clear()
{
    // Newest first, so that objects owned by later steps go before the steps they came from.
    m_group.reset();
    m_groupDepth = 0;
    while (!m_steps.empty())
        m_steps.pop_back();
    m_stepsSinceSave = 0;
}

} // namespace fb::core
