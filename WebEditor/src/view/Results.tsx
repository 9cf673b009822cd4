// What a search or a filter has found: the tree with the hits and the objects above them. It stays as it is until the
// search changes, so that a row does not vanish while it is worked on.
import { useLayoutEffect, useMemo, useRef, useState } from 'preact/hooks';
import { type HitRow, hitRows } from '../model/FilteredTree';
import { keyOf, lastPart, typeAndName } from '../model/Paths';
import { shorten } from '../model/Quantity';
import { matchRange } from '../model/Search';
import { count } from '../model/Sentences';
import type { DocumentStore, Hits } from '../store/DocumentStore';
import { Icon } from './Icon';
import { onTreeKey, type Typed } from './treeKeys';
import { rowsOfPage, useTreeWindow } from './useTreeWindow';

export function Results({ store, hits, onShow }: { store: DocumentStore; hits: Hits; onShow: () => void }) {
  if (hits.list.length === 0) {
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
  return <HitTree key={store.query.value} store={store} hits={hits} onShow={onShow} />;
}

function HitTree({ store, hits, onShow }: { store: DocumentStore; hits: Hits; onShow: () => void }) {
  const scroll = useRef<HTMLDivElement>(null);
  const typed = useRef<Typed>({ text: '', at: 0 });
  const wantsFocus = useRef(false);
  const [closed, setClosed] = useState<ReadonlySet<string>>(new Set());
  const rows = useMemo(
    () => hitRows(hits.list, store.root, closed, (path) => store.tree.orderBelow(path)),
    [hits, closed, store],
  );
  // The best hit comes first in the list, wherever it is in the tree.
  const [activeKey, setActive] = useState(hits.list[0] ? keyOf(hits.list[0].item) : '');
  const active = Math.max(
    0,
    rows.findIndex((row) => row.key === activeKey),
  );
  const window = useTreeWindow(scroll, rows, active);
  useLayoutEffect(() => window.scrollTo(active), []);
  // A row far away is rendered only when the list has been scrolled there. It gets the focus then.
  useLayoutEffect(() => {
    if (!wantsFocus.current) return;
    const row = scroll.current?.querySelector<HTMLElement>('[role=treeitem][tabindex="0"]');
    if (row?.dataset.key !== activeKey) return;
    wantsFocus.current = false;
    row.focus({ preventScroll: true });
  });

  const toggle = (row: HitRow, open: boolean) => {
    const next = new Set(closed);
    if (open) next.delete(row.key);
    else next.add(row.key);
    setClosed(next);
  };
  const choose = (row: HitRow) => {
    setActive(row.key);
    void store.select(row.item.path, row.item.name);
    onShow();
  };
  const onKey = (event: KeyboardEvent) => {
    if (event.key === 'Escape') {
      void store.search('');
      document.getElementById('search')?.focus();
      return;
    }
    onTreeKey(event, typed.current, {
      rows,
      active,
      page: rowsOfPage(scroll.current),
      canOpen: (row) => row.expandable,
      isOpen: (row) => row.open,
      text: (row) => row.item.name ?? (typeAndName(row.item.path).name || lastPart(row.item.path)),
      moveTo: (index) => {
        setActive(rows[index]?.key ?? '');
        wantsFocus.current = true;
        window.scrollTo(index);
      },
      toggle,
      choose,
    });
  };
  return (
    <div class="scroll tree-scroll" ref={scroll}>
      {hits.total > hits.list.length && (
        <p class="soft tree-note">{`The first ${count(hits.list.length, 'hit')} of ${hits.isMore ? 'more' : hits.total.toLocaleString('en-US')}`}</p>
      )}
      <div class="tree" role="tree" aria-label="Hits" style={{ height: `${window.size}px` }} onKeyDown={onKey}>
        {window.rows.map(({ index, start }) => {
          const row = rows[index];
          return (
            row && (
              <HitItem
                key={row.key}
                store={store}
                row={row}
                text={hits.text}
                start={start}
                isActive={index === active}
                onChoose={() => choose(row)}
                onFocus={() => setActive(row.key)}
                onToggle={() => toggle(row, !row.open)}
              />
            )
          );
        })}
      </div>
    </div>
  );
}

function HitItem({
  store,
  row,
  text,
  start,
  isActive,
  onChoose,
  onFocus,
  onToggle,
}: {
  store: DocumentStore;
  row: HitRow;
  text: string;
  start: number;
  isActive: boolean;
  onChoose: () => void;
  onFocus: () => void;
  onToggle: () => void;
}) {
  const { item, hits, level, position, size, expandable, open, below } = row;
  const { type, name } = typeAndName(item.path);
  const shown = shorten(item.name ?? (name || type || 'Model'), 200);
  const range = hits.length > 0 ? matchRange(shown, text) : null;
  const note = hits.map((hit) => hit.note).join(' · ');
  const hint = [...new Set(hits.map((hit) => hit.hint ?? hit.note))].join(' · ');
  const isAbsent = hits.some((hit) => hit.isAbsent);
  const isSelected = item.name === undefined && item.path === store.selected.value;
  return (
    // biome-ignore lint/a11y/useKeyWithClickEvents: the tree handles the keys of all its rows
    <div
      role="treeitem"
      class={`tree-row${isSelected ? ' selected' : ''}${hits.length === 0 || isAbsent ? ' above' : ''}`}
      data-key={row.key}
      aria-level={level}
      aria-posinset={position}
      aria-setsize={size}
      aria-selected={isSelected}
      aria-expanded={expandable ? open : undefined}
      tabIndex={isActive ? 0 : -1}
      title={isAbsent ? 'not present' : hint === '' ? undefined : shorten(hint, 600)}
      style={{ transform: `translateY(${start}px)`, paddingLeft: `${8 + (level - 1) * 14}px` }}
      onClick={onChoose}
      onFocus={onFocus}
    >
      {/* biome-ignore lint/a11y/useKeyWithClickEvents: the arrow keys do this */}
      {/* biome-ignore lint/a11y/noStaticElementInteractions: the row has the role */}
      <span
        class={`twist${open ? ' open' : ''}`}
        onClick={(event) => {
          if (!expandable) return;
          event.stopPropagation();
          onToggle();
        }}
      >
        {expandable && <Icon name="chevron" />}
      </span>
      <span class="tree-name">
        {range ? (
          <>
            {shown.slice(0, range[0])}
            <mark>{shown.slice(range[0], range[1])}</mark>
            {shown.slice(range[1])}
          </>
        ) : (
          shorten(shown, 200)
        )}
      </span>
      {item.name === undefined && name !== '' && <span class="tree-type">{type}</span>}
      {isAbsent && <span class="hidden-text">not present</span>}
      {note !== '' && <span class="tree-type">{shorten(note, 120)}</span>}
      {expandable && !open && (
        <span class="badge">
          {below.toLocaleString('en-US')}
          <span class="hidden-text">{below === 1 ? ' hit below' : ' hits below'}</span>
        </span>
      )}
    </div>
  );
}
