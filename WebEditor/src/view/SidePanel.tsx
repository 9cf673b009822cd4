// Beside the form: what edits did, why and how, what is wrong, and what differs from the file.
import { useEffect, useState } from 'preact/hooks';
import { effectSize } from '../model/EffectGroups';
import { fixesOf } from '../model/Fixes';
import { keyOf } from '../model/Paths';
import { count, editText, placeText, shownValue } from '../model/Sentences';
import type { Difference, Edit, Finding, HowResult } from '../protocol/Messages';
import { type DocumentStore, type EffectEntry, problemOf, type Side } from '../store/DocumentStore';
import { EffectList } from './EffectList';
import { showTrial } from './Field';
import { Icon } from './Icon';
import { ItemLink } from './ItemLink';
import { ProofView } from './ProofView';

export function SidePanel({
  store,
  isReadOnly,
  onBack,
}: {
  store: DocumentStore;
  isReadOnly: boolean;
  onBack: () => void;
}) {
  const side = store.side.value;
  const review = store.review.value;
  const total = review ? review.errors + review.warnings : 0;
  const tabs: { side: Side; label: string; number?: number }[] = [
    { side: 'effects', label: 'Effects' },
    { side: 'why', label: 'Why' },
    { side: 'findings', label: 'Findings', number: total },
    { side: 'changes', label: 'Changes' },
  ];
  const choose = (next: Side) => {
    store.side.value = next;
    if (next === 'changes') void store.loadDifferences().catch(() => {});
  };
  const onKey = (event: KeyboardEvent) => {
    const step = { ArrowRight: 1, ArrowLeft: -1 }[event.key];
    if (step === undefined) return;
    const at = tabs.findIndex((tab) => tab.side === side);
    const next = tabs[(at + step + tabs.length) % tabs.length];
    if (next) choose(next.side);
    requestAnimationFrame(() => document.getElementById(`tab-${store.side.value}`)?.focus());
    event.preventDefault();
  };
  return (
    <div class="side">
      <div class="side-head">
        <button type="button" class="quiet back" onClick={onBack}>
          <Icon name="back" />
          <span>Form</span>
        </button>
        <div class="tabs" role="tablist" aria-label="Beside the form" onKeyDown={onKey}>
          {tabs.map((tab) => (
            <button
              key={tab.side}
              id={`tab-${tab.side}`}
              type="button"
              role="tab"
              aria-selected={tab.side === side}
              aria-controls="side-panel"
              tabIndex={tab.side === side ? 0 : -1}
              onClick={() => choose(tab.side)}
            >
              {tab.label}
              {tab.number !== undefined && tab.number > 0 && (
                <span class={`badge ${(review?.errors ?? 0) > 0 ? 'bad' : 'wait'}`}>
                  {tab.number > 999 ? '999+' : tab.number}
                </span>
              )}
            </button>
          ))}
        </div>
      </div>
      {/* biome-ignore lint/a11y/noNoninteractiveTabindex: a panel that scrolls is reached with the keyboard */}
      <div class="scroll side-scroll" id="side-panel" role="tabpanel" aria-labelledby={`tab-${side}`} tabIndex={0}>
        {side === 'effects' && <Effects store={store} isReadOnly={isReadOnly} />}
        {side === 'why' && <WhyAndHow store={store} isReadOnly={isReadOnly} />}
        {side === 'findings' && <Findings store={store} isReadOnly={isReadOnly} />}
        {side === 'changes' && <Changes store={store} isReadOnly={isReadOnly} />}
      </div>
    </div>
  );
}

function Effects({ store, isReadOnly }: { store: DocumentStore; isReadOnly: boolean }) {
  const entries = store.effects.value;
  const waiting = store.waiting.value;
  const canUndo = store.state.value.steps > 0 && !isReadOnly;
  return (
    <>
      {entries.length === 0 && (
        <div class="empty">
          <p>What an edit changes is listed here.</p>
          <p class="soft">Before you choose a value, rest on it: the page shows what it would do.</p>
        </div>
      )}
      {entries.map((entry, i) => (
        <Entry key={entry.id} store={store} entry={entry} isLatest={i === 0} canUndo={canUndo} />
      ))}
      {waiting.total > 0 && (
        <section class="side-section">
          <h2>{`Waiting ${waiting.total.toLocaleString('en-US')}`}</h2>
          <p class="soft">Kept, and in force again when the rules allow it.</p>
          <ul class="lines">
            {waiting.list.slice(0, 50).map((one) => (
              <li key={keyOf(one)}>
                <ItemLink
                  store={store}
                  item={one.name === undefined ? { path: one.path } : { path: one.path, name: one.name }}
                />
                {one.value !== undefined && <span class="change">{shownValue(one.value)}</span>}
              </li>
            ))}
          </ul>
        </section>
      )}
    </>
  );
}

