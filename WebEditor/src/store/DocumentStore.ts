// One document, as this page shows it: what was asked of the server, what the user has typed, and what edits did.
import { batch, computed, type Signal, signal } from '@preact/signals';
import type { Hit } from '../model/FilteredTree';
import type { LayoutEntry } from '../model/FormLayout';
import { isAtOrBelow, keyOf, nameOf, parentOf, pathOf, shortPath } from '../model/Paths';
import { type Filter, parseQuery } from '../model/Search';
import { count, resultTitle } from '../model/Sentences';
import type {
  ChildType,
  Difference,
  Edit,
  EditResult,
  EventChanged,
  Finding,
  HowResult,
  Item,
  Object as ObjectRecord,
  Own,
  Param,
  Proof,
  ResultEdit,
  ResultForm,
  ResultLook,
  State,
  Waiting,
} from '../protocol/Messages';
import {
  losesOwnValues,
  type Method,
  outdatedRevision,
  type Request,
  type Result,
  ServerError,
  Unreachable,
} from '../protocol/Rpc';
import type { Connection } from './Connection';
import { TreeStore } from './TreeStore';

/** Text that was typed and is not in the document. */
export type Draft = {
  text: string;
  unit?: string;
  /** The value of the field when typing began, to notice that someone else has changed it. */
  base: string;
  /** It is on its way to the server. */
  isSent?: true;
  /** The draft that was on its way when this one was begun. Its value is what this one is meant to replace. */
  follows?: Draft;
  /** Why the text was not taken. */
  problem?: Problem;
};

export type Problem = { sentence: string; nearest?: Edit; suggestion?: string; possible?: string[] };

export type Outcome =
  | { kind: 'applied'; result: EditResult }
  | { kind: 'refused'; problem: Problem }
  /** Somebody else has changed the item meanwhile. */
  | { kind: 'conflict' }
  /** The server came back without the document, so nobody knows. */
  | { kind: 'unknown' }
  /** The user looked at what would happen and did not want it. */
  | { kind: 'declined' };

export type Form = {
  path: string;
  object: ObjectRecord | null;
  layout: LayoutEntry[];
  total: number;
  childTypes: ChildType[];
};

export type EffectEntry = {
  id: number;
  title: string;
  cause: 'edit' | 'undo' | 'redo';
  /** "you", or another client. */
  who: string;
  result: EditResult;
};

export type Preview = {
  edits: Edit[];
  result: EditResult | null /** Set when the user must decide first. */;
  decide: ((yes: boolean) => void) | null;
};

export type WhyView = { item: Item; proof: Proof | null };
export type HowView = { item: Item; result: HowResult | null; text: string };

/** What a form shows, as it was read together with an edit: all of a short form, the rows on the screen of a long one. */
type FormRead = { path: string; form?: ResultForm; look?: ResultLook };

export type Review = { errors: number; warnings: number; total: number; list: Finding[]; revision: number };

/** The hits of a search, the best first. `isMore` says that there are more than `total`. */
export type Hits = {
  filters: Filter[];
  text: string;
  list: Hit[];
  total: number;
  isMore: boolean;
  nearest: string;
};

export type Side = 'effects' | 'why' | 'findings' | 'changes';

/** Above this number of parameters a form is loaded by its outline, and records only for what is on the screen. */
export const longForm = 200;
const outlinePage = 10_000;
const shownEffects = 1000;
const keptEffects = 100;
const tries = 5;
/** When others edit all the time, an edit is outdated again and again before it arrives. */
const triesAmongOthers = 50;
/** After more missed changes everything is read again. */
const mostSkipped = 1000;

export class DocumentStore {
  readonly state: Signal<State>;
  readonly tree: TreeStore;
  readonly form = signal<Form | null>(null);
  readonly selected: Signal<string>;
  /** The parameter to bring into view and to focus; a new object each time. */
  readonly target = signal<{ name: string } | null>(null);
  readonly effects = signal<EffectEntry[]>([]);
  readonly review = signal<Review | null>(null);
  readonly waiting = signal<{ total: number; list: Waiting[] }>({ total: 0, list: [] });
  readonly own = signal<{ total: number; list: Own[] }>({ total: 0, list: [] });
  readonly differences = signal<{ total: number; list: Difference[]; revision: number } | null>(null);
  readonly side = signal<Side>('effects');
  readonly why = signal<WhyView | null>(null);
  readonly how = signal<HowView | null>(null);
  readonly preview = signal<Preview | null>(null);
  readonly query = signal('');
  readonly hits = signal<Hits | null>(null);
  readonly isWorking = signal(false);
  readonly openFolds = signal<{ advanced: Set<string>; unavailable: Set<string> }>({
    advanced: new Set(),
    unavailable: new Set(),
  });
  readonly announcement = signal('');
  /** Set when the file was changed by someone else, so that saving needs a decision. */
  readonly saveConflict = signal<string | null>(null);

