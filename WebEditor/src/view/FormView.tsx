// The form of one object: its parameters by groups, then its children.
import { useCallback, useEffect, useLayoutEffect, useMemo, useRef, useState } from 'preact/hooks';
import { type FormRow, focusAfterRemoval, layoutOf, rowKey } from '../model/FormLayout';
import { ancestors, lastPart, typeAndName } from '../model/Paths';
import { shorten } from '../model/Quantity';
import { parseQuery } from '../model/Search';
import { count, placeText, waitingText } from '../model/Sentences';
import type { ChildType } from '../protocol/Messages';
import { type DocumentStore, type Form, problemOf } from '../store/DocumentStore';
import { NameDialog } from './Dialogs';
import { Field, rowEstimate } from './Field';
import { Icon } from './Icon';
import { Menu, type MenuItem } from './Menu';
import { mostRendered, useWindow } from './useWindow';

export function FormView({
  store,
  isReadOnly,
  onBack,
}: {
  store: DocumentStore;
  isReadOnly: boolean;
  onBack: () => void;
}) {
  const form = store.form.value;
  const scroll = useRef<HTMLDivElement>(null);
  // Another object begins at its top.
  useLayoutEffect(() => {
    if (scroll.current && form) scroll.current.scrollTop = 0;
  }, [form?.path]);
  if (!form) return <div class="scroll form-scroll" ref={scroll} />;
  const isEditable = !isReadOnly && form.object?.editable !== false;
  return (
    <div class="scroll form-scroll" ref={scroll}>
      <ObjectHeader store={store} form={form} isReadOnly={isReadOnly} onBack={onBack} />
      <Rows key={form.path} store={store} form={form} scroll={scroll} isReadOnly={!isEditable} />
      <Children store={store} form={form} isReadOnly={!isEditable} />
    </div>
  );
}

function ObjectHeader({
  store,
  form,
  isReadOnly,
  onBack,
}: {
  store: DocumentStore;
  form: Form;
  isReadOnly: boolean;
  onBack: () => void;
}) {
  const [dialog, setDialog] = useState<'rename' | 'copy' | null>(null);
  const { object, path } = form;
  const above = ancestors(path, store.root).slice(0, -1);
  const { type, name } = typeAndName(path);
  const title = name !== '' ? name : (object?.label ?? (lastPart(path) || 'Model'));
  const isOptional = object !== null && !object.required && path !== store.root;
  const items = (): MenuItem[] => {
    const list: MenuItem[] = [{ label: 'Why is it here?', hint: 'w', run: () => void store.askWhy({ path }) }];
    if (isReadOnly || !object) return list;
    if (name !== '') {
      list.push({ label: 'Rename', run: () => setDialog('rename') });
      list.push({ label: 'Copy', run: () => setDialog('copy') });
      list.push({
        label: 'Remove',
        isBad: true,
        run: () => void store.commitOrSay([{ kind: 'remove-object', path }], { askFirst: true }),
      });
    } else if (isOptional) {
      list.push({
        label: 'Switch off',
        run: () => void store.commitOrSay([{ kind: 'deactivate-object', path }], { askFirst: true }),
      });
    }
    return list;
  };
  return (
    <header class="object-header">
      <nav aria-label="Path" class="crumbs">
        <button type="button" class="quiet back" onClick={onBack}>
          <Icon name="back" />
          <span>Objects</span>
        </button>
        {above.map((one) => (
          <span key={one}>
            <button type="button" class="link" onClick={() => void store.select(one)}>
              {shorten(lastPart(one) || 'Model', 40)}
            </button>
          </span>
        ))}
        {name !== '' && (
          <span>
            <span class="soft">{type}</span>
          </span>
        )}
      </nav>
      <div class="title-line">
        <h2 tabIndex={-1} id="form-title">
          {shorten(title, 200)}
        </h2>
        <Menu label="More about this object" items={items} />
      </div>
      {object?.description && <p class="object-description">{object.description}</p>}
      {object?.editable === false && <p class="soft">Taken from the model as it is; it cannot be edited.</p>}
      {object?.waiting && <p class="wait-text">{`Waits: ${waitingText(object.waiting)}`}</p>}
      {!object?.present && object && <p class="reason">{object.reason ?? 'This object is not present now.'}</p>}
      {object?.content && <p class="place">{placeText(object.content)}</p>}
      {dialog && (
        <NameDialog
          title={dialog === 'rename' ? `Rename ${title}` : `Copy ${title}`}
          label="New name"
          button={dialog === 'rename' ? 'Rename' : 'Copy'}
          initial={dialog === 'rename' ? name : `${name} copy`}
          option={dialog === 'rename' ? 'Also change the values that name it' : null}
          onClose={() => setDialog(null)}
          onDone={async (text, follow) => {
            if (text.includes('/')) return noSlash;
            const kind = dialog === 'rename' ? ('rename-object' as const) : ('duplicate-object' as const);
            const outcome = await store.commit([{ kind, path, name: text }], { followReferences: follow });
            const problem = problemOf(outcome);
            if (problem) return problem.sentence;
            if (outcome.kind === 'applied' && kind === 'duplicate-object')
              await store.select(`${path.slice(0, path.lastIndexOf(':') + 1)}${text}`);
            return null;
          }}
        />
      )}
    </header>
  );
}

