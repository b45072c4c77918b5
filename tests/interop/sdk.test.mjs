// Drives the real server with the official MCP TypeScript SDK client over stdio, the way an
// agent's host application does: initialise, list the tools, call one that succeeds and one
// that fails.
import { test, before, after } from 'node:test';
import assert from 'node:assert/strict';
import { cpSync, mkdtempSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join, dirname, resolve } from 'node:path';
import { fileURLToPath } from 'node:url';
import { Client } from '@modelcontextprotocol/sdk/client/index.js';
import { StdioClientTransport } from '@modelcontextprotocol/sdk/client/stdio.js';

const here = dirname(fileURLToPath(import.meta.url));
const repo = resolve(here, '..', '..');
const binary = process.env.FABLERY_MCP ?? join(repo, 'build', 'fablery-mcp');

let scratch;
let client;

before(async () => {
  scratch = mkdtempSync(join(tmpdir(), 'fablery-interop-'));
  const project = join(scratch, 'sample');
  cpSync(join(repo, 'examples', 'sample'), project, { recursive: true });
  const transport = new StdioClientTransport({
    command: binary,
    args: [project],
    env: { PATH: process.env.PATH ?? '', HOME: scratch, XDG_DATA_HOME: join(scratch, 'data') },
    stderr: 'pipe',
  });
  client = new Client({ name: 'fablery-interop', version: '1.0.0' });
  await client.connect(transport);
});

after(async () => {
  await client?.close();
  if (scratch) rmSync(scratch, { recursive: true, force: true });
});

test('initialises with the server identity and instructions', () => {
  assert.deepEqual(client.getServerVersion(), { name: 'fablery', version: '0.1.2' });
  assert.match(client.getInstructions() ?? '', /^This server operates one Fablery project\./);
  assert.deepEqual(client.getServerCapabilities(), { tools: {} });
});

test('lists the tools in registration order with valid schemas', async () => {
  const { tools } = await client.listTools();
  const names = tools.map((tool) => tool.name);
  assert.deepEqual(names.slice(0, 4), ['save_project', 'undo_last', 'get_recent_changes', 'backup_project']);
  assert.equal(new Set(names).size, names.length, 'tool names are unique');
  for (const tool of tools) {
    assert.equal(tool.inputSchema.type, 'object', tool.name);
    if ('required' in tool.inputSchema) assert.ok(tool.inputSchema.required.length > 0, tool.name);
  }
});

test('a successful call has no error flag', async () => {
  const result = await client.callTool({ name: 'get_recent_changes', arguments: {} });
  assert.equal(result.isError, undefined);
  assert.deepEqual(result.content, [{ type: 'text', text: 'No changes this session.' }]);
});

test('a failing call is a result with isError, not a protocol error', async () => {
  const result = await client.callTool({ name: 'undo_last', arguments: {} });
  assert.equal(result.isError, true);
  assert.deepEqual(result.content, [{ type: 'text', text: 'Nothing to undo.' }]);
});

test('an unknown tool is a protocol error', async () => {
  await assert.rejects(client.callTool({ name: 'no_such_tool', arguments: {} }), /Unknown tool: no_such_tool/);
});
