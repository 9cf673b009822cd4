// The tree of objects, as far as it is known: nodes are filled while the user opens them, and of a long list of
// children only the pages that were looked at.
import type { ChildType, Object as ObjectRecord } from '../protocol/Messages';
import { lastPart } from './Paths';

export const pageSize = 100;
/** More named children of one type than this are behind a row of their own. */
export const mostUngrouped = 12;

export type TypeRange = {
  type: string;
  label: string;
  singleton: boolean;
  start: number;
  count: number;
  open: boolean;
  errors: number;
  warnings: number;
};

export type TreeNode = {
  path: string;
  /** Null until the page that it is on has arrived. */
  record: ObjectRecord | null;
  open: boolean;
  /** Null until the children were asked for. */
  types: TypeRange[] | null;
  children: (string | undefined)[];
  /** The pages of children whose records are outdated or missing. */
  stale: Set<number>;
};

export type TreeRow = {
  key: string;
  level: number;
  /** Counted from 1, among the rows below the same row. */
  position: number;
  size: number;
} & (
  | {
      kind: 'object';
      path: string;
      parent: string;
      index: number;
      expandable: boolean;
      open: boolean /** Its type is named by the row above. */;
      isGrouped: boolean;
    }
  | { kind: 'type'; parent: string; range: TypeRange; open: boolean }
  | { kind: 'missing'; parent: string; index: number }
);

export function newNode(path: string): TreeNode {
  return { path, record: null, open: false, types: null, children: [], stale: new Set() };
}

/** The ranges of the types in the list of children, which has one type after the other. */
export function typeRanges(types: readonly ChildType[], old: readonly TypeRange[] | null): TypeRange[] {
  const ranges: TypeRange[] = [];
  let start = 0;
  for (const type of types) {
    const count = type.presentCount ?? type.present.length;
    if (count > 0) {
      ranges.push({
        type: type.type,
        label: type.label ?? type.type,
        singleton: type.singleton,
        start,
        count,
        open: old?.find((range) => range.type === type.type)?.open ?? false,
        errors: type.errors ?? 0,
        warnings: type.warnings ?? 0,
      });
    }
    start += count;
  }
  return ranges;
}

/** Whether the children of a type are behind a row of their own. */
function hasOwnRow(range: TypeRange): boolean {
  return !range.singleton && range.count > mostUngrouped;
}

/** The rows that are visible with the present state of all nodes, from the top. */
export function treeRows(nodes: ReadonlyMap<string, TreeNode>, root: string): TreeRow[] {
  const rows: TreeRow[] = [];
  type Task =
    | {
        kind: 'object';
        path: string;
        parent: string;
        index: number;
        level: number;
        position: number;
        size: number;
        isGrouped: boolean;
      }
    | { kind: 'rows'; rows: TreeRow[] }
    | { kind: 'children'; node: TreeNode; range: TypeRange; level: number; firstPosition: number; size: number };
  // A stack of its own: models can be deep.
  const tasks: Task[] = [
    { kind: 'object', path: root, parent: '', index: 0, level: 1, position: 1, size: 1, isGrouped: false },
  ];
  for (let task = tasks.pop(); task; task = tasks.pop()) {
    if (task.kind === 'rows') {
      rows.push(...task.rows);
      continue;
    }
    if (task.kind === 'object') {
      const { path, parent, index, level, position, size, isGrouped } = task;
      const node = nodes.get(path);
      const expandable = (node?.record?.children ?? 0) > 0;
      const open = expandable && node?.open === true;
      rows.push({ kind: 'object', key: path, path, parent, index, level, position, size, expandable, open, isGrouped });
      if (!open || !node?.types) continue;
      const total = node.types.reduce((sum, range) => sum + (hasOwnRow(range) ? 1 : range.count), 0);
      const next: Task[] = [];
      let at = 1;
      for (const range of node.types) {
        if (hasOwnRow(range)) {
          const key = `${path}\n${range.type}`;
          const row: TreeRow = {
            kind: 'type',
            key,
            parent: path,
            range,
            open: range.open,
            level: level + 1,
            position: at,
            size: total,
          };
          next.push({ kind: 'rows', rows: [row] });
          if (range.open)
            next.push({ kind: 'children', node, range, level: level + 2, firstPosition: 1, size: range.count });
          at += 1;
        } else {
          next.push({ kind: 'children', node, range, level: level + 1, firstPosition: at, size: total });
          at += range.count;
        }
      }
      for (const one of next.reverse()) tasks.push(one);
      continue;
    }
    const { node, range, level, firstPosition, size } = task;
    for (let i = range.count - 1; i >= 0; i--) {
      const index = range.start + i;
      const position = firstPosition + i;
      const path = node.children[index];
      if (path === undefined) {
        const key = `${node.path}\n${index}`;
        tasks.push({
          kind: 'rows',
          rows: [{ kind: 'missing', key, parent: node.path, index, level, position, size }],
        });
      } else {
        tasks.push({
          kind: 'object',
          path,
          parent: node.path,
          index,
          level,
          position,
          size,
          isGrouped: hasOwnRow(range),
        });
      }
    }
  }
  return rows;
}

/** The row that the arrow to the left leads to: the one that this row is in. */
export function parentRow(rows: readonly { level: number }[], index: number): number {
  const level = rows[index]?.level ?? 1;
  for (let i = index - 1; i >= 0; i--) if ((rows[i]?.level ?? 0) < level) return i;
  return index;
}

/** The next row, around the end, whose text begins with what was typed. */
export function typeAhead<Row>(rows: readonly Row[], from: number, typed: string, text: (row: Row) => string): number {
  const wanted = typed.toLowerCase();
  for (let step = typed.length > 1 ? 0 : 1; step <= rows.length; step++) {
    const at = (from + step) % rows.length;
    const row = rows[at];
    if (row && text(row).toLowerCase().startsWith(wanted)) return at;
  }
  return from;
}

/** What a row shows: the name of an object with a name, the label otherwise. */
export function rowText(row: TreeRow, nodes: ReadonlyMap<string, TreeNode>): string {
  if (row.kind === 'type') return row.range.label;
  if (row.kind === 'missing') return '';
  const record = nodes.get(row.path)?.record;
  if (!record) return lastPart(row.path);
  return record.singleton || record.name === '' ? (record.label ?? record.type) || 'Model' : record.name;
}
