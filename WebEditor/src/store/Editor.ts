// The page as a whole: the connection, the documents, and the one that is shown.
import { batch, signal } from '@preact/signals';
import type { Recoverable, ResultHello, ResultRecover, State } from '../protocol/Messages';
import { type Rpc, recoveryFailed, ServerError } from '../protocol/Rpc';
import { Connection } from './Connection';
import { DocumentStore, sentenceOf } from './DocumentStore';

const recoveryPause = 300;

/** What is shown on a narrow screen, where there is room for one thing. */
export type Pane = 'tree' | 'form' | 'side';

export class Editor {
  readonly connection: Connection;
  readonly documents = signal<State[]>([]);
  readonly recoverable = signal<Recoverable[]>([]);
  readonly open = signal<DocumentStore | null>(null);
  readonly pane = signal<Pane>('form');
  readonly helpIsOpen = signal(false);
  /** A sentence about the server that came back, until the user has read it. */
  readonly notice = signal('');
  readonly client = `page ${Math.floor(Math.random() * 0xffffffff).toString(36)}`;

  constructor(rpc: Rpc) {
    this.connection = new Connection(rpc);
    this.connection.onHello = (hello) => this.take(hello);
    this.connection.onEvent = (event) => {
      const store = this.open.value;
      if (event.method === 'changed') {
        this.noteState(event.params);
        void store?.onChanged(event.params).catch(() => {});
      } else if (event.method === 'closed') {
        this.documents.value = this.documents.value.filter(({ document }) => document !== event.params.document);
        if (store?.document === event.params.document) {
          this.open.value = null;
          this.notice.value = 'The document was closed by another program.';
        }
      } else {
        void this.missedEvents().catch(() => {});
      }
    };
  }

  async show(state: State, path?: string): Promise<void> {
    const store = new DocumentStore(this.connection, state, this.client);
    if (path !== undefined) store.selected.value = path;
    this.open.value = store;
    await store.load();
    await store.tree.reveal(store.selected.value);
  }

  /** Opens a file of the server's folders. Returns why not. */
  async openFile(file: string): Promise<string | null> {
    try {
      const { wasOpen: _wasOpen, ...state } = await this.connection.call('open', { file, client: this.client });
      this.noteState(state);
      await this.show(state);
      return null;
    } catch (error) {
      return sentenceOf(error);
    }
  }

  async recover(recovery: string, partial = false): Promise<string | null> {
    try {
      const answer = await this.callRecover(recovery, partial);
      const { done: _done, entries: _entries, fileChanged, ...state } = answer;
      batch(() => {
        this.recoverable.value = this.recoverable.value.filter((one) => one.recovery !== recovery);
        this.noteState(state);
        this.notice.value = fileChanged
          ? 'The edits are back. The file was changed by someone else since; saving will ask what to do.'
          : 'The edits are back. They are not saved yet.';
      });
      const store = this.open.value;
      if (store && (store.state.value.file === state.file || store.document === state.document)) {
        await store.reload(state);
      } else {
        await this.show(state);
      }
      return null;
    } catch (error) {
      return sentenceOf(error);
    }
  }

  /** A recovery file is in use for a moment whenever another client asks what can be recovered. */
  private async callRecover(recovery: string, partial: boolean): Promise<ResultRecover> {
    for (let left = 5; ; left--) {
      try {
        return await this.connection.call('recover', { recovery, partial, client: this.client });
      } catch (error) {
        const isInUse = error instanceof ServerError && error.code === recoveryFailed && error.data == null;
        if (!isInUse || left === 0) throw error;
        await new Promise((resolve) => setTimeout(resolve, recoveryPause));
      }
    }
  }

  async discardRecovery(recovery: string): Promise<void> {
    await this.connection.call('discardRecovery', { recovery });
    this.recoverable.value = this.recoverable.value.filter((one) => one.recovery !== recovery);
  }

  private noteState(state: State): void {
    const known = this.documents.value;
    const index = known.findIndex(({ document }) => document === state.document);
    this.documents.value = index < 0 ? [...known, state] : known.map((one, i) => (i === index ? state : one));
  }

  /** The server says hello: for the first time, or after it was away. */
  private async take(hello: ResultHello): Promise<void> {
    batch(() => {
      this.documents.value = hello.documents;
      this.recoverable.value = hello.recoverable;
    });
    const store = this.open.value;
    if (!store) {
      const [first] = hello.documents;
      if (first) await this.show(first, pathOfAddress());
      return;
    }
    const same = hello.documents.find(({ document }) => document === store.document);
    if (same) return store.reload(same);
    // A new server does not know the document. Drafts stay; the file is shown as the server has it.
    const file = store.state.value.file;
    const again = hello.documents.find((state) => file !== undefined && state.file === file);
    const state =
      again ?? (file === undefined ? undefined : await this.connection.call('open', { file, client: this.client }));
    if (!state) {
      this.open.value = null;
      this.notice.value = 'The server was started again and does not know the document any more.';
      return;
    }
    this.noteState(state);
    const left = hello.recoverable.some((one) => one.file === file);
    this.notice.value = left ? '' : 'The server was started again. All edits that it had answered are in the file.';
    await store.reload(state);
  }

  private async missedEvents(): Promise<void> {
    const { documents } = await this.connection.call('documents', {});
    this.documents.value = documents;
    const store = this.open.value;
    const same = documents.find(({ document }) => document === store?.document);
    if (same) await store?.reload(same);
  }
}

/** The object that the address names, after "#". */
export function pathOfAddress(): string | undefined {
  const hash = decodeURIComponent(location.hash.slice(1));
  return hash.startsWith('/') ? hash : undefined;
}