  /** Called when a link was followed: on a narrow screen the form comes to the front. */
  onLink: () => void = () => {};

  readonly drafts = new Map<string, Signal<Draft | null>>();
  readonly draftCount = signal(0);
  private readonly records = new Map<string, Signal<Param | null>>();
  private mounted = new Map<string, number>();
  private queue: Promise<unknown> = Promise.resolve();
  private lastEdit = 0;
  private lastEffect = 0;
  private formEpoch = 0;
  /** The newest revision that the records of the form were read at. */
  private newestRead = { document: '', revision: 0 };
  private reviewTimer: ReturnType<typeof setTimeout> | undefined;
  private reviewCost = 0;
  private wanted = new Set<string>();
  /** Whether something may wait that is not in the list, or the other way round. */
  private isWaitingOld = true;
  /** Something could not be read because the server was gone. It must be read again when the server is back. */
  private isOutdated = false;
  /** How often others have changed an item, to notice an edit that was meant for the value before. */
  private readonly changesByOthers = new Map<string, number>();
  /** Revisions that answers have skipped. What others did there is shown when their events come. */
  private readonly skipped = new Set<number>();

  /** The objects at or below which the user has set something. */
  readonly ownPaths = computed(() => {
    const paths = new Set<string>();
    for (const { path } of this.own.value.list) {
      for (let at = path; at !== '' && !paths.has(at); at = parentOf(at)) paths.add(at);
    }
    return paths;
  });

  constructor(
    readonly connection: Connection,
    state: State,
    readonly client: string,
  ) {
    this.state = signal(state);
    this.selected = signal(state.root);
    this.tree = new TreeStore(connection, () => this.state.value.document, state.root);
  }

  get document(): string {
    return this.state.value.document;
  }
  get root(): string {
    return this.state.value.root;
  }

  // ---- Reading

  /** Reads everything again: at the start, and when events were missed. */
  async load(): Promise<void> {
    this.isWaitingOld = true;
    await Promise.all([this.tree.load(this.root), this.loadForm()]);
    this.shownRevision = this.state.value.revision;
    this.scheduleReview(0);
  }

  /** The server says what is true now: after it was away, or after events were lost. */
  async reload(state: State): Promise<void> {
    const { document, revision } = this.state.value;
    const isSame = state.document === document && state.revision === revision;
    this.state.value = state;
    if (isSame && !this.isOutdated) return;
    this.skipped.clear();
    await this.refreshAll();
    this.isOutdated = false;
  }

  /** Reads what the page shows. If the server is gone, this is made up for when it is back. */
  private async readOrLater(read: () => Promise<unknown>): Promise<void> {
    try {
      await read();
    } catch (error) {
      this.isOutdated = true;
      if (!(error instanceof Unreachable)) throw error;
    }
  }

  /** Shows an object, and with a name one of its parameters. */
  async select(path: string, name?: string): Promise<void> {
    const isNew = path !== this.selected.value || this.form.value?.path !== path;
    batch(() => {
      this.selected.value = path;
      this.tree.active.value = path;
      if (isNew) this.openFolds.value = { advanced: new Set(), unavailable: new Set() };
    });
    if (isNew) await this.readOrLater(() => Promise.all([this.loadForm(), this.tree.reveal(path)]));
    // Meanwhile another object may have been chosen.
    if (name !== undefined && this.selected.peek() === path) {
      this.openFoldOf(name);
      this.target.value = { name };
    }
  }

  /** Opens the fold that hides a parameter. */
  openFoldOf(name: string): void {
    const entry = this.form.value?.layout.find((one) => one.name === name);
    if (!entry || entry.waiting) return;
    const group = entry.group ?? '';
    if (!entry.available) this.setFold('unavailable', group, true);
    else if (entry.advanced) this.setFold('advanced', group, true);
  }

  setFold(fold: 'advanced' | 'unavailable', group: string, open: boolean): void {
    const next = new Set(this.openFolds.value[fold]);
    if (open) next.add(group);
    else next.delete(group);
    this.openFolds.value = { ...this.openFolds.value, [fold]: next };
  }

  async loadForm(): Promise<void> {
    const path = this.selected.value;
    this.formEpoch += 1;
    const epoch = this.formEpoch;
    for (let tried = 0; tried < tries; tried++) {
      const answer = await this.connection.call('form', { document: this.document, path, limit: longForm });
      if (epoch !== this.formEpoch) return;
      if (this.isNewest(answer.revision)) return this.showForm(path, answer, epoch);
    }
  }

