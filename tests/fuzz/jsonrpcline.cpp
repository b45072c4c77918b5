// Fuzzes the JSON-RPC line handler: one input is one line as the server reads it from standard
// input. Two small tools are registered so that "tools/call" reaches a handler whose arguments
// are checked and read through the tool kit's declarations.

#include "fuzzcheck.h"
#include "server/mcpserver.h"
#include "tools/common/toolarguments.h"

#include <QJsonDocument>

#include <cstdint>
#include <memory>

using namespace Qt::StringLiterals;

using namespace fb;
using namespace fb::app;

namespace {

const QList<ArgumentDeclaration> echoArguments{
    requiredText(u"text"_s, u"Text."_s),
    optionalInteger(u"times"_s, u"Count."_s),
    optionalBool(u"loud"_s, u"Loud."_s),
    optionalRecordList(u"parts"_s, u"Parts."_s,
                       {requiredText(u"name"_s, u"Name."_s),
                        optionalTextList(u"tags"_s, u"Tags."_s)}),
};

McpToolResult echo(const QJsonObject &json)
{
    const Result<ToolArguments> read = ToolArguments::read(echoArguments, json);
    if (!read)
        return McpToolResult::failure(read.error());
    const ToolArguments &arguments = *read;
    if (!arguments.has(u"text"_s))
        return McpToolResult::failure(u"Missing required argument: text"_s);
    const std::optional<qint64> times = arguments.integer(u"times"_s);
    if (times && (*times < 1 || *times > 8))
        return McpToolResult::failure(u"times must be a whole number from 1 to 8."_s);
    QString text = arguments.trimmed(u"text"_s);
    if (arguments.boolean(u"loud"_s))
        text = text.toUpper();
    for (const QJsonObject &part : arguments.records(u"parts"_s))
        text += part.value(u"name"_s).toString();
    return McpToolResult::success(text.repeated(times.value_or(1)));
}

std::unique_ptr<McpServer> makeServer()
{
    auto server = std::make_unique<McpServer>(u"fuzz"_s, u"1"_s, u"Fuzzing."_s);
    server->addTool({u"echo"_s, u"Echoes the text."_s, inputSchemaOf(echoArguments)}, echo);
    server->addTool({u"refuse"_s, u"Always fails."_s, inputSchemaOf({})},
                    [](const QJsonObject &) { return McpToolResult::failure(u"Refused."_s); });
    server->setToolCallHook([](const std::function<McpToolResult()> &runTool) { return runTool(); });
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
    FB_FUZZ_CHECK(envelope.value(u"jsonrpc"_s) == u"2.0"_s);
    FB_FUZZ_CHECK(envelope.contains(u"id"_s));
    FB_FUZZ_CHECK(envelope.contains(u"result"_s) != envelope.contains(u"error"_s));
    return 0;
}
