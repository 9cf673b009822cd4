// One parameter of a form.
import type { ComponentChildren } from 'preact';
import { useEffect, useId, useState } from 'preact/hooks';
import { listItems, listValue } from '../model/Lists';
import { judgeNumber, shorten } from '../model/Quantity';
import { boundsText, editText, originText, shownValue, waitingText } from '../model/Sentences';
import { truthWords } from '../model/Truth';
import type { Edit, Finding, Param } from '../protocol/Messages';
import {
  type DocumentStore,
  type Draft,
  longForm,
  type Outcome,
  type Problem,
  problemOf,
} from '../store/DocumentStore';
import { ChoiceList, fitsRadios, Radios } from './Choice';
import { Icon } from './Icon';
import { fitsBoxes, ListField } from './ListField';
import { Menu, type MenuItem } from './Menu';
import { draftOfEdit, editOfDraft, fieldText, fieldUnit, hasUnitBox, isNumber, TextField } from './TextField';

export function Field({
  store,
  path,
  name,
  isReadOnly,
}: {
  store: DocumentStore;
  path: string;
  name: string;
  isReadOnly: boolean;
}) {
  useEffect(() => store.hold(path, name), [store, path, name]);
  const param = store.record(path, name).value;
  if (!param) return <div class="row row-empty" data-param={name} />;
  if (param.waiting && !param.present) return <WaitingField store={store} param={param} />;
  if (!param.available) return <AbsentField store={store} param={param} />;
  if (!param.present) return <OfferedField store={store} param={param} isReadOnly={isReadOnly} />;
  return <PresentField store={store} param={param} isReadOnly={isReadOnly} />;
}

function Row({
  param,
  labelId,
  kind,
  mark,
  menu,
  children,
  onLeave,
  inputId,
}: {
  param: Param;
  labelId: string;
  kind: string;
  mark?: ComponentChildren;
  menu: ComponentChildren;
  children: ComponentChildren;
  /** The focus goes to another row, or out of the form. */
  onLeave?: () => void;
  /** The box that the label belongs to, if there is one. */
  inputId?: string;
}) {
  const label = param.label ?? param.name;
  const named = { id: labelId, class: 'label', ...(label === param.name ? {} : { title: param.name }) };
  return (
    // biome-ignore lint/a11y/useSemanticElements: a fieldset for each row would be read out as a group of groups
    <div
      class={`row ${kind}`}
      data-param={param.name}
      role="group"
      aria-labelledby={labelId}
      onFocusOut={(event) => {
        const next = event.relatedTarget;
        // A banner asks about the document as a whole. With one more edit, an earlier server's edits could not come back.
        const staysOpen = next instanceof Element && (event.currentTarget.contains(next) || next.closest('.banners'));
        if (!staysOpen) onLeave?.();
      }}
    >
      <div class="row-label">
        {inputId === undefined ? (
          <span {...named}>{shorten(label, 120)}</span>
        ) : (
          <label for={inputId} {...named}>
            {shorten(label, 120)}
          </label>
        )}
        {param.required && param.present && (
          <span class="required" title="required">
            <span aria-hidden="true">*</span>
            <span class="hidden-text"> required</span>
          </span>
        )}
        {mark}
        {param.description && <p class="description">{param.description}</p>}
      </div>
      <div class="row-control">{children}</div>
      <div class="row-menu">{menu}</div>
    </div>
  );
}

function Why({ store, param, isMain }: { store: DocumentStore; param: Param; isMain?: boolean }) {
  const item = { path: param.path, name: param.name };
  return (
    <span class="answers">
      <button
        type="button"
        class="quiet"
        data-main={isMain ? '' : undefined}
        onClick={() => void store.askWhy(item, 'presence')}
      >
        Why
        <span class="hidden-text"> {param.name}</span>
      </button>
      <button type="button" class="quiet" onClick={() => void store.askHow(item)}>
        How
        <span class="hidden-text"> to get {param.name}</span>
      </button>
    </span>
  );
}

function AbsentField({ store, param }: { store: DocumentStore; param: Param }) {
  const id = useId();
  return (
    <Row param={param} labelId={id} kind="absent" menu={null}>
      <p class="reason">{param.reason ?? 'Not available now.'}</p>
      <Why store={store} param={param} isMain />
    </Row>
  );
}

