import { Device, EventId } from "../codes.ts";
import type { InputEvent } from "../messages.ts";
import { HeldButtons } from "./buttons.ts";
import type { Holder } from "./holders.ts";
import { HoverClock } from "./hover.ts";
import type { LockReader } from "./keyboardState.ts";
import { HeldKeys, isSurfaceKey } from "./keys.ts";
import { PointerNumbers } from "./pointers.ts";
import type { SampleKind } from "./stroke.ts";
import { toSurface, type SurfaceBox, type SurfacePoint } from "./units.ts";
import { wheelEvent } from "./wheel.ts";

/** A pointer on the surface, as the surface shows it. */
export interface PointerEcho {
  number: number;
  /** "mouse", "touch" or "pen". */
  type: string;
  point: SurfacePoint;
  pressed: boolean;
}

export interface SurfaceListener {
  send(event: InputEvent): void;
  /** The virtual keys that are down. */
  keys(down: number[], locks: LockReader | null): void;
  /** Keys, or what one pointer holds, must be let go, as the page won't see how it ends; the reason is for the log. */
  releaseKeys(reason: string): void;
  releasePointer(reason: string, pointer: number): void;
  echo(pointers: PointerEcho[]): void;
}

interface Pointer {
  /** From the connection's first one on. */
  number: number;
  type: string;
  buttons: HeldButtons;
  point: SurfacePoint;
  /** The kind of its samples. It stays the same for the whole of a stroke. */
  kind: SampleKind;
  inside: boolean;
}

/** Turns what the browser tells of the render surface into input events, in the order it came. */
export class SurfaceInput implements Holder {
  /** The kind of samples that strokes begin with from now on. */
  sampleKind: SampleKind = "pixel";

  readonly #surface: HTMLElement;
  readonly #listener: SurfaceListener;
  #firstPointer = 0;
  readonly #keys = new HeldKeys();
  readonly #numbers = new PointerNumbers();
  readonly #pointers = new Map<number, Pointer>();
  readonly #hover = new HoverClock();
  readonly #detach = new AbortController();
  #hoverTimer: ReturnType<typeof setTimeout> | null = null;
  /** The pointer whose rest is a hover: fingers don't hover. */
  #hovering: Pointer | null = null;

  constructor(surface: HTMLElement, listener: SurfaceListener) {
    this.#surface = surface;
    this.#listener = listener;

    this.#on("keydown", (event) => this.#keyDown(event));
    this.#on("keyup", (event) => this.#keyUp(event));

    this.#on("pointerenter", (event) => this.#enter(event));
    this.#on("pointerleave", (event) => this.#leave(event));
    this.#on("pointerdown", (event) => this.#pointerDown(event));
    this.#on("pointermove", (event) => this.#pointerMove(event));
    this.#on("pointerup", (event) => this.#sample(event));
    this.#on("wheel", (event) => this.#wheel(event));

    // The surface has its own use for what the browser does with buttons: menu, scrolling, selection, history.
    for (const type of ["mousedown", "mouseup", "auxclick", "contextmenu", "dragstart"] as const) {
      this.#on(type, (event) => event.preventDefault());
    }

    this.#on("blur", () => this.#releaseKeys("the surface lost the focus"));
    this.#on("pointercancel", (event) => this.#releasePointer(event, "the pointer was cancelled"));
    this.#on("lostpointercapture", (event) => this.#releasePointer(event, "the pointer was taken away"));
  }

  /** The number that the nodes know the mouse by. */
  set firstPointer(number: number) {
    this.#firstPointer = number;
    this.#echo();
  }

  /** Lets go of what is held, and listens no longer. */
  detach(): void {
    this.#releaseKeys("the surface is gone");
    for (const pointer of this.#pointers.values()) {
      this.#releaseButtons(pointer, "the surface is gone");
    }
    this.#detach.abort();
    if (this.#hoverTimer !== null) {
      clearTimeout(this.#hoverTimer);
    }
  }

  holds(): boolean {
    return this.#keys.texts.length > 0 || [...this.#pointers.values()].some(({ buttons }) => buttons.any);
  }

  forget(): void {
    this.#keys.clear();
    for (const { buttons } of this.#pointers.values()) {
      buttons.clear();
    }
    this.#echo();
  }

  #releaseKeys(reason: string): void {
    if (this.#keys.texts.length > 0) {
      this.#keys.clear();
      this.#listener.releaseKeys(reason);
      this.#listener.keys([], null);
    }
  }