  private showForm(path: string, answer: ResultForm, epoch: number): void {
    const { list, total } = answer.params;
    const old = this.form.value;
    batch(() => {
      if (old?.path !== path) this.records.clear();
      for (const param of list) if (param) this.setRecord(param);
      const isLong = total > list.length;
      const outline = isLong && old?.path === path ? old.layout : list.map(entryOf);
      this.form.value = { path, object: answer.object, layout: outline, total, childTypes: answer.childTypes };
    });
    // Nobody waits for the rest of a long form.
    if (total > list.length) void this.loadOutline(path, epoch).catch(() => {});
  }

  /** Answers may overtake each other. One that is older than what is shown must not be shown. */
  private isNewest(revision: number): boolean {
    const { document } = this;
    if (document === this.newestRead.document && revision < this.newestRead.revision) return false;
    this.newestRead = { document, revision };
    return true;
  }

  /** The record of a parameter of the form. Of a long form only what is on the screen is loaded. */
  record(path: string, name: string): Signal<Param | null> {
    const key = keyOf({ path, name });
    let record = this.records.get(key);
    if (!record) {
      record = signal<Param | null>(null);
      this.records.set(key, record);
    }
    return record;
  }

  /** A row is on the screen: its record is kept fresh until it is released. */
  hold(path: string, name: string): () => void {
    const key = keyOf({ path, name });
    this.mounted.set(name, (this.mounted.get(name) ?? 0) + 1);
    if (this.records.get(key)?.peek() == null) {
      this.wanted.add(name);
      if (this.wanted.size === 1) queueMicrotask(() => void this.fetchWanted(path));
    }
    return () => {
      const left = (this.mounted.get(name) ?? 1) - 1;
      if (left > 0) this.mounted.set(name, left);
      else this.mounted.delete(name);
    };
  }

  private async fetchWanted(path: string): Promise<void> {
    const names = [...this.wanted];
    this.wanted.clear();
    await this.readOrLater(() => this.lookAt(path, names));
  }

  private async lookAt(path: string, names: string[]): Promise<void> {
    if (names.length === 0) return;
    const items = names.map((name) => ({ path, name }));
    for (let tried = 0; tried < tries; tried++) {
      const answer = await this.connection.call('look', { document: this.document, items });
      if (this.form.value && this.form.value.path !== path) return;
      if (this.isNewest(answer.revision)) return this.showRecords(answer);
    }
  }

  private showRecords({ records }: ResultLook): void {
    batch(() => {
      for (const record of records) if (record && 'origin' in record) this.setRecord(record);
    });
  }

  private setRecord(param: Param): void {
    const record = this.record(param.path, param.name);
    // A row is drawn again only if something has changed.
    if (JSON.stringify(record.peek()) !== JSON.stringify(param)) record.value = param;
  }

  private async loadOutline(path: string, epoch: number): Promise<void> {
    const layout: LayoutEntry[] = [];
    let revision = -1;
    for (;;) {
      const answer = await this.connection.call('outline', {
        document: this.document,
        path,
        offset: layout.length,
        limit: outlinePage,
      });
      if (epoch !== this.formEpoch) return;
      if (revision >= 0 && answer.revision !== revision) layout.length = 0;
      revision = answer.revision;
      if (answer.offset === layout.length) {
        for (const entry of answer.list) layout.push({ ...entry, available: entry.available ?? false });
      }
      if (layout.length >= answer.total || answer.list.length === 0) break;
      this.showLayout(path, layout);
    }
    // An edit was made meanwhile, and its effect is not in these entries.
    if (revision < this.state.value.revision) return this.loadOutline(path, epoch);
    this.showLayout(path, layout);
  }

  /** A form grows at its end while its outline arrives. It never shrinks meanwhile. */
  private showLayout(path: string, layout: LayoutEntry[]): void {
    const form = this.form.value;
    if (form?.path === path && form.layout.length <= layout.length) this.form.value = { ...form, layout: [...layout] };
  }

  // ---- Editing

  draft(item: Item): Signal<Draft | null> {
    const key = keyOf(item);
    let draft = this.drafts.get(key);
    if (!draft) {
      draft = signal<Draft | null>(null);
      this.drafts.set(key, draft);
    }
    return draft;
  }

  setDraft(item: Item, draft: Draft | null): void {
    const known = this.draft(item);
    if ((known.peek() === null) !== (draft === null)) this.draftCount.value += draft === null ? -1 : 1;
    known.value = draft;
  }

  /** Where something was typed that is neither in the document nor on its way there: at or below an object. */
  unsetDrafts(above = this.root): string[] {
    return [...this.drafts]
      .filter(([key, draft]) => draft.peek() !== null && !draft.peek()?.isSent && isAtOrBelow(pathOf(key), above))
      .map(([key]) => `${shortPath(pathOf(key), this.root)} / ${nameOf(key)}`);
  }

