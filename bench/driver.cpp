// Starts the real server over stdio on a generated project and reports, as medians and 95th
// percentiles over repeated runs, how long the calls an agent makes take, and the server's peak
// memory. Timings are wall-clock from writing a request to reading its answer line.

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

struct Row
{
    QString what;
    std::vector<double> milliseconds;
};

double percentile(std::vector<double> values, double fraction)
{
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    const size_t index = std::min(values.size() - 1,
                                  size_t(fraction * double(values.size() - 1) + 0.5));
    return values[index];
}

class Server
{
public:
    Server(const QString &binary, const QString &project, const QString &dataHome)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"XDG_DATA_HOME"_s, dataHome);
        m_process.setProcessEnvironment(environment);
        m_process.setStandardErrorFile(QProcess::nullDevice());
        m_process.start(binary, {project});
        m_process.waitForStarted(-1);
    }

    ~Server()
    {
        m_process.closeWriteChannel();
        m_process.waitForFinished(-1);
    }

    // Sends one request and waits for its answer; returns the elapsed milliseconds.
    double request(const QJsonObject &message, QJsonObject *answer = nullptr)
    {
        const QByteArray line = QJsonDocument(message).toJson(QJsonDocument::Compact) + '\n';
        QElapsedTimer timer;
        timer.start();
        m_process.write(line);
        while (!m_pending.contains('\n')) {
            if (!m_process.waitForReadyRead(60000)) {
                std::fprintf(stderr, "The server did not answer.\n");
                std::exit(1);
            }
            m_pending += m_process.readAllStandardOutput();
        }
        const double elapsed = double(timer.nsecsElapsed()) / 1e6;
        const qsizetype end = m_pending.indexOf('\n');
        if (answer)
            *answer = QJsonDocument::fromJson(m_pending.left(end)).object();
        m_pending.remove(0, end + 1);
        return elapsed;
    }

    double call(const QString &tool, const QJsonObject &arguments, QString *text = nullptr)
    {
        QJsonObject answer;
        const double elapsed = request({{u"jsonrpc"_s, u"2.0"_s},
                                        {u"id"_s, ++m_id},
                                        {u"method"_s, u"tools/call"_s},
                                        {u"params"_s, QJsonObject{{u"name"_s, tool},
                                                                  {u"arguments"_s, arguments}}}},
                                       &answer);
        const QJsonObject result = answer.value(u"result"_s).toObject();
        const QString reply
            = result.value(u"content"_s).toArray().first().toObject().value(u"text"_s).toString();
        if (result.value(u"isError"_s).toBool() || answer.contains(u"error"_s))
            std::fprintf(stderr, "%s failed: %s\n", qPrintable(tool), qPrintable(reply.left(200)));
        if (text)
            *text = reply;
        return elapsed;
    }

    double initialize()
    {
        return request({{u"jsonrpc"_s, u"2.0"_s},
                        {u"id"_s, ++m_id},
                        {u"method"_s, u"initialize"_s},
                        {u"params"_s, QJsonObject{{u"protocolVersion"_s, u"2025-06-18"_s}}}});
    }

    QStringList toolNames()
    {
        QJsonObject answer;
        request({{u"id"_s, ++m_id}, {u"method"_s, u"tools/list"_s}}, &answer);
        QStringList names;
        for (const QJsonValue &tool :
             answer.value(u"result"_s).toObject().value(u"tools"_s).toArray())
            names.append(tool.toObject().value(u"name"_s).toString());
        return names;
    }

    // The largest resident set the process has had, from the kernel's own record.
    double peakMegabytes() const
    {
        QFile status(u"/proc/%1/status"_s.arg(m_process.processId()));
        if (!status.open(QIODevice::ReadOnly))
            return 0;
        for (const QByteArray &line : status.readAll().split('\n')) {
            if (line.startsWith("VmHWM:"))
                return line.mid(6).trimmed().split(' ').first().toDouble() / 1024.0;
        }
        return 0;
    }

private:
    QProcess m_process;
    QByteArray m_pending;
    int m_id = 0;
};

double folderMegabytes(const QString &folder)
{
    qint64 bytes = 0;
    QDirIterator it(folder, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        it.next();
        bytes += it.fileInfo().size();
    }
    return double(bytes) / 1e6;
}

