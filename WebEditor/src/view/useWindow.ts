// Renders only the rows of a long list that are on the screen. A short list is rendered as a whole, so that the
// browser's own search finds everything in it.
import { elementScroll, observeElementOffset, observeElementRect, Virtualizer } from '@tanstack/virtual-core';
import type { RefObject } from 'preact';
import { useEffect, useLayoutEffect, useReducer, useRef } from 'preact/hooks';

/** Lists above this number of rows are windowed. */
export const mostRendered = 200;

export type WindowRow = { index: number; start: number };

export type ListWindow = {
  isWindowed: boolean;
  /** The rows to render. In a windowed list they are placed at their start. */
  rows: WindowRow[];
  size: number;
  /** The first and the last row on the screen. */
  range: [number, number];
  measure: (element: Element | null) => void;
  scrollTo: (index: number) => void;
};

export function useWindow(options: {
  count: number;
  scroll: RefObject<HTMLElement | null>;
  rowSize: (index: number) => number;
  /** The same function as long as the rows are the same: with another one, all places are computed again. */
  rowKey: (index: number) => string;
  /** A row that stays rendered wherever the list is scrolled to: the one with the focus. */
  keep: number;
  /** The space above the list within its scrolling element. */
  margin?: number;
  always?: boolean;
}): ListWindow {
  const { count, scroll, rowSize, rowKey, keep, margin = 0, always = false } = options;
  const [, redraw] = useReducer((n: number) => n + 1, 0);
  const isWindowed = always || count > mostRendered;
  const kept = useRef(keep);
  kept.current = keep;

  const held = useRef<Virtualizer<HTMLElement, Element> | null>(null);
  const settings = {
    count: isWindowed ? count : 0,
    getScrollElement: () => scroll.current,
    estimateSize: rowSize,
    getItemKey: rowKey,
    overscan: 8,
    scrollMargin: margin,
    scrollToFn: elementScroll,
    observeElementRect,
    observeElementOffset,
    rangeExtractor: ({
      startIndex,
      endIndex,
      overscan,
      count: all,
    }: {
      startIndex: number;
      endIndex: number;
      overscan: number;
      count: number;
    }) => {
      const rows: number[] = [];
      for (let i = Math.max(0, startIndex - overscan); i <= Math.min(all - 1, endIndex + overscan); i++) rows.push(i);
      const focused = kept.current;
      if (focused >= 0 && focused < all && !rows.includes(focused)) rows.push(focused);
      return rows.sort((a, b) => a - b);
    },
    onChange: () => redraw(0),
  };
  held.current ??= new Virtualizer<HTMLElement, Element>(settings);
  const virtual = held.current;
  virtual.setOptions(settings);

  useEffect(() => virtual._didMount(), [virtual]);
  useLayoutEffect(() => virtual._willUpdate());

  if (!isWindowed) {
    return {
      isWindowed,
      rows: Array.from({ length: count }, (_, index) => ({ index, start: 0 })),
      size: 0,
      range: [0, count - 1],
      measure: () => {},
      scrollTo: (index) =>
        scroll.current?.querySelector(`[data-index="${index}"]`)?.scrollIntoView({ block: 'nearest' }),
    };
  }
  const range = virtual.range;
  return {
    isWindowed,
    rows: virtual.getVirtualItems().map(({ index, start }) => ({ index, start: start - margin })),
    size: virtual.getTotalSize(),
    range: range ? [range.startIndex, range.endIndex] : [0, Math.min(count - 1, 40)],
    measure: (element) => virtual.measureElement(element),
    scrollTo: (index) => virtual.scrollToIndex(index, { align: 'auto' }),
  };
}