function WaitingField({ store, param }: { store: DocumentStore; param: Param }) {
  const id = useId();
  const { waiting } = param;
  if (!waiting) return null;
  const drop: Edit = { kind: 'deactivate-param', path: param.path, name: param.name };
  return (
    <Row
      param={param}
      labelId={id}
      kind="waiting"
      mark={<Mark kind="waiting" />}
      menu={
        <Menu
          label={`More about ${param.name}`}
          items={() => [
            {
              label: 'Why',
              hint: 'w',
              run: () => void store.askWhy({ path: param.path, name: param.name }, 'presence'),
            },
            { label: 'How to get it', run: () => void store.askHow({ path: param.path, name: param.name }) },
            { label: 'Switch off, so that it does not come back', run: () => void store.commitOrSay([drop]) },
          ]}
        />
      }
    >
      <p class="waiting-value">{shownValue(waiting.value)}</p>
      <p class="reason">{`Waits: ${waitingText(waiting)}`}</p>
      <Why store={store} param={param} isMain />
    </Row>
  );
}

/** Whether the user is still where an edit began. The focus is nowhere when the button that had it is gone. */
function hasFocusStill(store: DocumentStore, { path, name }: Param): boolean {
  const at = document.activeElement;
  const row = at?.closest<HTMLElement>('[data-param]')?.dataset.param;
  return store.form.peek()?.path === path && (at === null || at === document.body || row === name);
}

/** A problem that its field cannot show, because the form shows another object by now. */
function sayElsewhere(store: DocumentStore, param: Param, problem: Problem | null): void {
  if (problem && store.selected.peek() !== param.path)
    store.announce(`${param.label ?? param.name}: ${problem.sentence}`);
}

function OfferedField({ store, param, isReadOnly }: { store: DocumentStore; param: Param; isReadOnly: boolean }) {
  const id = useId();
  const [problem, setProblem] = useState('');
  const on: Edit = { kind: 'activate-param', path: param.path, name: param.name };
  const switchOn = async () => {
    if (isReadOnly) return;
    const outcome = await store.commit([on]);
    setProblem(problemOf(outcome)?.sentence ?? '');
    if (outcome.kind === 'applied' && hasFocusStill(store, param)) store.target.value = { name: param.name };
    else sayElsewhere(store, param, problemOf(outcome));
  };
  return (
    <Row
      param={param}
      labelId={id}
      kind="offered"
      menu={<Menu label={`More about ${param.name}`} items={() => commonItems(store, param, [on])} />}
    >
      <button type="button" class="offer" data-main aria-disabled={isReadOnly} onClick={() => void switchOn()}>
        <Icon name="plus" />
        <span>
          Add
          <span class="hidden-text"> {param.name}</span>
        </span>
        {param.defaultValue !== undefined && <span class="soft">{`default ${shownValue(param.defaultValue)}`}</span>}
      </button>
      {problem !== '' && <p class="problem">{problem}</p>}
    </Row>
  );
}

function Mark({ kind }: { kind: 'changed' | 'waiting' }) {
  if (kind === 'waiting') {
    return (
      <span class="mark mark-waiting" title="waiting: kept, and not in force">
        <Icon name="clock" />
        <span class="hidden-text">waiting</span>
      </span>
    );
  }
  return (
    <span class="mark mark-changed" title="different from the opened model">
      <span class="hidden-text">different from the opened model</span>
    </span>
  );
}

function commonItems(store: DocumentStore, param: Param, trial: Edit[]): MenuItem[] {
  const item = { path: param.path, name: param.name };
  const items: MenuItem[] = [
    {
      label: param.present ? 'Why has it this value?' : 'Why is it like this?',
      hint: 'w',
      run: () => void store.askWhy(item, param.present ? 'value' : 'presence'),
    },
  ];
  if (param.present)
    items.push({ label: 'Why did the last edit change it?', run: () => void store.askWhy(item, 'last-edit') });
  items.push({ label: 'Try it: what would change?', hint: 't', run: () => void showTrial(store, trial) });
  return items;
}

