// What the controller tells as it happens, as a stream of server-sent events. Read by fetch, because
// an EventSource cannot carry a token. A lost connection is taken up again where it broke off.

import {authorization} from './api.js';

const SILENCE_MS = 40000; // a heartbeat comes every 15 s
const WAITS_MS = [500, 1000, 2000, 5000, 10000];
const HIDDEN_MS = 60000;

/** Cuts a stream's text into events; what is not complete yet waits for more. */
export class EventCutter {
  #rest = '';

  /** @returns [{id, event, data}] */
  take(text) {
    this.#rest += text.replaceAll('\r', '');
    const blocks = this.#rest.split('\n\n');
    this.#rest = blocks.pop();
    return blocks.map(readBlock).filter(({event}) => event);
  }
}

function readBlock(block) {
  const fields = {event: '', data: []};
  for (const line of block.split('\n')) {
    const colon = line.indexOf(':');
    if (colon === 0) continue; // a comment
    const name = colon < 0 ? line : line.slice(0, colon);
    const value = colon < 0 ? '' : line.slice(colon + 1).replace(/^ /, '');
    if (name === 'data') fields.data.push(value);
    else fields[name] = value;
  }
  return {...fields, data: fields.data.join('\n')};
}

/**
 * Connects and stays connected. `onEvent(name, data)`; `onState('live' | 'lost')`; `onGap()` where
 * what was missed is not known: read everything again. A page that nobody looks at lets its
 * connection go after a minute: a browser has six for one house, however many pages it shows.
 */
export class Stream {
  #listener;
  #lastId = null;
  #tries = 0;
  #abort = null;
  #timer = null;
  #resting = false;

  constructor(listener) {
    this.#listener = listener;
    document.addEventListener('visibilitychange', () => this.#watched(!document.hidden));
    addEventListener('online', () => this.#again(0));
  }

  start() {
    this.#connect();
  }

  #watched(visible) {
    clearTimeout(this.hideTimer);
    if (!visible) {
      this.hideTimer = setTimeout(() => {
        this.#resting = true;
        this.#abort?.abort();
      }, HIDDEN_MS);
    } else if (this.#resting) {
      this.#resting = false;
      this.#again(0);
    }
  }

  #again(wait) {
    if (this.#resting || this.#abort) return;
    clearTimeout(this.#timer);
    this.#timer = setTimeout(() => this.#connect(), wait);
  }

  async #connect() {
    if (this.#abort) return;
    const abort = (this.#abort = new AbortController());
    let silence;
    const heard = () => {
      clearTimeout(silence);
      silence = setTimeout(() => abort.abort(), SILENCE_MS);
    };
    try {
      heard();
      const headers = {...authorization(), Accept: 'text/event-stream'};
      if (this.#lastId !== null) headers['Last-Event-ID'] = this.#lastId;
      const response = await fetch('api/v1/stream', {
        headers,
        signal: abort.signal,
        cache: 'no-store',
      });
      if (!response.ok) throw new Error(String(response.status));
      // Told nothing yet, so what happened between reading the page's data and now is not known.
      if (this.#lastId === null && this.#tries > 0) this.#listener.onGap();
      this.#tries = 0;
      this.#listener.onState('live');
      await this.#read(response.body, heard);
    } catch {
      // Lost, refused or given up: all the same, it is tried again.
    }
    clearTimeout(silence);
    this.#abort = null;
    if (this.#resting) return;
    this.#listener.onState('lost');
    this.#again(WAITS_MS[Math.min(this.#tries++, WAITS_MS.length - 1)]);
  }

  async #read(body, heard) {
    const cutter = new EventCutter();
    const reader = body.pipeThrough(new TextDecoderStream()).getReader();
    for (;;) {
      const {done, value} = await reader.read();
      if (done) return;
      heard();
      for (const {id, event, data} of cutter.take(value)) {
        if (id !== undefined) this.#lastId = id;
        if (event === 'reset') this.#listener.onGap();
        else this.#listener.onEvent(event, JSON.parse(data || 'null'));
      }
    }
  }
}
