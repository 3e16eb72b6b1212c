import { computed, signal } from "@preact/signals";
import type { Desk } from "../desk.ts";
import type { Host, NodeView } from "../host.ts";
import { t } from "../i18n.ts";
import { inputOf, inputText, outputOf, outputText } from "../nodePins.ts";
import type { Link, Note, OfferedType, Place, Scene } from "../protocol.ts";
import { placing, type Change } from "../requests.ts";
import { partsText } from "../steps.ts";
import { copyOf, keepClipping, newNoteId, pasteOf, readClipping, type Clipping } from "./clipboard.ts";
import { nodeId, noteId } from "./ids.ts";
import { around, boxOf, WIDTH, type Rect } from "./layout.ts";
import { kindOfType } from "./nodeKinds.ts";
import { fittingSorts, freeName, refusal, sortOf } from "./wiring.ts";

/** A pin at which a wire begins. */
export interface Pin {
  node: string;
  id: number;
  is: "output" | "input";
}

/** What the palette was opened for. */
export interface PaletteCall {
  /** Where the new node goes, on the canvas; null: in the middle of what is seen. */
  at: Place | null;
  /** The pin that the new node is wired to. */
  pin: Pin | null;
}

/** What the canvas shows. */
export interface View {
  placeOf(node: string): Place;
  middle(): Place;
  /** Moves there, unless all of the box is in sight. */
  moveTo(box: Rect): void;
  choose(nodes: readonly string[], notes: readonly string[]): void;
}

/** What is chosen of nodes and notes. */
export interface Chosen {
  nodes: readonly string[];
  notes: readonly string[];
}

/** In pixels of the canvas: what is added stands at least so far beside what was there, right or down. */
const APART = 40;
/** So much of a new node is brought into sight: its pins aren't known yet. */
const NEW_SIZE = { width: WIDTH, height: 250 };
/** Has room for a node of the highest type. */
const NEW_ROOM = { width: WIDTH, height: 500 };
const NOTE_SIZE = { width: 220, height: 90 };

/** What is done to the scene on the canvas: each a request, or a batch of them that is one step. */
export class Editor {
  readonly host: Host;
  readonly desk: Desk;
  readonly palette = signal<PaletteCall | null>(null);
  /** The pin at which a wire was begun by a click or a key. */
  readonly begun = signal<Pin | null>(null);
  /** How to go on with that wire. */
  readonly hint = computed(() => {
    const begun = this.begun.value;
    const node = begun && this.host.byHandle.value.get(begun.node);
    if (!node) {
      return "";
    }
    const pin = begun.is === "output" ? outputText(node, begun.id) : inputText(node, begun.id);
    return t("Wire from {pin}: choose a pin that fits, or Tab to it and press Enter. Escape gives up.", { pin });
  });
  /** The pin from which a wire is being dragged. */
  readonly dragged = signal<Pin | null>(null);
  /** Where the wire that is being made comes from. */
  readonly from = computed(() => this.dragged.value ?? this.begun.value);
  /** The node whose name is being changed. */
  readonly renaming = signal<string | null>(null);
  /** The note that was added last: when it comes, what is typed goes into it. */
  addedNote: string | null = null;
  /** Takes what is typed until then. */
  typedAhead: HTMLTextAreaElement | null = null;
  #addsNote = false;
  /** Which ones `place` asked for and the host hasn't answered. */
  readonly #placing = new Set<ReadonlySet<string>>();
  /** What is typed while this scene goes isn't done to the next one. */
  readonly #scene: number;
  view: View = { placeOf: () => ({ x: 0, y: 0 }), middle: () => ({ x: 0, y: 0 }), moveTo: () => {}, choose: () => {} };
  #lastMade: Promise<void> = Promise.resolve();

  constructor(host: Host, desk: Desk) {
    this.host = host;
    this.desk = desk;
    this.#scene = host.sceneNumber.peek();
  }

  get #isGone(): boolean {
    return !this.host.isCurrent(this.#scene);
  }

  node(handle: string): NodeView | undefined {
    return this.host.byHandle.peek().get(handle);
  }

  /** Why there can't be such a link; null when there can. */
  whyNot({ from, output, to, input }: Link): string | null {
    const [source, target] = [this.node(from), this.node(to)];
    const outputParam = source && outputOf(source, output);
    const inputParam = target && inputOf(target, input);
    return outputParam && inputParam
      ? refusal({ node: from, param: outputParam }, { node: to, param: inputParam })
      : t("Links lead from an output to an input.");
  }