  /**
   * Makes edits, one request after the other. The returned promise is fulfilled when the server has answered and the
   * form shows the new state.
   */
  commit(edits: Edit[], options: { askFirst?: boolean; followReferences?: boolean } = {}): Promise<Outcome> {
    const meantFor = this.changesOf(edits[0]);
    const outcome = this.inTurn(() => this.send(edits, options, meantFor));
    this.onItsWay = outcome;
    const arrived = () => {
      if (this.onItsWay === outcome) this.onItsWay = null;
    };
    outcome.then(arrived, arrived);
    return outcome;
  }

  /** Makes edits for a button that has no place for a message: the status line says why they were not made. */
  async commitOrSay(edits: Edit[], options: { askFirst?: boolean } = {}): Promise<boolean> {
    const outcome = await this.commit(edits, options);
    const problem = problemOf(outcome);
    if (problem) this.announce(problem.sentence);
    return outcome.kind === 'applied';
  }

  /** Takes back the last step. An edit that is on its way is meant then: if it is not made, nothing is taken back. */
  undo(): Promise<boolean> {
    const meant = this.onItsWay;
    return this.inTurn(async () => {
      if (meant && (await meant).kind !== 'applied') return false;
      return this.step('undo');
    });
  }

  redo(): Promise<boolean> {
    return this.inTurn(() => this.step('redo'));
  }

  async save(options: { overwrite?: boolean; file?: string } = {}): Promise<string | null> {
    return this.inTurn(async () => {
      try {
        const answer = await this.connection.call('save', {
          document: this.document,
          client: this.client,
          ...(options.file === undefined ? {} : { file: options.file }),
          ...(options.overwrite ? { overwrite: true } : {}),
        });
        const { error, saved, ...state } = answer;
        this.takeState(state, state.revision);
        this.saveConflict.value = error?.fault === 'file-changed' ? error.sentence : null;
        if (!saved) return error?.sentence ?? 'Nothing was saved.';
        this.announce(`Saved to ${state.file ?? 'the file'}.`);
        if (this.differences.value) void this.loadDifferences().catch(() => {});
        return null;
      } catch (error) {
        return error instanceof Unreachable
          ? 'The server does not answer. Save again when it is back.'
          : sentenceOf(error);
      }
    });
  }

  /** The last edit without an answer. */
  private onItsWay: Promise<Outcome> | null = null;

  /** What edits would do. Nothing changes. */
  async tryEdits(edits: Edit[], findings = false): Promise<EditResult | null> {
    try {
      const { result } = await this.connection.call('tryEdits', {
        document: this.document,
        edits,
        findings,
        limit: 100,
      });
      return result;
    } catch {
      return null;
    }
  }

  announce(text: string): void {
    // The same text twice is announced twice.
    this.announcement.value = this.announcement.peek() === text ? `${text} ` : text;
  }

  private inTurn<T>(work: () => Promise<T>): Promise<T> {
    const turn = this.queue.then(async () => {
      // While the user is asked, it is the user who works.
      const timer = setTimeout(() => {
        this.isWorking.value = !this.isAsking;
      }, 300);
      try {
        return await work();
      } finally {
        clearTimeout(timer);
        this.isWorking.value = false;
      }
    });
    this.queue = turn.catch(() => {});
    return turn;
  }

  /** `meantFor` is how often others had changed the item when the user made the edit. */
  private async send(
    edits: Edit[],
    options: { askFirst?: boolean; followReferences?: boolean },
    meantFor: number,
  ): Promise<Outcome> {
    this.lastEdit += 1;
    const editId = `${this.client}-${this.lastEdit}`;
    const document = this.document;
    const [first] = edits;
    const isFollowed = options.followReferences === true;
    // An edit whose answer was lost is sent again for the same revision: if it was not made, but another was, the
    // server says so.
    const { revision } = this.state.value;
    const request = { edits, editId, revision, ask: options.askFirst === true, isFollowed };
    let seen: string | undefined;
    let lost = 0;
    for (let tried = 0; tried < triesAmongOthers && lost < tries; tried++) {
      try {
        const now = await this.valueOf(first);
        seen ??= now;
        if (now !== seen && lost === 0) return await this.conflict();
        if (this.changesOf(first) !== meantFor) return await this.conflict();
        const [answer, read] = await this.request(request);
        return await this.take(answer, read);
      } catch (error) {
        if (error instanceof Unreachable) {
          lost += 1;
          await this.connection.whenOnline();
          if (this.document !== document) return { kind: 'unknown' };
        } else if (error instanceof ServerError && error.code === outdatedRevision) {
          request.revision = (error.data as { revision: number }).revision;
          this.takeState({ ...this.state.value, revision: request.revision }, request.revision);
          // What the user has agreed to may lose more now.
          request.ask = options.askFirst === true;
          lost = 0;
        } else if (error instanceof ServerError && error.code === losesOwnValues) {
          const { result } = error.data as { result: EditResult };
          if (!(await this.askUser(edits, result))) return { kind: 'declined' };
          request.ask = false;
        } else {
          return { kind: 'refused', problem: { sentence: sentenceOf(error) } };
        }
      }
    }
    if (lost > 0) return { kind: 'unknown' };
    return { kind: 'refused', problem: { sentence: 'Others edit this model all the time. Try it again.' } };
  }

