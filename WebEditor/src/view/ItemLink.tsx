// A name that leads to its place.

import { shortPath } from '../model/Paths';
import { shorten } from '../model/Quantity';
import type { Item } from '../protocol/Messages';
import type { DocumentStore } from '../store/DocumentStore';

export function ItemLink({ store, item, isShort }: { store: DocumentStore; item: Item; isShort?: boolean }) {
  const object = shortPath(item.path, store.root);
  const isHere = item.name !== undefined && (isShort || item.path === store.selected.value);
  const text = item.name === undefined ? object : isHere ? item.name : `${object} / ${item.name}`;
  return (
    <button
      type="button"
      class="link item-link"
      title={item.name === undefined ? item.path : `${item.path}/${item.name}`}
      onClick={() => {
        store.preview.value?.decide?.(false);
        void store.select(item.path, item.name);
        store.onLink();
      }}
    >
      {shorten(text, 120)}
    </button>
  );
}
