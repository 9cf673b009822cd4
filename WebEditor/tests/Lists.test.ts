import assert from 'node:assert/strict';
import { test } from 'node:test';
import { draftItems, listItems, listValue, withItem, withoutItem } from '../src/model/Lists';

test('A list value has its items without the blanks around them', () => {
  assert.deepEqual(listItems('0 [m], 0.1 [m],2 [m]'), ['0 [m]', '0.1 [m]', '2 [m]']);
  assert.deepEqual(listItems(''), []);
  assert.deepEqual(listItems(undefined), []);
});

test('While a list is typed, an empty item stays, and so does a blank at the end of a word', () => {
  assert.deepEqual(draftItems('AIR, DUCT ,'), ['AIR', 'DUCT ', '']);
  assert.deepEqual(draftItems(withItem(['AIR', 'DUCT'], 2, '')), ['AIR', 'DUCT', '']);
  assert.deepEqual(draftItems(withoutItem(['AIR', 'DUCT', ''], 1)), ['AIR', '']);
});

test('Empty items are no part of the value, and a comma in an item divides it', () => {
  assert.equal(listValue(['AIR', '', ' DUCT,FAN ']), 'AIR, DUCT, FAN');
  assert.equal(listValue(['']), '');
});