  private async conflict(): Promise<Outcome> {
    await this.readOrLater(() => this.refreshAll());
    return { kind: 'conflict' };
  }

  /** How often others have changed what an edit sets, as far as this page knows. */
  private changesOf(edit: Edit | undefined): number {
    return (edit && this.changesByOthers.get(keyOf(edit))) ?? 0;
  }

  /**
   * Takes a state that the server has sent. Answers and events may overtake each other, so an older one is left. The
   * changes up to `last` that this page has not seen are somebody else's, and their events are still to come.
   */
  private takeState(state: State, last: number): void {
    const now = this.state.value;
    if (state.revision < now.revision) return;
    if (last - now.revision > mostSkipped) {
      this.isOutdated = true;
      void this.readOrLater(() => this.refreshAll());
    } else {
      for (let revision = now.revision + 1; revision <= last; revision++) this.skipped.add(revision);
    }
    this.state.value = state;
  }

  private request({
    edits,
    editId,
    revision,
    ask,
    isFollowed,
  }: {
    edits: Edit[];
    editId: string;
    revision: number;
    ask: boolean;
    isFollowed: boolean;
  }): Promise<[ResultEdit, FormRead | null]> {
    const common = { document: this.document, revision, editId, client: this.client, limit: shownEffects };
    const [first] = edits;
    if (isFollowed && first?.kind === 'rename-object') {
      const params = { ...common, path: first.path, name: first.name ?? '' };
      return this.withForm({ method: 'renameFollowed', params });
    }
    return this.withForm({ method: 'edit', params: { ...common, edits, ...(ask ? { ask } : {}) } });
  }

  /** A request that changes the document, and in the same message what the form shows afterwards. */
  private async withForm<M extends Method>(request: Request<M>): Promise<[Result<M>, FormRead | null]> {
    const { document } = this;
    const path = this.selected.value;
    const form = this.form.value;
    if (form?.path !== path) return [await this.connection.call(request.method, request.params), null];
    if (form.total > longForm) {
      const items = [...this.mounted.keys()].map((name) => ({ path, name }));
      const [answer, look] = await this.connection.callBoth(request, { method: 'look', params: { document, items } });
      return [answer, look && { path, look }];
    }
    const read = { method: 'form' as const, params: { document, path, limit: longForm } };
    const [answer, shown] = await this.connection.callBoth(request, read);
    return [answer, shown && { path, form: shown }];
  }

  /** What the server holds of an item, to see whether it is still what the user saw. */
  private async valueOf(edit: Edit | undefined): Promise<string> {
    if (edit?.kind !== 'set-param' || edit.name === undefined) return '';
    const record = this.records.get(keyOf({ path: edit.path, name: edit.name }))?.peek();
    if (record && this.state.value.revision === this.shownRevision) return record.value ?? '';
    const { param } = await this.connection.call('lookParam', {
      document: this.document,
      path: edit.path,
      name: edit.name,
    });
    return param?.value ?? '';
  }

  /** The revision that the form shows. */
  private shownRevision = 0;

  private isAsking = false;

  private askUser(edits: Edit[], result: EditResult): Promise<boolean> {
    this.isAsking = true;
    this.isWorking.value = false;
    return new Promise((resolve) => {
      this.preview.value = {
        edits,
        result,
        decide: (yes) => {
          this.isAsking = false;
          this.preview.value = null;
          resolve(yes);
        },
      };
    });
  }

  private async take(answer: ResultEdit, read: FormRead | null): Promise<Outcome> {
    const { result, repeated: _repeated, ...state } = answer;
    if (result.refused) {
      this.takeState(state, state.revision);
      const { sentence, nearest, possible } = result.refused;
      return {
        kind: 'refused',
        problem: { sentence, ...(nearest ? { nearest } : {}), ...(possible ? { possible } : {}) },
      };
    }
    await this.show(state, result, 'edit', 'you', read);
    return { kind: 'applied', result };
  }

