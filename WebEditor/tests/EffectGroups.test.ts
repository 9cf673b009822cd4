import assert from 'node:assert/strict';
import { test } from 'node:test';
import { effectGroups, effectSize } from '../src/model/EffectGroups';
import type { Effect } from '../src/protocol/Messages';

const nothing: Effect = {
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

test('An effect without entries has no groups', () => {
  assert.deepEqual(effectGroups(nothing), []);
  assert.equal(effectSize(nothing), 0);
});

test('What the user loses comes first, then what goes, changes and comes', () => {
  const effect: Effect = {
    ...nothing,
    values: [
      { path: '/Plant', name: 'Control', before: 'Fixed', after: 'Free' },
      { path: '/Plant', name: 'Level', before: '2 [m]' },
      { path: '/Plant', name: 'Gain', after: '1' },
    ],
    offersGained: [{ path: '/Plant', name: 'Band' }],
    waiting: [
      {
        path: '/Plant',
        name: 'Level',
        after: {
          path: '/Plant',
          name: 'Level',
          reason: 'not-available',
          value: '2 [m]',
          ruleReason: 'Only with control.',
        },
      },
      { path: '/Plant', name: 'Speed', before: { path: '/Plant', name: 'Speed', reason: 'switched-off' } },
    ],
  };
  assert.deepEqual(
    effectGroups(effect).map(({ key, total }) => `${key} ${total}`),
    ['waiting 1', 'gone 1', 'changed 1', 'new 1', 'offers 1'],
  );
  assert.deepEqual(effectGroups(effect)[0]?.lines, [
    { item: { path: '/Plant', name: 'Level' }, before: '2 [m]', note: 'Only with control.' },
  ]);
});

test('A list that was cut keeps the number of all', () => {
  const effect: Effect = { ...nothing, objectsCreated: ['/Plant/Tank:a'], cut: { objectsCreated: 500 } };
  assert.equal(effectGroups(effect)[0]?.total, 500);
  assert.equal(effectSize(effect), 500);
});
