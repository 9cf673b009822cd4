// Controls for values that are chosen. What a choice would do is shown before it is made: while the pointer rests on
// it, or while the keyboard is on it.
import { useCallback, useEffect, useId, useLayoutEffect, useMemo, useRef, useState } from 'preact/hooks';
import { keyOf } from '../model/Paths';
import { shorten } from '../model/Quantity';
import { ranked } from '../model/Search';
import type { Edit, Param } from '../protocol/Messages';
import type { DocumentStore } from '../store/DocumentStore';
import { Icon } from './Icon';
import { TrialText, useTrial } from './Trial';
import { useWindow } from './useWindow';

const restingTime = 350;
const mostRadios = 3;
const mostRadioLetters = 32;
/** Longer lists get a box to search in. */
const mostUnsearched = 10;

const setTo = (param: Param, value: string): Edit => ({ kind: 'set-param', path: param.path, name: param.name, value });

export function fitsRadios(values: readonly string[]): boolean {
  return values.length <= mostRadios && values.join('').length <= mostRadioLetters && values.length > 0;
}

/** A few short values side by side. Arrows move, Space and Enter choose: moving alone would already edit. */
export function Radios({
  store,
  param,
  values,
  labelledBy,
  describedBy,
  isReadOnly,
  onChoose,
}: {
  store: DocumentStore;
  param: Param;
  values: { value: string; label: string }[];
  labelledBy: string;
  describedBy: string;
  isReadOnly: boolean;
  onChoose: (value: string) => void;
}) {
  const group = useRef<HTMLDivElement>(null);
  const [looked, setLooked] = useState<string | null>(null);
  const checked = values.findIndex(({ value }) => value === param.value);
  const wanted = looked !== null && looked !== param.value && !isReadOnly ? looked : null;
  const result = useTrial(store, wanted === null ? null : [setTo(param, wanted)], restingTime);

  const onKey = (event: KeyboardEvent) => {
    const all = [...(group.current?.querySelectorAll<HTMLElement>('[role=radio]') ?? [])];
    const at = all.indexOf(event.target as HTMLElement);
    const step = { ArrowRight: 1, ArrowDown: 1, ArrowLeft: -1, ArrowUp: -1 }[event.key];
    if (step === undefined || at < 0) return;
    all[(at + step + all.length) % all.length]?.focus();
    event.preventDefault();
  };
  return (
    <div class="radios-box">
      <div
        ref={group}
        class="radios"
        role="radiogroup"
        aria-labelledby={labelledBy}
        aria-describedby={describedBy}
        aria-required={param.required}
        onKeyDown={onKey}
        onPointerLeave={() => setLooked(null)}
        onBlurCapture={() => setLooked(null)}
      >
        {values.map(({ value, label }, i) => (
          // biome-ignore lint/a11y/useSemanticElements: a radio input would be checked by moving to it
          <button
            key={value}
            type="button"
            role="radio"
            aria-checked={i === checked}
            aria-disabled={isReadOnly}
            tabIndex={i === Math.max(checked, 0) ? 0 : -1}
            data-main={i === Math.max(checked, 0) ? '' : undefined}
            onPointerEnter={() => setLooked(value)}
            onFocus={() => setLooked(value)}
            onClick={() => {
              setLooked(null);
              if (i !== checked && !isReadOnly) onChoose(value);
            }}
          >
            {label}
          </button>
        ))}
      </div>
      {wanted !== null && result && (
        <div class="popover">
          <p class="popover-title">{`${values.find(({ value }) => value === wanted)?.label ?? wanted} would do this`}</p>
          <TrialText result={result} self={keyOf({ path: param.path, name: param.name })} root={store.root} />
        </div>
      )}
    </div>
  );
}

