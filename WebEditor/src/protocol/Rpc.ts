// Requests to the server, one message each. A request either has an answer, is refused by the server, or does not
// arrive; the three must be told apart, because only the last may be sent again.
import type { Methods, Error as RpcFault } from './Messages';

export type Method = keyof Methods;
export type Params<M extends Method> = Methods[M]['params'];
export type Result<M extends Method> = Methods[M]['result'];

export const outdatedRevision = -32001;
export const unknownDocument = -32002;
export const openFailed = -32005;
export const unsavedEdits = -32006;
export const recoveryFailed = -32008;
export const losesOwnValues = -32009;

/** The server answered with an error. */
export class ServerError extends Error {
  readonly code: number;
  readonly data: unknown;

  constructor(fault: RpcFault) {
    super(fault.message);
    this.code = fault.code;
    this.data = fault.data;
  }
}

/** The server could not be reached, or the answer was lost. */
export class Unreachable extends Error {}

/** The server does not know the token. */
export class NotAllowed extends Error {}

export type Fetch = (url: string, init: RequestInit) => Promise<Response>;

const badRequest = 400;
const unauthorized = 401;
const forbidden = 403;

export type Request<M extends Method> = { method: M; params: Params<M> };
type Answer = { result?: unknown; error?: RpcFault };

export class Rpc {
  private lastId = 0;

  constructor(
    private readonly token: string,
    private readonly fetch: Fetch = (url, init) => globalThis.fetch(url, init),
  ) {}

  /** The headers that let this page in. Without a token of its own it relies on the cookie. */
  headers(): Record<string, string> {
    return this.token === '' ? {} : { Authorization: `Bearer ${this.token}` };
  }

  async call<M extends Method>(method: M, params: Params<M>): Promise<Result<M>> {
    const answer = (await this.send(this.message(method, params))) as Answer;
    if (answer.error) throw new ServerError(answer.error);
    return answer.result as Result<M>;
  }

  /**
   * Two requests in one message. The server answers the second after the first, so it sees what the first has done. An
   * error of the first is thrown; one of the second is null.
   */
  async callBoth<A extends Method, B extends Method>(
    first: Request<A>,
    second: Request<B>,
  ): Promise<[Result<A>, Result<B> | null]> {
    const messages = [this.message(first.method, first.params), this.message(second.method, second.params)];
    const [one, other] = (await this.send(messages)) as [Answer, Answer];
    if (one.error) throw new ServerError(one.error);
    return [one.result as Result<A>, other.error ? null : (other.result as Result<B>)];
  }

  private message<M extends Method>(method: M, params: Params<M>): object {
    this.lastId += 1;
    return { jsonrpc: '2.0', id: this.lastId, method, params };
  }

  private async send(message: object): Promise<unknown> {
    try {
      const response = await this.fetch('rpc', {
        method: 'POST',
        headers: { 'Content-Type': 'application/json', ...this.headers() },
        body: JSON.stringify(message),
      });
      if (response.status === unauthorized || response.status === forbidden)
        throw new NotAllowed(await response.text());
      // Errors of the transport are sentences; a message that is too long is answered with JSON.
      if (response.status >= badRequest && !response.headers.get('content-type')?.includes('json')) {
        throw new Unreachable(await response.text());
      }
      const answer = await response.json();
      // A message that is refused as a whole has one answer.
      if (Array.isArray(message) && !Array.isArray(answer)) throw new ServerError(answer.error);
      return answer;
    } catch (error) {
      if (error instanceof NotAllowed || error instanceof Unreachable || error instanceof ServerError) throw error;
      throw new Unreachable(String(error));
    }
  }
}
