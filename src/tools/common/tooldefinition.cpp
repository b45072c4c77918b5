#include "tools/common/tooldefinition.h"

#include "server/mcpserver.h"
#include "tools/common/toolcontext.h"

namespace fb::app {

void registerTools(McpServer &server, ToolContext &context, const std::vector<ToolDefinition> &tools)
{
    for (const ToolDefinition &tool : tools) {
        const McpToolDescriptor descriptor{tool.name, tool.description,
                                           inputSchemaOf(tool.arguments)};
        server.addTool(descriptor, [&context, declarations = tool.arguments,
                                    handler = tool.handler](const QJsonObject &json) {
            const Result<ToolArguments> arguments = ToolArguments::read(declarations, json);
            if (!arguments)
                return McpToolResult::failure(arguments.error());
            return handler(context, *arguments);
        });
    }
}

} // namespace fb::app