/** Shows what edits would do, and lets the user decide. */
export async function showTrial(store: DocumentStore, edits: Edit[]): Promise<void> {
  store.preview.value = { edits, result: null, decide: null };
  const result = await store.tryEdits(edits, true);
  if (store.preview.value?.edits !== edits) return;
  store.preview.value = {
    edits,
    result,
    decide: (isWanted) => {
      store.preview.value = null;
      if (isWanted) void commitTried(store, edits);
    },
  };
}

async function commitTried(store: DocumentStore, edits: Edit[]): Promise<void> {
  if (!(await store.commitOrSay(edits))) return;
  for (const { kind, path, name } of edits)
    if (kind === 'set-param' && name !== undefined) store.setDraft({ path, name }, null);
}

/** Whether the draft says what the field has already. */
function hasTextOf(param: Param, { text }: Draft): boolean {
  if (!param.type.endsWith(' List')) return text === fieldText(param);
  return listValue([text]) === listValue([param.value ?? '']);
}

/** Commits the draft of a field, if there is one. */
export async function commitDraft(store: DocumentStore, param: Param): Promise<void> {
  const item = { path: param.path, name: param.name };
  const draft = store.draft(item).peek();
  if (draft === null || draft.isSent) return;
  if (hasTextOf(param, draft) && (draft.unit === undefined || draft.unit === fieldUnit(param, null))) {
    store.setDraft(item, null);
    return;
  }
  const wanted = editOfDraft(param, draft);
  if ('problem' in wanted) {
    const { problem: sentence, suggestion } = wanted;
    store.setDraft(item, { ...draft, problem: { sentence, ...(suggestion === undefined ? {} : { suggestion }) } });
    return;
  }
  const { follows: _follows, ...meant } = draft;
  const sent: Draft = { ...meant, isSent: true };
  store.setDraft(item, sent);
  settle(store, param, sent, await store.commit([wanted.edit], { askFirst: true }));
}

const keptText = 'Your text is kept; press Enter to set it.';

/** What becomes of a draft when the server has answered. */
function settle(store: DocumentStore, param: Param, sent: Draft, outcome: Outcome): void {
  const item = { path: param.path, name: param.name };
  const problem = problemOf(outcome, keptText);
  sayElsewhere(store, param, problem);
  if (store.draft(item).peek() !== sent) {
    followOwnEdit(store, param, sent, outcome);
    return;
  }
  const { isSent: _isSent, ...draft } = sent;
  // Where only the text is wrong, nobody has changed the value.
  const base = outcome.kind === 'refused' ? valueNow(store, param, draft.base) : draft.base;
  store.setDraft(item, problem ? { ...draft, base, problem } : null);
}

function valueNow(store: DocumentStore, { path, name }: Param, otherwise: string): string {
  const record = store.record(path, name).peek();
  return record === null ? otherwise : (record.value ?? '');
}

/**
 * Somebody has typed on while the answer to an edit was on its way. The new text is meant for the new value. `sent` is
 * null for an edit that was no draft.
 */
function followOwnEdit(store: DocumentStore, param: Param, sent: Draft | null, outcome: Outcome): void {
  const item = { path: param.path, name: param.name };
  const now = store.draft(item).peek();
  if (now === null || now.isSent || (now.follows ?? sent) !== sent) return;
  const { follows: _follows, ...draft } = now;
  const record = store.record(param.path, param.name).peek();
  const isMade = outcome.kind === 'applied';
  const isSame = isMade && record !== null && draft.unit === undefined && hasTextOf(record, draft);
  store.setDraft(item, isSame ? null : { ...draft, base: isMade ? valueNow(store, param, draft.base) : draft.base });
}

/**
 * What the last review says about a value: not about the value before, and not that it is out of its bounds, which is
 * known without a review.
 */
function findingsAt(store: DocumentStore, { path, name, value, outOfBounds }: Param): Finding[] {
  const review = store.review.value;
  const isOld = (review?.revision ?? 0) < store.state.peek().revision;
  return (review?.list ?? []).filter((one) => {
    if (one.path !== path || one.name !== name) return false;
    if (isOld && one.value !== undefined && one.value !== value) return false;
    return outOfBounds === undefined || !one.message.includes(outOfBounds);
  });
}

