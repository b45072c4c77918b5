#include "support/serverprocess.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

using fb::test::ScratchProject;
using fb::test::ServerProcess;

namespace {

const QByteArray usageText = "Usage: fablery-mcp <project path>\n"
                             "  <project path>  an Fablery project folder or .fablery file\n";

// A line that must produce no output is followed by a ping; the next answer must be the ping's.
constexpr char syncPing[] = R"({"jsonrpc":"2.0","id":"sync","method":"ping"})";
const QByteArray parseErrorPrefix = R"({"error":{"code":-32700,"message":")";
constexpr char syncAnswer[] = R"({"id":"sync","jsonrpc":"2.0","result":{}})";

// The longest line the server reads, the line feed not counted, and its answer to a longer one.
constexpr qsizetype lineCap = 10 * 1024 * 1024;
const QByteArray tooLongAnswer
    = R"({"error":{"code":-32700,"message":"The message is longer than 10485760 bytes, the most )"
      R"(this server reads in one line."},"id":null,"jsonrpc":"2.0"})";

// A ping whose padding in its params brings the whole line to exactly `length` bytes.
QByteArray paddedPing(int id, qsizetype length)
{
    const QByteArray head = R"({"id":)" + QByteArray::number(id)
                            + R"(,"method":"ping","params":{"pad":")";
    const QByteArray tail = R"("}})";
    return head + QByteArray(length - head.size() - tail.size(), 'x') + tail;
}

QByteArray pingAnswer(int id)
{
    return R"({"id":)" + QByteArray::number(id) + R"(,"jsonrpc":"2.0","result":{}})";
}

// The most memory the process has held so far, from the kernel's own account; -1 if unknown.
qint64 peakMemoryBytes(qint64 processId)
{
    QFile status(u"/proc/%1/status"_s.arg(processId));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').first().toLongLong() * 1024;
    }
    return -1;
}

class ProtocolTest : public ::testing::Test
{
protected:
    ScratchProject m_project{u"projects/minimal"_s};
    ServerProcess m_server{{m_project.path()}};
};

TEST(ServerCommandLine, RefusesAWrongArgumentCountWithTheUsageText)
{
    const QList<QStringList> argumentLists{{}, {u"a"_s, u"b"_s}};
    for (const QStringList &arguments : argumentLists) {
        SCOPED_TRACE(arguments.join(u' ').toStdString());
        ServerProcess server(arguments);
        ASSERT_TRUE(server.isStarted());
        EXPECT_EQ(server.finish(), 2);
        EXPECT_EQ(server.standardError(), usageText);
        EXPECT_TRUE(server.readLine(100).isEmpty());
    }
}

TEST(ServerCommandLine, AnswersHelpAndVersionOnStandardOutput)
{
    const struct
    {
        QString argument;
        QByteArray output;
    } cases[] = {
        {u"--help"_s, usageText},
        {u"-h"_s, usageText},
        {u"--version"_s, "fablery-mcp 0.1.2\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.argument.toStdString());
        ServerProcess server({c.argument});
        EXPECT_EQ(server.finish(), 0);
        QByteArray output;
        for (QByteArray line = server.readLine(100); !line.isEmpty(); line = server.readLine(100))
            output += line + '\n';
        EXPECT_EQ(output, c.output);
        EXPECT_TRUE(server.standardError().isEmpty());
    }
}

TEST(ServerCommandLine, ReportsAProjectThatCannotBeOpenedWithStatusOne)
{
    QTemporaryDir empty;
    const QString missing = empty.filePath(u"missing"_s);
    const QString file = empty.filePath(u"notes.txt"_s);
    QFile(file).open(QIODevice::WriteOnly);
    const struct
    {
        QString path;
        QString message;
    } cases[] = {
        {missing, u"The project folder does not exist: %1"_s.arg(missing)},
        {empty.path(),
         u"The folder is not an Fablery project (no project.json): %1"_s.arg(empty.path())},
        {file, u"The project path is a file, not a project folder: %1"_s.arg(file)},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.path.toStdString());
        ServerProcess server({c.path});
        EXPECT_EQ(server.finish(), 1);
        EXPECT_EQ(server.standardError(),
                  u"Could not open the project: %1\n"_s.arg(c.message).toUtf8());
        EXPECT_TRUE(server.readLine(100).isEmpty());
    }
}

TEST_F(ProtocolTest, WritesTheBannerAndExitsCleanlyAtEndOfInput)
{
    EXPECT_EQ(m_server.finish(), 0);
    EXPECT_EQ(m_server.standardError(),
              u"fablery-mcp serving %1\n"_s.arg(m_project.path()).toUtf8());
}

