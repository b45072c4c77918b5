#pragma once

#include <QString>

#include <optional>
#include <utility>

namespace fb {

// The error half of a Result: one full sentence meant for the person reading it.
struct Error
{
    QString message;
};

inline Error makeError(QString message)
{
    return Error{std::move(message)};
}

// A value or a one-sentence error. Every fallible lookup, reader and parser returns one, so
// failures travel as values and callers return early.
template<typename T>
class [[nodiscard]] Result
{
public:
    Result(T value)
        : m_value(std::move(value))
    {}
    Result(Error error)
        : m_error(std::move(error.message))
    {}

    bool hasValue() const { return m_value.has_value(); }
    explicit operator bool() const { return hasValue(); }

    T &value() & { return *m_value; }
    const T &value() const & { return *m_value; }
    T &&value() && { return std::move(*m_value); }
    T &operator*() & { return *m_value; }
    const T &operator*() const & { return *m_value; }
    T *operator->() { return &*m_value; }
    const T *operator->() const { return &*m_value; }

    const QString &error() const { return m_error; }

private:
    std::optional<T> m_value;
    QString m_error;
};

// A Result that carries no value: success, or the error sentence.
template<>
class [[nodiscard]] Result<void>
{
public:
    Result() = default;
    Result(Error error)
        : m_failed(true)
        , m_error(std::move(error.message))
    {}

    bool hasValue() const { return !m_failed; }
    explicit operator bool() const { return !m_failed; }
    const QString &error() const { return m_error; }

private:
    bool m_failed = false;
    QString m_error;
};

} // namespace fb
