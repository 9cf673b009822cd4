// The order of hits, and the words of a search. Both are pure functions of the text, so that the same text always
// finds the same.

export type Rank = 'exact' | 'prefix' | 'word' | 'substring' | 'subsequence';

const order: readonly Rank[] = ['exact', 'prefix', 'word', 'substring', 'subsequence'];

/** How `name` matches `text`, or null. Case and white space at the ends do not matter. */
export function rankOf(name: string, text: string): Rank | null {
  const wanted = text.trim().toLowerCase();
  if (wanted === '') return null;
  const all = name.toLowerCase();
  if (all === wanted) return 'exact';
  if (all.startsWith(wanted)) return 'prefix';
  for (let at = all.indexOf(wanted); at > 0; at = all.indexOf(wanted, at + 1)) {
    if (/[^\p{L}\p{N}]/u.test(all[at - 1] ?? '')) return 'word';
  }
  if (all.includes(wanted)) return 'substring';
  let next = 0;
  for (const letter of all) if (letter === wanted[next]) next += 1;
  return next >= wanted.length ? 'subsequence' : null;
}

/** The names that match, the best first. Equal ranks stay in the given order. */
export function ranked(names: readonly string[], text: string): { name: string; rank: Rank }[] {
  const hits: { name: string; rank: Rank }[] = [];
  for (const name of names) {
    const rank = rankOf(name, text);
    if (rank) hits.push({ name, rank });
  }
  return hits.sort((a, b) => order.indexOf(a.rank) - order.indexOf(b.rank));
}

export type Filter = 'set' | 'changed' | 'waiting' | 'finding' | 'unavailable' | 'advanced';

export const filters: readonly Filter[] = ['set', 'changed', 'waiting', 'finding', 'unavailable', 'advanced'];

export type Query = { filters: Filter[]; text: string };

/** Words such as "@set" are filters, everything else is text. An unknown "@word" is text, too. */
export function parseQuery(typed: string): Query {
  const found = new Set<Filter>();
  const rest: string[] = [];
  for (const word of typed.trim().split(/\s+/)) {
    const filter = filters.find((one) => `@${one}` === word.toLowerCase());
    if (filter) found.add(filter);
    else if (word !== '') rest.push(word);
  }
  return { filters: [...found], text: rest.join(' ') };
}

/** The same search with a filter switched. */
export function toggleFilter(typed: string, filter: Filter): string {
  const { filters: chosen, text } = parseQuery(typed);
  const next = chosen.includes(filter) ? chosen.filter((one) => one !== filter) : [...chosen, filter];
  return [...next.map((one) => `@${one}`), text].filter((part) => part !== '').join(' ');
}

/** The part of `name` that matches, for emphasis: its begin and its end. Null for a subsequence. */
export function matchRange(name: string, text: string): [number, number] | null {
  const wanted = text.trim().toLowerCase();
  const lower = name.toLowerCase();
  if (wanted === '' || lower.length !== name.length) return null;
  const ranges: number[] = [];
  for (let at = lower.indexOf(wanted); at >= 0; at = lower.indexOf(wanted, at + 1)) ranges.push(at);
  const best = ranges.find((at) => at === 0 || /[^\p{L}\p{N}]/u.test(lower[at - 1] ?? '')) ?? ranges[0];
  return best === undefined ? null : [best, best + wanted.length];
}
