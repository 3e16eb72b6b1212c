import { reconnectDelay } from "./backoff.ts";
import { t } from "./i18n.ts";
import type { Push, Reply } from "./messages.ts";
import { inReadersLanguage } from "./refusals.ts";

export interface ConnectionListener {
  pushed(push: Push): void;
  replied(reply: Reply): void;
  /** The connection is gone; the next attempt follows after this many milliseconds. */
  lost(retryInMs: number): void;
}

type Resolve = (reply: Reply) => void;

/** The page's WebSocket: opens again by itself whenever it's lost, numbers requests, hands each reply to who asked. */
export class Connection {
  readonly #address: string;
  readonly #listener: ConnectionListener;
  #socket: WebSocket | null = null;
  /** The host knows this connection: from its greeting on it takes requests. */
  #greeted = false;
  #failures = 0;
  #nextId = 1;
  #waiting = new Map<number, Resolve>();

  constructor(address: string, listener: ConnectionListener) {
    this.#address = address;
    this.#listener = listener;
    this.#open();
  }

  /** Sends a request whose reply matters only for what happened; false when there is no connection. */
  send(request: object): boolean {
    if (!this.#greeted || this.#socket?.readyState !== WebSocket.OPEN) {
      return false;
    }
    this.#socket.send(JSON.stringify(request));
    return true;
  }

  /** Sends a request and waits for its reply; a lost connection answers with an error. */
  request<Body extends object>(request: object): Promise<Reply<Body>> {
    return new Promise((resolve) => {
      const id = this.#nextId++;
      this.#waiting.set(id, resolve as Resolve);
      if (!this.send({ ...request, id })) {
        this.#waiting.delete(id);
        resolve({ ok: false, error: t("not connected") });
      }
    });
  }

  #open(): void {
    const socket = new WebSocket(this.#address);
    this.#socket = socket;
    socket.addEventListener("message", async (event) => {
      for (const message of JSON.parse(String(event.data)) as (Push | Reply)[]) {
        this.#receive(message);
        await null; // who waited for a reply goes on before what was told behind it
      }
    });
    socket.addEventListener("close", () => this.#lose());
  }

  #receive(message: Push | Reply): void {
    if ("push" in message) {
      if (message.push === "hello") {
        this.#failures = 0;
        this.#greeted = true;
      }
      this.#listener.pushed(message);
      return;
    }
    this.#listener.replied(message);
    if (message.id !== undefined) {
      this.#waiting.get(message.id)?.(inReadersLanguage(message));
      this.#waiting.delete(message.id);
    }
  }

  #lose(): void {
    this.#socket = null;
    this.#greeted = false;
    const waiting = [...this.#waiting.values()];
    this.#waiting.clear();
    for (const resolve of waiting) {
      resolve({ ok: false, error: t("the connection was lost") });
    }
    const delay = reconnectDelay(this.#failures++);
    this.#listener.lost(delay);
    setTimeout(() => this.#open(), delay);
  }
}
