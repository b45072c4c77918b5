// Fuzzes the JSON-RPC line handler: one input is one line as the server reads it from standard
// input. Two small tools are registered so that "tools/call" reaches a handler and reads
// arguments of every kind with the shared argument readers.

#include "fuzzcheck.h"

#include "server/mcpserver.h"
#include "tools/common/arguments.h"

#include <QJsonDocument>

#include <cstdint>
#include <memory>

using namespace fb;
using namespace fb::app;

namespace {

McpToolResult echo(const QJsonObject &arguments)
{
    if (!hasArgument(arguments, QStringLiteral("text")))
        return McpToolResult::failure(QStringLiteral("Missing required argument: text"));
    const std::optional<qint64> times = integerArgument(arguments, QStringLiteral("times"));
    if (hasArgument(arguments, QStringLiteral("times")) && (!times || *times < 1 || *times > 8))
        return McpToolResult::failure(QStringLiteral("times must be a whole number from 1 to 8."));
    QString text = trimmedArgument(arguments, QStringLiteral("text"));
    if (boolArgument(arguments, QStringLiteral("loud")))
        text = text.toUpper();
    return McpToolResult::success(text.repeated(times.value_or(1)));
}

std::unique_ptr<McpServer> makeServer()
{
    auto server = std::make_unique<McpServer>(QStringLiteral("fuzz"), QStringLiteral("1"),
                                              QStringLiteral("Fuzzing."));
    server->addTool(toolDescriptor(QStringLiteral("echo"), QStringLiteral("Echoes the text."),
                                   ToolSchema()
                                       .string(QStringLiteral("text"), QStringLiteral("Text."))
                                       .required()
                                       .integer(QStringLiteral("times"), QStringLiteral("Count."))
                                       .boolean(QStringLiteral("loud"), QStringLiteral("Loud."))),
                    echo);
    server->addTool(toolDescriptor(QStringLiteral("refuse"), QStringLiteral("Always fails.")),
                    [](const QJsonObject &) {
                        return McpToolResult::failure(QStringLiteral("Refused."));
                    });
    server->setToolCallHook(
        [](const std::function<McpToolResult()> &runTool) { return runTool(); });
    return server;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const std::unique_ptr<McpServer> server = makeServer();
    const QByteArray line(reinterpret_cast<const char *>(data), qsizetype(size));
    const std::optional<QString> answer = server->handleLine(line);
    if (!answer)
        return 0;
    // Every answer is one compact line holding one JSON-RPC envelope: a result or an error.
    FB_FUZZ_CHECK(!answer->contains(u'\n'));
    const QJsonDocument document = QJsonDocument::fromJson(answer->toUtf8());
    FB_FUZZ_CHECK(document.isObject());
    const QJsonObject envelope = document.object();
    FB_FUZZ_CHECK(envelope.value(QStringLiteral("jsonrpc")) == QStringLiteral("2.0"));
    FB_FUZZ_CHECK(envelope.contains(QStringLiteral("id")));
    FB_FUZZ_CHECK(envelope.contains(QStringLiteral("result"))
                  != envelope.contains(QStringLiteral("error")));
    return 0;
}
