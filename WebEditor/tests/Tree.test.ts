import assert from 'node:assert/strict';
import { test } from 'node:test';
import { newNode, parentRow, type TreeNode, treeRows, typeAhead, typeRanges } from '../src/model/Tree';
import type { ChildType, Object as ObjectRecord } from '../src/protocol/Messages';

const record = (path: string, children: number): ObjectRecord => {
  const part = path.slice(path.lastIndexOf('/') + 1);
  const [type = '', name = type] = part.split(':');
  return {
    path,
    type,
    name,
    required: false,
    singleton: !part.includes(':'),
    editable: true,
    present: true,
    offered: false,
    available: true,
    inModel: true,
    params: 1,
    children,
  };
};
const type = (name: string, singleton: boolean, present: string[], presentCount?: number): ChildType => ({
  type: name,
  required: false,
  singleton,
  editable: true,
  available: true,
  canAdd: !singleton,
  present,
  offered: [],
  ...(presentCount === undefined ? {} : { presentCount }),
});

function plant(tanks: number): Map<string, TreeNode> {
  const root = newNode('/Plant');
  root.record = record('/Plant', tanks + 1);
  root.open = true;
  const paths = Array.from({ length: tanks }, (_, i) => `/Plant/Tank:${i}`);
  root.types = typeRanges([type('Tank', false, paths), type('Solver', true, ['/Plant/Solver'])], null);
  root.children = [...paths, '/Plant/Solver'];
  const nodes = new Map([[root.path, root]]);
  for (const path of root.children) {
    if (path === undefined) continue;
    const node = newNode(path);
    node.record = record(path, 0);
    nodes.set(path, node);
  }
  return nodes;
}

test('Few children are rows of their own, with their places among all', () => {
  const rows = treeRows(plant(2), '/Plant');
  assert.deepEqual(
    rows.map(({ key, level, position, size }) => [key, level, position, size]),
    [
      ['/Plant', 1, 1, 1],
      ['/Plant/Tank:0', 2, 1, 3],
      ['/Plant/Tank:1', 2, 2, 3],
      ['/Plant/Solver', 2, 3, 3],
    ],
  );
});

test('Many children of a type are behind one row until it is opened', () => {
  const nodes = plant(40);
  assert.deepEqual(
    treeRows(nodes, '/Plant').map(({ key }) => key),
    ['/Plant', '/Plant\nTank', '/Plant/Solver'],
  );
  const range = nodes.get('/Plant')?.types?.[0];
  assert.ok(range);
  range.open = true;
  const rows = treeRows(nodes, '/Plant');
  assert.equal(rows.length, 43);
  assert.deepEqual([rows[2]?.key, rows[2]?.level, rows[2]?.position, rows[2]?.size], ['/Plant/Tank:0', 3, 1, 40]);
  assert.equal(rows[42]?.key, '/Plant/Solver');
  assert.equal(rows[42]?.position, 2);
  assert.equal(parentRow(rows, 2), 1);
  assert.equal(parentRow(rows, 42), 0);
});

test('Children that were not read yet have rows that say so', () => {
  const nodes = plant(2);
  const root = nodes.get('/Plant');
  assert.ok(root);
  root.children[1] = undefined;
  assert.equal(treeRows(nodes, '/Plant')[2]?.kind, 'missing');
});

test('The ranges of types count children that the list does not name', () => {
  const ranges = typeRanges(
    [type('Tank', false, ['/Plant/Tank:0'], 500), type('Pipe', false, []), type('Solver', true, ['/Plant/Solver'])],
    null,
  );
  assert.deepEqual(
    ranges.map(({ type: name, start, count }) => [name, start, count]),
    [
      ['Tank', 0, 500],
      ['Solver', 500, 1],
    ],
  );
});

test('A letter leads to the next row that begins with it, around the end', () => {
  const rows = treeRows(plant(3), '/Plant');
  const names = (row: { key: string }) => row.key.slice(row.key.lastIndexOf('/') + 1);
  assert.equal(typeAhead(rows, 1, 't', names), 2);
  assert.equal(typeAhead(rows, 3, 't', names), 1);
  assert.equal(typeAhead(rows, 1, 'so', names), 4);
  assert.equal(typeAhead(rows, 1, 'x', names), 1);
});