function Rows({
  store,
  form,
  scroll,
  isReadOnly,
}: {
  store: DocumentStore;
  form: Form;
  scroll: { current: HTMLDivElement | null };
  isReadOnly: boolean;
}) {
  const box = useRef<HTMLDivElement>(null);
  const focused = useRef<string | null>(null);
  const before = useRef<FormRow[]>([]);
  const [margin, setMargin] = useState(0);
  const { filters } = parseQuery(store.query.value);
  const { advanced, unavailable } = store.openFolds.value;
  const opensAdvanced = filters.includes('advanced');
  const opensUnavailable = filters.includes('unavailable');
  const rows = useMemo(() => {
    const groups = new Set(form.layout.map((entry) => entry.group ?? ''));
    return layoutOf(form.layout, {
      advanced: opensAdvanced ? groups : advanced,
      unavailable: opensUnavailable ? groups : unavailable,
    });
  }, [form.layout, advanced, unavailable, opensAdvanced, opensUnavailable]);
  const keyAt = useCallback(
    (index: number) => {
      const row = rows[index];
      return row ? rowKey(row) : String(index);
    },
    [rows],
  );
  const target = store.target.value;
  const keepName = target?.name ?? focused.current;
  const window = useWindow({
    count: rows.length,
    scroll,
    rowSize: (index) => (rows[index]?.kind === 'param' ? rowEstimate(form.total) : 44),
    rowKey: keyAt,
    keep: rows.findIndex((row) => row.kind === 'param' && row.name === keepName),
    margin,
    always: form.total > mostRendered,
  });

  useLayoutEffect(() => {
    if (box.current) setMargin(box.current.offsetTop);
  }, [form.object]);

  const focusOn = (name: string): boolean => {
    const row = [...(box.current?.querySelectorAll<HTMLElement>('[data-param]') ?? [])].find(
      (one) => one.dataset.param === name,
    );
    const main = row?.querySelector<HTMLElement>('[data-main]');
    main?.focus({ preventScroll: true });
    row?.scrollIntoView({ block: 'nearest' });
    if (main instanceof HTMLInputElement) main.select();
    return main !== undefined && main !== null;
  };

  // Something elsewhere leads to a parameter. Its row may have to be rendered and its record may have to come first.
  useEffect(() => {
    if (!target) return;
    const index = rows.findIndex((row) => row.kind === 'param' && row.name === target.name);
    if (index < 0) return;
    window.scrollTo(index);
    let left = 40;
    const tryIt = () => {
      if (store.target.peek() !== target) return;
      left -= 1;
      if (focusOn(target.name)) store.target.value = null;
      else if (left > 0) requestAnimationFrame(tryIt);
    };
    tryIt();
  }, [target, rows.length]);

  // A row that leaves with the focus hands it to its neighbour.
  useLayoutEffect(() => {
    const old = before.current;
    before.current = rows;
    const name = focused.current;
    if (name === null || rows.some((row) => row.kind === 'param' && row.name === name)) return;
    if (document.activeElement !== document.body && document.activeElement !== null) return;
    const next = focusAfterRemoval(old, rows, name);
    focused.current = next;
    if (next === null || !focusOn(next)) document.getElementById('form-title')?.focus();
  });

  if (form.layout.length === 0) {
    return (
      <p class="empty">
        {form.childTypes.length === 0 ? 'The rules know nothing in this object.' : 'This object has no parameters.'}
      </p>
    );
  }
  return (
    <section
      ref={box}
      class={`rows${window.isWindowed ? ' windowed' : ''}`}
      aria-label="Parameters"
      style={window.isWindowed ? { height: `${window.size}px` } : undefined}
      onFocusIn={(event) => {
        focused.current = (event.target as HTMLElement).closest<HTMLElement>('[data-param]')?.dataset.param ?? null;
      }}
    >
      {window.rows.map(({ index, start }) => {
        const row = rows[index];
        if (!row) return null;
        return (
          <div
            key={rowKey(row)}
            data-index={index}
            ref={window.isWindowed ? window.measure : undefined}
            style={window.isWindowed ? { transform: `translateY(${start}px)` } : undefined}
            class="row-place"
          >
            <FormRowView store={store} path={form.path} row={row} isReadOnly={isReadOnly} />
          </div>
        );
      })}
    </section>
  );
}

function FormRowView({
  store,
  path,
  row,
  isReadOnly,
}: {
  store: DocumentStore;
  path: string;
  row: FormRow;
  isReadOnly: boolean;
}) {
  if (row.kind === 'group') return <h3 class="group">{row.group}</h3>;
  if (row.kind === 'param') return <Field store={store} path={path} name={row.name} isReadOnly={isReadOnly} />;
  const label = row.fold === 'advanced' ? `Advanced (${row.count})` : `${row.count} unavailable`;
  return (
    <button
      type="button"
      class="fold"
      aria-expanded={row.open}
      onClick={() => store.setFold(row.fold, row.group, !row.open)}
    >
      <Icon name="chevron" />
      <span>{label}</span>
      {row.group !== '' && <span class="hidden-text"> in {row.group}</span>}
    </button>
  );
}

