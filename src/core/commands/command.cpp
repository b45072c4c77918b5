#include "core/commands/command.h"

namespace fb::core {

Command::~Command() = default;

CompositeCommand::CompositeCommand(QString label)
    : m_label(std::move(label))
{}

CompositeCommand::~CompositeCommand()
{
    // Children are destroyed newest first, the reverse of how they were applied, so a command
    // that owns an object outlives the commands that were built against it.
    while (!m_children.empty())
        m_children.pop_back();
}

void CompositeCommand::redo()
{
    for (const auto &child : m_children)
        child->redo();
}

void CompositeCommand::undo()
{
    for (auto child = m_children.rbegin(); child != m_children.rend(); ++child)
        (*child)->undo();
}

void CompositeCommand::append(std::unique_ptr<Command> child)
{
    if (child)
        m_children.push_back(std::move(child));
}

} // namespace fb::core
