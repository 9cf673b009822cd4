// Truth values, in the spellings that models use.

const yes = new Set(['yes', 'true', 'on']);
const pairs = [
  ['yes', 'no'],
  ['true', 'false'],
  ['on', 'off'],
] as const;

/** The two words for a truth value, in the spelling that the value has already. */
export function truthWords(value: string | undefined): { value: string; label: string }[] {
  const word = (value ?? '').trim().toLowerCase();
  const pair = pairs.find((both) => both.some((one) => one === word)) ?? pairs[0];
  return pair.map((one) => ({ value: one === word ? (value ?? one) : one, label: yes.has(one) ? 'Yes' : 'No' }));
}
