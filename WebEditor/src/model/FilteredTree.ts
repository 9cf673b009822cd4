// The tree of a search: the hits, and the objects above them. It is made from the hits alone, so a large model need not
// be read for it.
import type { Item } from '../protocol/Messages';
import { ancestors, isAtOrBelow, keyOf, lastPart, parentOf, typeAndName } from './Paths';

/** `note` is short and stands in the row, `hint` is longer. */
export type Hit = { item: Item; note: string; hint?: string; isAbsent?: boolean };

export type HitRow = {
  key: string;
  item: Item;
  /** The hits of this item, or none for an object that is only above some. */
  hits: readonly Hit[];
  level: number;
  /** Counted from 1, among the rows below the same row. */
  position: number;
  size: number;
  expandable: boolean;
  open: boolean;
  /** The number of hits below. */
  below: number;
};

/** What is known of the order of objects: the types below an object, and the objects as far as they were read. */
export type KnownOrder = (path: string) => { types: readonly string[]; children: ReadonlyMap<string, number> };

type Node = { path: string; hits: Hit[]; params: Map<string, Hit[]>; children: string[]; below: number };

/** The rows from the top. `closed` are the keys of the rows that the user has closed. */
export function hitRows(
  hits: readonly Hit[],
  root: string,
  closed: ReadonlySet<string>,
  orderBelow: KnownOrder,
): HitRow[] {
  const nodes = new Map<string, Node>();
  for (const hit of hits) {
    const { path, name } = hit.item;
    // Something outside of what is edited can have a finding. It stands at the top.
    const above = isAtOrBelow(path, root) ? ancestors(path, root) : [path];
    for (const one of above) {
      let node = nodes.get(one);
      if (!node) {
        node = { path: one, hits: [], params: new Map(), children: [], below: 0 };
        nodes.set(one, node);
        if (one !== above[0]) nodes.get(parentOf(one))?.children.push(one);
      }
      if (one !== path || name !== undefined) node.below += 1;
    }
    const own = nodes.get(path);
    if (name === undefined) own?.hits.push(hit);
    else own?.params.set(name, [...(own.params.get(name) ?? []), hit]);
  }

  const rows: HitRow[] = [];
  const tops = [...nodes.keys()].filter((path) => path === root || !isAtOrBelow(path, root));
  type Task = { path: string; level: number; position: number; size: number };
  // A stack of its own: models can be deep.
  const tasks: Task[] = tops.map((path, i) => ({ path, level: 1, position: i + 1, size: tops.length })).reverse();
  for (let task = tasks.pop(); task; task = tasks.pop()) {
    const { path, level, position, size } = task;
    const node = nodes.get(path);
    if (!node) continue;
    const key = keyOf({ path });
    const expandable = node.params.size > 0 || node.children.length > 0;
    const open = expandable && !closed.has(key);
    rows.push({ key, item: { path }, hits: node.hits, level, position, size, expandable, open, below: node.below });
    if (!open) continue;
    const inside = node.params.size + node.children.length;
    let at = 0;
    for (const [name, own] of node.params) {
      at += 1;
      const item = { path, name };
      const place = { level: level + 1, position: at, size: inside };
      rows.push({ key: keyOf(item), item, hits: own, ...place, expandable: false, open: false, below: 0 });
    }
    const children = sorted(node.children, orderBelow(path));
    for (let i = children.length - 1; i >= 0; i--) {
      const child = children[i];
      if (child !== undefined) tasks.push({ path: child, level: level + 1, position: at + i + 1, size: inside });
    }
  }
  return rows;
}

/** In the order of the tree where it is known, otherwise by type and name. */
function sorted(paths: readonly string[], { types, children }: ReturnType<KnownOrder>): string[] {
  const isKnown = paths.every((path) => children.has(path));
  const typeAt = (path: string) => {
    const at = types.indexOf(typeAndName(path).type);
    return at < 0 ? types.length : at;
  };
  return [...paths].sort((a, b) =>
    isKnown
      ? (children.get(a) ?? 0) - (children.get(b) ?? 0)
      : typeAt(a) - typeAt(b) || lastPart(a).localeCompare(lastPart(b), 'en', { numeric: true }),
  );
}