  private async step(kind: 'undo' | 'redo'): Promise<boolean> {
    for (let tried = 0; tried < tries; tried++) {
      try {
        const { document, client } = this;
        const params = { document, revision: this.state.value.revision, client, limit: shownEffects };
        const [answer, read] = await this.withForm({ method: kind, params });
        const { result, ...state } = answer;
        if (!result) {
          this.takeState(state, state.revision);
          this.announce(kind === 'undo' ? 'There is nothing to undo.' : 'There is nothing to redo.');
          return false;
        }
        if (result.refused) {
          this.takeState(state, state.revision);
          this.announce(result.refused.sentence);
          return false;
        }
        await this.show(state, result, kind, 'you', read);
        return true;
      } catch (error) {
        if (error instanceof ServerError && error.code === outdatedRevision) {
          const { revision } = error.data as { revision: number };
          this.takeState({ ...this.state.value, revision }, revision);
        } else if (error instanceof Unreachable) {
          // An undo has no identifier, so nobody knows whether it was made. The state that comes back shows it.
          this.announce('The server did not answer. Look at the state before you undo again.');
          return false;
        } else {
          this.announce(sentenceOf(error));
          return false;
        }
      }
    }
    return false;
  }

  /** Shows a change of the document: by this page, or by another. */
  private async show(
    state: State,
    result: EditResult,
    cause: EffectEntry['cause'],
    who: string,
    read: FormRead | null = null,
  ): Promise<void> {
    const verb = cause === 'undo' ? 'Undone: ' : cause === 'redo' ? 'Done again: ' : '';
    const title = verb + resultTitle(result, state.root);
    const { effect } = result;
    const isLate = state.revision <= this.state.value.revision;
    if (who !== 'you') {
      for (const change of effect?.values ?? []) {
        const key = keyOf(change);
        this.changesByOthers.set(key, (this.changesByOthers.get(key) ?? 0) + 1);
      }
    }
    this.lastEffect += 1;
    batch(() => {
      this.takeState(state, state.revision - 1);
      this.effects.value = [{ id: this.lastEffect, title, cause, who, result }, ...this.effects.value].slice(
        0,
        keptEffects,
      );
      if (who === 'you' && this.side.value !== 'findings') this.side.value = 'effects';
    });
    if (!effect) return;
    if (effect.waiting.length > 0 || effect.cut?.waiting !== undefined) this.isWaitingOld = true;
    // The change is made. That the page cannot show all of it now is no failure of the edit.
    await this.readOrLater(async () => {
      if (!isLate || !(await this.isThere(this.selected.peek())))
        this.leaveDeleted(effect.objectsDeleted, effect.objectsCreated, result);
      await Promise.all([isLate ? this.loadForm() : this.refreshForm(result, read), this.tree.apply(effect)]);
    }).catch(() => {});
    const text = result.message ?? title;
    const left = effect.objectsDeleted.flatMap((path) => this.unsetDrafts(path));
    const kept = left.length === 0 ? '' : ` What you typed in ${[...new Set(left)].join(', ')} is not in the model.`;
    this.announce((who === 'you' ? text : `Another page made a change: ${text}`) + kept);
    this.scheduleReview();
  }

  /** The object that is shown may be gone. A renamed one is followed, otherwise the one above is shown. */
  private leaveDeleted(deleted: string[], created: string[], result: EditResult): void {
    const gone = deleted.find((path) => isAtOrBelow(this.selected.value, path) && !created.includes(path));
    if (gone === undefined) return;
    const renamed = result.made?.find((edit) => edit.kind === 'rename-object' && edit.path === gone);
    const top =
      deleted.filter((path) => isAtOrBelow(this.selected.value, path)).sort((a, b) => a.length - b.length)[0] ?? gone;
    const next =
      renamed?.name === undefined ? parentOf(top) : `${gone.slice(0, gone.lastIndexOf(':') + 1)}${renamed.name}`;
    this.selected.value = next.length < this.root.length ? this.root : next;
    this.tree.active.value = this.selected.value;
  }

  private async isThere(path: string): Promise<boolean> {
    const { object } = await this.connection.call('lookObject', { document: this.document, path });
    return object?.present === true;
  }

