// A list of values that are typed: a box for each item. A comma divides an item, so a whole list can be typed or pasted
// into one box. As in other boxes nothing is judged before Enter, or before the row is left.
import { useLayoutEffect, useRef } from 'preact/hooks';
import { draftItems, listItems, mostItemBoxes, withItem, withoutItem } from '../model/Lists';
import type { Param } from '../protocol/Messages';
import type { Draft } from '../store/DocumentStore';
import { Icon } from './Icon';
import type { EntryProps } from './TextField';

/** Longer lists are typed as one text. */
export function fitsBoxes(param: Param, draft: Draft | null): boolean {
  return param.type.endsWith(' List') && itemsOf(param, draft).length <= mostItemBoxes;
}

/** The texts of the boxes. Without an item there is one empty box. */
function itemsOf(param: Param, draft: Draft | null): string[] {
  const items = draft === null ? listItems(param.value) : draftItems(draft.text);
  return items.length === 0 ? [''] : items;
}

export function ListField({ store, param, draft, inputId, describedBy, isReadOnly, isInvalid, onCommit }: EntryProps) {
  const box = useRef<HTMLDivElement>(null);
  /** The box that gets the focus when it is there. */
  const next = useRef<number | null>(null);
  const items = itemsOf(param, draft);
  const item = { path: param.path, name: param.name };

  const type = (text: string) => {
    const old = store.draft(item).peek();
    store.setDraft(item, { text, base: old?.base ?? param.value ?? '' });
  };
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
    const input = box.current?.querySelectorAll('input')[next.current];
    next.current = null;
    input?.focus();
    input?.setSelectionRange(input.value.length, input.value.length);
  });

  const onKeyDown = (event: KeyboardEvent & { currentTarget: HTMLInputElement }, at: number) => {
    if (event.key === 'Tab' && !event.shiftKey && at === items.length - 1) {
      // Leaving the last box is leaving the list.
      if (store.draft(item).peek()?.problem === undefined) onCommit();
      return;
    }
    if (event.key === 'Enter' && !event.isComposing) onCommit();
    else if (event.key === 'Backspace' && event.currentTarget.value === '' && items.length > 1) remove(at);
    else if (event.key === 'ArrowDown' && at + 1 < items.length) focusBox(at + 1);
    else if (event.key === 'ArrowUp' && at > 0) focusBox(at - 1);
    else if (event.key === 'Escape' && store.draft(item).peek() !== null) {
      event.stopPropagation();
      next.current = 0;
      store.setDraft(item, null);
    } else return;
    event.preventDefault();
  };
  const focusBox = (at: number) => box.current?.querySelectorAll('input')[at]?.focus();

  return (
    <div ref={box} class={`items${param.type === 'String List' ? '' : ' short'}`}>
      {items.map((text, at) => (
        <span key={at} class="item">
          <ItemBox
            text={text}
            id={at === 0 ? inputId : undefined}
            label={`${param.label ?? param.name}, item ${at + 1} of ${items.length}`}
            describedBy={describedBy}
            isReadOnly={isReadOnly}
            isInvalid={isInvalid}
            placeholder={param.units?.[0] === undefined ? 'no value' : `0 [${param.units[0]}]`}
            onInput={(typed) => {
              // What is behind a comma is an item of its own, and typing goes on there.
              const commas = typed.split(',').length - 1;
              if (commas > 0) next.current = at + commas;
              type(items.map((one, i) => (i === at ? typed : one)).join(','));
            }}
            onKeyDown={(event) => onKeyDown(event, at)}
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

function ItemBox({
  text,
  id,
  label,
  describedBy,
  isReadOnly,
  isInvalid,
  placeholder,
  onInput,
  onKeyDown,
}: {
  text: string;
  id: string | undefined;
  label: string;
  describedBy: string;
  isReadOnly: boolean;
  isInvalid: boolean;
  placeholder: string;
  onInput: (text: string) => void;
  onKeyDown: (event: KeyboardEvent & { currentTarget: HTMLInputElement }) => void;
}) {
  const input = useRef<HTMLInputElement>(null);
  // The text is written only when it differs, so the caret stays where it is.
  useLayoutEffect(() => {
    if (input.current && input.current.value !== text) input.current.value = text;
  }, [text]);
  return (
    <input
      ref={input}
      type="text"
      {...(id === undefined ? {} : { id, 'data-main': '' })}
      aria-label={label}
      aria-describedby={describedBy}
      aria-invalid={isInvalid || undefined}
      autocomplete="off"
      autocapitalize="off"
      spellcheck={false}
      defaultValue={text}
      readOnly={isReadOnly}
      placeholder={placeholder}
      onInput={(event) => onInput(event.currentTarget.value)}
      onKeyDown={onKeyDown}
    />
  );
}