// However the folder is named (with a trailing separator, or by its project file), it is the
// same folder, and its backups carry its name.
TEST(ServerCommandLine, OpensAProjectFolderHoweverItIsNamed)
{
    ScratchProject project(u"projects/minimal"_s);
    for (const QString &path : {project.path() + u'/', project.filePath(u"project.json"_s)}) {
        SCOPED_TRACE(path.toStdString());
        ServerProcess server({path});
        const auto backup = server.call(u"backup_project"_s);
        ASSERT_FALSE(backup.isError) << backup.text.toStdString();
        EXPECT_TRUE(backup.text.contains(u"/backups/minimal/minimal-"_s))
            << backup.text.toStdString();
        EXPECT_EQ(server.finish(), 0);
        EXPECT_EQ(server.standardError(),
                  u"fablery-mcp serving %1\n"_s.arg(project.path()).toUtf8());
    }
}

TEST_F(ProtocolTest, AnswersEachLineExactly)
{
    const struct
    {
        const char *name;
        QByteArray line;
        QByteArray answer; // empty: the line must produce no output at all
    } cases[] = {
        {"blank line", "", ""},
        {"white space only", "  \t \r", ""},
        {"Unicode white space only", " \xc2\xa0\xe2\x80\xa8\xe3\x80\x80", ""},
        {"malformed UTF-8 reads as replacement characters", "{\"id\":\"a\xff\",\"method\":\"ping\"}",
         "{\"id\":\"a\xef\xbf\xbd\",\"jsonrpc\":\"2.0\",\"result\":{}}"},
        {"notification", R"({"jsonrpc":"2.0","method":"notifications/initialized"})", ""},
        {"unknown method as notification", R"({"method":"no/such"})", ""},
        {"ping without id", R"({"method":"ping"})", ""},
        {"ping with string id", R"({"id":"a","method":"ping"})",
         R"({"id":"a","jsonrpc":"2.0","result":{}})"},
        {"ping with null id", R"({"id":null,"method":"ping"})",
         R"({"id":null,"jsonrpc":"2.0","result":{}})"},
        {"id zero", R"({"jsonrpc":"2.0","id":0,"method":"ping"})",
         R"({"id":0,"jsonrpc":"2.0","result":{}})"},
        {"fractional id", R"({"id":2.5,"method":"ping"})",
         R"({"id":2.5,"jsonrpc":"2.0","result":{}})"},
        {"json array", "[1,2]",
         R"({"error":{"code":-32700,"message":"A JSON-RPC message must be a JSON object."},"id":null,"jsonrpc":"2.0"})"},
        {"empty method with id", R"({"jsonrpc":"2.0","id":7,"method":""})",
         R"({"error":{"code":-32700,"message":"A JSON-RPC request must carry a string \"method\"."},"id":null,"jsonrpc":"2.0"})"},
        {"method that is not a string", R"({"id":7,"method":3})",
         R"({"error":{"code":-32700,"message":"A JSON-RPC request must carry a string \"method\"."},"id":null,"jsonrpc":"2.0"})"},
        // The wording of JSON syntax errors is the JSON parser's own; only the envelope is ours.
        {"broken notification", R"({"method":})", parseErrorPrefix},
        {"text after the object", R"({"id":1,"method":"ping"} {})", parseErrorPrefix},
        {"unknown method", R"({"id":9,"method":"resources/list"})",
         R"({"error":{"code":-32601,"message":"Unknown method: resources/list"},"id":9,"jsonrpc":"2.0"})"},
        {"method names are case-sensitive", R"({"id":9,"method":"Ping"})",
         R"({"error":{"code":-32601,"message":"Unknown method: Ping"},"id":9,"jsonrpc":"2.0"})"},
        {"unknown tool", R"({"id":"t","method":"tools/call","params":{"name":"no_such_tool"}})",
         R"({"error":{"code":-32602,"message":"Unknown tool: no_such_tool"},"id":"t","jsonrpc":"2.0"})"},
        {"tool call without a name", R"({"id":4,"method":"tools/call"})",
         R"({"error":{"code":-32602,"message":"Unknown tool: "},"id":4,"jsonrpc":"2.0"})"},
        {"carriage return before the line end", "{\"id\":5,\"method\":\"ping\"}\r",
         R"({"id":5,"jsonrpc":"2.0","result":{}})"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        m_server.send(c.line);
        const QByteArray answer = c.answer.isEmpty() ? QByteArray() : m_server.readLine();
        if (c.answer == parseErrorPrefix) {
            EXPECT_TRUE(answer.startsWith(parseErrorPrefix)) << answer.toStdString();
            EXPECT_TRUE(answer.endsWith(R"("},"id":null,"jsonrpc":"2.0"})"))
                << answer.toStdString();
        } else {
            EXPECT_EQ(answer, c.answer);
        }
        m_server.send(syncPing);
        EXPECT_EQ(m_server.readLine(), syncAnswer);
    }
    EXPECT_EQ(m_server.finish(), 0);
}

