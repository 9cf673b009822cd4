// The keys of a tree, as the ARIA Authoring Practices describe them. Moving alone chooses nothing.
import { parentRow, typeAhead } from '../model/Tree';

const typingPause = 700;

export type TreeKeys<Row extends { level: number }> = {
  rows: readonly Row[];
  /** The row that the keyboard is on. */
  active: number;
  /** How many rows a page has. */
  page: number;
  canOpen: (row: Row) => boolean;
  isOpen: (row: Row) => boolean;
  text: (row: Row) => string;
  moveTo: (index: number) => void;
  toggle: (row: Row, open: boolean) => void;
  choose: (row: Row) => void;
};

/** What was typed, and when. One for each tree. */
export type Typed = { text: string; at: number };

/** Whether the key belongs to the tree. */
export function onTreeKey<Row extends { level: number }>(
  event: KeyboardEvent,
  typed: Typed,
  { rows, active, page, canOpen, isOpen, text, moveTo, toggle, choose }: TreeKeys<Row>,
): boolean {
  const row = rows[active];
  if (!row || event.ctrlKey || event.altKey || event.metaKey) return false;
  const opens = canOpen(row);
  const to = {
    ArrowDown: active + 1,
    ArrowUp: active - 1,
    PageDown: active + page,
    PageUp: active - page,
    Home: 0,
    End: rows.length - 1,
  }[event.key];
  if (to !== undefined) {
    moveTo(Math.max(0, Math.min(rows.length - 1, to)));
  } else if (event.key === 'ArrowRight') {
    if (opens && isOpen(row)) moveTo(Math.min(rows.length - 1, active + 1));
    else if (opens) toggle(row, true);
  } else if (event.key === 'ArrowLeft') {
    if (opens && isOpen(row)) toggle(row, false);
    else moveTo(parentRow(rows, active));
  } else if (event.key === 'Enter' || event.key === ' ') {
    choose(row);
  } else if (event.key.length === 1 && /[\p{L}\p{N}]/u.test(event.key)) {
    const now = performance.now();
    typed.text = now - typed.at > typingPause ? event.key : typed.text + event.key;
    typed.at = now;
    moveTo(typeAhead(rows, active, typed.text, text));
  } else {
    // Keys such as "/" and "?" belong to the page.
    return false;
  }
  event.preventDefault();
  event.stopPropagation();
  return true;
}
