import assert from 'node:assert/strict';
import { test } from 'node:test';
import { focusAfterRemoval, type LayoutEntry, layoutOf, rowKey } from '../src/model/FormLayout';

const closed = { advanced: new Set<string>(), unavailable: new Set<string>() };

const pump: LayoutEntry[] = [
  { name: 'Title', available: true },
  { name: 'Control', group: 'Level', available: true },
  { name: 'Speed', group: 'Motor', available: true },
  { name: 'Set Level', group: 'Level', available: false },
  { name: 'Gain', group: 'Level', available: true, advanced: true },
  { name: 'Band', group: 'Level', available: true },
];

test('Parameters of a group are together, in the order of the rules', () => {
  assert.deepEqual(layoutOf(pump, closed).map(rowKey), [
    'param Title',
    'group Level',
    'param Control',
    'param Band',
    'advanced Level',
    'unavailable Level',
    'group Motor',
    'param Speed',
  ]);
});

test('An open fold shows what it holds', () => {
  const rows = layoutOf(pump, { advanced: new Set(['Level']), unavailable: new Set(['Level']) });
  assert.deepEqual(rows.slice(4, 8), [
    { kind: 'fold', fold: 'advanced', group: 'Level', count: 1, open: true },
    { kind: 'param', name: 'Gain', group: 'Level' },
    { kind: 'fold', fold: 'unavailable', group: 'Level', count: 1, open: true },
    { kind: 'param', name: 'Set Level', group: 'Level' },
  ]);
});

test('What waits is never folded', () => {
  const rows = layoutOf([{ name: 'Set Level', available: false, waiting: true, advanced: true }], closed);
  assert.deepEqual(rows, [{ kind: 'param', name: 'Set Level', group: '' }]);
});

test('The focus of a row that leaves goes to the next of its group, else the previous, else nowhere', () => {
  const rows = (...names: string[]) =>
    layoutOf(
      names.map((name) => ({ name, group: name[0] ?? '', available: true })),
      closed,
    );
  const before = rows('A1', 'A2', 'A3', 'B1');
  assert.equal(focusAfterRemoval(before, rows('A1', 'A3', 'B1'), 'A2'), 'A3');
  assert.equal(focusAfterRemoval(before, rows('A1', 'A2', 'B1'), 'A3'), 'A2');
  assert.equal(focusAfterRemoval(before, rows('A1', 'A2', 'A3'), 'B1'), null);
  assert.equal(focusAfterRemoval(before, before, 'Unknown'), null);
});
