// A list of values that are typed: a box for each item. A comma divides an item, so a whole list can be typed or pasted
// into one box. As in other boxes nothing is judged before Enter, or before the row is left. A truth value is chosen.
import { useLayoutEffect, useRef } from 'preact/hooks';
import { draftItems, listItems, mostItemBoxes, withItem, withoutItem } from '../model/Lists';
import { truthWords } from '../model/Truth';
import type { Param } from '../protocol/Messages';
import type { Draft } from '../store/DocumentStore';
import { Icon } from './Icon';
import { type EntryProps, isTyped, nextDraft } from './TextField';

/** Longer lists are typed as one text. */
export function fitsBoxes(param: Param, draft: Draft | null): boolean {
  return param.type.endsWith(' List') && itemsOf(param, draft).length <= mostItemBoxes;
}

/** The texts of the boxes. Without an item there is one empty box. */
function itemsOf(param: Param, draft: Draft | null): string[] {
  const items = draft === null ? listItems(param.value) : draftItems(draft.text);
  return items.length === 0 ? [''] : items;
}

type ItemElement = HTMLInputElement | HTMLSelectElement;

export function ListField({ store, param, draft, inputId, describedBy, isReadOnly, isInvalid, onCommit }: EntryProps) {
  const box = useRef<HTMLDivElement>(null);
  /** The box that gets the focus when it is there. */
  const next = useRef<number | null>(null);
  const items = itemsOf(param, draft);
  const item = { path: param.path, name: param.name };

  const type = (text: string) => {
    store.setDraft(item, nextDraft(store.draft(item).peek(), param, text));
  };
  const boxAt = (at: number) => box.current?.querySelectorAll<ItemElement>('input, select')[at];
  const add = (at: number) => {
    if (isReadOnly) return;
    next.current = at;
    type(withItem(items, at, ''));
  };
  const remove = (at: number) => {
    if (isReadOnly) return;
    next.current = Math.max(0, at - 1);
    type(withoutItem(items, at));
  };
  useLayoutEffect(() => {
    if (next.current === null) return;
    const input = boxAt(next.current);
    next.current = null;
    input?.focus();
    if (input instanceof HTMLInputElement) input.setSelectionRange(input.value.length, input.value.length);
  });

  const onKeyDown = (event: KeyboardEvent & { currentTarget: ItemElement }, at: number) => {
    // The arrows of a choice choose.
    const moves = event.currentTarget instanceof HTMLInputElement;
    if (event.key === 'Tab' && !event.shiftKey && at === items.length - 1) {
      // Leaving the last box is leaving the list.
      if (store.draft(item).peek()?.problem === undefined) onCommit();
      return;
    }
    if (event.key === 'Enter' && !event.isComposing) onCommit();
    else if (event.key === 'Backspace' && event.currentTarget.value === '' && items.length > 1) remove(at);
    else if (moves && event.key === 'ArrowDown' && at + 1 < items.length) boxAt(at + 1)?.focus();
    else if (moves && event.key === 'ArrowUp' && at > 0) boxAt(at - 1)?.focus();
    else if (event.key === 'Escape' && isTyped(store.draft(item).peek())) {
      event.stopPropagation();
      next.current = 0;
      store.setDraft(item, null);
    } else return;
    event.preventDefault();
  };
  return (
    <div ref={box} class={`items${param.type === 'String List' ? '' : ' short'}`}>
      {items.map((text, at) => (
        <span key={at} class="item">
          <ItemBox
            text={text}
            words={param.type === 'Logical List' ? truthWords(text.trim() || items.find((one) => one !== '')) : null}
            isReadOnly={isReadOnly}
            placeholder={param.units?.[0] === undefined ? 'no value' : `0 [${param.units[0]}]`}
            onText={(typed) => {
              // What is behind a comma is an item of its own, and typing goes on there.
              const commas = typed.split(',').length - 1;
              if (commas > 0) next.current = at + commas;
              type(items.map((one, i) => (i === at ? typed : one)).join(','));
            }}
            attributes={{
              ...(at === 0 ? { id: inputId, 'data-main': '' } : {}),
              'aria-label': `${param.label ?? param.name}, item ${at + 1} of ${items.length}`,
              'aria-describedby': describedBy,
              'aria-invalid': isInvalid || undefined,
              onKeyDown: (event) => onKeyDown(event, at),
            }}
          />
          {!isReadOnly && (items.length > 1 || text !== '') && (
            <button
              type="button"
              class="quiet item-remove"
              tabIndex={-1}
              title="Remove this item"
              onClick={() => remove(at)}
            >
              <Icon name="close" />
              <span class="hidden-text">{`Remove item ${at + 1} of ${param.name}`}</span>
            </button>
          )}
        </span>
      ))}
      {!isReadOnly && (
        <button type="button" class="offer item-add" onClick={() => add(items.length)}>
          <Icon name="plus" />
          <span>
            Item
            <span class="hidden-text"> of {param.name}</span>
          </span>
        </button>
      )}
    </div>
  );
}

interface ItemAttributes {
  id?: string;
  'data-main'?: string;
  'aria-label': string;
  'aria-describedby': string;
  'aria-invalid': true | undefined;
  onKeyDown: (event: KeyboardEvent & { currentTarget: ItemElement }) => void;
}

function ItemBox({
  text,
  words,
  isReadOnly,
  placeholder,
  onText,
  attributes,
}: {
  text: string;
  /** The only values that an item can have, or null if it is typed. */
  words: { value: string; label: string }[] | null;
  isReadOnly: boolean;
  placeholder: string;
  onText: (text: string) => void;
  attributes: ItemAttributes;
}) {
  const input = useRef<HTMLInputElement>(null);
  // The text is written only when it differs, so the caret stays where it is.
  useLayoutEffect(() => {
    if (input.current && input.current.value !== text) input.current.value = text;
  }, [text]);
  if (words) {
    const value = text.trim();
    const isKnown = value === '' || words.some((word) => word.value === value);
    return (
      <select
        {...attributes}
        value={value}
        disabled={isReadOnly}
        onChange={(event) => onText(event.currentTarget.value)}
      >
        <option value="">Choose</option>
        {words.map((word) => (
          <option key={word.value} value={word.value}>
            {word.label}
          </option>
        ))}
        {!isKnown && <option value={value}>{value}</option>}
      </select>
    );
  }
  return (
    <input
      {...attributes}
      ref={input}
      type="text"
      autocomplete="off"
      autocapitalize="off"
      spellcheck={false}
      defaultValue={text}
      readOnly={isReadOnly}
      placeholder={placeholder}
      onInput={(event) => onText(event.currentTarget.value)}
    />
  );
}