  private async refreshForm(result: EditResult, read: FormRead | null): Promise<void> {
    const form = this.form.value;
    const effect = result.effect;
    const isRead = read !== null && read.path === this.selected.value;
    if (!form || form.path !== this.selected.value || form.total <= longForm || !effect || effect.cut) {
      if (isRead && read.form && this.isNewest(read.form.revision)) {
        this.formEpoch += 1;
        this.showForm(read.path, read.form, this.formEpoch);
      } else {
        await this.loadForm();
      }
    } else {
      // A long form is not read again. The effect says which parameters came and went.
      const states = new Map<string, boolean>();
      const note = (item: Item, available: boolean) => {
        if (item.path === form.path && item.name !== undefined) states.set(item.name, available);
      };
      for (const change of effect.values) note(change, change.after !== undefined);
      for (const item of effect.offersLost) if (!states.get(item.name ?? '')) note(item, false);
      for (const item of effect.offersGained) note(item, true);
      const waits = new Map<string, boolean>();
      for (const change of effect.waiting) {
        if (change.path === form.path && change.name !== undefined) waits.set(change.name, change.after !== undefined);
      }
      const { objectsCreated, objectsDeleted } = effect;
      // The values come first: they are what the user looks at.
      const held = [...this.mounted.keys()];
      for (const [key, record] of this.records) {
        const name = nameOf(key);
        if (!this.mounted.has(name)) this.records.delete(key);
        else if (record.peek() === null) this.wanted.delete(name);
      }
      let looked: Promise<void> | undefined;
      if (isRead && read.look && this.isNewest(read.look.revision)) this.showRecords(read.look);
      else looked = this.lookAt(form.path, held);
      const { object } = await this.connection.call('lookObject', { document: this.document, path: form.path });
      const isChildMoved = [...objectsCreated, ...objectsDeleted].some((path) => parentOf(path) === form.path);
      const childTypes = isChildMoved
        ? (await this.connection.call('childTypes', { document: this.document, path: form.path })).list
        : form.childTypes;
      const changed = (entry: LayoutEntry): LayoutEntry => {
        const available = states.get(entry.name) ?? entry.available;
        const waiting = waits.get(entry.name) ?? entry.waiting ?? false;
        return available === entry.available && waiting === (entry.waiting ?? false)
          ? entry
          : { ...entry, available, waiting };
      };
      const isMoved = states.size > 0 || waits.size > 0;
      this.form.value = { ...form, object, childTypes, layout: isMoved ? form.layout.map(changed) : form.layout };
      await looked;
    }
    this.shownRevision = this.state.value.revision;
  }

  async refreshAll(): Promise<void> {
    this.isWaitingOld = true;
    await Promise.all([this.tree.load(this.root), this.loadForm()]);
    this.shownRevision = this.state.value.revision;
    this.scheduleReview();
  }

  // ---- What others do

  async onChanged(event: EventChanged): Promise<void> {
    if (event.document !== this.document) return;
    const { cause, client, result, ...rest } = event;
    const state: State = rest;
    if (cause === 'open') return;
    await this.inTurn(async () => {
      if (event.document !== this.document) return;
      if (cause === 'save') {
        // What was edited since is not saved.
        if (event.revision >= this.state.value.revision) this.state.value = state;
        return;
      }
      // What this page did itself is shown already, from the answer.
      if (event.revision <= this.state.value.revision && !this.skipped.delete(event.revision)) return;
      if (cause === 'recover' || !result) {
        if (event.revision > this.state.value.revision) this.state.value = state;
        await this.readOrLater(() => this.refreshAll());
      } else {
        await this.show(state, result, cause, client === this.client ? 'you' : (client ?? 'another program'));
      }
    });
  }

  // ---- Findings, own values and what waits

  /** After a while without edits: a review takes a walk of the whole model, and no edit shall wait for it. */
  scheduleReview(after = Math.max(250, this.reviewCost * 3)): void {
    clearTimeout(this.reviewTimer);
    this.reviewTimer = setTimeout(() => void this.loadReview().catch(() => {}), after);
  }

  async loadReview(): Promise<void> {
    const begin = performance.now();
    const document = this.document;
    const review = await this.connection.call('review', { document, limit: 200 });
    this.reviewCost = performance.now() - begin;
    const isOld = this.isWaitingOld;
    this.isWaitingOld = false;
    const [waiting, own] = await Promise.all([
      isOld ? this.connection.call('waiting', { document, limit: 200 }) : this.waiting.peek(),
      this.connection.call('own', { document, limit: 1000 }),
    ]);
    batch(() => {
      this.review.value = review;
      this.waiting.value = waiting;
      this.own.value = own;
    });
    await this.tree.refreshFindings();
    if (this.side.value === 'changes') await this.loadDifferences();
  }

  async moreFindings(): Promise<void> {
    const review = this.review.value;
    if (!review) return;
    const more = await this.connection.call('review', {
      document: this.document,
      offset: review.list.length,
      limit: 200,
    });
    if (more.revision !== review.revision) return this.loadReview();
    this.review.value = { ...review, list: [...review.list, ...more.list] };
  }

  async loadDifferences(): Promise<void> {
    this.differences.value = await this.connection.call('differences', {
      document: this.document,
      from: 'file',
      limit: 1000,
    });
  }

  // ---- Why and how

  async askWhy(item: Item, question?: 'value' | 'presence' | 'allowed' | 'last-edit', value?: string): Promise<void> {
    batch(() => {
      this.side.value = 'why';
      this.why.value = { item, proof: null };
      this.how.value = null;
    });
    const { proof } = await this.connection.call('why', {
      document: this.document,
      ...item,
      question: question ?? (item.name === undefined ? 'presence' : 'value'),
      ...(value === undefined ? {} : { value }),
      depth: 8,
    });
    if (this.why.value?.item === item) this.why.value = { item, proof };
  }

