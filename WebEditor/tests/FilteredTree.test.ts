import assert from 'node:assert/strict';
import { test } from 'node:test';
import { type Hit, hitRows } from '../src/model/FilteredTree';

const hit = (path: string, name?: string): Hit => ({ item: name === undefined ? { path } : { path, name }, note: '' });
const nothingKnown = () => ({ types: [], children: new Map<string, number>() });
const rowsOf = (hits: Hit[], closed: string[] = [], order = nothingKnown as Parameters<typeof hitRows>[3]) =>
  hitRows(hits, '/Plant', new Set(closed), order);
const texts = (rows: ReturnType<typeof hitRows>) =>
  rows.map(
    ({ item, level }) => `${' '.repeat(level - 1)}${item.name ?? item.path.slice(item.path.lastIndexOf('/') + 1)}`,
  );

test('The hits stand below the objects that they are in, parameters first', () => {
  const rows = rowsOf([
    hit('/Plant/Tank:a', 'Level'),
    hit('/Plant/Tank:a/Valve:x'),
    hit('/Plant', 'Level'),
    hit('/Plant/Tank:a'),
  ]);
  assert.deepEqual(texts(rows), ['Plant', ' Level', ' Tank:a', '  Level', '  Valve:x']);
  assert.deepEqual(
    rows.map(({ hits, below }) => [hits.length, below]),
    [
      [0, 4],
      [1, 0],
      [1, 2],
      [1, 0],
      [1, 0],
    ],
  );
  assert.deepEqual(
    rows.map(({ position, size }) => `${position}/${size}`),
    ['1/1', '1/2', '2/2', '1/2', '2/2'],
  );
});

test('An object that was closed keeps the number of hits below it', () => {
  const rows = rowsOf([hit('/Plant/Tank:a', 'Level'), hit('/Plant/Tank:b', 'Level')], ['/Plant/Tank:a']);
  assert.deepEqual(texts(rows), ['Plant', ' Tank:a', ' Tank:b', '  Level']);
  assert.deepEqual([rows[1]?.open, rows[1]?.below], [false, 1]);
});

test('Objects have the order of the tree, and numbers in names their own order where it is not known', () => {
  const hits = ['Valve:1', 'Tank:10', 'Tank:9'].map((name) => hit(`/Plant/${name}`));
  const types = { types: ['Tank', 'Valve'], children: new Map<string, number>() };
  assert.deepEqual(texts(rowsOf(hits, [], () => types)), ['Plant', ' Tank:9', ' Tank:10', ' Valve:1']);
  const children = new Map([
    ['/Plant/Valve:1', 0],
    ['/Plant/Tank:10', 1],
    ['/Plant/Tank:9', 2],
  ]);
  assert.deepEqual(texts(rowsOf(hits, [], () => ({ types: [], children }))), [
    'Plant',
    ' Valve:1',
    ' Tank:10',
    ' Tank:9',
  ]);
});

test('Several hits of one item are one row, and what is outside of the edited object stands at the top', () => {
  const rows = rowsOf([hit('/Plant', 'Level'), hit('/Plant', 'Level'), hit('/Other', 'Title')]);
  assert.deepEqual(texts(rows), ['Plant', ' Level', 'Other', ' Title']);
  assert.equal(rows[1]?.hits.length, 2);
});

test('A chain of ten thousand objects is no trouble', () => {
  const path = `/Plant${'/A'.repeat(10_000)}`;
  assert.equal(rowsOf([hit(path)]).length, 10_001);
});
