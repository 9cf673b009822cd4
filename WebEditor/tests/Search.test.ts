import assert from 'node:assert/strict';
import { test } from 'node:test';
import { matchRange, parseQuery, ranked, rankOf, toggleFilter } from '../src/model/Search';

test('The best match comes first, whatever was typed before', () => {
  const names = ['Total Time Steps', 'Timestamp', 'First Time', 'Overtime', 'Thermal Insulation Metre', 'Time'];
  assert.deepEqual(
    ranked(names, 'time').map(({ name, rank }) => `${rank}: ${name}`),
    [
      'exact: Time',
      'prefix: Timestamp',
      'word: Total Time Steps',
      'word: First Time',
      'substring: Overtime',
      'subsequence: Thermal Insulation Metre',
    ],
  );
});

test('Case and white space at the ends do not matter', () => {
  assert.equal(rankOf('Reference Pressure', '  PRESSURE '), 'word');
  assert.equal(rankOf('Reference Pressure', 'reference pressure'), 'exact');
});

test('An empty text finds nothing', () => {
  assert.equal(rankOf('Pressure', '  '), null);
  assert.deepEqual(ranked(['Pressure'], ''), []);
});

test('Letters that are not all there in order are no match', () => {
  assert.equal(rankOf('Pressure', 'pressures'), null);
  assert.equal(rankOf('Pressure', 'rp'), null);
});

test('Words with @ are filters, and unknown ones are text', () => {
  assert.deepEqual(parseQuery('@set inlet @Waiting pressure @set'), {
    filters: ['set', 'waiting'],
    text: 'inlet pressure',
  });
  assert.deepEqual(parseQuery('@home'), { filters: [], text: '@home' });
  assert.deepEqual(parseQuery('   '), { filters: [], text: '' });
});

test('A chip switches its filter and keeps the rest', () => {
  assert.equal(toggleFilter('inlet', 'set'), '@set inlet');
  assert.equal(toggleFilter('@set inlet', 'set'), 'inlet');
  assert.equal(toggleFilter('@set', 'changed'), '@set @changed');
});

test('The emphasised part is the beginning of a word where there is one', () => {
  assert.deepEqual(matchRange('Overtime Time', 'time'), [9, 13]);
  assert.deepEqual(matchRange('Overtime', 'time'), [4, 8]);
  assert.equal(matchRange('Pressure', 'zz'), null);
});
