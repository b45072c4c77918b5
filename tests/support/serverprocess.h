#pragma once

#include "support/printers.h"

#include <QByteArray>
#include <QJsonObject>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace fb::test {

// A scratch copy of a project folder (or bundle) that a test may change freely.
class ScratchProject
{
public:
    // Copies a folder below tests/data (or an absolute folder) into a fresh temporary folder.
    explicit ScratchProject(const QString &source);

    QString path() const { return m_path; }
    QString filePath(const QString &relative) const;
    QString root() const { return m_dir.path(); }

private:
    QTemporaryDir m_dir;
    QString m_path;
};

// Copies a folder tree; used by the fixtures and by tests that keep a golden copy.
bool copyFolder(const QString &from, const QString &to);
// Every file below a folder, relative path to bytes: two trees compare equal byte for byte.
QMap<QString, QByteArray> folderContents(const QString &folder);

// The real server binary, started with the given arguments and driven line by line over its
// standard streams. Each instance has its own per-user data folder.
class ServerProcess
{
public:
    explicit ServerProcess(const QStringList &arguments, const QString &dataHome = QString());
    ~ServerProcess();

    bool isStarted() const { return m_started; }

    // Writes one raw line (a line feed is added) without waiting for an answer.
    void send(const QByteArray &line);
    // Writes bytes exactly as given, without a line feed.
    void write(const QByteArray &bytes);
    // Reads the next answer line; empty when none came within the timeout.
    QByteArray readLine(int timeoutMs = 20000);
    // Sends a line and parses the answer line as a JSON object.
    QJsonObject request(const QByteArray &line);
    QJsonObject request(const QJsonObject &message);
    // A "tools/call" with a fresh numeric id; returns the whole "result" object.
    QJsonObject callTool(const QString &name, const QJsonObject &arguments = {});
    // The text of a tool call's result, and whether it was an error.
    struct ToolAnswer
    {
        QString text;
        bool isError = false;
    };
    ToolAnswer call(const QString &name, const QJsonObject &arguments = {});

    // Closes standard input and waits for the process to end; returns its exit status.
    int finish(int timeoutMs = 20000);
    QByteArray standardError();
    QString dataHome() const { return m_dataHome; }
    qint64 processId() const { return m_process.processId(); }

private:
    QProcess m_process;
    QTemporaryDir m_ownDataHome;
    QString m_dataHome;
    QByteArray m_pending;
    bool m_started = false;
    int m_nextId = 1000;
};

} // namespace fb::test
