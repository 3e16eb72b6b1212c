import { Device, EventId, type InputEvent } from "../protocol.ts";
import { HeldButtons } from "./buttons.ts";
import { HoverClock } from "./hover.ts";
import { HeldKeys, isSurfaceKey } from "./keys.ts";
import { toSurface, type SurfaceBox, type SurfacePoint } from "./units.ts";
import { wheelEvent } from "./wheel.ts";

/** What the surface shows of its own input. */
export interface SurfaceEcho {
  /** Where the pointer is; null while it's elsewhere. */
  point: SurfacePoint | null;
  buttons: string[];
  keys: string[];
}

export interface SurfaceListener {
  send(event: InputEvent): void;
  /** Whatever is held must be let go, as the page won't see how it ends; the reason is for the log. */
  releaseHeld(reason: string): void;
  echo(echo: SurfaceEcho): void;
}

/** Turns what the browser tells of the render surface into input events, in the order it came. */
export class SurfaceInput {
  readonly #surface: HTMLElement;
  readonly #listener: SurfaceListener;
  readonly #keys = new HeldKeys();
  readonly #buttons = new HeldButtons();
  readonly #hover = new HoverClock();
  readonly #detach = new AbortController();
  #hoverTimer: ReturnType<typeof setTimeout> | null = null;
  #lastPoint: SurfacePoint = { x: 0, y: 0, rx: 0, ry: 0 };
  #inside = false;

  constructor(surface: HTMLElement, listener: SurfaceListener) {
    this.#surface = surface;
    this.#listener = listener;

    this.#on(surface, "keydown", (event) => this.#keyDown(event));
    this.#on(surface, "keyup", (event) => this.#keyUp(event));

    this.#on(surface, "pointerenter", (event) => this.#enter(event));
    this.#on(surface, "pointerleave", (event) => this.#leave(event));
    this.#on(surface, "pointerdown", (event) => this.#pointerDown(event));
    this.#on(surface, "pointermove", (event) => this.#pointerMove(event));
    this.#on(surface, "pointerup", (event) => this.#sample(event));
    this.#on(surface, "wheel", (event) => this.#wheel(event));

    // The surface has its own use for what the browser does with buttons: menu, scrolling, selection, history.
    for (const type of ["mousedown", "mouseup", "auxclick", "contextmenu", "dragstart"] as const) {
      this.#on(surface, type, (event) => event.preventDefault());
    }

    this.#on(surface, "blur", () => this.#release("the surface lost the focus"));
    this.#on(surface, "pointercancel", () => this.#release("the pointer was cancelled"));
    this.#on(surface, "lostpointercapture", () => this.#release("the pointer was taken away"));
    const { signal } = this.#detach;
    window.addEventListener("blur", () => this.#release("the page lost the focus"), { signal });
    window.addEventListener("pagehide", () => this.#release("the page was left"), { signal });
    document.addEventListener("visibilitychange", () => document.hidden && this.#release("the page was hidden"), { signal });
  }

  detach(): void {
    this.#release("the surface is gone");
    this.#detach.abort();
    if (this.#hoverTimer !== null) {
      clearTimeout(this.#hoverTimer);
    }
  }

  /** Forgets what is held without telling: the host has already let go of it, as when the connection was lost. */
  forget(): void {
    this.#keys.clear();
    this.#buttons.clear();
    this.#echo();
  }

  /** Lets go of what is held, if anything is. */
  #release(reason: string): void {
    if (this.#buttons.any || this.#keys.texts.length > 0) {
      this.forget();
      this.#listener.releaseHeld(reason);
    }
  }

  #on<Type extends keyof HTMLElementEventMap>(
    target: HTMLElement,
    type: Type,
    handle: (event: HTMLElementEventMap[Type]) => void,
  ): void {
    target.addEventListener(type, handle, { signal: this.#detach.signal, passive: false });
  }

  #keyDown(event: KeyboardEvent): void {
    if (!isSurfaceKey(event)) {
      return;
    }
    event.preventDefault();
    const text = this.#keys.down(event);
    if (text !== null) {
      this.#sendKey(EventId.keyDown, text);
    }
  }

  #keyUp(event: KeyboardEvent): void {
    if (!isSurfaceKey(event)) {
      return;
    }
    event.preventDefault();
    for (const text of this.#keys.up(event)) {
      this.#sendKey(EventId.keyUp, text);
    }
  }

  #sendKey(id: number, text: string): void {
    this.#listener.send({ device: Device.keyboard, event: id, payload: { is: "key", text } });
    this.#echo();
  }

  #enter(event: PointerEvent): void {
    if (!event.isPrimary) {
      return;
    }
    this.#inside = true;
    this.#buttons.ignore(event.buttons);
    this.#place(event);
    this.#sendPointer(EventId.enter);
  }