function Entry({
  store,
  entry,
  isLatest,
  canUndo,
}: {
  store: DocumentStore;
  entry: EffectEntry;
  isLatest: boolean;
  canUndo: boolean;
}) {
  const [isOpen, setOpen] = useState(isLatest);
  // An older entry folds when a new one comes.
  useEffect(() => setOpen(isLatest), [isLatest]);
  const { result } = entry;
  const size = result.effect ? effectSize(result.effect) : 0;
  return (
    <section class={`entry${isLatest ? ' latest' : ''}`}>
      <button type="button" class="entry-title" aria-expanded={isOpen} onClick={() => setOpen(!isOpen)}>
        <Icon name="chevron" />
        <span>
          {entry.title}
          {entry.who !== 'you' && <span class="soft"> by another page</span>}
        </span>
        <span class="soft">{size.toLocaleString('en-US')}</span>
      </button>
      {isOpen && (
        <div class="entry-body">
          {(result.conversions ?? []).map((one) => (
            <p key={one.index} class="soft">{`Given as ${shownValue(one.from)}, set as ${shownValue(one.to)}.`}</p>
          ))}
          {(result.followed ?? []).length > 0 && (
            <p class="soft">{`${count(result.followed?.length ?? 0, 'value')} that named it followed.`}</p>
          )}
          {result.effect && <EffectList store={store} effect={result.effect} />}
          {isLatest && canUndo && (
            <button type="button" class="small" onClick={() => void store.undo()}>
              <Icon name="undo" />
              <span>{entry.cause === 'undo' ? 'Undo the step before' : 'Undo this edit'}</span>
            </button>
          )}
        </div>
      )}
    </section>
  );
}

function WhyAndHow({ store, isReadOnly }: { store: DocumentStore; isReadOnly: boolean }) {
  const why = store.why.value;
  const how = store.how.value;
  if (!why && !how) {
    return (
      <div class="empty">
        <p>
          Press <kbd>w</kbd> on a row, or choose Why in its menu.
        </p>
        <p class="soft">The answer is a proof: the rules that decided, and the values that they read.</p>
      </div>
    );
  }
  const item = why?.item ?? how?.item;
  return (
    <>
      {item && (
        <div class="side-title">
          <h2>
            {why ? 'Why ' : 'How to get '}
            <ItemLink store={store} item={item} />
          </h2>
          {why ? (
            <button type="button" class="small" onClick={() => void store.askHow(item)}>
              How to change it
            </button>
          ) : (
            <button type="button" class="small" onClick={() => void store.askWhy(item, 'presence')}>
              Why
            </button>
          )}
        </div>
      )}
      {why && !why.proof && <p class="soft">Asking …</p>}
      {why?.proof && <ProofView key={keyOf(why.item)} store={store} proof={why.proof} />}
      {how && !how.result && <p class="soft">Looking for edits that bring it …</p>}
      {how?.result && <Ways store={store} result={how.result} isReadOnly={isReadOnly} />}
    </>
  );
}

const answers: Record<HowResult['answer'], string> = {
  'already-so': 'It is so already.',
  found: 'Each of these was tried.',
  impossible: 'No edit can bring it.',
  'not-found': 'Nothing was found. That does not mean that there is no way.',
};

function Ways({ store, result, isReadOnly }: { store: DocumentStore; result: HowResult; isReadOnly: boolean }) {
  return (
    <div class="ways">
      <p class="soft">
        {answers[result.answer]}
        {result.stoppedByTime && ' The search was stopped after a while.'}
      </p>
      {result.ways.map((way, i) => (
        <section key={JSON.stringify(way.edits)} class="way">
          {result.ways.length > 1 && <h3>{`Way ${i + 1}`}</h3>}
          <ol>
            {way.edits.map((edit) => (
              <li key={editText(edit, store.root)}>
                <ItemLink store={store} item={linkOf(edit)} />
                <span class="change">{editVerb(edit)}</span>
              </li>
            ))}
          </ol>
          {way.lost.length > 0 && (
            <p class="wait-text">{`Loses ${count(way.lost.length, 'value')}: ${way.lost
              .slice(0, 4)
              .map((one) => one.name)
              .join(', ')}`}</p>
          )}
          {way.atNextEdit && <p class="soft">It comes with the edit after these.</p>}
          <p class="soft">{`${count(effectSize(way.effect), 'consequence')} in all`}</p>
          <div class="buttons left">
            <button
              type="button"
              class="primary"
              disabled={isReadOnly}
              onClick={() => void store.commitOrSay(way.edits, { askFirst: true })}
            >
              Do it
            </button>
            <button type="button" onClick={() => void showTrial(store, way.edits)}>
              Look closer
            </button>
          </div>
        </section>
      ))}
      {result.blocking && result.ways.length === 0 && (
        <>
          <h3>In the way</h3>
          <ProofView store={store} proof={result.blocking} />
        </>
      )}
      {(result.freeParams?.length ?? 0) > 0 && (
        <p class="soft">
          {'Other values of these were not tried: '}
          {result.freeParams?.map((item) => (
            <ItemLink key={keyOf(item)} store={store} item={item} />
          ))}
        </p>
      )}
    </div>
  );
}

function linkOf(edit: Edit) {
  const isAboutParam = edit.kind === 'set-param' || edit.kind === 'activate-param' || edit.kind === 'deactivate-param';
  return isAboutParam && edit.name !== undefined ? { path: edit.path, name: edit.name } : { path: edit.path };
}

