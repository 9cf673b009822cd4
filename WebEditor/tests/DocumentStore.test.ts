import assert from 'node:assert/strict';
import { after, test } from 'node:test';
import type { Param, State } from '../src/protocol/Messages';
import { Rpc } from '../src/protocol/Rpc';
import { Connection } from '../src/store/Connection';
import { DocumentStore } from '../src/store/DocumentStore';

type Call = { method: string; params: Record<string, unknown> };

const state = (revision: number): State => ({
  document: '1',
  revision,
  root: '/Plant',
  unsaved: false,
  steps: revision,
  undoneSteps: 0,
});
const title = (value: string): Param => ({
  path: '/Plant',
  name: 'Title',
  type: 'String',
  required: false,
  present: true,
  offered: false,
  available: true,
  origin: 'user',
  value,
});
const noEffect = {
  values: [],
  choices: [],
  bounds: [],
  defaults: [],
  quantities: [],
  offersGained: [],
  offersLost: [],
  objectsCreated: [],
  objectsDeleted: [],
  waiting: [],
};

const connections: Connection[] = [];
after(() => {
  for (const connection of connections) connection.close();
});

/** A server with one parameter. `edit` decides what becomes of each edit: null loses the answer. */
function plant(edit: (call: Call, number: number) => object | null) {
  const calls: Call[] = [];
  const server = { revision: 0, value: 'Pump' };
  const answer = (call: Call): object | null => {
    switch (call.method) {
      case 'edit':
        return edit(call, calls.filter(({ method }) => method === 'edit').length);
      case 'form':
        return {
          result: {
            revision: server.revision,
            object: null,
            params: { total: 1, offset: 0, list: [title(server.value)] },
            childTypes: [],
          },
        };
      case 'lookParam':
        return { result: { revision: server.revision, param: title(server.value) } };
      case 'hello':
        return { result: { documents: [state(server.revision)], recoverable: [] } };
      default:
        return {
          result: { revision: server.revision, total: 0, offset: 0, list: [], errors: 0, warnings: 0, object: null },
        };
    }
  };
  const rpc = new Rpc('', async (url, init) => {
    if (url !== 'rpc') throw new TypeError('no events');
    const { id, method, params } = JSON.parse(String(init.body)) as Call & { id: number };
    const call = { method, params };
    calls.push(call);
    const reply = answer(call);
    if (reply === null) throw new TypeError('lost');
    return new Response(JSON.stringify({ jsonrpc: '2.0', id, ...reply }), {
      headers: { 'content-type': 'application/json' },
    });
  });
  const connection = new Connection(rpc);
  connections.push(connection);
  const store = new DocumentStore(connection, state(0), 'page 1');
  return {
    store,
    connection,
    server,
    edits: () => calls.filter(({ method }) => method === 'edit').map(({ params }) => params),
  };
}

const rename = [{ kind: 'set-param' as const, path: '/Plant', name: 'Title', value: 'Pump 7' }];
const done = (server: { revision: number; value: string }, value: string) => {
  server.revision += 1;
  server.value = value;
  return {
    result: {
      ...state(server.revision),
      result: { applied: true, step: 1, made: rename, effect: noEffect, message: 'Done.' },
    },
  };
};
const outdated = (revision: number) => ({ error: { code: -32001, message: 'outdated', data: { revision } } });

test('A refused edit keeps its sentence and what would have worked', async () => {
  const nearest = { kind: 'set-param', path: '/Plant', name: 'Title', value: 'Pump' };
  const refused = { code: 'value-not-allowed', index: 0, edit: rename[0], sentence: 'It cannot be.', nearest };
  const { store } = plant(() => ({ result: { ...state(0), result: { applied: false, refused } } }));
  assert.deepEqual(await store.commit(rename), { kind: 'refused', problem: { sentence: 'It cannot be.', nearest } });
});

test('An edit whose answer was lost is sent again under its name when the server is back', async () => {
  const { store, connection, server, edits } = plant((_, number) => (number === 1 ? null : done(server, 'Pump 7')));
  connection.link.value = { kind: 'online' };
  assert.equal((await store.commit(rename)).kind, 'applied');
  assert.equal(edits().length, 2);
  assert.equal(edits()[0]?.editId, edits()[1]?.editId);
  assert.equal(store.record('/Plant', 'Title').value?.value, 'Pump 7');
});

test('An edit for an outdated revision is sent again if nobody has changed the item', async () => {
  const { store, server, edits } = plant((_, number) => {
    if (number > 1) return done(server, 'Pump 7');
    server.revision = 5;
    return outdated(5);
  });
  assert.equal((await store.commit(rename)).kind, 'applied');
  assert.deepEqual(
    edits().map(({ revision }) => revision),
    [0, 5],
  );
});

test('An edit of an item that someone else has changed is not made', async () => {
  const { store, server, edits } = plant(() => {
    server.revision = 5;
    server.value = 'Fan';
    return outdated(5);
  });
  assert.equal((await store.commit(rename)).kind, 'conflict');
  assert.equal(edits().length, 1);
  assert.equal(store.record('/Plant', 'Title').value?.value, 'Fan');
});

test('Edits are sent one after the other, each for the revision that the one before has left', async () => {
  const { store, server, edits } = plant((call) =>
    done(server, String((call.params.edits as typeof rename)[0]?.value)),
  );
  await Promise.all([store.commit(rename), store.commit(rename), store.commit(rename)]);
  assert.deepEqual(
    edits().map(({ revision }) => revision),
    [0, 1, 2],
  );
  assert.equal(new Set(edits().map(({ editId }) => editId)).size, 3);
});

test('A change by another page does not touch what is typed', async () => {
  const { store, server } = plant(() => null);
  await store.loadForm();
  store.setDraft({ path: '/Plant', name: 'Title' }, { text: 'half a na', base: 'Pump' });
  server.revision = 1;
  server.value = 'Fan';
  await store.onChanged({
    ...state(1),
    cause: 'edit',
    client: 'page 2',
    result: { applied: true, made: [], effect: noEffect },
  });
  assert.equal(store.draft({ path: '/Plant', name: 'Title' }).value?.text, 'half a na');
  assert.equal(store.record('/Plant', 'Title').value?.value, 'Fan');
  assert.equal(store.draftCount.value, 1);
});
