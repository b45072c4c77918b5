#pragma once

#include <QString>
#include <QStringList>

namespace fb::app {

// The success texts of this run's saved changes, oldest first. It lives as long as the process,
// is never written to disk and survives reloads of the project.
class McpChangeLog
{
public:
    void append(const QString &entry) { m_entries.append(entry); }
    bool isEmpty() const { return m_entries.isEmpty(); }
    const QStringList &entries() const { return m_entries; }

private:
    QStringList m_entries;
};

} // namespace fb::app
