#pragma once

#include <QString>

#include <memory>
#include <vector>

namespace fb::core {

// An undoable change to the in-memory project. redo() performs it, also the first time;
// undo() puts back the state from before the last redo(). Commands know nothing of tools,
// JSON or files, and report nothing: a target that no longer exists makes them a no-op.
class Command
{
public:
    virtual ~Command();
    virtual void redo() = 0;
    virtual void undo() = 0;
    virtual QString label() const = 0;
};

// An ordered group of commands applied as one step: redone in order, undone in reverse.
class CompositeCommand final : public Command
{
public:
    explicit CompositeCommand(QString label);
    ~CompositeCommand() override;

    void redo() override;
    void undo() override;
    QString label() const override { return m_label; }

    // Takes ownership; a null child is ignored.
    void append(std::unique_ptr<Command> child);
    bool isEmpty() const { return m_children.empty(); }
    std::size_t childCount() const { return m_children.size(); }

private:
    QString m_label;
    std::vector<std::unique_ptr<Command>> m_children;
};

// The pattern of every single-aspect command: the previous value is read at every redo, not at
// construction, so the step can be undone and redone any number of times.
template<typename Value>
class ValueSwapCommand : public Command
{
public:
    void redo() final
    {
        m_previous = read();
        write(m_next);
    }
    void undo() final { write(m_previous); }

protected:
    explicit ValueSwapCommand(Value next)
        : m_next(std::move(next))
    {}

    const Value &nextValue() const { return m_next; }
    virtual Value read() const = 0;
    virtual void write(const Value &value) = 0;

private:
    Value m_next;
    Value m_previous{};
};

} // namespace fb::core
