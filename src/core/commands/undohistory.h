#pragma once

#include <QString>

#include <cstddef>
#include <deque>
#include <memory>

namespace fb::core {

class Command;
class CompositeCommand;

// This session's undo steps, newest last. A labelled group collects every command pushed while
// it is open into one composite step; a group that stays empty leaves no step.
//
// Only undo is offered: a step that was undone is destroyed rather than kept for redo, because
// no tool redoes, and keeping it would keep removed objects and old bodies alive for nothing.
// The history holds at most `capacity` steps and forgets the oldest beyond that, which bounds
// the memory a long session spends on previous bodies; 200 steps is far more than an agent
// walks back in practice.
class UndoHistory
{
public:
    static constexpr std::size_t defaultCapacity = 200;

    explicit UndoHistory(std::size_t capacity = defaultCapacity);
    ~UndoHistory();

    UndoHistory(const UndoHistory &) = delete;
    UndoHistory &operator=(const UndoHistory &) = delete;

    // Applies the command (redo) and records it: in the open group, else as a step of its own.
    void push(std::unique_ptr<Command> command);

    // Groups nest: commands pushed inside an inner group join the outermost one.
    void beginGroup(const QString &label);
    void endGroup();
    bool isGroupOpen() const { return m_groupDepth > 0; }

    std::size_t count() const { return m_steps.size(); }
    bool canUndo() const { return !m_steps.empty() && !isGroupOpen(); }
    QString undoLabel() const;
    // Undoes and forgets the newest step; does nothing when canUndo() is false.
    void undo();

    // The saved marker: whether the project on disk matches the state after the newest step.
    void markSaved();
    bool isSaved() const;

    void clear();

private:
    void record(std::unique_ptr<Command> step);

    std::deque<std::unique_ptr<Command>> m_steps;
    std::unique_ptr<CompositeCommand> m_group;
    int m_groupDepth = 0;
    std::size_t m_capacity;
    // Steps recorded since the last save, or -1 when the saved state can no longer be reached
    // by undoing (it was undone past, or forgotten).
    long long m_stepsSinceSave = 0;
};

} // namespace fb::core
