// The stream of events. It is read with fetch, because an EventSource cannot send the token in a header.
import type { EventChanged, EventClosed } from './Messages';
import type { Fetch } from './Rpc';

export type ServerEvent =
  | { method: 'changed'; params: EventChanged }
  | { method: 'closed'; params: EventClosed }
  | { method: 'eventsLost' };

/** Divides a stream of server-sent events into the texts of its events, however the stream is cut into pieces. */
export class EventDivider {
  private rest = '';

  /** The events that are complete with this piece. Comments have no data and are left out. */
  take(piece: string): string[] {
    this.rest += piece;
    const blocks = this.rest.split('\n\n');
    this.rest = blocks.pop() ?? '';
    return blocks
      .map((block) =>
        block
          .split('\n')
          .filter((line) => line.startsWith('data:'))
          .map((line) => line.slice('data:'.length).replace(/^ /, ''))
          .join('\n'),
      )
      .filter((data) => data !== '');
  }
}

export type EventHandlers = {
  onOpen: () => void;
  onEvent: (event: ServerEvent) => void;
  /** The stream has ended, or it never began. Nothing is called after this. */
  onEnd: () => void;
};

/** Reads events until the stream ends or `signal` stops it. */
export async function readEvents(
  headers: Record<string, string>,
  handlers: EventHandlers,
  signal: AbortSignal,
  fetch: Fetch = (url, init) => globalThis.fetch(url, init),
): Promise<void> {
  try {
    const response = await fetch('events', { headers, signal });
    if (!response.ok || !response.body) return;
    const reader = response.body.getReader();
    const decoder = new TextDecoder();
    const divider = new EventDivider();
    handlers.onOpen();
    for (;;) {
      const { done, value } = await reader.read();
      if (done) return;
      for (const data of divider.take(decoder.decode(value, { stream: true }))) {
        handlers.onEvent(JSON.parse(data) as ServerEvent);
      }
    }
  } catch {
    // The end of a stream by a lost connection is an end like any other.
  } finally {
    if (!signal.aborted) handlers.onEnd();
  }
}
