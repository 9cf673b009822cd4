// What a search or a filter has found, in the place of the tree. The list stays as it is until the search changes, so
// that a row does not vanish while it is worked on.
import { useCallback, useRef, useState } from 'preact/hooks';
import { keyOf, shortPath } from '../model/Paths';
import { shorten } from '../model/Quantity';
import { matchRange } from '../model/Search';
import type { DocumentStore, Hit } from '../store/DocumentStore';
import { useWindow } from './useWindow';

const noHits: Hit[] = [];

export function Results({ store, onShow }: { store: DocumentStore; onShow: () => void }) {
  const scroll = useRef<HTMLDivElement>(null);
  const [at, setAt] = useState(0);
  const hits = store.hits.value;
  const list = hits?.list ?? noHits;
  const window = useWindow({
    count: list.length,
    scroll,
    rowSize: (index) => (list[index]?.group === list[index - 1]?.group ? 46 : 74),
    rowKey: useCallback((index: number) => `${index} ${list[index] ? keyOf(list[index].item) : ''}`, [list]),
    keep: at,
    always: true,
  });
  if (!hits) return null;
  const show = (hit: Hit) => {
    void store.select(hit.item.path, hit.item.name);
    onShow();
  };
  const onKey = (event: KeyboardEvent) => {
    const to = { ArrowDown: at + 1, ArrowUp: at - 1, Home: 0, End: list.length - 1 }[event.key];
    if (to === undefined) return;
    const next = Math.max(0, Math.min(list.length - 1, to));
    setAt(next);
    window.scrollTo(next);
    requestAnimationFrame(() =>
      scroll.current?.querySelector<HTMLElement>('[tabindex="0"]')?.focus({ preventScroll: true }),
    );
    event.preventDefault();
  };
  if (list.length === 0) {
    return (
      <div class="empty">
        <p>Nothing found.</p>
        {hits.nearest !== '' && (
          <button type="button" onClick={() => void store.search(hits.nearest)}>
            {`Did you mean ${shorten(hits.nearest)}?`}
          </button>
        )}
      </div>
    );
  }
  return (
    <div class="scroll tree-scroll" ref={scroll}>
      <ul class="results" aria-label="Hits" style={{ height: `${window.size}px` }} onKeyDown={onKey}>
        {window.rows.map(({ index, start }) => {
          const hit = list[index];
          if (!hit) return null;
          const isFirst = hit.group !== list[index - 1]?.group;
          const name = hit.item.name ?? shortPath(hit.item.path, store.root);
          const range = matchRange(name, hits.text);
          return (
            <li key={`${index} ${keyOf(hit.item)}`} style={{ transform: `translateY(${start}px)` }}>
              {isFirst && <span class="results-group">{hit.group}</span>}
              <button
                type="button"
                class="result"
                tabIndex={index === at ? 0 : -1}
                onFocus={() => setAt(index)}
                onClick={() => show(hit)}
              >
                <span class="result-name">
                  {range ? (
                    <>
                      {name.slice(0, range[0])}
                      <mark>{name.slice(range[0], range[1])}</mark>
                      {name.slice(range[1])}
                    </>
                  ) : (
                    shorten(name, 200)
                  )}
                </span>
                <span class="result-note">
                  {[hit.item.name === undefined ? '' : shortPath(hit.item.path, store.root), shorten(hit.note, 120)]
                    .filter((text) => text !== '')
                    .join(' · ')}
                </span>
              </button>
            </li>
          );
        })}
      </ul>
    </div>
  );
}