  #leave(event: PointerEvent): void {
    if (!event.isPrimary) {
      return;
    }
    this.#inside = false;
    this.#hover.left();
    this.#sendPointer(EventId.leave);
  }

  #pointerDown(event: PointerEvent): void {
    if (!event.isPrimary) {
      return;
    }
    this.#surface.focus({ preventScroll: true });
    // A drag that ends outside the surface still brings its release here.
    this.#surface.setPointerCapture(event.pointerId);
    this.#sample(event);
  }

  #pointerMove(event: PointerEvent): void {
    // The browser gathers the moves between two of its frames into one; each of them is a sample of its own.
    const samples = event.getCoalescedEvents();
    for (const sample of samples.length > 0 ? samples : [event]) {
      this.#sample(sample);
    }
  }

  /** A place and a set of held buttons: the movement goes first, so that a button event has its place. */
  #sample(event: PointerEvent): void {
    if (!event.isPrimary) {
      return;
    }
    this.#place(event);
    this.#sendPointer(EventId.move);
    for (const id of this.#buttons.change(event.buttons)) {
      this.#sendPointer(id);
    }
  }

  #wheel(event: WheelEvent): void {
    event.preventDefault();
    const id = wheelEvent(event.deltaY);
    if (id !== null) {
      this.#lastPoint = toSurface(event.clientX, event.clientY, this.#box());
      this.#sendPointer(id);
    }
  }

  #place(event: PointerEvent): void {
    this.#lastPoint = toSurface(event.clientX, event.clientY, this.#box());
    if (this.#inside) {
      this.#hover.moved(event.clientX, event.clientY, performance.now());
      this.#awaitHover();
    }
  }

  #awaitHover(): void {
    const due = this.#hover.dueIn(performance.now());
    if (due === null || this.#hoverTimer !== null) {
      return;
    }
    // One timer follows the rest: it looks again when the pointer has moved in between.
    this.#hoverTimer = setTimeout(() => {
      this.#hoverTimer = null;
      if (this.#hover.take(performance.now())) {
        this.#sendPointer(EventId.hover);
      }
      this.#awaitHover();
    }, Math.ceil(due));
  }

  #sendPointer(id: number): void {
    const { x, y, rx, ry } = this.#lastPoint;
    this.#listener.send({
      device: Device.pointer,
      event: id,
      payload: { is: "pointer", rx, ry, x, y, pointer: 0, relative: 0 },
    });
    this.#echo();
  }

  #echo(): void {
    this.#listener.echo({
      point: this.#inside || this.#buttons.any ? this.#lastPoint : null,
      buttons: this.#buttons.names,
      keys: this.#keys.texts,
    });
  }

  #box(): SurfaceBox {
    const bounds = this.#surface.getBoundingClientRect();
    return {
      left: bounds.left + this.#surface.clientLeft,
      top: bounds.top + this.#surface.clientTop,
      width: this.#surface.clientWidth,
      height: this.#surface.clientHeight,
    };
  }
}