bool copyTree(const QString &relativeFrom, const QString &to)
{
    const QString from = QDir(relativeFrom).absolutePath();
    QDir().mkpath(to);
    QDirIterator it(from, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        const QString target = QDir(to).filePath(QDir(from).relativeFilePath(path));
        QDir().mkpath(QFileInfo(target).path());
        if (!QFile::copy(path, target))
            return false;
    }
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 3) {
        std::fprintf(stderr,
                     "Usage: fablery-bench-driver <server binary> <generated folder> [runs]\n");
        return 2;
    }
    const QString binary = arguments[1];
    const QString generated = arguments[2];
    const int runs = arguments.size() > 3 ? arguments[3].toInt() : 20;

    QTemporaryDir scratch;
    const QString folder = scratch.filePath(u"project"_s);
    const QString bundle = scratch.filePath(u"project.fablery"_s);
    if (!copyTree(QDir(generated).filePath(u"project"_s), folder)
        || !QFile::copy(QDir(generated).filePath(u"project.fablery"_s), bundle)) {
        std::fprintf(stderr, "Run the generator first: %s has no project.\n", qPrintable(generated));
        return 1;
    }
    const QString dataHome = scratch.filePath(u"data"_s);
    std::vector<Row> rows;
    const auto measure = [&](const QString &what, int count,
                             const std::function<double(int)> &once) {
        Row row{what, {}};
        for (int i = 0; i < count; ++i)
            row.milliseconds.push_back(once(i));
        rows.push_back(row);
    };

    measure(u"start to \"initialize\" answer (folder)"_s, runs, [&](int) {
        QElapsedTimer timer;
        timer.start();
        Server server(binary, folder, dataHome);
        server.initialize();
        return double(timer.nsecsElapsed()) / 1e6;
    });
    {
        // The first open of a bundle extracts it; later opens find the working copy clean.
        Server first(binary, bundle, dataHome);
        first.initialize();
    }
    measure(u"start to \"initialize\" answer (bundle)"_s, runs, [&](int) {
        QElapsedTimer timer;
        timer.start();
        Server server(binary, bundle, dataHome);
        server.initialize();
        return double(timer.nsecsElapsed()) / 1e6;
    });

    double folderPeak = 0;
    {
        Server server(binary, folder, dataHome);
        server.initialize();
        const QStringList tools = server.toolNames();
        measure(u"\"tools/list\""_s, runs, [&](int) {
            return server.request({{u"id"_s, 1}, {u"method"_s, u"tools/list"_s}});
        });
        measure(u"\"get_document\""_s, runs * 3, [&](int i) {
            return server.call(u"get_document"_s,
                               {{u"title"_s, u"Scene %1.%2"_s.arg(i % 10 + 1).arg(i % 9 + 1)}});
        });
        measure(u"\"get_manuscript_tree\""_s, runs,
                [&](int) { return server.call(u"get_manuscript_tree"_s, {}); });
        if (tools.contains(u"search"_s)) {
            measure(u"\"search\""_s, runs, [&](int i) {
                return server.call(u"search"_s, {{u"query"_s, u"Alias %1"_s.arg(200 + i)}});
            });
        }
        if (tools.contains(u"get_entity"_s)) {
            measure(u"\"get_entity\" (with mentions)"_s, runs, [&](int i) {
                return server.call(u"get_entity"_s, {{u"name"_s, u"Entity %1"_s.arg(100 + i)}});
            });
        }
        if (tools.contains(u"get_timeline"_s)) {
            measure(u"\"get_timeline\" (2,000 events)"_s, runs, [&](int) {
                return server.call(u"get_timeline"_s, {{u"timeline"_s, u"Main timeline"_s}});
            });
            measure(u"\"create_timeline_event\""_s, runs, [&](int i) {
                return server.call(u"create_timeline_event"_s,
                                   {{u"title"_s, u"Bench event %1"_s.arg(i)},
                                    {u"when"_s, u"%1"_s.arg(1200 + i)},
                                    {u"participants"_s, QJsonArray{u"Entity %1"_s.arg(i + 1)}},
                                    {u"timeline"_s, u"Main timeline"_s}});
            });
        }
        if (tools.contains(u"get_spreadsheet"_s)) {
            measure(u"\"get_spreadsheet\" (200 rows of formulas)"_s, runs, [&](int) {
                return server.call(u"get_spreadsheet"_s, {{u"spreadsheet"_s, u"Ledger"_s}});
            });
            measure(u"\"update_spreadsheet\""_s, runs, [&](int i) {
                return server.call(u"update_spreadsheet"_s,
                                   {{u"spreadsheet"_s, u"Ledger"_s},
                                    {u"cells"_s, QJsonObject{{u"B%1"_s.arg(i + 1), u"%1"_s.arg(i)},
                                                             {u"K1"_s, u"=J201/2"_s}}}});
            });
        }
        if (tools.contains(u"list_tasks"_s)) {
            measure(u"\"list_tasks\" (500 tasks)"_s, runs,
                    [&](int) { return server.call(u"list_tasks"_s, {}); });
        }
        measure(u"\"append_to_document\" (folder)"_s, runs * 3, [&](int i) {
            return server.call(u"append_to_document"_s,
                               {{u"title"_s, u"Scene %1.%2"_s.arg(i % 10 + 1).arg(i % 9 + 1)},
                                {u"text"_s, u"One more line of prose for the benchmark."_s}});
        });
        if (tools.contains(u"update_entity"_s)) {
            measure(u"\"update_entity\" (folder)"_s, runs * 3, [&](int i) {
                return server.call(u"update_entity"_s,
                                   {{u"entity"_s, u"Entity %1"_s.arg(i + 1)},
                                    {u"tags"_s, QJsonArray{u"bench%1"_s.arg(i)}}});
            });
        }
        folderPeak = server.peakMegabytes();
    }
    // Find and replace runs in a session of its own: every replacement across the manuscript
    // keeps the former bodies for undo, which is not what an ordinary session's memory is.
    double replacePeak = 0;
    {
        Server server(binary, folder, dataHome);
        server.initialize();
        measure(u"\"find_replace\" listing"_s, runs, [&](int) {
            return server.call(u"find_replace"_s, {{u"find"_s, u"harbor"_s}, {u"dry_run"_s, true}});
        });
        // Every scene holds the word, so each replacement rewrites the whole manuscript.
        measure(u"\"find_replace\" across every document"_s, 4, [&](int i) {
            const bool forth = i % 2 == 0;
            return server.call(u"find_replace"_s,
                               {{u"find"_s, forth ? u"harbor"_s : u"harbour"_s},
                                {u"replace"_s, forth ? u"harbour"_s : u"harbor"_s},
                                {u"whole_word"_s, true}});
        });
        replacePeak = server.peakMegabytes();
    }
    double bundlePeak = 0;
    {
        Server server(binary, bundle, dataHome);
        server.initialize();
        measure(u"\"append_to_document\" (bundle)"_s, runs, [&](int i) {
            return server.call(u"append_to_document"_s,
                               {{u"title"_s, u"Scene %1.%2"_s.arg(i % 10 + 1).arg(i % 9 + 1)},
                                {u"text"_s, u"One more line of prose for the benchmark."_s}});
        });
        if (server.toolNames().contains(u"update_entity"_s)) {
            measure(u"\"update_entity\" (bundle)"_s, runs, [&](int i) {
                return server.call(u"update_entity"_s,
                                   {{u"entity"_s, u"Entity %1"_s.arg(i + 1)},
                                    {u"tags"_s, QJsonArray{u"bundle%1"_s.arg(i)}}});
            });
        }
        bundlePeak = server.peakMegabytes();
    }

    std::printf("Project: %.1f MB on disk in %s\n\n", folderMegabytes(folder),
                qPrintable(generated));
    std::printf("| measurement | runs | median ms | p95 ms |\n|---|---:|---:|---:|\n");
    for (const Row &row : rows) {
        std::printf("| %s | %zu | %.2f | %.2f |\n", qPrintable(row.what), row.milliseconds.size(),
                    percentile(row.milliseconds, 0.5), percentile(row.milliseconds, 0.95));
    }
    std::printf("| peak memory, folder session | | %.1f MB | |\n", folderPeak);
    std::printf("| peak memory, bundle session | | %.1f MB | |\n", bundlePeak);
    std::printf("| peak memory, find and replace session | | %.1f MB | |\n", replacePeak);
    return 0;
}
