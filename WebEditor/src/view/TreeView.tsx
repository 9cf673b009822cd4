// The tree of objects: one stop of the Tab key. Arrows move, Enter shows an object. Only the rows on the screen are
// rendered.
import { useEffect, useLayoutEffect, useRef } from 'preact/hooks';
import { shorten } from '../model/Quantity';
import { count } from '../model/Sentences';
import { rowText, type TreeRow } from '../model/Tree';
import type { DocumentStore } from '../store/DocumentStore';
import { Icon } from './Icon';
import { onTreeKey, type Typed } from './treeKeys';
import { rowsOfPage, useTreeWindow } from './useTreeWindow';

const placeKey = (row: TreeRow) => (row.kind === 'type' ? row.key : `${row.parent}\n${row.index}`);

export function TreeView({ store, onShow }: { store: DocumentStore; onShow: () => void }) {
  const scroll = useRef<HTMLDivElement>(null);
  const typed = useRef<Typed>({ text: '', at: 0 });
  const wantsFocus = useRef(false);
  const rows = store.tree.rows.value;
  const nodes = store.tree.nodes;
  const activeKey = store.tree.active.value;
  // A row that was not loaded yet gets another key when it is.
  const found = rows.findIndex((row) => row.key === activeKey || placeKey(row) === activeKey);
  const active = Math.max(found, 0);
  const window = useTreeWindow(scroll, rows, active);
  const [first, last] = window.range;

  useEffect(() => store.tree.show(first, last), [store, first, last, rows]);
  // An object that is selected elsewhere is brought into view.
  const selected = store.selected.value;
  useEffect(() => {
    const index = store.tree.rows.peek().findIndex((row) => row.key === selected);
    if (index >= 0) window.scrollTo(index);
  }, [selected, rows.length > 0]);

  const loadedKey = rows[found]?.key ?? activeKey;
  useLayoutEffect(() => {
    if (loadedKey === activeKey) return;
    store.tree.active.value = loadedKey;
    // The row that had the focus is gone.
    if (document.activeElement === document.body) wantsFocus.current = true;
  }, [store, loadedKey, activeKey]);
  // A row far away is rendered only when the list has been scrolled there. It gets the focus then.
  useLayoutEffect(() => {
    if (!wantsFocus.current) return;
    const row = scroll.current?.querySelector<HTMLElement>('[role=treeitem][tabindex="0"]');
    if (!row) return;
    wantsFocus.current = false;
    row.focus({ preventScroll: true });
  });

  const moveTo = (index: number) => {
    const row = rows[Math.max(0, Math.min(rows.length - 1, index))];
    if (!row) return;
    store.tree.active.value = row.key;
    wantsFocus.current = true;
    window.scrollTo(rows.indexOf(row));
  };
  const choose = (row: TreeRow) => {
    store.tree.active.value = row.key;
    if (row.kind === 'type') void store.tree.toggle(row, !row.open);
    if (row.kind !== 'object') return;
    void store.select(row.path);
    onShow();
  };
  const onKey = (event: KeyboardEvent) => {
    onTreeKey(event, typed.current, {
      rows,
      active,
      page: rowsOfPage(scroll.current),
      canOpen: (row) => row.kind === 'type' || (row.kind === 'object' && row.expandable),
      isOpen: (row) => row.kind !== 'missing' && row.open,
      text: (row) => rowText(row, nodes),
      moveTo,
      toggle: (row, open) => void store.tree.toggle(row, open),
      choose,
    });
  };

  return (
    <div ref={scroll} class="scroll tree-scroll">
      <div class="tree" role="tree" aria-label="Objects" style={{ height: `${window.size}px` }} onKeyDown={onKey}>
        {window.rows.map(({ index, start }) => {
          const row = rows[index];
          return (
            row && (
              <TreeItem
                key={row.key}
                store={store}
                row={row}
                start={start}
                isActive={index === active}
                isSelected={row.kind === 'object' && row.path === selected}
                onChoose={() => choose(row)}
              />
            )
          );
        })}
      </div>
    </div>
  );
}

function TreeItem({
  store,
  row,
  start,
  isActive,
  isSelected,
  onChoose,
}: {
  store: DocumentStore;
  row: TreeRow;
  start: number;
  isActive: boolean;
  isSelected: boolean;
  onChoose: () => void;
}) {
  const record = row.kind === 'object' ? store.tree.nodes.get(row.path)?.record : null;
  const errors = row.kind === 'type' ? row.range.errors : (record?.errors ?? 0);
  const warnings = row.kind === 'type' ? row.range.warnings : (record?.warnings ?? 0);
  const isSet = row.kind === 'object' && store.ownPaths.value.has(row.path);
  const canOpen = row.kind === 'type' || (row.kind === 'object' && row.expandable);
  const isOpen = canOpen && row.open;
  const text = shorten(rowText(row, store.tree.nodes), 200);
  const isGrouped = row.kind === 'object' && row.isGrouped;
  const type = record && !record.singleton && record.name !== '' && !isGrouped ? (record.label ?? record.type) : '';
  return (
    // biome-ignore lint/a11y/useKeyWithClickEvents: the tree handles the keys of all its rows
    <div
      role="treeitem"
      class={`tree-row${isSelected ? ' selected' : ''}${isSet ? ' set' : ''}`}
      aria-level={row.level}
      aria-posinset={row.position}
      aria-setsize={row.size}
      aria-selected={isSelected}
      aria-expanded={canOpen ? isOpen : undefined}
      tabIndex={isActive ? 0 : -1}
      style={{ transform: `translateY(${start}px)`, paddingLeft: `${8 + (row.level - 1) * 14}px` }}
      onClick={onChoose}
      onFocus={() => {
        store.tree.active.value = row.key;
      }}
    >
      {/* biome-ignore lint/a11y/useKeyWithClickEvents: the arrow keys do this */}
      {/* biome-ignore lint/a11y/noStaticElementInteractions: the row has the role */}
      <span
        class={`twist${isOpen ? ' open' : ''}`}
        onClick={(event) => {
          if (!canOpen) return;
          event.stopPropagation();
          void store.tree.toggle(row, !isOpen);
        }}
      >
        {canOpen && <Icon name="chevron" />}
      </span>
      <span class="tree-name">{row.kind === 'missing' ? '…' : text}</span>
      {type !== '' && <span class="tree-type">{type}</span>}
      {row.kind === 'type' && <span class="tree-type">{row.range.count.toLocaleString('en-US')}</span>}
      {isSet && <span class="hidden-text">has values set by you</span>}
      {errors > 0 && (
        <span class="badge bad" title={count(errors, 'error')}>
          {errors > 999 ? '999+' : errors}
          <span class="hidden-text"> {errors === 1 ? 'error' : 'errors'}</span>
        </span>
      )}
      {errors === 0 && warnings > 0 && (
        <span class="badge wait" title={count(warnings, 'warning')}>
          {warnings > 999 ? '999+' : warnings}
          <span class="hidden-text"> {warnings === 1 ? 'warning' : 'warnings'}</span>
        </span>
      )}
    </div>
  );
}
