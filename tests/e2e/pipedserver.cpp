#include "pipedserver.h"

#include "storage/folderarchive.h"
#include "storage/projectfolder.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace fb::test {

PipedServer::PipedServer(const QString &project, const QString &dataHome)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"XDG_DATA_HOME"_s, dataHome);
    m_process.setProcessEnvironment(environment);
    m_process.start(QStringLiteral(FB_SERVER_BINARY), {project});
    m_started = m_process.waitForStarted(20000);
}

PipedServer::~PipedServer()
{
    if (m_process.state() != QProcess::NotRunning)
        kill();
}

void PipedServer::sendCall(int id, const QString &tool, const QJsonObject &arguments)
{
    const QJsonObject request{{u"jsonrpc"_s, u"2.0"_s},
                              {u"id"_s, id},
                              {u"method"_s, u"tools/call"_s},
                              {u"params"_s,
                               QJsonObject{{u"name"_s, tool}, {u"arguments"_s, arguments}}}};
    m_process.write(QJsonDocument(request).toJson(QJsonDocument::Compact) + '\n');
}

PipedServer::Answer PipedServer::call(const QString &tool, const QJsonObject &arguments)
{
    const int id = m_nextSyncId++;
    sendCall(id, tool, arguments);
    QDeadlineTimer deadline(60000);
    while (!m_answers.contains(id) && !deadline.hasExpired()
           && m_process.state() == QProcess::Running) {
        m_process.waitForReadyRead(100);
        readAvailable();
    }
    return m_answers.value(id);
}

void PipedServer::readAvailable()
{
    m_pending += m_process.readAllStandardOutput();
    qsizetype end = 0;
    while ((end = m_pending.indexOf('\n')) >= 0) {
        const QJsonObject line = QJsonDocument::fromJson(m_pending.left(end)).object();
        m_pending.remove(0, end + 1);
        const QJsonObject result = line.value(u"result"_s).toObject();
        Answer answer;
        answer.text
            = result.value(u"content"_s).toArray().at(0).toObject().value(u"text"_s).toString();
        answer.isError = !line.contains(u"result"_s) || result.value(u"isError"_s).toBool();
        m_answers.insert(line.value(u"id"_s).toInt(), answer);
    }
}

void PipedServer::kill()
{
    m_process.kill();
    m_process.waitForFinished(20000);
    readAvailable();
}

int PipedServer::finish()
{
    m_process.closeWriteChannel();
    if (!m_process.waitForFinished(60000))
        kill();
    readAvailable();
    return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

QHash<int, PipedServer::Answer> PipedServer::answers()
{
    readAvailable();
    return m_answers;
}

QByteArray PipedServer::standardError()
{
    return m_process.readAllStandardError();
}

Result<std::unique_ptr<core::Project>> readProjectOnDisk(const QString &project)
{
    if (!project.endsWith(u".fablery"_s))
        return app::readProjectFolder(project);
    QFile bundle(project);
    if (!bundle.open(QIODevice::ReadOnly))
        return makeError(u"The bundle cannot be read."_s);
    QTemporaryDir scratch;
    const QString folder = scratch.filePath(u"unpacked"_s);
    if (const Result<void> unpacked = app::extractArchive(bundle.readAll(), folder); !unpacked)
        return makeError(unpacked.error());
    return app::readProjectFolder(folder);
}

} // namespace fb::test
