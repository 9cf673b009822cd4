// The way to the server, and what happens when it breaks: nothing is lost, and it is tried again until it works.
import { signal } from '@preact/signals';
import { readEvents, type ServerEvent } from '../protocol/Events';
import type { ResultHello } from '../protocol/Messages';
import {
  type Method,
  NotAllowed,
  type Params,
  type Request,
  type Result,
  type Rpc,
  Unreachable,
} from '../protocol/Rpc';

export type Link =
  | { kind: 'connecting' }
  | { kind: 'online' }
  /** The server does not answer. It is asked again at `nextTry`. */
  | { kind: 'gone'; nextTry: number }
  /** The server answers, but the token is not its own: it was probably started again. */
  | { kind: 'not-allowed'; sentence: string };

const firstDelay = 500;
const longestDelay = 4000;

export class Connection {
  readonly link = signal<Link>({ kind: 'connecting' });
  /** Called whenever the server can be reached again, and at the start. */
  onHello: (hello: ResultHello) => Promise<void> = async () => {};
  onEvent: (event: ServerEvent) => void = () => {};

  private isClosed = false;
  private delay = firstDelay;
  private timer: ReturnType<typeof setTimeout> | undefined;
  private events: AbortController | null = null;
  private waiters: (() => void)[] = [];

  constructor(private readonly rpc: Rpc) {}

  /** One request. When the server cannot be reached, it begins to try again and throws `Unreachable`. */
  call<M extends Method>(method: M, params: Params<M>): Promise<Result<M>> {
    return this.watched(this.rpc.call(method, params));
  }

  /** Two requests that travel together: see `Rpc.callBoth`. */
  callBoth<A extends Method, B extends Method>(
    first: Request<A>,
    second: Request<B>,
  ): Promise<[Result<A>, Result<B> | null]> {
    return this.watched(this.rpc.callBoth(first, second));
  }

  private async watched<T>(answer: Promise<T>): Promise<T> {
    try {
      return await answer;
    } catch (error) {
      if (error instanceof Unreachable) this.lost();
      if (error instanceof NotAllowed) this.refused(error.message);
      throw error;
    }
  }

  /** Resolves when the server can be reached. */
  whenOnline(): Promise<void> {
    if (this.link.value.kind === 'online') return Promise.resolve();
    return new Promise((resolve) => this.waiters.push(resolve));
  }

  /** Says hello. Also called by the user who does not want to wait. */
  async connect(): Promise<void> {
    clearTimeout(this.timer);
    try {
      const hello = await this.rpc.call('hello', {});
      this.delay = firstDelay;
      // The stream begins before anything is asked, so that no change falls between.
      this.listen();
      await this.onHello(hello);
      this.link.value = { kind: 'online' };
      const waiters = this.waiters;
      this.waiters = [];
      for (const resolve of waiters) resolve();
    } catch (error) {
      if (error instanceof NotAllowed) this.refused(error.message);
      // An error in an answer is tried again as well: a document may be replaced while everything is read.
      else this.again();
    }
  }

  /** Asks and listens no more. */
  close(): void {
    this.isClosed = true;
    clearTimeout(this.timer);
    this.events?.abort();
  }

  private lost(): void {
    if (this.link.value.kind === 'online') this.again();
  }

  private refused(sentence: string): void {
    clearTimeout(this.timer);
    this.link.value = { kind: 'not-allowed', sentence };
  }

  private again(): void {
    if (this.isClosed) return;
    clearTimeout(this.timer);
    this.events?.abort();
    this.events = null;
    this.link.value = { kind: 'gone', nextTry: Date.now() + this.delay };
    this.timer = setTimeout(() => void this.connect(), this.delay);
    this.delay = Math.min(this.delay * 2, longestDelay);
  }

  private listen(): void {
    this.events?.abort();
    const own = new AbortController();
    this.events = own;
    void readEvents(
      this.rpc.headers(),
      {
        onOpen: () => {},
        onEvent: (event) => this.onEvent(event),
        // A stream that ends while the server lives is only opened again; a server that is gone says so itself.
        onEnd: () => {
          if (this.events !== own) return;
          this.events = null;
          if (this.link.value.kind === 'online') this.again();
        },
      },
      own.signal,
    );
  }
}