  /** Links; asks first where a value's present source would have to go. */
  async connect(link: Link): Promise<void> {
    const refused = this.whyNot(link);
    if (refused !== null) {
      this.desk.message.value = refused;
      return;
    }
    const [source, target] = [this.node(link.from)!, this.node(link.to)!];
    const names = { from: outputText(source, link.output), to: inputText(target, link.input) };
    const present = this.#presentSource(link);
    if (present !== undefined) {
      if (present.from !== link.from || present.output !== link.output) {
        this.#askToReplace(present, names.from, async () => {
          const changes: Change[] = [{ op: "unlink", ...present }, { op: "link", ...link }];
          const error = await this.host.requests.batch(`Link ${names.from} to ${names.to}`, changes);
          this.desk.tell(error, t("{from} now leads to {to}.", names));
        });
      }
      return;
    }
    this.desk.tell(await this.host.requests.change({ op: "link", ...link }), t("{from} now leads to {to}.", names));
  }

  /** The link that a value input has already; it takes one only. */
  #presentSource({ to, input }: Pick<Link, "to" | "input">): Link | undefined {
    const target = this.node(to);
    const param = target && inputOf(target, input);
    const isValue = param !== undefined && sortOf(param) !== "event";
    return isValue ? this.host.links.peek().find((link) => link.to === to && link.input === input) : undefined;
  }

  #askToReplace(present: Link, from: string, act: () => void): void {
    const [source, target] = [this.node(present.from)!, this.node(present.to)!];
    this.desk.question.value = {
      text: t("{to} takes its value from {present}. Take {from} instead?", {
        from,
        to: inputText(target, present.input),
        present: outputText(source, present.output),
      }),
      yes: t("Replace"),
      act,
    };
  }

  /** Begins a wire at a pin, or ends there the one that was begun. */
  usePin(pin: Pin): void {
    const begun = this.begun.peek();
    if (begun === null || begun.is === pin.is) {
      this.begun.value = pin;
      this.desk.message.value = "";
      return;
    }
    this.begun.value = null;
    void this.connect(linkOf(begun, pin));
  }

  giveUp(): void {
    this.begun.value = null;
  }

  /** Whether the host hasn't answered yet where this node or note is to stay. */
  isPlacing(id: string): boolean {
    return [...this.#placing].some((ids) => ids.has(id));
  }

  /** A wire that was begun at a node goes with it. */
  nodesChanged(): void {
    const begun = this.begun.peek();
    if (begun !== null && this.node(begun.node) === undefined) {
      this.giveUp();
    }
  }

  /** Whether the wire that is being made can end at this pin. */
  canEnd(pin: Pin): boolean {
    const from = this.from.value;
    return from !== null && from.is !== pin.is && this.whyNot(linkOf(from, pin)) === null;
  }

  /** Adds a node, and wires it where the palette was opened from a pin. */
  async add(type: OfferedType, { at, pin }: PaletteCall): Promise<void> {
    const end = pin === null ? undefined : this.endFor(pin, type);
    const present = pin?.is === "input" && end !== undefined ? this.#presentSource({ to: pin.node, input: pin.id }) : undefined;
    const make = () =>
      this.#makeNext(async ({ nodes }, taken) => {
        const graph = freeName(type.name, new Set(nodes.map((one) => one.graph)));
        const node = freeName(type.name, new Set(nodes.map((one) => one.node)));
        const place = at ?? this.#freePlace(NEW_SIZE, taken, NEW_ROOM);
        const error = await this.host.requests.batch(`Add ${graph}`, [
          { op: "create", node, type: type.guid, clip: nodes.find(({ clip }) => clip !== null)?.clip ?? "Clip", graph },
          placing({ [node]: place }, {}),
          ...(present === undefined ? [] : [{ op: "unlink", ...present } as const]),
          ...(pin === null || end === undefined
            ? []
            : [{ op: "link", ...linkOf(pin, { node, id: end, is: pin.is === "output" ? "input" : "output" }) } as const]),
        ]);
        this.desk.tell(error, t("{name} was added.", { name: graph }));
        if (error === null) {
          this.view.choose([node], []);
          if (at === null) {
            this.view.moveTo({ ...place, ...NEW_SIZE });
          }
        }
      });
    if (present === undefined) {
      await make();
    } else {
      this.#askToReplace(present, type.name, () => void make());
    }
  }

  /** Adds an empty note; nothing while one is on its way. */
  async addNote(): Promise<void> {
    if (this.#addsNote) {
      return;
    }
    this.#addsNote = true;
    this.typedAhead?.focus();
    const id = newNoteId();
    await this.#makeNext(async (_, taken) => {
      const box = { ...this.#freePlace(NOTE_SIZE, taken), ...NOTE_SIZE };
      const error = await this.host.requests.batch("Add a note", [placing({}, { [id]: { ...box, text: "" } })]);
      this.desk.tell(error, "");
      if (error === null) {
        this.addedNote = id;
        this.view.choose([], [id]);
        this.view.moveTo(box);
      }
    });
    this.#addsNote = false;
    if (this.addedNote !== id) {
      this.takeTyped(); // it doesn't come
    }
  }

  /** What was typed for a note that was on its way. */
  takeTyped(): string {
    const field = this.typedAhead;
    const typed = field?.value ?? "";
    if (field !== null) {
      field.value = "";
      field.blur();
    }
    return typed;
  }

  /** Makes one after the other: each finds free names and places among all that the host has by then, shown here yet or not. */
  #makeNext(make: (scene: Scene, taken: Rect[]) => Promise<void>): Promise<void> {
    const makeNow = async () => {
      const scene = await this.host.requests.scene();
      if (this.#isGone) {
        return;
      }
      if (scene.ok) {
        const boxes = scene.nodes.map(({ node, place }) => {
          const known = this.node(node);
          return { ...(known ? boxOf(known) : NEW_ROOM), ...(place ?? this.view.placeOf(node)) };
        });
        await make(scene, [...boxes, ...Object.values(scene.notes ?? {})]);
      } else {
        this.desk.tell(scene.error, "");
      }
    };
    // What can't be made says so, and the next is made all the same.
    this.#lastMade = this.#lastMade.then(makeNow).catch((error: unknown) => this.desk.tell(String(error), ""));
    return this.#lastMade;
  }

  /** The middle of what is seen, or to the right of what stands there. */
  #freePlace(size: typeof NEW_SIZE, taken: readonly Rect[], room = size): Place {
    const middle = this.view.middle();
    const y = middle.y - size.height / 2;
    let x = middle.x - size.width / 2;
    const beside = taken.filter((box) => y < box.y + box.height + APART && box.y < y + room.height + APART);
    const covered = () => beside.find((box) => x < box.x + box.width + APART && box.x < x + room.width + APART);
    for (let box = covered(); box !== undefined; box = covered()) {
      x = box.x + box.width + APART;
    }
    return { x, y };
  }

  /** The pin of a type that a wire from this pin leads to; undefined where none fits. */
  endFor(pin: Pin, type: Pick<OfferedType, "guid">): number | undefined {
    const node = this.node(pin.node);
    const param = node && (pin.is === "output" ? outputOf(node, pin.id) : inputOf(node, pin.id));
    const kind = kindOfType(type.guid);
    const ends = pin.is === "output" ? kind?.inputs : kind?.outputs;
    const sort = param && fittingSorts(pin.is, sortOf(param)).find((one) => ends?.[one] !== undefined);
    return sort && ends?.[sort];
  }

  /** Removes nodes with their links, cuts wires, takes notes away. */
  async remove({ nodes, notes }: Chosen, links: readonly Link[]): Promise<void> {
    const gone = new Set(nodes);
    const goesAlong = ({ from, to }: Link) => gone.has(from) || gone.has(to);
    const cut = links.filter((link) => !goesAlong(link));
    const wires = cut.length + this.host.links.peek().filter(goesAlong).length;
    const changes: Change[] = [
      ...cut.map((link): Change => ({ op: "unlink", ...link })),
      ...nodes.map((node): Change => ({ op: "destroy", node })),
      ...(notes.length === 0 ? [] : [placing({}, Object.fromEntries(notes.map((id) => [id, null])))]),
    ];
    const name = nameOf(nodes.flatMap((node) => this.node(node) ?? []), notes);
    const what = [
      ...(name === "" ? [] : [partsText(name)]),
      ...(wires === 0 ? [] : [wires === 1 ? t("a wire") : t("{count} wires", { count: wires })]),
    ].reduce((first, second) => (first === "" ? second : t("{first} and {second}", { first, second })), "");
    const error = await this.host.requests.batch(name === "" ? "Unlink" : `Delete ${name}`, changes);
    this.desk.tell(error, t("Deleted: {what}. Undo brings it back.", { what }));
  }

  copy(chosen: Chosen): void {
    const clipping = this.#copyOf(chosen);
    const count = sizeOf(clipping);
    if (count + clipping.leftOut > 0) {
      const isKept = keepClipping(localStorage, clipping);
      const copied = isKept ? t("Copied: {count}", { count }) : t("Copied, for this page only: {count}", { count });
      this.desk.message.value = withLeftOut(copied, clipping);
    }
  }

  async paste(): Promise<void> {
    const clipping = readClipping(localStorage);
    if (clipping !== null) {
      await this.#make(clipping, "Paste");
    }
  }

  async duplicate(chosen: Chosen): Promise<void> {
    if (chosen.nodes.length + chosen.notes.length > 0) {
      await this.#make(this.#copyOf(chosen), "Duplicate");
    }
  }

  #copyOf(chosen: Chosen): Clipping {
    const nodes = this.host.nodes.peek()?.filter(({ node }) => chosen.nodes.includes(node)) ?? [];
    const notes = chosen.notes.flatMap((id) => this.host.notes.peek()[id] ?? []);
    return copyOf(nodes, this.host.links.peek(), notes, this.view.placeOf);
  }

  #make(clipping: Clipping, verb: string): Promise<void> {
    return this.#makeNext(async ({ nodes }, taken) => {
      if (sizeOf(clipping) === 0) {
        this.desk.message.value = addedText(clipping);
        return;
      }
      const by = freeShift([...clipping.nodes.map(({ place }) => place), ...clipping.notes], taken);
      const { changes, handles, noteIds } = pasteOf(clipping, nodes, by);
      const error = await this.host.requests.batch(`${verb} ${nameOf(clipping.nodes, clipping.notes)}`, changes);
      this.desk.tell(error, addedText(clipping));
      if (error === null) {
        this.view.choose(handles, noteIds);
        const made = around([...clipping.nodes.map(({ place }) => ({ ...place, ...NEW_SIZE })), ...clipping.notes]);
        this.view.moveTo({ ...made, x: made.x + by, y: made.y + by });
      }
    });
  }

  /** The field with the name stays open while the name isn't taken. */
  async rename(node: string, graph: string): Promise<void> {
    if (this.#isGone) {
      return;
    }
    let error: string | null = null;
    if (graph !== "" && graph !== this.node(node)?.graph) {
      const isTaken = this.host.nodes.peek()!.some((other) => other.graph === graph);
      error = await this.host.requests.change({ op: "rename", node, graph });
      this.desk.tell(error, isTaken ? t("{name} is the name of another node, too.", { name: graph }) : "");
    }
    if (error === null && this.renaming.peek() === node) {
      this.renaming.value = null;
    }
  }

  /** Puts nodes and notes where they are to stay, as one step, or with those of the series; false when that wasn't done. */
  async place(nodes: Record<string, Place>, notes: Record<string, Note> = {}, series?: string): Promise<boolean> {
    if (this.#isGone) {
      return false;
    }
    const ids = new Set([...Object.keys(nodes).map(nodeId), ...Object.keys(notes).map(noteId)]);
    this.#placing.add(ids);
    const error = await this.host.requests.change(placing(nodes, notes, series));
    this.#placing.delete(ids);
    this.desk.tell(error, "");
    return error === null;
  }
}

