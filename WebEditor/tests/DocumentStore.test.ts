import assert from 'node:assert/strict';
import { after, test } from 'node:test';
import type { Param, State } from '../src/protocol/Messages';
import { Rpc } from '../src/protocol/Rpc';
import { Connection } from '../src/store/Connection';
import { DocumentStore } from '../src/store/DocumentStore';

type Call = { method: string; params: Record<string, unknown> };
type Message = Call & { id: number };

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
const formOf = (server: { revision: number; value: string }) => ({
  revision: server.revision,
  object: null,
  params: { total: 1, offset: 0, list: [title(server.value)] },
  childTypes: [],
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

/**
 * A server with one parameter. `edit` decides what becomes of each edit, and `others` of other methods: null loses the
 * answer.
 */
function plant(
  edit: (call: Call, number: number) => object | null,
  look: () => Promise<object> = async () => ({ result: { revision: 0, records: [] } }),
  others: Record<string, () => object | null> = {},
) {
  const calls: Call[] = [];
  const server = { revision: 0, value: 'Pump' };
  const answer = (call: Call): object | null | Promise<object> => {
    const other = others[call.method]?.();
    if (other !== undefined) return other;
    switch (call.method) {
      case 'look':
        return look();
      case 'edit':
        return edit(call, calls.filter(({ method }) => method === 'edit').length);
      case 'form':
        return { result: formOf(server) };
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
    const sent = JSON.parse(String(init.body)) as Message | Message[];
    const replies: object[] = [];
    for (const { id, ...call } of Array.isArray(sent) ? sent : [sent]) {
      calls.push(call);
      const reply = await answer(call);
      if (reply === null) throw new TypeError('lost');
      replies.push({ jsonrpc: '2.0', id, ...reply });
    }
    return new Response(JSON.stringify(Array.isArray(sent) ? replies : replies[0]), {
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
    methods: () => calls.map(({ method }) => method),
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
/** What another page has done at this revision. */
const byAnother = (revision: number, effect = {}) => ({
  ...state(revision),
  cause: 'edit' as const,
  client: 'page 2',
  result: { applied: true, made: [], effect: { ...noEffect, ...effect } },
});
const outdated = (revision: number) => ({ error: { code: -32001, message: 'outdated', data: { revision } } });

const nearest = { kind: 'set-param', path: '/Plant', name: 'Title', value: 'Pump' };
const refused = (revision: number) => ({
  result: {
    ...state(revision),
    result: {
      applied: false,
      refused: { code: 'value-not-allowed', index: 0, edit: rename[0], sentence: 'It cannot be.', nearest },
    },
  },
});

test('A refused edit keeps its sentence and what would have worked', async () => {
  const { store } = plant(() => refused(0));
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

test('What another page did before an edit is shown, although its event comes after the answer to the edit', async () => {
  const { store, server, methods } = plant((_, number) => {
    if (number > 1) return done(server, 'Pump 7');
    server.revision = 1;
    return outdated(1);
  });
  await store.loadForm();
  assert.equal((await store.commit(rename)).kind, 'applied');
  assert.equal(store.state.value.revision, 2);
  const before = methods().length;
  await store.onChanged(byAnother(1, { objectsCreated: ['/Plant/Tank:b'] }));
  assert.deepEqual(
    store.effects.value.map(({ who }) => who),
    ['page 2', 'you'],
  );
  assert.ok(methods().slice(before).includes('lookObject'));
  assert.equal(store.state.value.revision, 2);
  // The page's own event says nothing new.
  await store.onChanged({ ...byAnother(2), client: 'page 1' });
  assert.equal(store.effects.value.length, 2);
});

test('What another page did before a save is shown, although its event comes after the answer to the save', async () => {
  const { store, server } = plant(() => null, undefined, { save: () => ({ result: { ...state(1), saved: true } }) });
  await store.loadForm();
  server.revision = 1;
  server.value = 'Fan';
  assert.equal(await store.save(), null);
  await store.onChanged(byAnother(1));
  assert.equal(store.record('/Plant', 'Title').value?.value, 'Fan');
  assert.equal(store.effects.value.length, 1);
});

test('A save by another page that was overtaken by an edit does not make the edit look saved', async () => {
  const { store, server } = plant(() => {
    const answer = done(server, 'Pump 7');
    return { result: { ...answer.result, unsaved: true } };
  });
  await store.commit(rename);
  await store.onChanged({ ...state(0), cause: 'save', client: 'page 2' });
  assert.equal(store.state.value.unsaved, true);
  assert.equal(store.state.value.revision, 1);
});

test('An edit that was meant for a value is not made when the change of another page is shown first', async () => {
  const { store, server, edits } = plant(() => done(server, 'Pump 7'));
  await store.loadForm();
  server.revision = 1;
  server.value = 'Fan';
  const shown = store.onChanged(
    byAnother(1, { values: [{ path: '/Plant', name: 'Title', before: 'Pump', after: 'Fan' }] }),
  );
  assert.equal((await store.commit(rename)).kind, 'conflict');
  await shown;
  assert.equal(edits().length, 0);
  assert.equal((await store.commit(rename)).kind, 'applied');
});

test('An edit whose request was lost is not made when someone else has changed the item meanwhile', async () => {
  const { store, connection, server, edits } = plant((_, number) => {
    if (number > 1) return outdated(1);
    server.revision = 1;
    server.value = 'Fan';
    return null;
  });
  connection.link.value = { kind: 'online' };
  connection.onHello = (hello) => {
    const [now] = hello.documents;
    return now ? store.reload(now) : Promise.resolve();
  };
  assert.equal((await store.commit(rename)).kind, 'conflict');
  assert.deepEqual(
    edits().map(({ revision }) => revision),
    [0, 0],
  );
  assert.equal(store.record('/Plant', 'Title').value?.value, 'Fan');
});

test('An edit waits for the server when the server is gone before the edit is sent', async () => {
  let isGone = true;
  const { store, connection, server } = plant(() => done(server, 'Pump 7'), undefined, {
    lookParam: () => {
      if (!isGone) return { result: { revision: server.revision, param: title(server.value) } };
      isGone = false;
      return null;
    },
  });
  connection.link.value = { kind: 'online' };
  assert.equal((await store.commit(rename)).kind, 'applied');
  assert.equal(server.value, 'Pump 7');
});

test('An edit that was made is not sent again because the page could not read what to show', async () => {
  let isGone = true;
  const { store, connection, server, edits } = plant(() => done(server, 'Pump 7'), undefined, {
    form: () => (isGone ? null : { result: formOf(server) }),
  });
  connection.link.value = { kind: 'online' };
  connection.onHello = (hello) => {
    const [now] = hello.documents;
    return now ? store.reload(now) : Promise.resolve();
  };
  assert.equal((await store.commit(rename)).kind, 'applied');
  assert.equal(store.effects.value.length, 1);
  isGone = false;
  await connection.whenOnline();
  assert.equal(edits().length, 1);
  assert.equal(store.record('/Plant', 'Title').value?.value, 'Pump 7');
});

test('An edit is made among many edits of others', async () => {
  const { store, server, edits } = plant((_, number) => {
    if (number > 20) return done(server, 'Pump 7');
    server.revision += 1;
    return outdated(server.revision);
  });
  assert.equal((await store.commit(rename)).kind, 'applied');
  assert.equal(edits().length, 21);
});

test('A question before a loss is asked again when the model has changed since', async () => {
  const trial = { applied: true, made: rename, effect: { ...noEffect, objectsDeleted: ['/Plant/Tank:a'] } };
  const { store, server, edits } = plant((call, number) => {
    if (call.params.ask) {
      const data = { revision: server.revision, result: trial };
      return { error: { code: -32009, message: 'it would delete values', data } };
    }
    if (number > 2) return done(server, 'Pump 7');
    server.revision = 1;
    return outdated(1);
  });
  let asked = 0;
  store.preview.subscribe((shown) => {
    if (!shown) return;
    asked += 1;
    queueMicrotask(() => shown.decide?.(true));
  });
  assert.equal((await store.commit(rename, { askFirst: true })).kind, 'applied');
  assert.equal(asked, 2);
  assert.deepEqual(
    edits().map(({ ask }) => ask),
    [true, undefined, true, undefined],
  );
});

test('Drafts that are neither in the document nor on their way are listed with their places', () => {
  const { store } = plant(() => null);
  store.setDraft({ path: '/Plant/Tank:a', name: 'Size' }, { text: '1,5', base: '', problem: { sentence: 'No.' } });
  store.setDraft({ path: '/Plant', name: 'Title' }, { text: 'Fan', base: '', isSent: true });
  assert.deepEqual(store.unsetDrafts(), ['Tank:a / Size']);
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

test('An undo that is asked for before an edit has its answer takes back this edit, or nothing if it is refused', async () => {
  const { store, server, methods } = plant((_, number) =>
    number === 1 ? done(server, 'Pump 7') : refused(server.revision),
  );
  const made = store.commit(rename);
  const undone = store.undo();
  assert.equal((await made).kind, 'applied');
  await undone;
  assert.equal(methods().filter((method) => method === 'undo').length, 1);
  const notMade = store.commit(rename);
  assert.equal(await store.undo(), false);
  assert.equal((await notMade).kind, 'refused');
  assert.equal(methods().filter((method) => method === 'undo').length, 1);
});

test('A change by another page does not touch what is typed', async () => {
  const { store, server } = plant(() => null);
  await store.loadForm();
  store.setDraft({ path: '/Plant', name: 'Title' }, { text: 'half a na', base: 'Pump' });
  server.revision = 1;
  server.value = 'Fan';
  await store.onChanged(byAnother(1));
  assert.equal(store.draft({ path: '/Plant', name: 'Title' }).value?.text, 'half a na');
  assert.equal(store.record('/Plant', 'Title').value?.value, 'Fan');
  assert.equal(store.draftCount.value, 1);
});

test('An edit and what the form shows after it travel in one message', async () => {
  const { store, server, methods } = plant(() => done(server, 'Pump 7'));
  await store.loadForm();
  const before = methods().length;
  assert.equal((await store.commit(rename)).kind, 'applied');
  assert.deepEqual(methods().slice(before), ['edit', 'form']);
  assert.equal(store.record('/Plant', 'Title').value?.value, 'Pump 7');
});

test('A late answer with an older state does not replace what is shown, and is asked for again', async () => {
  let release: (answer: object) => void = () => {};
  const late = new Promise<object>((resolve) => {
    release = resolve;
  });
  let looked = 0;
  const { store, server } = plant(
    () => done(server, 'Pump 7'),
    async () => {
      looked += 1;
      return looked === 1 ? late : { result: { revision: server.revision, records: [title(server.value)] } };
    },
  );
  await store.loadForm();
  // A row that comes onto the screen asks for its record, and an edit is made before the answer arrives.
  store.record('/Plant', 'Title').value = null;
  store.hold('/Plant', 'Title');
  await store.commit(rename);
  release({ result: { revision: 0, records: [title('Pump')] } });
  for (let i = 0; i < 20; i++) await new Promise((resolve) => setTimeout(resolve, 0));
  assert.equal(looked, 2);
  assert.equal(store.record('/Plant', 'Title').value?.value, 'Pump 7');
});

test('An edit that would delete what someone gave is made only after the user has agreed', async () => {
  const trial = { applied: true, made: rename, effect: { ...noEffect, objectsDeleted: ['/Plant/Tank:a'] } };
  const asks = { error: { code: -32009, message: 'it would delete values', data: { revision: 0, result: trial } } };
  for (const agrees of [false, true]) {
    const { store, server, edits } = plant((call) => (call.params.ask ? asks : done(server, 'Pump 7')));
    store.preview.subscribe((shown) => {
      if (!shown) return;
      assert.deepEqual(shown.result, trial);
      queueMicrotask(() => shown.decide?.(agrees));
    });
    assert.equal((await store.commit(rename, { askFirst: true })).kind, agrees ? 'applied' : 'declined');
    assert.deepEqual(
      edits().map(({ ask }) => ask),
      agrees ? [true, undefined] : [true],
    );
    assert.equal(server.revision, agrees ? 1 : 0);
  }
});
