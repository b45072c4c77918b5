#pragma once

// The shapes shared by the single-aspect commands, so that each concrete command is a few lines
// that name its target, its aspect and its label.

#include "core/commands/command.h"
#include "core/project.h"

#include <QUuid>

#include <functional>
#include <optional>
#include <type_traits>
#include <utility>

namespace fb::core {

// The target of an id-based command, checked for its type; null when the project holds no such
// object (any more). ContentObject itself accepts every type.
template<typename Target>
Target *lookupTarget(Project &project, const QUuid &id)
{
    if constexpr (std::is_same_v<Target, ContentObject>)
        return project.object(id);
    else
        return project.objectAs<Target>(id);
}

// A value swap on an object the command holds directly, through its getter and setter: the
// documents and tasks, which outlive every command that can reach them, and the project.
template<typename Target, typename Value, auto Getter, auto Setter>
class MemberSwapCommand : public ValueSwapCommand<Value>
{
public:
    MemberSwapCommand(Target &target, Value next)
        : ValueSwapCommand<Value>(std::move(next))
        , m_target(target)
    {}

private:
    Value read() const final { return std::invoke(Getter, m_target); }
    void write(const Value &value) final { std::invoke(Setter, m_target, value); }

    Target &m_target;
};

// A value swap on an object named by id and looked up, with its type, at every redo and undo.
// When the lookup fails the previous value stays empty, so neither that redo nor the undo after
// it writes anything.
template<typename Target, typename Value>
class LookupSwapCommand : public ValueSwapCommand<std::optional<Value>>
{
public:
    LookupSwapCommand(Project &project, const QUuid &id, Value next)
        : ValueSwapCommand<std::optional<Value>>(std::move(next))
        , m_project(project)
        , m_id(id)
    {}

    const QUuid &targetId() const { return m_id; }

protected:
    virtual Value get(const Target &target) const = 0;
    virtual void set(Target &target, const Value &value) = 0;

private:
    std::optional<Value> read() const final
    {
        const Target *target = lookupTarget<Target>(m_project, m_id);
        return target ? std::optional<Value>(get(*target)) : std::nullopt;
    }

    void write(const std::optional<Value> &value) final
    {
        if (!value)
            return;
        if (Target *target = lookupTarget<Target>(m_project, m_id))
            set(*target, *value);
    }

    Project &m_project;
    QUuid m_id;
};

// A looked-up value swap through the target's getter and setter.
template<typename Target, typename Value, auto Getter, auto Setter>
class LookupMemberSwapCommand : public LookupSwapCommand<Target, Value>
{
public:
    using LookupSwapCommand<Target, Value>::LookupSwapCommand;

private:
    Value get(const Target &target) const final { return std::invoke(Getter, target); }
    void set(Target &target, const Value &value) final { std::invoke(Setter, target, value); }
};

// The edit pattern, for steps whose new value depends on the current one (appending a
// connection, dropping a field, pinning one id): redo reads the whole aspect, keeps it and
// writes an edited copy; undo writes the kept value back. So the step still replaces the whole
// aspect, and undo restores it exactly, order included. read() gives nothing when the target is
// gone, which makes that redo and the undo after it do nothing.
template<typename Value>
class EditCommand : public Command
{
public:
    void redo() final
    {
        m_previous = read();
        if (m_previous)
            write(edited(*m_previous));
    }

    void undo() final
    {
        if (m_previous)
            write(*m_previous);
    }

protected:
    virtual std::optional<Value> read() const = 0;
    virtual Value edited(Value value) const = 0;
    virtual void write(const Value &value) = 0;

private:
    std::optional<Value> m_previous;
};

// The edit pattern on an object named by id and looked up, with its type, at every redo and
// undo.
template<typename Target, typename Value>
class LookupEditCommand : public EditCommand<Value>
{
public:
    LookupEditCommand(Project &project, const QUuid &id)
        : m_project(project)
        , m_id(id)
    {}

    const QUuid &targetId() const { return m_id; }

protected:
    virtual Value get(const Target &target) const = 0;
    virtual void set(Target &target, const Value &value) = 0;

private:
    std::optional<Value> read() const final
    {
        const Target *target = lookupTarget<Target>(m_project, m_id);
        return target ? std::optional<Value>(get(*target)) : std::nullopt;
    }

    void write(const Value &value) final
    {
        if (Target *target = lookupTarget<Target>(m_project, m_id))
            set(*target, value);
    }

    Project &m_project;
    QUuid m_id;
};

} // namespace fb::core
