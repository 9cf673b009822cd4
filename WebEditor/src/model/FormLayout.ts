// The rows of a form: which parameters are under which heading, and what is folded. Made from facts about the
// parameters only, so that a form of 100,000 parameters needs no records.

/** A parameter, as far as the layout depends on it. */
export type LayoutEntry = {
  name: string;
  label?: string;
  group?: string;
  advanced?: boolean;
  /** Present or on offer. */
  available: boolean;
  /** Holds something that the user asked for and that is not in force. Never folded. */
  waiting?: boolean;
};

export type Folds = { advanced: ReadonlySet<string>; unavailable: ReadonlySet<string> };

export type FormRow =
  | { kind: 'group'; group: string }
  | { kind: 'param'; name: string; group: string }
  | { kind: 'fold'; fold: 'advanced' | 'unavailable'; group: string; count: number; open: boolean };

/**
 * The rows in the order of the rules. Parameters of one group are together, where the first of them is. Within a group
 * the usual ones come first, then the advanced ones, then those that are not available.
 */
export function layoutOf(entries: readonly LayoutEntry[], folds: Folds): FormRow[] {
  const groups = new Map<string, { usual: string[]; advanced: string[]; unavailable: string[] }>();
  for (const entry of entries) {
    const key = entry.group ?? '';
    let group = groups.get(key);
    if (!group) {
      group = { usual: [], advanced: [], unavailable: [] };
      groups.set(key, group);
    }
    if (entry.waiting) group.usual.push(entry.name);
    else if (!entry.available) group.unavailable.push(entry.name);
    else if (entry.advanced) group.advanced.push(entry.name);
    else group.usual.push(entry.name);
  }
  const rows: FormRow[] = [];
  for (const [group, { usual, advanced, unavailable }] of groups) {
    if (group !== '') rows.push({ kind: 'group', group });
    const add = (names: string[]) => {
      for (const name of names) rows.push({ kind: 'param', name, group });
    };
    add(usual);
    if (advanced.length > 0) {
      const open = folds.advanced.has(group);
      rows.push({ kind: 'fold', fold: 'advanced', group, count: advanced.length, open });
      if (open) add(advanced);
    }
    if (unavailable.length > 0) {
      const open = folds.unavailable.has(group);
      rows.push({ kind: 'fold', fold: 'unavailable', group, count: unavailable.length, open });
      if (open) add(unavailable);
    }
  }
  return rows;
}

export function rowKey(row: FormRow): string {
  switch (row.kind) {
    case 'group':
      return `group ${row.group}`;
    case 'param':
      return `param ${row.name}`;
    case 'fold':
      return `${row.fold} ${row.group}`;
  }
}

/**
 * Where the focus goes when the row of `name` has left the form: to the next parameter of its group that is still
 * there, otherwise to the one before it, otherwise nowhere (the heading takes it).
 */
export function focusAfterRemoval(before: readonly FormRow[], after: readonly FormRow[], name: string): string | null {
  const at = before.findIndex((row) => row.kind === 'param' && row.name === name);
  const old = before[at];
  if (!old) return null;
  const still = new Set(after.flatMap((row) => (row.kind === 'param' ? [row.name] : [])));
  const inGroup = (row: FormRow | undefined): row is FormRow & { kind: 'param' } =>
    row?.kind === 'param' && row.group === old.group && still.has(row.name);
  for (let i = at + 1; i < before.length; i++) {
    const row = before[i];
    if (inGroup(row)) return row.name;
  }
  for (let i = at - 1; i >= 0; i--) {
    const row = before[i];
    if (inGroup(row)) return row.name;
  }
  return null;
}
