import { EventId } from "../codes.ts";
import { t } from "../i18n.ts";
import { firedByNodes, type EventReply, type PointerPayload } from "../messages.ts";
import { explain, Stroke, type Judgement, type SampleKind, type StrokePoint } from "./stroke.ts";

/** A place in the units of the samples, and in pixels, where it's drawn. */
export interface TrailPoint extends StrokePoint {
  px: number;
  py: number;
}

export interface Verdict {
  /** The events that the nodes fired, by their names; empty when none did. */
  fired: string[];
  /** Why these, or why none. */
  reason: string;
}

export interface StrokeView {
  pointer: number;
  stroke: Stroke<TrailPoint>;
  /** A gesture node takes its samples. Each follows one pointer at a time. */
  followed: boolean;
  /** What it would be if it ended here. */
  judgement: Judgement;
  /** Null until the pointer has lifted. */
  verdict: Verdict | null;
}

/** A touch gesture node of the scene. */
export interface GestureNode {
  node: string;
  /** The names of its outputs. */
  outputs: ReadonlyMap<number, string>;
}

/** The strokes on the surface: those that are being drawn, and those that ended since the last press. */
export class Strokes {
  readonly #gestureNodes: () => readonly GestureNode[];
  readonly #changed: (views: readonly StrokeView[]) => void;
  readonly #active = new Map<number, StrokeView>();
  #ended: StrokeView[] = [];

  constructor(gestureNodes: () => readonly GestureNode[], changed: (views: readonly StrokeView[]) => void) {
    this.#gestureNodes = gestureNodes;
    this.#changed = changed;
  }

  /** Whether what the host answers to this event matters here. */
  static asks(event: number): boolean {
    return event === EventId.leftDown || event === EventId.leftUp;
  }

  /** Follows a pointer event that was sent; the answer to one that Strokes.asks for. */
  follow(event: number, payload: PointerPayload, answer: Promise<EventReply> | null): void {
    const kind: SampleKind = payload.relative !== 0 ? "relative" : "pixel";
    const place = { px: payload.x, py: payload.y };
    const point: TrailPoint =
      kind === "relative"
        ? { x: Math.fround(payload.rx), y: Math.fround(payload.ry), ...place }
        : { x: payload.x, y: payload.y, ...place };
    switch (event) {
      case EventId.leftDown:
        this.#press(payload.pointer, kind, point, answer);
        break;
      case EventId.move:
        this.#move(payload.pointer, point);
        break;
      case EventId.leftUp:
        this.#release(payload.pointer, point, answer);
        break;
    }
  }

  /** One pointer, or all of them, was let go by force: its stroke isn't judged. */
  drop(pointer?: number): void {
    if (pointer === undefined) {
      this.#active.clear();
    } else {
      this.#active.delete(pointer);
    }
    this.#tell();
  }

  /** Forgets those that ended, too. */
  clear(): void {
    this.#ended = [];
    this.drop();
  }

  #press(pointer: number, kind: SampleKind, point: TrailPoint, answer: Promise<EventReply> | null): void {
    const stroke = new Stroke(kind, point);
    const view: StrokeView = { pointer, stroke, followed: true, judgement: stroke.judge(), verdict: null };
    this.#ended = [];
    this.#active.set(pointer, view);
    this.#tell();
    void answer?.then((reply) => {
      view.followed = reply.ok && this.#gestureNodes().some(({ node }) => reply.results[node] === 1);
      this.#tell();
    });
  }

  #move(pointer: number, point: TrailPoint): void {
    const view = this.#active.get(pointer);
    if (view !== undefined) {
      view.stroke.move(point);
      view.judgement = view.stroke.judge();
      this.#tell();
    }
  }

  #release(pointer: number, point: TrailPoint, answer: Promise<EventReply> | null): void {
    const view = this.#active.get(pointer);
    if (view === undefined) {
      return;
    }
    this.#active.delete(pointer);
    view.stroke.release(point);
    view.judgement = view.stroke.judge();
    this.#ended.push(view);
    this.#tell();
    void answer?.then((reply) => {
      view.verdict = this.#verdict(view, reply);
      this.#tell();
    });
  }

  #verdict(view: StrokeView, reply: EventReply): Verdict {
    const nodes = this.#gestureNodes();
    if (!reply.ok) {
      return { fired: [], reason: reply.error };
    }
    if (nodes.length === 0) {
      return { fired: [], reason: t("the scene has no touch gesture node") };
    }
    if (!view.followed) {
      return { fired: [], reason: t("the touch gesture node is off, or follows another pointer") };
    }
    const fired = firedByNodes(reply.posted).flatMap(({ node, output }) => {
      const name = nodes.find((gesture) => gesture.node === node)?.outputs.get(output);
      return name ?? [];
    });
    return { fired, reason: explain(view.judgement) };
  }

  #tell(): void {
    this.#changed([...this.#ended, ...this.#active.values()]);
  }
}