const noSlash = 'A name cannot contain “/”, which divides paths.';
const shownChildren = 12;

function Children({ store, form, isReadOnly }: { store: DocumentStore; form: Form; isReadOnly: boolean }) {
  const [isOpen, setOpen] = useState(false);
  const there = form.childTypes.filter((type) => type.available || type.present.length > 0);
  const absent = form.childTypes.filter((type) => !type.available && type.present.length === 0);
  if (form.childTypes.length === 0) return null;
  return (
    <section class="children" aria-label="Objects below">
      <h3 class="group">Objects</h3>
      {there.map((type) => (
        <ChildTypeView key={type.type} store={store} path={form.path} type={type} isReadOnly={isReadOnly} />
      ))}
      {absent.length > 0 && (
        <>
          <button type="button" class="fold" aria-expanded={isOpen} onClick={() => setOpen(!isOpen)}>
            <Icon name="chevron" />
            <span>{`${absent.length} unavailable`}</span>
            <span class="hidden-text"> objects</span>
          </button>
          {isOpen && absent.map((type) => <AbsentType key={type.type} store={store} path={form.path} type={type} />)}
        </>
      )}
    </section>
  );
}

function AbsentType({ store, path, type }: { store: DocumentStore; path: string; type: ChildType }) {
  const item = { path: `${path}/${type.type}` };
  return (
    <div class="row absent">
      <div class="row-label">
        <span class="label">{type.label ?? type.type}</span>
        {type.description && <p class="description">{type.description}</p>}
      </div>
      <div class="row-control">
        <p class="reason">{type.reason ?? 'Not available now.'}</p>
        {type.singleton && (
          <span class="answers">
            <button type="button" class="quiet" onClick={() => void store.askWhy(item, 'presence')}>
              Why<span class="hidden-text"> {type.type}</span>
            </button>
            <button type="button" class="quiet" onClick={() => void store.askHow(item)}>
              How<span class="hidden-text"> to get {type.type}</span>
            </button>
          </span>
        )}
      </div>
    </div>
  );
}

function ChildTypeView({
  store,
  path,
  type,
  isReadOnly,
}: {
  store: DocumentStore;
  path: string;
  type: ChildType;
  isReadOnly: boolean;
}) {
  const [isAdding, setAdding] = useState(false);
  const total = type.presentCount ?? type.present.length;
  const label = type.label ?? type.type;
  const offers = type.offered;
  const switchOn = async (offer: string) => {
    const isMade = await store.commitOrSay([{ kind: 'activate-object', path: offer }]);
    // Who has gone on to another object stays there.
    if (isMade && store.selected.peek() === path) await store.select(offer);
  };
  return (
    <div class="child-type">
      <div class="row-label">
        <span class="label">{label}</span>
        {!type.singleton && total > 0 && <span class="soft">{` ${total.toLocaleString('en-US')}`}</span>}
        {type.description && <p class="description">{type.description}</p>}
      </div>
      <div class="child-links">
        {type.present.slice(0, shownChildren).map((child) => (
          <button key={child} type="button" class="chip" onClick={() => void store.select(child)}>
            {type.singleton ? 'Open' : shorten(typeAndName(child).name || lastPart(child), 60)}
            {type.singleton && <span class="hidden-text"> {label}</span>}
          </button>
        ))}
        {total > shownChildren && (
          <span class="soft">{`and ${count(total - Math.min(shownChildren, type.present.length), 'more', 'more')} in the tree`}</span>
        )}
        {!isReadOnly &&
          offers.slice(0, shownChildren).map((offer) => (
            <button key={offer} type="button" class="offer" onClick={() => void switchOn(offer)}>
              <Icon name="plus" />
              <span>{type.singleton ? 'Add' : `Add ${shorten(typeAndName(offer).name || lastPart(offer), 40)}`}</span>
              {type.singleton && <span class="hidden-text"> {label}</span>}
            </button>
          ))}
        {type.canAdd && !isReadOnly && (
          <button type="button" class="offer" onClick={() => setAdding(true)}>
            <Icon name="plus" />
            <span>{`Add ${label}`}</span>
          </button>
        )}
      </div>
      {isAdding && (
        <NameDialog
          title={`Add ${label}`}
          label="Name"
          button="Add"
          initial=""
          option={null}
          {...(type.allowedNames
            ? { names: type.allowedNames.filter((name) => !type.present.includes(`${path}/${type.type}:${name}`)) }
            : {})}
          onClose={() => setAdding(false)}
          onDone={async (name) => {
            if (name.includes('/')) return noSlash;
            const added = `${path}/${type.type}:${name}`;
            const outcome = await store.commit([{ kind: 'add-object', path: added }]);
            const problem = problemOf(outcome);
            if (problem) return problem.sentence;
            if (outcome.kind === 'applied') await store.select(added);
            return null;
          }}
        />
      )}
    </div>
  );
}
