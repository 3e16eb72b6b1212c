import { reconnectDelay } from "./backoff.ts";
import { t } from "./i18n.ts";
import type { Reply } from "./messages.ts";
import type { Push } from "./protocol.ts";
import { inReadersLanguage } from "./refusals.ts";

export interface ConnectionListener {
  pushed(push: Push): void;
  replied(reply: Reply): void;
  /** The connection is gone; the next attempt follows after this many milliseconds. */
  lost(retryInMs: number): void;
  /** Why an attempt failed: the host refuses the page's token, or isn't there. */
  failed(isRefused: boolean): void;
}

/** What the host takes of one request, in bytes. */
const LONGEST_REQUEST = 1024 ** 2;

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

  /** Sends a request whose reply matters only for what happened; answers with why it couldn't, or null. */
  send(request: object): string | null {
    if (!this.#greeted || this.#socket?.readyState !== WebSocket.OPEN) {
      return t("Not connected");
    }
    const text = JSON.stringify(request);
    if (new TextEncoder().encode(text).length > LONGEST_REQUEST) {
      return t("This is too long for the host: it takes 1 MiB at a time."); // it would end the connection
    }
    this.#socket.send(text);
    return null;
  }

  /** Sends a request and waits for its reply; one that isn't sent, and a lost connection, answer with an error. */
  request<Body extends object>(request: object): Promise<Reply<Body>> {
    return new Promise((resolve) => {
      const id = this.#nextId++;
      this.#waiting.set(id, resolve as Resolve);
      const error = this.send({ ...request, id });
      if (error !== null) {
        this.#waiting.delete(id);
        resolve({ ok: false, error });
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
    if (!this.#greeted) {
      void this.#askWhy();
    }
    this.#socket = null;
    this.#greeted = false;
    const waiting = [...this.#waiting.values()];
    this.#waiting.clear();
    for (const resolve of waiting) {
      resolve({ ok: false, error: t("The connection was lost.") });
    }
    const delay = reconnectDelay(this.#failures++);
    this.#listener.lost(delay);
    setTimeout(() => this.#open(), delay);
  }

  /** The browser doesn't tell why a WebSocket didn't open: a request for the page does. */
  async #askWhy(): Promise<void> {
    try {
      this.#listener.failed((await fetch(".", { cache: "no-store" })).status === 401);
    } catch {
      this.#listener.failed(false);
    }
  }
}