TEST_F(ProtocolTest, NegotiatesTheProtocolVersion)
{
    const struct
    {
        QJsonValue requested;
        QString answered;
    } cases[] = {
        {u"2024-11-05"_s, u"2024-11-05"_s}, {u"2025-03-26"_s, u"2025-03-26"_s},
        {u"2025-06-18"_s, u"2025-06-18"_s}, {u"2099-01-01"_s, u"2025-06-18"_s},
        {u"2023-01-01"_s, u"2025-06-18"_s}, {u"not a date"_s, u"2025-06-18"_s},
        {20241105, u"2025-06-18"_s},        {QJsonValue(QJsonValue::Undefined), u"2025-06-18"_s},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(QJsonDocument(QJsonArray{c.requested}).toJson().toStdString());
        QJsonObject params;
        if (!c.requested.isUndefined())
            params.insert(u"protocolVersion"_s, c.requested);
        const QJsonObject answer = m_server.request(
            QJsonObject{{u"id"_s, 1}, {u"method"_s, u"initialize"_s}, {u"params"_s, params}});
        const QJsonObject result = answer.value(u"result"_s).toObject();
        EXPECT_EQ(result.value(u"protocolVersion"_s).toString(), c.answered);
        EXPECT_EQ(result.value(u"capabilities"_s).toObject(),
                  (QJsonObject{{u"tools"_s, QJsonObject()}}));
        EXPECT_EQ(result.value(u"serverInfo"_s).toObject(),
                  (QJsonObject{{u"name"_s, u"fablery"_s}, {u"version"_s, u"0.1.2"_s}}));
        EXPECT_TRUE(result.value(u"instructions"_s)
                        .toString()
                        .startsWith(u"This server operates one Fablery project."_s));
    }
}

TEST_F(ProtocolTest, SurvivesHugeAndDeeplyNestedLines)
{
    const QByteArray padding(lineCap - 1024, 'x');
    const struct
    {
        const char *name;
        QByteArray line;
        QByteArray answerStart;
    } cases[] = {
        {"10 MB request", paddedPing(1, lineCap - 1024), pingAnswer(1)},
        {"10 MB of garbage", padding, parseErrorPrefix},
        {"deeply nested arrays", QByteArray(200000, '[') + QByteArray(200000, ']'),
         parseErrorPrefix},
        {"deeply nested params",
         R"({"id":2,"method":"ping","params":)" + QByteArray(100000, '[') + QByteArray(100000, ']')
             + "}",
         parseErrorPrefix},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        m_server.send(c.line);
        EXPECT_TRUE(m_server.readLine().startsWith(c.answerStart));
        m_server.send(syncPing);
        EXPECT_EQ(m_server.readLine(), syncAnswer);
    }
    EXPECT_EQ(m_server.finish(), 0);
}

TEST_F(ProtocolTest, ReadsLinesUpToTheCapAndRefusesLongerOnes)
{
    const struct
    {
        const char *name;
        QByteArray line;
        QByteArray answer;
    } cases[] = {
        {"one byte under the cap", paddedPing(1, lineCap - 1), pingAnswer(1)},
        {"exactly the cap", paddedPing(2, lineCap), pingAnswer(2)},
        {"one byte over the cap", paddedPing(3, lineCap + 1), tooLongAnswer},
        {"a carriage return counts", paddedPing(4, lineCap) + '\r', tooLongAnswer},
        {"twice the cap", paddedPing(5, 2 * lineCap), tooLongAnswer},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        m_server.send(c.line);
        EXPECT_EQ(m_server.readLine(), c.answer);
        m_server.send(syncPing);
        EXPECT_EQ(m_server.readLine(), syncAnswer);
    }
    EXPECT_EQ(m_server.finish(), 0);
}

TEST_F(ProtocolTest, SkipsA200MegabyteLineWithoutHoldingIt)
{
    m_server.send(syncPing);
    EXPECT_EQ(m_server.readLine(), syncAnswer);
    const qint64 idle = peakMemoryBytes(m_server.processId());
    ASSERT_GT(idle, 0);

    // The line goes out in pieces, so that only the server could be holding it whole.
    const QByteArray piece(1024 * 1024, 'x');
    for (int i = 0; i < 200; ++i)
        m_server.write(piece);
    m_server.send(R"("})");
    EXPECT_EQ(m_server.readLine(), tooLongAnswer);
    m_server.send(syncPing);
    EXPECT_EQ(m_server.readLine(), syncAnswer);

    // The bound is on what the line adds to the running server: the sanitizers of the test
    // build alone take about 90 MB before the first request.
    const qint64 peak = peakMemoryBytes(m_server.processId());
    EXPECT_LT(peak - idle, 100 * 1024 * 1024) << "idle " << idle << ", peak " << peak;
    EXPECT_EQ(m_server.finish(), 0);
}

TEST_F(ProtocolTest, AnswersALastLineWithoutALineFeed)
{
    m_server.send(syncPing);
    EXPECT_EQ(m_server.readLine(), syncAnswer);
    m_server.write(R"({"id":"last","method":"ping"})");
    EXPECT_EQ(m_server.finish(), 0);
    EXPECT_EQ(m_server.readLine(100), R"({"id":"last","jsonrpc":"2.0","result":{}})");
}

} // namespace
