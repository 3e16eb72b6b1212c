import type { Connection } from "./connection.ts";
import { t } from "./i18n.ts";
import type { Reply } from "./messages.ts";
import type { EditValue } from "./params.ts";
import type {
  DeviceState,
  History,
  Link,
  NetworkState,
  Note,
  OfferedType,
  Place,
  Scene,
  SceneFileInfo,
  SceneObject,
  Step,
} from "./protocol.ts";
import { inReadersLanguage } from "./refusals.ts";

/** A request that changes the scene, as `batch` takes it. */
export type Change =
  | { op: "create"; node: string; type: string; clip: string | null; graph: string }
  | { op: "destroy"; node: string }
  | { op: "rename"; node: string; graph: string }
  | ({ op: "edit"; node: string; param: number } & EditValue)
  | ({ op: "link" | "unlink" } & Link)
  | { op: "place"; nodes?: Record<string, Place>; notes?: Record<string, Note | null>; series?: string }
  | { op: "device"; device: number; name: string; parser: string; address?: string | null; drop_after?: number | null; new?: true }
  | { op: "remove_device"; device: number }
  | ({ op: "object" } & ObjectName)
  | ({ op: "change_object"; to: string } & ObjectName)
  | ({ op: "remove_object" } & ObjectName);

/** What an object of the scene goes by. */
export interface ObjectName {
  clip: string;
  name: string;
}

/** Of a scene that the host takes. */
const LARGEST_SCENE_BYTES = 256 * 1024 ** 2;

/** What is asked of the host to change the scene. Each answers with what was wrong, or null. */
export class Requests {
  readonly #connection: Connection;

  constructor(connection: Connection) {
    this.#connection = connection;
  }

  /** The node types that the module has, with whether it offers them. */
  async types(): Promise<OfferedType[]> {
    const reply = await this.#connection.request<{ types: OfferedType[] }>({ op: "catalogue" });
    return reply.ok ? reply.types : [];
  }

  async change(change: Change): Promise<string | null> {
    const reply = await this.#connection.request<{ created?: boolean }>(change);
    return reply.ok && reply.created === false ? t("The module doesn't make nodes of this type.") : errorOf(reply);
  }

  /** All of it or nothing, as one step of the name. */
  async batch(name: string, requests: readonly Change[]): Promise<string | null> {
    return requests.length === 0 ? null : errorOf(await this.#connection.request({ op: "batch", name, requests }));
  }

  /** The scene as it is by now; the page may not show all of it yet. */
  scene(): Promise<Reply<Scene>> {
    return this.#connection.request<Scene>({ op: "scene" });
  }

  /** Its devices and objects, likewise. */
  async parts(): Promise<{ devices: DeviceState[]; objects: SceneObject[] }> {
    const [network, known] = await Promise.all([
      this.#connection.request<NetworkState>({ op: "network" }),
      this.#connection.request<{ objects: SceneObject[] }>({ op: "objects" }),
    ]);
    return { devices: (network.ok && network.devices) || [], objects: known.ok ? known.objects : [] };
  }

  async trigger(node: string, param: number): Promise<string | null> {
    return errorOf(await this.#connection.request({ op: "trigger", node, param }));
  }

  /** One step, or all to a state of the scene. Answers with the last one taken, or with why there was none. */
  async move(op: "undo" | "redo", to?: number): Promise<Step | string> {
    const reply = await this.#connection.request<{ step: Step }>({ op, ...(to !== undefined && { to }) });
    return reply.ok ? reply.step : reply.error;
  }

  async history(): Promise<History | null> {
    const reply = await this.#connection.request<History>({ op: "history" });
    return reply.ok ? reply : null;
  }

  /** The files in the folder of scenes, or why they can't be told. */
  async scenes(): Promise<SceneFileInfo[] | string> {
    const reply = await this.#connection.request<{ files: SceneFileInfo[] }>({ op: "scenes" });
    return reply.ok ? reply.files : reply.error;
  }

  /** Another scene's file stays unless it's to be replaced. */
  async save(file: string, replace = false): Promise<string | null> {
    return errorOf(await this.#connection.request({ op: "save", file, replace }));
  }

  async load(file: string): Promise<string | null> {
    return errorOf(await this.#connection.request({ op: "load", file }));
  }

  async loadEmpty(): Promise<string | null> {
    const scene = { format: "iohost scene", version: 1, nodes: [], links: [] };
    return errorOf(await this.#connection.request({ op: "load", scene }));
  }

  /** Loads a scene file of this computer. */
  async upload(file: Blob): Promise<string | null> {
    if (file.size > LARGEST_SCENE_BYTES) {
      return t("The file is larger than 256 MiB."); // what the host refuses unread, the browser calls a failed connection
    }
    try {
      const reply = await fetch("scene", { method: "POST", body: file });
      const isJson = reply.headers.get("content-type") === "application/json";
      return isJson
        ? errorOf(inReadersLanguage((await reply.json()) as Reply))
        : t("The host refused the file: {reason}", { reason: `${reply.status} ${reply.statusText}` });
    } catch {
      return t("The file couldn't be sent to the host.");
    }
  }

  /** Takes what an earlier run of the host left unsaved, or throws it away. */
  async recover(take: boolean): Promise<string | null> {
    return errorOf(await this.#connection.request({ op: "recover", take }));
  }

  /** While it is on, what nodes send is shown only. */
  async listenOnly(on: boolean): Promise<string | null> {
    return errorOf(await this.#connection.request({ op: "listen_only", on }));
  }

  /** For all pages. */
  async resetCounters(): Promise<string | null> {
    return errorOf(await this.#connection.request({ op: "reset_counters" }));
  }

  /** Tries to connect to a device now. */
  async connect(device: number): Promise<string | null> {
    return errorOf(await this.#connection.request({ op: "connect", device }));
  }

  async sendText(device: number, text: string): Promise<string | null> {
    return errorOf(await this.#connection.request({ op: "send", device, text }));
  }
}

/** Where nodes and notes stand, on whole pixels. Successive moves of the same things in the same series are one step. */
export function placing(nodes: Record<string, Place>, notes: Record<string, Note | null>, series?: string): Change {
  return {
    op: "place",
    ...(Object.keys(nodes).length > 0 && { nodes: mapped(nodes, rounded) }),
    ...(Object.keys(notes).length > 0 && { notes: mapped(notes, (note) => note && rounded(note)) }),
    ...(series !== undefined && { series }),
  };
}

function rounded<Box extends Place | Note>(box: Box): Box {
  return { ...box, x: Math.round(box.x), y: Math.round(box.y) };
}

function mapped<Value>(values: Record<string, Value>, change: (value: Value) => Value): Record<string, Value> {
  return Object.fromEntries(Object.entries(values).map(([key, value]) => [key, change(value)]));
}

function errorOf(reply: Reply): string | null {
  return reply.ok ? null : reply.error;
}