/** A note elsewhere or of another size. With a length it keeps the text that the host has by then. */
export function movedNote(note: Note, box: Partial<Rect>): Note {
  return { ...note, ...box, length: note.length ?? note.text.length };
}

/** Nodes and notes as the name of a step tells of them. */
function nameOf(nodes: readonly { graph: string }[], notes: readonly unknown[]): string {
  const texts = [
    ...(nodes.length === 0 ? [] : [nodes.length === 1 ? nodes[0]!.graph : `${nodes.length} nodes`]),
    ...(notes.length === 0 ? [] : [notes.length === 1 ? "a note" : `${notes.length} notes`]),
  ];
  return texts.join(" and ");
}

function sizeOf({ nodes, notes }: Clipping): number {
  return nodes.length + notes.length;
}

function addedText(clipping: Clipping): string {
  return withLeftOut(t("Added: {count}", { count: sizeOf(clipping) }), clipping);
}

function withLeftOut(text: string, { leftOut }: Clipping): string {
  return leftOut > 0 ? `${text} · ${t("too long to be copied, left out: {count}", { count: leftOut })}` : text;
}

/** The link between two pins, whichever it was begun at. */
export function linkOf(one: Pin, other: Pin): Link {
  const [from, to] = one.is === "output" ? [one, other] : [other, one];
  return { from: from.node, output: from.id, to: to.node, input: to.id };
}

/** How far these move right and down until each stands apart from what is there. */
function freeShift(moved: readonly Place[], there: readonly Place[]): number {
  const isTaken = (by: number) =>
    moved.some((one) => there.some(({ x, y }) => Math.abs(one.x + by - x) < APART && Math.abs(one.y + by - y) < APART));
  let by = APART;
  while (isTaken(by)) {
    by += APART;
  }
  return by;
}
