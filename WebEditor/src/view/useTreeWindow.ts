// The rows of a tree that are on the screen. All rows have the same height.
import type { RefObject } from 'preact';
import { useCallback } from 'preact/hooks';
import { type ListWindow, useWindow } from './useWindow';

const rowHeight = 30;

/** `active` is the row that the keyboard is on. */
export function useTreeWindow(
  scroll: RefObject<HTMLElement | null>,
  rows: readonly { key: string }[],
  active: number,
): ListWindow {
  return useWindow({
    count: rows.length,
    scroll,
    rowSize: () => rowHeight,
    rowKey: useCallback((index: number) => rows[index]?.key ?? String(index), [rows]),
    keep: active,
    always: true,
  });
}

/** How many rows the keys for a page move by. */
export function rowsOfPage(scroll: HTMLElement | null): number {
  return Math.max(1, Math.floor((scroll?.clientHeight ?? 300) / rowHeight) - 1);
}
