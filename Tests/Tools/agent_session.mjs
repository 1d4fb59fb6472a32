// Sessions with the tool by the clients that agents have: what they list, ask, cancel and end. They
// check every result against the schema that the tool gives for it.
//
// Usage: node agent_session.mjs QEREFINE CLIENT_FOLDER MODEL

import assert from 'node:assert/strict';
import { createRequire } from 'node:module';
import path from 'node:path';
import { pathToFileURL } from 'node:url';

const [tool, folder, model] = process.argv.slice(2);
const require = createRequire(path.resolve(folder, 'package.json'));
const load = async (name) => import(pathToFileURL(require.resolve(name)));

const { Client } = await load('@modelcontextprotocol/client');
const { StdioClientTransport } = await load('@modelcontextprotocol/client/stdio');
const { Client: OlderClient } = await load('@modelcontextprotocol/sdk/client/index.js');
const { StdioClientTransport: OlderTransport } = await load('@modelcontextprotocol/sdk/client/stdio.js');

const identity = { name: 'session', version: '1' };
const server = { command: tool, args: ['mcp', `shop=${model}`, `again=${model}`, '--jobs', '2'] };
const sessions = [
  {
    name: 'newest revision',
    client: new Client(identity, { versionNegotiation: { mode: { pin: '2026-07-28' } } }),
    transport: new StdioClientTransport(server),
  },
  {
    name: 'the one before, by the same client',
    client: new Client(identity, { versionNegotiation: { mode: 'legacy' } }),
    transport: new StdioClientTransport(server),
    hasPing: true,
  },
  {
    name: 'the one before, by the older client',
    client: new OlderClient(identity),
    transport: new OlderTransport(server),
    hasPing: true,
  },
];

/** Returns what the tool answers; the client has checked it against the schema. */
async function call(client, name, args) {
  return client.callTool({ name, arguments: { model: 'shop', ...args } });
}

async function askForPaths(client) {
  const found = await call(client, 'join_path', { subjects: ['returns', 'store', 'category'] });
  assert.ok(found.structuredContent.connected);
  assert.match(found.content[0].text, /QUESTION FOR THE USER/);
  const { options } = found.structuredContent.question;
  assert.equal(options.length, 4);
  const paths = new Set();
  for (const option of options) {
    const { structuredContent } = await client.callTool({ name: 'join_path', arguments: option.arguments });
    assert.equal(structuredContent.question, null);
    paths.add(structuredContent.from);
  }
  assert.equal(paths.size, options.length);
  const apart = await call(client, 'join_path', { subjects: ['sales', 'account'] });
  assert.equal(typeof apart.structuredContent.connected, 'boolean');
}

async function askForModels(client) {
  const names = [];
  let cursor;
  do {
    const { structuredContent } = await call(client, 'list_subjects', { limit: 7, ...(cursor && { cursor }) });
    names.push(...structuredContent.subjects.map((subject) => subject.name));
    cursor = structuredContent.nextCursor;
  } while (cursor);
  assert.equal(new Set(names).size, names.length);
  for (const subject of names) {
    const described = await call(client, 'describe', { subject });
    assert.equal(described.structuredContent.name, subject);
  }
  assert.equal((await call(client, 'describe', {})).structuredContent.subjects, names.length);
  await call(client, 'explain', { subjects: ['returns', 'category'] });
  await call(client, 'alternatives', { subjects: ['returns', 'store', 'category'] });
  assert.ok((await call(client, 'check', { limit: 2 })).structuredContent.rules.length > 0);
}

async function makeMistakes(client) {
  const wrong = await call(client, 'join_path', { subjects: ['sale', 'category'] });
  assert.ok(wrong.isError);
  assert.match(wrong.content[0].text, /did you mean sales\?/);
  const nameless = await client.callTool({ name: 'describe', arguments: {} });
  assert.match(nameless.content[0].text, /name one of shop, again/);
  await assert.rejects(client.callTool({ name: 'join_paths', arguments: {} }), /did you mean join_path/);
}

async function cancel(client) {
  const stop = new AbortController();
  const slow = client.callTool({ name: 'check', arguments: { model: 'shop' } }, ...atSignal(client, stop.signal));
  stop.abort('nobody waits');
  await assert.rejects(slow);
  assert.ok((await call(client, 'describe', {})).structuredContent);
}

/** Returns how the client is given a signal: the older one takes a schema before it. */
function atSignal(client, signal) {
  return client instanceof OlderClient ? [undefined, { signal }] : [{ signal }];
}

for (const { name, client, transport, hasPing } of sessions) {
  await client.connect(transport);
  const pid = transport.pid;
  const { tools } = await client.listTools();
  assert.deepEqual(
    tools.map((each) => each.name),
    ['list_subjects', 'describe', 'join_path', 'alternatives', 'explain', 'check'],
  );
  assert.equal(client.getServerVersion().name, 'qerefine');
  if (hasPing) await client.ping();
  await askForPaths(client);
  await askForModels(client);
  await makeMistakes(client);
  await cancel(client);
  await client.close();
  assert.throws(() => process.kill(pid, 0), 'the tool is still there');
  console.log(`session: ${name}`);
}
