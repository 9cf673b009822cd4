import assert from 'node:assert/strict';
import { test } from 'node:test';
import { EventDivider } from '../src/protocol/Events';

test('EventDivider puts an event together that arrives in pieces', () => {
  const divider = new EventDivider();
  assert.deepEqual(divider.take('data: {"a"'), []);
  assert.deepEqual(divider.take(':1}\n'), []);
  assert.deepEqual(divider.take('\ndata: 2\n\n'), ['{"a":1}', '2']);
});

test('EventDivider leaves out comments', () => {
  assert.deepEqual(new EventDivider().take(': connected\n\n: still here\n\n'), []);
});