function PresentField({ store, param, isReadOnly }: { store: DocumentStore; param: Param; isReadOnly: boolean }) {
  const id = useId();
  const hintId = `${id}-hint`;
  const problemId = `${id}-problem`;
  const item = { path: param.path, name: param.name };
  const draft = store.draft(item).value;
  const [problem, setProblem] = useState<Problem | null>(null);
  const [kept, setKept] = useState<string | null>(null);
  const isFixed = param.origin === 'override' || isReadOnly;
  const shownProblem = draft?.problem ?? problem;
  const findings = findingsAt(store, param);
  const { outOfBounds } = param;
  const isInvalid =
    shownProblem !== null || outOfBounds !== undefined || findings.some((one) => one.severity === 'error');
  const describedBy = `${hintId} ${problemId}`;

  const make = async (edit: Edit): Promise<Outcome> => {
    setProblem(null);
    setKept(null);
    const outcome = await store.commit([edit], { askFirst: true });
    setProblem(problemOf(outcome));
    sayElsewhere(store, param, problemOf(outcome));
    return outcome;
  };
  const set = async (value: string): Promise<boolean> => {
    const outcome = await make({ kind: 'set-param', ...item, value });
    followOwnEdit(store, param, null, outcome);
    return outcome.kind === 'applied';
  };
  // The new value shows at once, so a second choice of several values begins from the first.
  const change = async (edit: Edit) => {
    const sent = draftOfEdit(param, edit);
    if (sent) store.setDraft(item, sent);
    const outcome = await make(edit);
    if (sent && store.draft(item).peek() === sent) store.setDraft(item, null);
    else followOwnEdit(store, param, sent, outcome);
  };
  const chooseUnit = async (unit: string) => {
    const now = fieldUnit(param, draft);
    const typed = (text: string, base: string) => store.setDraft(item, { text, base, unit });
    const number = fieldText(param);
    if (draft !== null || number === '') return typed(draft?.text ?? '', draft?.base ?? param.value ?? '');
    try {
      const { value } = await store.connection.call('convert', {
        document: store.document,
        value: `${number} [${now}]`,
        units: unit,
      });
      // Who types meanwhile has chosen the unit of the new number.
      const meanwhile = store.draft(item).peek();
      if (meanwhile !== null) return typed(meanwhile.text, meanwhile.base);
      if ((await set(value ?? `${number} [${unit}]`)) && value !== null) setKept(`${number} [${unit}]`);
    } catch {
      setProblem({ sentence: 'The server does not answer, so the unit is as before.' });
    }
  };

  const reset =
    param.valueInModel !== undefined && param.valueInModel !== param.value
      ? { value: param.valueInModel, text: `Reset to ${shownValue(param.valueInModel)}` }
      : param.valueInModel === undefined && param.defaultValue !== undefined && param.defaultValue !== param.value
        ? { value: param.defaultValue, text: `Reset to ${shownValue(param.defaultValue)}` }
        : null;
  const trial = (): Edit[] => {
    const wanted = draft === null ? null : editOfDraft(param, draft);
    if (wanted && 'edit' in wanted) return [wanted.edit];
    if (reset) return [{ kind: 'set-param', ...item, value: reset.value }];
    return [{ kind: 'set-param', ...item, value: param.value ?? '' }];
  };
  const items = (): MenuItem[] => {
    const list = commonItems(store, param, trial());
    if (reset && !isFixed)
      list.push({ label: reset.text, run: () => void change({ kind: 'set-param', ...item, value: reset.value }) });
    if (
      param.defaultValue !== undefined &&
      param.defaultValue !== param.value &&
      param.defaultValue !== reset?.value &&
      !isFixed
    ) {
      const value = param.defaultValue;
      list.push({
        label: `Set the default, ${shownValue(value)}`,
        run: () => void change({ kind: 'set-param', ...item, value }),
      });
    }
    if (!param.required && !isReadOnly)
      list.push({
        label: 'Remove',
        run: () => {
          store.setDraft(item, null);
          void change({ kind: 'deactivate-param', ...item });
        },
      });
    return list;
  };

  const bounds = boundsText(param);
  const isElsewhere = draft !== null && !draft.isSent && !draft.follows && draft.base !== (param.value ?? '');
  return (
    <Row
      param={param}
      labelId={id}
      kind={`present${param.origin === 'user' ? ' set' : ''}`}
      mark={(param.valueInModel ?? param.defaultValue) !== param.value && <Mark kind="changed" />}
      {...(usesTextBox(param) ? { inputId: inputIdOf(id) } : {})}
      menu={<Menu label={`More about ${param.name}`} items={items} />}
      onLeave={() => {
        // A text that was refused stays as it is, one that someone else has overtaken waits for a decision, and one
        // that is tried is not to be set yet.
        if (draft === null || draft.problem || isElsewhere || store.preview.peek() !== null) return;
        void commitDraft(store, param);
      }}
    >
      <Control
        store={store}
        param={param}
        draft={draft}
        labelId={id}
        describedBy={describedBy}
        isReadOnly={isFixed}
        isInvalid={isInvalid}
        onChoose={(value) => void change({ kind: 'set-param', ...item, value })}
        onCommit={() => {
          setKept(null);
          void commitDraft(store, param);
        }}
        onUnit={(unit) => void chooseUnit(unit)}
      />
      <div id={problemId} class="problem-place" aria-live="polite">
        {shownProblem && (
          <ProblemText
            store={store}
            problem={shownProblem}
            isReadOnly={isReadOnly}
            onUse={(edit) => void change(edit)}
            onSuggestion={(value) => {
              const judged = judgeNumber(value, param.type === 'Integer', param.units ?? [], fieldUnit(param, draft));
              if ('value' in judged) void change({ kind: 'set-param', ...item, value: judged.value });
            }}
          />
        )}
        {!shownProblem && outOfBounds !== undefined && <p class="problem">{`The value ${outOfBounds}.`}</p>}
        {!shownProblem &&
          findings.map((one) => (
            <p key={one.message} class={one.severity === 'error' ? 'problem' : 'reason'}>
              {one.message}
            </p>
          ))}
      </div>
      {isElsewhere && (
        <p class="elsewhere">
          {`Now ${shownValue(param.value)}, by another edit.`}
          <button type="button" class="quiet" onClick={() => store.setDraft(item, null)}>
            Take it
          </button>
          <button
            type="button"
            class="quiet"
            onClick={() => store.setDraft(item, { ...draft, base: param.value ?? '' })}
          >
            Keep mine
          </button>
        </p>
      )}
      <p class="hint" id={hintId}>
        {isFixed && param.origin === 'override' && <Icon name="lock" />}
        <span>
          {[
            originText(param),
            bounds,
            param.type.endsWith(' List') && usesTextBox(param) && !fitsBoxes(param, draft)
              ? 'items separated by commas'
              : '',
          ]
            .filter((text) => text !== '')
            .join(' · ')}
        </span>
        {param.waiting && (
          <span class="wait-text">{`${shownValue(param.waiting.value)} waits: ${waitingText(param.waiting)}`}</span>
        )}
        {kept !== null && draft === null && (
          <button type="button" class="link" onClick={() => void set(kept)}>
            {`Converted. Keep ${kept} instead`}
          </button>
        )}
        {reset && param.origin === 'user' && !isFixed && kept === null && (
          <button
            type="button"
            class="link"
            tabIndex={-1}
            onClick={() => void change({ kind: 'set-param', ...item, value: reset.value })}
          >
            {reset.text}
          </button>
        )}
      </p>
    </Row>
  );
}