  #releasePointer({ pointerId }: PointerEvent, reason: string): void {
    const pointer = this.#pointers.get(pointerId);
    if (pointer !== undefined) {
      this.#releaseButtons(pointer, reason);
    }
  }

  #releaseButtons(pointer: Pointer, reason: string): void {
    if (pointer.buttons.any) {
      pointer.buttons.clear();
      this.#listener.releasePointer(reason, this.#firstPointer + pointer.number);
      this.#echo();
    }
  }

  #on<Type extends keyof HTMLElementEventMap>(type: Type, handle: (event: HTMLElementEventMap[Type]) => void): void {
    this.#surface.addEventListener(type, handle, { signal: this.#detach.signal, passive: false });
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
    this.#listener.keys(this.#keys.virtualKeys, event);
  }

  #keyUp(event: KeyboardEvent): void {
    if (!isSurfaceKey(event)) {
      return;
    }
    event.preventDefault();
    for (const text of this.#keys.up(event)) {
      this.#sendKey(EventId.keyUp, text);
    }
    this.#listener.keys(this.#keys.virtualKeys, event);
  }

  #sendKey(id: number, text: string): void {
    this.#listener.send({ device: Device.keyboard, event: id, payload: { is: "key", text } });
  }

  #pointer({ pointerId, pointerType }: PointerEvent): Pointer {
    let pointer = this.#pointers.get(pointerId);
    if (pointer === undefined) {
      pointer = {
        number: this.#numbers.of(pointerId, pointerType),
        type: pointerType,
        buttons: new HeldButtons(),
        point: { x: 0, y: 0, rx: 0, ry: 0 },
        kind: this.sampleKind,
        inside: false,
      };
      this.#pointers.set(pointerId, pointer);
    }
    return pointer;
  }

  get #anyInside(): boolean {
    return [...this.#pointers.values()].some(({ inside }) => inside);
  }

  /** The surface is entered with the first pointer and left with the last one. */
  #enter(event: PointerEvent): void {
    const pointer = this.#pointer(event);
    const isFirst = !this.#anyInside;
    pointer.inside = true;
    if (pointer.type === "mouse") {
      // A finger or pen that was pressed elsewhere stays captured there; only a mouse comes in with a button down.
      pointer.buttons.ignore(event.buttons);
    }
    this.#place(pointer, event);
    if (isFirst) {
      this.#sendPointer(pointer, EventId.enter);
    }
  }

  #leave(event: PointerEvent): void {
    const pointer = this.#pointer(event);
    pointer.inside = false;
    if (this.#hovering === pointer) {
      this.#hover.left();
      this.#hovering = null;
    }
    this.#releaseButtons(pointer, "the pointer was taken away");
    this.#pointers.delete(event.pointerId);
    this.#numbers.free(event.pointerId);
    if (!this.#anyInside) {
      this.#sendPointer(pointer, EventId.leave);
    }
    this.#echo();
  }

  #pointerDown(event: PointerEvent): void {
    this.#surface.focus({ preventScroll: true });
    // A drag that ends outside the surface still brings its release here.
    this.#surface.setPointerCapture(event.pointerId);
    this.#sample(event);
  }

  #pointerMove(event: PointerEvent): void {
    // The browser gathers the moves between two of its frames into one; each of them is a sample of its own. Plain http from
    // another machine and older browsers lack the call, and some browsers leave out whose moves they were.
    const places = event.getCoalescedEvents?.() ?? [];
    for (const place of places.length > 0 ? places : [event]) {
      this.#sample(event, place);
    }
  }

  /** A place and a set of held buttons: the movement goes first, so that a button event has its place. */
  #sample(event: PointerEvent, place: MouseEvent = event): void {
    const pointer = this.#pointer(event);
    if (!pointer.buttons.any) {
      pointer.kind = this.sampleKind;
    }
    this.#place(pointer, place);
    this.#sendPointer(pointer, EventId.move);
    for (const id of pointer.buttons.change(event.buttons)) {
      this.#sendPointer(pointer, id);
    }
  }

  #wheel(event: WheelEvent): void {
    event.preventDefault();
    const id = wheelEvent(event.deltaY);
    if (id !== null) {
      const point = toSurface(event.clientX, event.clientY, this.#box());
      this.#send(id, this.#firstPointer, point, this.sampleKind);
    }
  }

  #place(pointer: Pointer, event: MouseEvent): void {
    pointer.point = toSurface(event.clientX, event.clientY, this.#box());
    if (pointer.inside && pointer.type !== "touch") {
      this.#hovering = pointer;
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
      if (this.#hovering !== null && this.#hover.take(performance.now())) {
        this.#sendPointer(this.#hovering, EventId.hover);
      }
      this.#awaitHover();
    }, Math.ceil(due));
  }

  #sendPointer(pointer: Pointer, id: number): void {
    this.#send(id, this.#firstPointer + pointer.number, pointer.point, pointer.kind);
    this.#echo();
  }

  #send(id: number, pointer: number, { x, y, rx, ry }: SurfacePoint, kind: SampleKind): void {
    this.#listener.send({
      device: Device.pointer,
      event: id,
      payload: { is: "pointer", rx, ry, x, y, pointer, relative: kind === "relative" ? 1 : 0 },
    });
  }

  #echo(): void {
    this.#listener.echo(
      [...this.#pointers.values()]
        .filter(({ inside, buttons }) => inside || buttons.any)
        .map(({ number, type, point, buttons }) => ({
          number: this.#firstPointer + number,
          type,
          point,
          pressed: buttons.any,
        })),
    );
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