/** A list that opens below its button. With `chosen` several values can be chosen. */
export function ChoiceList({
  store,
  param,
  values,
  total,
  chosen,
  labelledBy,
  describedBy,
  isReadOnly,
  isInvalid,
  valueWith,
  onChoose,
}: {
  store: DocumentStore;
  param: Param;
  values: readonly string[];
  /** The number of all values; more than `values` has when the list is cut. */
  total: number;
  chosen: readonly string[] | null;
  labelledBy: string;
  describedBy: string;
  isReadOnly: boolean;
  isInvalid: boolean;
  /** The value that the parameter gets when this one is chosen. */
  valueWith: (chosen: string) => string;
  onChoose: (value: string) => void;
}) {
  const [isOpen, setOpen] = useState(false);
  const [typed, setTyped] = useState('');
  const [all, setAll] = useState<readonly string[]>(values);
  const [at, setAt] = useState(0);
  const button = useRef<HTMLButtonElement>(null);
  const popup = useRef<HTMLDivElement>(null);
  const scroll = useRef<HTMLDivElement>(null);
  const id = useId();
  const hasSearch = total > mostUnsearched;
  const hits = useMemo(() => (typed.trim() === '' ? all : ranked(all, typed).map(({ name }) => name)), [all, typed]);
  const current = hits[Math.min(at, hits.length - 1)];
  const window = useWindow({
    count: hits.length,
    scroll,
    rowSize: () => 30,
    rowKey: useCallback((index: number) => hits[index] ?? String(index), [hits]),
    keep: at,
    always: true,
  });
  const next = isOpen && current !== undefined ? valueWith(current) : null;
  const wanted = next !== param.value ? next : null;
  const result = useTrial(store, wanted === null ? null : [setTo(param, wanted)], 150);

  const open = () => {
    if (isReadOnly) return;
    setTyped('');
    setAll(values);
    setAt(Math.max(0, values.indexOf(chosen?.[0] ?? param.value ?? '')));
    setOpen(true);
  };
  const close = () => {
    setOpen(false);
    button.current?.focus();
  };
  const choose = (value: string) => {
    onChoose(value);
    if (chosen === null) close();
  };

  useLayoutEffect(() => {
    const box = popup.current;
    if (!isOpen || !box) return;
    const bottom = box.closest('.scroll')?.getBoundingClientRect().bottom ?? innerHeight;
    box.classList.toggle('above', box.getBoundingClientRect().bottom > Math.min(bottom, innerHeight));
    box.querySelector<HTMLElement>('[data-keys]')?.focus({ preventScroll: true });
  }, [isOpen]);
  useEffect(() => {
    if (isOpen) window.scrollTo(at);
  }, [isOpen, at]);
  useEffect(() => {
    if (!isOpen) return;
    const outside = (event: Event) => {
      if (
        event.target instanceof Node &&
        !popup.current?.contains(event.target) &&
        !button.current?.contains(event.target)
      )
        setOpen(false);
    };
    document.addEventListener('pointerdown', outside);
    return () => document.removeEventListener('pointerdown', outside);
  }, [isOpen]);
  useEffect(() => {
    if (!isOpen || values.length >= total) return;
    // The rest of a long list is read when somebody looks at it.
    let isCurrent = true;
    void (async () => {
      const rest = [...values];
      while (isCurrent && rest.length < total) {
        const { list } = await store.connection.call('allowedValues', {
          document: store.document,
          path: param.path,
          name: param.name,
          offset: rest.length,
          subset: param.allowed?.subsetValues !== undefined,
        });
        if (list.length === 0) break;
        rest.push(...list);
        if (isCurrent) setAll([...rest]);
      }
    })().catch(() => {});
    return () => {
      isCurrent = false;
    };
  }, [isOpen, values, total, store, param.path, param.name]);

  const onKey = (event: KeyboardEvent) => {
    const page = 8;
    const last = hits.length - 1;
    const to = { ArrowDown: at + 1, ArrowUp: at - 1, PageDown: at + page, PageUp: at - page }[event.key];
    if (to !== undefined) {
      setAt(Math.max(0, Math.min(last, to)));
    } else if (event.key === 'Home' && !hasSearch) {
      setAt(0);
    } else if (event.key === 'End' && !hasSearch) {
      setAt(last);
    } else if (event.key === 'Enter' || (event.key === ' ' && !hasSearch)) {
      if (current !== undefined) choose(current);
    } else if (event.key === 'Escape') {
      close();
    } else if (event.key === 'Tab') {
      setOpen(false);
      button.current?.focus();
      return;
    } else if (!hasSearch && event.key.length === 1 && !event.ctrlKey) {
      const found = hits.findIndex((value, i) => i > at && value.toLowerCase().startsWith(event.key.toLowerCase()));
      setAt(
        found >= 0
          ? found
          : Math.max(
              0,
              hits.findIndex((value) => value.toLowerCase().startsWith(event.key.toLowerCase())),
            ),
      );
    } else {
      return;
    }
    event.preventDefault();
    event.stopPropagation();
  };
  const shown = chosen === null ? (param.value ?? '') : chosen.join(', ');
  const listProps = {
    id,
    role: 'listbox',
    'aria-labelledby': labelledBy,
    'aria-multiselectable': chosen !== null || undefined,
  } as const;
  const activeId = hits.length > 0 ? `${id}-${at}` : undefined;

  return (
    <div class="choice">
      <button
        ref={button}
        type="button"
        class={`choice-button${isInvalid ? ' invalid' : ''}`}
        data-main
        aria-haspopup="listbox"
        aria-expanded={isOpen}
        aria-labelledby={`${labelledBy} ${id}-value`}
        aria-describedby={describedBy}
        aria-disabled={isReadOnly}
        onClick={() => (isOpen ? setOpen(false) : open())}
        onKeyDown={(event) => {
          if (isOpen || (event.key !== 'ArrowDown' && event.key !== 'ArrowUp')) return;
          open();
          event.preventDefault();
        }}
      >
        <span id={`${id}-value`} class={shown === '' ? 'placeholder' : ''}>
          {shown === '' ? 'Choose' : shorten(shown, 200)}
        </span>
        <Icon name="down" />
      </button>
      {isOpen && (
        <div ref={popup} class="popup">
          {hasSearch && (
            <input
              class="popup-search"
              data-keys
              role="combobox"
              aria-label="Search the values"
              aria-expanded="true"
              aria-controls={id}
              aria-activedescendant={activeId}
              placeholder={`Search ${total.toLocaleString('en-US')} values`}
              value={typed}
              onInput={(event) => {
                setTyped(event.currentTarget.value);
                setAt(0);
              }}
              onKeyDown={onKey}
            />
          )}
          <div
            ref={scroll}
            class="popup-scroll"
            {...listProps}
            {...(hasSearch
              ? {}
              : { 'data-keys': '', tabIndex: 0, 'aria-activedescendant': activeId, onKeyDown: onKey })}
          >
            <div role="presentation" class="popup-list" style={{ height: `${window.size}px` }}>
              {window.rows.map(({ index, start }) => {
                const value = hits[index] ?? '';
                const isChosen = chosen === null ? value === param.value : chosen.includes(value);
                return (
                  // biome-ignore lint/a11y/useKeyWithClickEvents: the list has the keys
                  // biome-ignore lint/a11y/useFocusableInteractive: the list has the focus
                  <div
                    key={value}
                    id={`${id}-${index}`}
                    role="option"
                    class={`option${index === at ? ' active' : ''}`}
                    aria-selected={isChosen}
                    aria-posinset={index + 1}
                    aria-setsize={hits.length}
                    style={{ transform: `translateY(${start}px)` }}
                    onPointerMove={() => setAt(index)}
                    onClick={() => choose(value)}
                  >
                    <span class="option-check">{isChosen && <Icon name="check" />}</span>
                    <span>{shorten(value, 300)}</span>
                  </div>
                );
              })}
            </div>
            {hits.length === 0 && <p class="popup-empty">Nothing found</p>}
          </div>
          <div class="popup-trial">
            {chosen !== null && current !== undefined && (
              <p class="popover-title">
                {chosen.includes(current)
                  ? `Without ${shorten(current)} this would happen`
                  : `With ${shorten(current)} this would happen`}
              </p>
            )}
            {wanted !== null ? (
              <TrialText result={result} self={keyOf({ path: param.path, name: param.name })} root={store.root} />
            ) : (
              <p class="trial soft">This is the value now.</p>
            )}
          </div>
        </div>
      )}
    </div>
  );
}
