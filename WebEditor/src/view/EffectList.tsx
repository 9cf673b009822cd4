// The net effect of an edit. Counts come first, every group opens, and what the user has lost is never folded.
import { useState } from 'preact/hooks';
import { type EffectGroup, type EffectLine, effectGroups } from '../model/EffectGroups';
import { keyOf, shortPath } from '../model/Paths';
import { shownValue } from '../model/Sentences';
import type { Effect, Item } from '../protocol/Messages';
import type { DocumentStore } from '../store/DocumentStore';
import { Icon } from './Icon';
import { ItemLink } from './ItemLink';

const shownAtOnce = 6;
const shownAtMost = 200;

export function EffectList({ store, effect }: { store: DocumentStore; effect: Effect }) {
  const groups = effectGroups(effect);
  if (groups.length === 0) return <p class="soft">Nothing has changed.</p>;
  return (
    <div class="effects">
      {groups.map((group) => (
        <Group key={group.key} store={store} group={group} />
      ))}
    </div>
  );
}

function Group({ store, group }: { store: DocumentStore; group: EffectGroup }) {
  const isMain = group.key === 'waiting' || group.key === 'deleted';
  const [isOpen, setOpen] = useState(isMain || group.total <= shownAtOnce);
  const [most, setMost] = useState(isMain ? shownAtMost : shownAtOnce * 4);
  const shown = group.lines.slice(0, most);
  return (
    <section class={`effect-group ${group.key}`}>
      <button type="button" class="fold" aria-expanded={isOpen} onClick={() => setOpen(!isOpen)}>
        <Icon name="chevron" />
        <span>{group.title}</span>
        <span class="soft">{group.total.toLocaleString('en-US')}</span>
      </button>
      {isOpen && (
        <ul>
          {shown.map((line, i) => (
            <Line key={keyOf(line.item)} store={store} line={line} above={shown[i - 1]?.item} />
          ))}
          {group.lines.length > shown.length && (
            <li>
              <button type="button" class="quiet" onClick={() => setMost(most + shownAtMost)}>
                {`Show ${Math.min(shownAtMost, group.lines.length - shown.length)} more`}
              </button>
            </li>
          )}
          {group.total > group.lines.length && group.lines.length <= shown.length && (
            <li class="soft">{`and ${(group.total - group.lines.length).toLocaleString('en-US')} that are not listed`}</li>
          )}
        </ul>
      )}
    </section>
  );
}

function Line({ store, line, above }: { store: DocumentStore; line: EffectLine; above: Item | undefined }) {
  const { before, after, note, item } = line;
  // The object is named once above its parameters.
  const isNamed = item.name === undefined || above?.path === item.path || item.path === store.selected.value;
  return (
    <li>
      {!isNamed && <span class="line-object">{shortPath(item.path, store.root)}</span>}
      <ItemLink store={store} item={item} isShort />
      {(before !== undefined || after !== undefined) && (
        <span class="change">
          {before !== undefined && <span class={after === undefined ? '' : 'old'}>{shownValue(before)}</span>}
          {before !== undefined && after !== undefined && (
            <span class="arrow">
              <span aria-hidden="true"> → </span>
              <span class="hidden-text"> becomes </span>
            </span>
          )}
          {after !== undefined && <span>{shownValue(after)}</span>}
        </span>
      )}
      {note !== undefined && note !== '' && <span class="note">{note}</span>}
    </li>
  );
}
