#pragma once

#include "core/project.h"
#include "core/result.h"

#include <QJsonObject>
#include <QList>
#include <QProcess>
#include <QString>

#include <memory>

namespace fb::test {

// The real server binary driven without waiting for each answer: requests are written ahead,
// the process may be killed at any moment, and the answers it managed to send are read
// afterwards. What the data-safety tests need to crash a server in the middle of its work.
class PipedServer
{
public:
    PipedServer(const QString &project, const QString &dataHome);
    ~PipedServer();

    bool isStarted() const { return m_started; }

    // A "tools/call" written ahead with the given id; no answer is awaited.
    void sendCall(int id, const QString &tool, const QJsonObject &arguments);
    // A call that waits for its answer: the text, and whether it was an error. Empty text when
    // no answer came.
    struct Answer
    {
        QString text;
        bool isError = true;
    };
    Answer call(const QString &tool, const QJsonObject &arguments = {});

    // Ends the process at once, as a crash or a kill -9 would.
    void kill();
    // Closes standard input and waits for the process to end.
    int finish();
    // Every answer line read so far, by request id (the tool result of each).
    QHash<int, Answer> answers();
    QByteArray standardError();

private:
    void readAvailable();

    QProcess m_process;
    QByteArray m_pending;
    QHash<int, Answer> m_answers;
    bool m_started = false;
    int m_nextSyncId = 1'000'000;
};

// The project a folder or bundle holds, read with the server's own reader (a bundle is unpacked
// into a scratch folder first); the error when it cannot be read.
Result<std::unique_ptr<core::Project>> readProjectOnDisk(const QString &project);

} // namespace fb::test
