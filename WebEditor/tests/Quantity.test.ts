import assert from 'node:assert/strict';
import { test } from 'node:test';
import { joinQuantity, judgeNumber, shorten, splitQuantity } from '../src/model/Quantity';

const lengths = ['m', 'mm'];

test('A value divides into its number and its units', () => {
  assert.deepEqual(splitQuantity('2e6 [W m^-3]'), { number: '2e6', unit: 'W m^-3' });
  assert.deepEqual(splitQuantity(' 2.5[m] '), { number: '2.5', unit: 'm' });
  assert.deepEqual(splitQuantity('2.5'), { number: '2.5', unit: '' });
  assert.deepEqual(splitQuantity(''), { number: '', unit: '' });
  assert.equal(joinQuantity(splitQuantity('0 [rad s^-1]')), '0 [rad s^-1]');
});

test('A bare number takes the chosen units', () => {
  assert.deepEqual(judgeNumber('2.5', false, lengths, 'mm'), { value: '2.5 [mm]', unit: 'mm' });
  assert.deepEqual(judgeNumber('  -7 ', true, [], ''), { value: '-7', unit: '' });
});

test('Units may be typed with and without brackets, listed or not', () => {
  assert.deepEqual(judgeNumber('2.5 mm', false, lengths, 'm'), { value: '2.5 [mm]', unit: 'mm' });
  assert.deepEqual(judgeNumber('2.5mm', false, lengths, 'm'), { value: '2.5 [mm]', unit: 'mm' });
  assert.deepEqual(judgeNumber('2.5 [mm]', false, lengths, 'm'), { value: '2.5 [mm]', unit: 'mm' });
  // The server converts these, or refuses them.
  assert.deepEqual(judgeNumber('12 in', false, lengths, 'm'), { value: '12 [in]', unit: 'in' });
});

test('Numbers keep the form in which they were typed', () => {
  for (const number of ['3.0', '0.', '.5', '+1', '1e-9', '1E+06', '007']) {
    assert.deepEqual(judgeNumber(number, false, [], ''), { value: number, unit: '' });
  }
});

test('A comma is refused and the dot is offered', () => {
  assert.deepEqual(judgeNumber('1,5', false, lengths, 'm'), {
    problem: 'Write decimals with a dot: 1.5',
    suggestion: '1.5',
  });
  assert.deepEqual(judgeNumber('1,5 mm', false, lengths, 'm'), { problem: '“1,5 mm” is not a number.' });
  assert.deepEqual(judgeNumber('1,5 [mm]', false, lengths, 'm'), {
    problem: 'Write decimals with a dot: 1.5 [mm]',
    suggestion: '1.5 [mm]',
  });
});

test('A number that is not one is refused with what was typed', () => {
  assert.deepEqual(judgeNumber('', false, [], ''), { problem: 'Type a number.' });
  assert.deepEqual(judgeNumber('-', false, [], ''), { problem: '“-” is not a number.' });
  assert.deepEqual(judgeNumber('abc', false, [], ''), { problem: '“abc” is not a number.' });
  assert.deepEqual(judgeNumber('1.5', true, [], ''), { problem: '“1.5” is not a whole number.' });
});

test('Upper and lower case of units matter', () => {
  assert.deepEqual(judgeNumber('2 MM', false, lengths, 'm'), {
    problem: '“MM” is not “mm”. Upper and lower case matter.',
    suggestion: '2 [mm]',
  });
});

test('A long text is cut without dividing a character', () => {
  assert.equal(shorten('abcdef', 6), 'abcdef');
  assert.equal(shorten('abcdefg', 6), 'abcde…');
  assert.equal(shorten('😀'.repeat(10), 3), '😀😀…');
});