  async askHow(item: Item): Promise<void> {
    batch(() => {
      this.side.value = 'why';
      this.how.value = { item, result: null, text: '' };
      this.why.value = null;
    });
    const answer = await this.connection.call('how', { document: this.document, ...item, time: 3000 });
    if (this.how.value?.item === item) this.how.value = { item, result: answer.result, text: answer.text };
  }

  // ---- Search

  async search(typed: string): Promise<void> {
    this.query.value = typed;
    const { filters, text } = parseQuery(typed);
    if (filters.length === 0 && text === '') {
      this.hits.value = null;
      this.announce('');
      return;
    }
    const document = this.document;
    const list: Hit[] = [];
    let total = 0;
    let nearest = '';
    let isMore = false;
    const limit = 1000;
    for (const filter of filters) {
      if (filter === 'set') {
        const answer = await this.connection.call('own', { document, limit });
        total += answer.total;
        for (const { path, name, value } of answer.list) list.push({ item: itemOf(path, name), note: value });
      } else if (filter === 'changed') {
        const answer = await this.connection.call('differences', { document, from: 'file', limit });
        total += answer.total;
        for (const one of answer.list) {
          const note =
            one.name === undefined
              ? one.isNewObject
                ? 'new object'
                : 'removed'
              : `${one.inModel ?? 'absent'} → ${one.now ?? 'absent'}`;
          list.push({ item: itemOf(one.path, one.name), note });
        }
      } else if (filter === 'waiting') {
        const answer = await this.connection.call('waiting', { document, limit });
        total += answer.total;
        for (const { path, name, value } of answer.list) list.push({ item: itemOf(path, name), note: value ?? '' });
      } else if (filter === 'finding') {
        const answer = await this.connection.call('review', { document, limit });
        total += answer.total;
        for (const { path, name, message } of answer.list)
          list.push({ item: itemOf(path, name), note: '', hint: message });
      }
    }
    if (text !== '') {
      const isListed = list.length > 0 || filters.some((one) => one !== 'unavailable' && one !== 'advanced');
      if (isListed) {
        const wanted = text.toLowerCase();
        const kept = list.filter(({ item }) => `${item.path} ${item.name ?? ''}`.toLowerCase().includes(wanted));
        list.splice(0, list.length, ...kept);
        total = kept.length;
      } else {
        const answer = await this.connection.call('find', { document, text, limit });
        const wantsAbsent = filters.includes('unavailable');
        for (const one of answer.list) {
          if (wantsAbsent && one.present) continue;
          list.push({
            item: itemOf(one.path, one.name),
            note: '',
            ...(one.present ? {} : { isAbsent: true }),
          });
        }
        isMore = !answer.isComplete;
        total = list.length + (isMore ? 1 : 0);
        if (list.length === 0) {
          const { refused } = await this.connection.call('resolve', { document, text });
          const near = refused?.nearest;
          nearest = near ? (near.name ?? near.path) : '';
        }
      }
    }
    if (this.query.peek() !== typed) return;
    const isFormFilter = text === '' && filters.every((one) => one === 'unavailable' || one === 'advanced');
    this.hits.value = isFormFilter ? null : { filters, text, list, total, isMore, nearest };
    const found = isMore ? `More than ${count(list.length, 'hit')}.` : `${count(total, 'hit')}.`;
    if (!isFormFilter) this.announce(total === 0 ? 'Nothing found.' : found);
  }
}

function itemOf(path: string, name: string | undefined): Item {
  return name === undefined ? { path } : { path, name };
}

function entryOf(param: Param): LayoutEntry {
  const { name, label, group, advanced, available, waiting } = param;
  return {
    name,
    available,
    ...(label === undefined ? {} : { label }),
    ...(group === undefined ? {} : { group }),
    ...(advanced ? { advanced } : {}),
    ...(waiting ? { waiting: true } : {}),
  };
}

/** Why edits were not made, or null if they were made or not wanted. `kept` is a sentence about what was typed. */
export function problemOf(outcome: Outcome, kept = ''): Problem | null {
  const withKept = (sentence: string): Problem => ({ sentence: kept === '' ? sentence : `${sentence} ${kept}` });
  switch (outcome.kind) {
    case 'refused':
      return outcome.problem;
    case 'conflict':
      return withKept('Someone else has changed this meanwhile.');
    case 'unknown':
      return withKept('The server did not say whether this was done.');
    default:
      return null;
  }
}

export function sentenceOf(error: unknown): string {
  const text = error instanceof Error ? error.message : String(error);
  return text.charAt(0).toUpperCase() + text.slice(1);
}