function editVerb(edit: Edit): string {
  if (edit.kind === 'set-param') return ` = ${shownValue(edit.value)}`;
  if (edit.kind.startsWith('activate')) return ' switched on';
  if (edit.kind.startsWith('deactivate')) return ' switched off';
  if (edit.kind === 'add-object') return ' added';
  if (edit.kind === 'remove-object') return ' removed';
  return edit.kind === 'rename-object' ? ` renamed to ${edit.name}` : ` copied as ${edit.name}`;
}

function Findings({ store, isReadOnly }: { store: DocumentStore; isReadOnly: boolean }) {
  const review = store.review.value;
  if (!review) return <p class="empty">Reviewing …</p>;
  if (review.total === 0) {
    return (
      <div class="empty">
        <p>Nothing found.</p>
        <p class="soft">
          Checked: names, values and units, bounds, what is required, the number of objects, and all checks of the
          rules.
        </p>
      </div>
    );
  }
  return (
    <>
      <p class="soft side-line">
        {[
          review.errors > 0 ? count(review.errors, 'error') : '',
          review.warnings > 0 ? count(review.warnings, 'warning') : '',
        ]
          .filter((text) => text !== '')
          .join(', ')}
      </p>
      <ul class="findings">
        {review.list.map((finding, i) => (
          <FindingView key={`${review.revision} ${i}`} store={store} finding={finding} isReadOnly={isReadOnly} />
        ))}
      </ul>
      {review.list.length < review.total && (
        <button type="button" onClick={() => void store.moreFindings()}>
          {`Show more of ${review.total.toLocaleString('en-US')}`}
        </button>
      )}
    </>
  );
}

function FindingView({ store, finding, isReadOnly }: { store: DocumentStore; finding: Finding; isReadOnly: boolean }) {
  const [problem, setProblem] = useState('');
  const { path, name, type } = finding;
  const item = name === undefined ? { path } : { path, name };
  const fix = async (edit: Edit) => {
    const outcome = await store.commit([edit], { askFirst: true });
    setProblem(problemOf(outcome)?.sentence ?? '');
  };
  return (
    <li class={finding.severity}>
      <p class="finding-head">
        <span class={`severity ${finding.severity}`}>{finding.severity}</span>
        <ItemLink store={store} item={item} />
        {type !== undefined && name === undefined && <span class="soft">{type}</span>}
      </p>
      <p class="finding-text">{finding.message}</p>
      <div class="fixes">
        {!isReadOnly &&
          fixesOf(finding).map((one) => (
            <button key={one.label} type="button" class="small" onClick={() => void fix(one.edit)}>
              {one.label}
            </button>
          ))}
        <button type="button" class="quiet" onClick={() => void store.askWhy(item, 'presence')}>
          Why
        </button>
        {finding.rule && <span class="place">{placeText(finding.rule)}</span>}
      </div>
      {problem !== '' && <p class="problem">{problem}</p>}
    </li>
  );
}

function Changes({ store, isReadOnly }: { store: DocumentStore; isReadOnly: boolean }) {
  const differences = store.differences.value;
  if (!differences) return <p class="empty">Comparing …</p>;
  if (differences.total === 0) return <p class="empty">The set-up is the same as in the file.</p>;
  return (
    <>
      <p class="soft side-line">{`${count(differences.total, 'difference')} from the file`}</p>
      <ul class="lines changes">
        {differences.list.map((one) => (
          <DifferenceView key={keyOf(one)} store={store} difference={one} isReadOnly={isReadOnly} />
        ))}
      </ul>
      {differences.list.length < differences.total && (
        <p class="soft">{`${(differences.total - differences.list.length).toLocaleString('en-US')} more are not listed.`}</p>
      )}
    </>
  );
}

function DifferenceView({
  store,
  difference,
  isReadOnly,
}: {
  store: DocumentStore;
  difference: Difference;
  isReadOnly: boolean;
}) {
  const { path, name, inModel, now, isNewObject } = difference;
  if (name === undefined) {
    return (
      <li class={isNewObject ? 'added' : 'removed'}>
        <ItemLink store={store} item={{ path }} />
        <span class="change">{isNewObject ? 'new object' : 'no longer there'}</span>
      </li>
    );
  }
  const isNew = inModel === undefined;
  return (
    <li class={isNew ? 'added' : now === undefined ? 'removed' : 'changed'}>
      <ItemLink store={store} item={{ path, name }} />
      <span class="change">
        <span class="old">{isNew ? 'new' : shownValue(inModel)}</span>
        <span class="arrow" aria-hidden="true">
          {' → '}
        </span>
        <span>{now === undefined ? 'gone' : shownValue(now)}</span>
        {inModel !== undefined && now !== undefined && !isReadOnly && (
          <button
            type="button"
            class="link"
            onClick={() =>
              void store.commitOrSay([{ kind: 'set-param', path, name, value: inModel }], { askFirst: true })
            }
          >
            Reset
          </button>
        )}
      </span>
    </li>
  );
}
