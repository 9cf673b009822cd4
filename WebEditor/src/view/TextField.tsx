// A box for a number or a text. It belongs to the user until Enter or until it is left: nothing is judged before, and
// nothing that happens meanwhile changes what was typed.
import { useLayoutEffect, useRef, useState } from 'preact/hooks';
import { listValue } from '../model/Lists';
import { judgeNumber, splitQuantity } from '../model/Quantity';
import type { Edit, Param } from '../protocol/Messages';
import type { DocumentStore, Draft } from '../store/DocumentStore';

/** A value that is longer is shown cut, and edited in a box of its own. */
const longText = 2000;

export function isNumber(param: Param): boolean {
  return param.type === 'Real' || param.type === 'Integer';
}

/** The text of the value in the box: without its unit, if that has a place of its own. */
export function fieldText(param: Param): string {
  const value = param.value ?? '';
  return isNumber(param) && hasUnitBox(param) ? splitQuantity(value).number : value;
}

export function hasUnitBox(param: Param): boolean {
  if ((param.units?.length ?? 0) === 0) return false;
  const { unit } = splitQuantity(param.value ?? '');
  return unit === '' || (param.units ?? []).includes(unit);
}

/** The unit that the value has, or would have. */
export function fieldUnit(param: Param, draft: Draft | null): string {
  if (draft?.unit !== undefined) return draft.unit;
  const { unit } = splitQuantity(param.value ?? '');
  return unit !== '' ? unit : (param.units?.[0] ?? '');
}

/** The edit that a draft means, or why it means none. */
export function editOfDraft(param: Param, draft: Draft): { edit: Edit } | { problem: string; suggestion?: string } {
  const set = (value: string): { edit: Edit } => ({
    edit: { kind: 'set-param', path: param.path, name: param.name, value },
  });
  if (param.type.endsWith(' List')) return set(listValue([draft.text]));
  if (!isNumber(param)) return set(draft.text);
  const unit = hasUnitBox(param) ? fieldUnit(param, draft) : '';
  // A parameter without listed units may still have some: the server knows.
  const judged = judgeNumber(draft.text, param.type === 'Integer', param.units ?? [], unit);
  return 'problem' in judged ? judged : set(judged.value);
}

/** Whether Escape takes something back. What is on its way to the server is an edit already, and has Undo. */
export function isTyped(draft: Draft | null): boolean {
  return draft !== null && !draft.isSent;
}

/** The draft after a key, from the one before. */
export function nextDraft(old: Draft | null, param: Param, text: string): Draft {
  const follows = old?.isSent ? old : old?.follows;
  return { text, base: old?.base ?? param.value ?? '', ...(follows ? { follows } : {}) };
}

/** What the field shows while an edit of its value is on its way to the server. Null if the edit is another one. */
export function draftOfEdit(param: Param, edit: Edit): Draft | null {
  if (edit.kind !== 'set-param' || edit.path !== param.path || edit.name !== param.name) return null;
  const value = edit.value ?? '';
  const base = param.value ?? '';
  if (!isNumber(param) || !hasUnitBox({ ...param, value })) return { text: value, base, isSent: true };
  const { number, unit } = splitQuantity(value);
  return { text: number, base, isSent: true, ...(unit === '' ? {} : { unit }) };
}

/** A field in which something is typed. */
export interface EntryProps {
  store: DocumentStore;
  param: Param;
  draft: Draft | null;
  inputId: string;
  describedBy: string;
  isReadOnly: boolean;
  isInvalid: boolean;
  onCommit: () => void;
}

export function TextField({ store, param, draft, inputId, describedBy, isReadOnly, isInvalid, onCommit }: EntryProps) {
  const input = useRef<HTMLInputElement & HTMLTextAreaElement>(null);
  const [isWhole, setWhole] = useState(false);
  const value = fieldText(param);
  const isLong = value.length > longText && !isWhole && draft === null;
  const shown = draft?.text ?? (isLong ? `${value.slice(0, longText)}…` : value);
  const item = { path: param.path, name: param.name };

  // The text is written only when it differs, so the caret stays where it is.
  useLayoutEffect(() => {
    if (input.current && input.current.value !== shown) input.current.value = shown;
  }, [shown]);

  const onInput = (text: string) => {
    const old = store.draft(item).peek();
    if (old === null && text === value) return;
    // A message about the text goes with the next key.
    store.setDraft(item, { ...nextDraft(old, param, text), ...(old?.unit === undefined ? {} : { unit: old.unit }) });
  };
  const onKeyDown = (event: KeyboardEvent) => {
    if (event.key === 'Enter' && !event.isComposing) {
      event.preventDefault();
      onCommit();
    } else if (event.key === 'Tab') {
      // Leaving for the menu of the row is leaving, too. With the pointer it is not: the menu can try what was typed.
      if (store.draft(item).peek()?.problem === undefined) onCommit();
    } else if (event.key === 'Escape' && isTyped(store.draft(item).peek())) {
      event.preventDefault();
      event.stopPropagation();
      store.setDraft(item, null);
    }
  };
  const common = {
    ref: input,
    'data-main': '',
    id: inputId,
    'aria-describedby': describedBy,
    'aria-invalid': isInvalid || undefined,
    'aria-required': param.required,
    autocomplete: 'off',
    autocapitalize: 'off' as const,
    spellcheck: false,
    defaultValue: shown,
    readOnly: isReadOnly || isLong,
    placeholder: param.required ? 'needs a value' : 'no value',
    onInput: (event: { currentTarget: HTMLInputElement | HTMLTextAreaElement }) => onInput(event.currentTarget.value),
    onKeyDown,
  };
  if (isLong || isWhole || value.length > 120) {
    return (
      <div class="long-text">
        <textarea {...common} rows={4} />
        {isLong && (
          <button type="button" class="quiet" onClick={() => setWhole(true)}>
            {`Edit all ${value.length.toLocaleString('en-US')} characters`}
          </button>
        )}
      </div>
    );
  }
  const mode = isNumber(param) ? 'decimal' : 'text';
  return <input {...common} type="text" inputMode={mode} class={isNumber(param) ? 'number' : ''} />;
}