function ProblemText({
  store,
  problem,
  isReadOnly,
  onUse,
  onSuggestion,
}: {
  store: DocumentStore;
  problem: Problem;
  isReadOnly: boolean;
  onUse: (edit: Edit) => void;
  onSuggestion: (value: string) => void;
}) {
  const { sentence, nearest, suggestion, possible } = problem;
  return (
    <div class="problem">
      <p>{sentence}</p>
      {nearest && !isReadOnly && (
        <button type="button" class="small" onClick={() => onUse(nearest)}>
          {editText(nearest, store.root)}
        </button>
      )}
      {suggestion !== undefined && !isReadOnly && (
        <button type="button" class="small" onClick={() => onSuggestion(suggestion)}>
          {`Use ${suggestion}`}
        </button>
      )}
      {!nearest && possible && possible.length > 0 && (
        <p class="soft">{`Possible now: ${possible.slice(0, 12).join(', ')}${possible.length > 12 ? ' …' : ''}`}</p>
      )}
    </div>
  );
}

/** Values that are not chosen from a list are typed. */
function usesTextBox(param: Param): boolean {
  return param.allowed ? param.allowed.allowsAnyValue : param.type !== 'Logical';
}

const inputIdOf = (labelId: string) => `${labelId}-input`;

function Control({
  store,
  param,
  draft,
  labelId,
  describedBy,
  isReadOnly,
  isInvalid,
  onChoose,
  onCommit,
  onUnit,
}: {
  store: DocumentStore;
  param: Param;
  draft: Draft | null;
  labelId: string;
  describedBy: string;
  isReadOnly: boolean;
  isInvalid: boolean;
  onChoose: (value: string) => void;
  onCommit: () => void;
  onUnit: (unit: string) => void;
}) {
  // A choice that is on its way to the server shows already.
  const chosenNow = draft?.isSent ? { ...param, value: draft.text } : param;
  const choice = { store, param: chosenNow, labelledBy: labelId, describedBy, isReadOnly };
  const { allowed } = param;
  const isList = param.type.endsWith(' List');
  if (param.type === 'Logical' && !allowed) {
    return <Radios {...choice} values={truthWords(chosenNow.value)} onChoose={onChoose} />;
  }
  if (allowed && !allowed.allowsAnyValue) {
    const values = allowed.subsetValues ?? allowed.allowedValues ?? [];
    const total = (allowed.subsetValues ? allowed.subsetCount : allowed.allowedCount) ?? values.length;
    if (isList) {
      const chosen = listItems(chosenNow.value);
      // The order of the rules, and what is not in the rules at the end.
      const valueWith = (value: string) => {
        const next = chosen.includes(value) ? chosen.filter((one) => one !== value) : [...chosen, value];
        const place = (one: string) => (values.includes(one) ? values.indexOf(one) : values.length);
        return next.sort((a, b) => place(a) - place(b)).join(', ');
      };
      return (
        <ChoiceList
          {...choice}
          values={values}
          total={total}
          chosen={chosen}
          isInvalid={isInvalid}
          valueWith={valueWith}
          onChoose={(value) => onChoose(valueWith(value))}
        />
      );
    }
    const isKnown = chosenNow.value === '' || values.includes(chosenNow.value ?? '');
    if (total === values.length && fitsRadios(values) && isKnown) {
      return <Radios {...choice} values={values.map((value) => ({ value, label: value }))} onChoose={onChoose} />;
    }
    return (
      <ChoiceList
        {...choice}
        values={values}
        total={total}
        chosen={null}
        isInvalid={isInvalid}
        valueWith={(value) => value}
        onChoose={onChoose}
      />
    );
  }
  const box = { store, param, draft, inputId: inputIdOf(labelId), describedBy, isReadOnly, isInvalid, onCommit };
  if (fitsBoxes(param, draft)) return <ListField {...box} />;
  const unit = fieldUnit(param, draft);
  const units = isNumber(param) && hasUnitBox(param) ? (param.units ?? []) : [];
  return (
    <div class="control-line">
      <TextField {...box} />
      {units.length === 1 && <span class="unit">{unit}</span>}
      {units.length > 1 && (
        <select
          class="unit"
          aria-label={`Units of ${param.name}`}
          value={unit}
          disabled={isReadOnly}
          onChange={(event) => {
            const chosen = event.currentTarget.value;
            // The number before it has the old unit until the server has converted it.
            event.currentTarget.value = unit;
            onUnit(chosen);
          }}
        >
          {units.map((one) => (
            <option key={one} value={one}>
              {one}
            </option>
          ))}
        </select>
      )}
    </div>
  );
}

/** The height of a row before it was measured. */
export function rowEstimate(total: number): number {
  return total > longForm ? 76 : 80;
}
