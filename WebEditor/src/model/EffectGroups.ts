// The effect of an edit, in the order in which it matters to the user: what was lost first, what appeared last.
import type { Allowed, Effect, Item } from '../protocol/Messages';
import { waitingText } from './Sentences';

export type EffectLine = { item: Item; before?: string; after?: string; note?: string };

export type EffectGroup = {
  key:
    | 'waiting'
    | 'gone'
    | 'deleted'
    | 'changed'
    | 'new'
    | 'created'
    | 'choices'
    | 'bounds'
    | 'defaults'
    | 'units'
    | 'offers'
    | 'noOffers';
  title: string;
  lines: EffectLine[];
  /** The number of all, which is more than the lines when the server has cut the list. */
  total: number;
};

const itemOf = ({ path, name }: { path: string; name?: string }): Item =>
  name === undefined ? { path } : { path, name };

function allowedText(allowed: Allowed): string {
  const values = allowed.subsetValues ?? allowed.allowedValues;
  if (!values) return allowed.allowsAnyValue ? 'any value' : 'nothing';
  const shown = values.slice(0, 6).join(', ');
  const total = allowed.subsetValues ? (allowed.subsetCount ?? values.length) : (allowed.allowedCount ?? values.length);
  return total > 6 ? `${shown} and ${total - 6} more` : shown;
}

function boundsOf(bounds: { lowerBound?: string; upperBound?: string }): string {
  return `${bounds.lowerBound ?? '−∞'} … ${bounds.upperBound ?? '∞'}`;
}

/** The groups that are not empty. A value that the edit itself set is a change like any other. */
export function effectGroups(effect: Effect): EffectGroup[] {
  const cut = effect.cut ?? {};
  const lost = effect.waiting.filter((change) => change.after);
  const gone = effect.values.filter((change) => change.after === undefined);
  const fresh = effect.values.filter((change) => change.before === undefined && change.after !== undefined);
  const changed = effect.values.filter((change) => change.before !== undefined && change.after !== undefined);
  // A cut list of values says only how long all three are together.
  const hiddenValues = (cut.values ?? effect.values.length) - effect.values.length;
  const line = (change: { path: string; name?: string; before?: string; after?: string }): EffectLine => ({
    item: itemOf(change),
    ...(change.before === undefined ? {} : { before: change.before }),
    ...(change.after === undefined ? {} : { after: change.after }),
  });
  const group = (key: EffectGroup['key'], title: string, lines: EffectLine[], hidden = 0): EffectGroup => ({
    key,
    title,
    lines,
    total: lines.length + hidden,
  });
  const hidden = (all: number | undefined, here: number) => (all === undefined ? 0 : all - here);
  const groups = [
    group(
      'waiting',
      'Waiting',
      lost.map((change) => ({
        item: itemOf(change),
        ...(change.after?.value === undefined ? {} : { before: change.after.value }),
        note: change.after ? waitingText(change.after) : '',
      })),
      hidden(cut.waiting, effect.waiting.length),
    ),
    group(
      'deleted',
      'Objects gone',
      effect.objectsDeleted.map((path) => ({ item: { path } })),
      hidden(cut.objectsDeleted, effect.objectsDeleted.length),
    ),
    group('gone', 'Values gone', gone.map(line)),
    group('changed', 'Values changed', changed.map(line), hiddenValues),
    group('new', 'New values', fresh.map(line)),
    group(
      'created',
      'New objects',
      effect.objectsCreated.map((path) => ({ item: { path } })),
      hidden(cut.objectsCreated, effect.objectsCreated.length),
    ),
    group(
      'choices',
      'Choices',
      effect.choices.map((change) => ({
        item: itemOf(change),
        before: allowedText(change.before),
        after: allowedText(change.after),
      })),
      hidden(cut.choices, effect.choices.length),
    ),
    group(
      'bounds',
      'Bounds',
      effect.bounds.map((change) => ({
        item: itemOf(change),
        before: boundsOf(change.before),
        after: boundsOf(change.after),
      })),
      hidden(cut.bounds, effect.bounds.length),
    ),
    group('defaults', 'Defaults', effect.defaults.map(line), hidden(cut.defaults, effect.defaults.length)),
    group('units', 'Units', effect.quantities.map(line), hidden(cut.quantities, effect.quantities.length)),
    group(
      'offers',
      'Now on offer',
      effect.offersGained.map((item) => ({ item })),
      hidden(cut.offersGained, effect.offersGained.length),
    ),
    group(
      'noOffers',
      'No longer on offer',
      effect.offersLost.map((item) => ({ item })),
      hidden(cut.offersLost, effect.offersLost.length),
    ),
  ];
  return groups.filter(({ total }) => total > 0);
}

/** The number of entries of all groups. */
export function effectSize(effect: Effect): number {
  return effectGroups(effect).reduce((sum, { total }) => sum + total, 0);
}
