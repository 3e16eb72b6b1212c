import {
  AxesHelper,
  BoxGeometry,
  BufferGeometry,
  CapsuleGeometry,
  Color,
  DirectionalLight,
  EdgesGeometry,
  GridHelper,
  Group,
  HemisphereLight,
  Line,
  LineBasicMaterial,
  LineSegments,
  Matrix4,
  Mesh,
  MeshBasicMaterial,
  MeshStandardMaterial,
  type Object3D,
  PerspectiveCamera,
  Plane,
  Raycaster,
  RingGeometry,
  Scene,
  SphereGeometry,
  TorusGeometry,
  Vector2,
  Vector3,
  WebGLRenderer,
} from "three";
import { OrbitControls } from "three/addons/controls/OrbitControls.js";
import { CSS2DObject, CSS2DRenderer } from "three/addons/renderers/CSS2DRenderer.js";
import { t } from "../i18n.ts";
import type { VRPayload } from "../messages.ts";
import type { SceneObject } from "../protocol.ts";
import { SIDES, type Side } from "./hand.ts";
import { placeOf, ROOM, wallHit } from "./room.ts";

const HAND_COLORS: readonly number[] = [0x4aa3f0, 0x3ddc97];
const FOLLOWING = 0xffb454;
const PICK_RADIUS = 0.16;

// What all objects are drawn with: they come and go, and leave nothing behind on the graphics card.
const BOX = new BoxGeometry(0.28, 0.28, 0.28);
const BOX_EDGES = new EdgesGeometry(BOX);
const EDGE = new LineBasicMaterial({ color: 0xe6edf3 });
const AXES = new AxesHelper(0.3);
const boxMaterial = (color: number) => new MeshStandardMaterial({ color, roughness: 0.6, transparent: true, opacity: 0.35 });
const RESTING_BOX = boxMaterial(0x5b6d80);
const FOLLOWING_BOX = boxMaterial(FOLLOWING);

export interface SpaceListener {
  /** A hand was dragged to a place, or made to point at one. */
  move(side: Side, place: Vector3): void;
  aim(side: Side, target: Vector3): void;
}

/** A scene object as it's drawn. */
export interface ShownObject extends SceneObject {
  /** A hand moves it. */
  following: boolean;
}

interface HandModel {
  body: Group;
  ray: Line;
  hit: Group;
  lamp: MeshBasicMaterial;
}

/** What a drag moves. */
interface Handle {
  side: Side;
  part: "body" | "hit";
}

/** Draws the room with the hands, their rays and hit points and the scene's objects; hands and hit points are dragged. */
export class Space {
  readonly renderer: WebGLRenderer;
  readonly #labels = new CSS2DRenderer();
  readonly #scene = new Scene();
  readonly #camera = new PerspectiveCamera(42, 1, 0.05, 60);
  readonly #orbit: OrbitControls;
  readonly #listener: SpaceListener;
  readonly #hands: readonly HandModel[];
  readonly #handles: Object3D[] = [];
  readonly #objects = new Map<string, { model: Group; box: Mesh }>();
  readonly #raycaster = new Raycaster();
  readonly #detach = new AbortController();
  readonly #resizing: ResizeObserver;
  #drag: { handle: Handle; pointerId: number; plane: Plane } | null = null;

  /** Raises an error where the browser can't draw in space. */
  constructor(place: HTMLElement, listener: SpaceListener) {
    this.#listener = listener;
    const canvas = document.createElement("canvas");
    const context = canvas.getContext("webgl2", { antialias: true, alpha: true });
    if (context === null) {
      throw new Error(t("it has no WebGL 2"));
    }
    this.renderer = new WebGLRenderer({ canvas, context });
    this.renderer.xr.enabled = true;
    this.renderer.setPixelRatio(Math.min(window.devicePixelRatio, 2));
    canvas.classList.add("space-canvas");
    canvas.dataset["space"] = "";
    this.#labels.domElement.classList.add("space-labels");
    place.append(canvas, this.#labels.domElement);

    this.#camera.position.set(1.5, 2.1, 4.3);
    this.#orbit = new OrbitControls(this.#camera, canvas);
    this.#orbit.target.set(0, 1.15, -0.8);
    this.#orbit.enablePan = false;
    this.#orbit.minDistance = 2;
    this.#orbit.maxDistance = 12;
    this.#orbit.addEventListener("change", () => this.draw());
    this.#orbit.update();

    this.#scene.add(new HemisphereLight(0xdfeaf5, 0x26323f, 2.2));
    const sun = new DirectionalLight(0xffffff, 1.6);
    sun.position.set(2, 4, 3);
    this.#scene.add(sun, ...roomModel());
    this.#hands = SIDES.map((side) => this.#makeHand(side));

    const { signal } = this.#detach;
    canvas.addEventListener("pointerdown", (event) => this.#pointerDown(event), { signal, capture: true });
    canvas.addEventListener("pointermove", (event) => this.#pointerMove(event), { signal });
    for (const type of ["pointerup", "pointercancel", "lostpointercapture"] as const) {
      canvas.addEventListener(type, (event) => this.#pointerUp(event), { signal });
    }
    this.#resizing = new ResizeObserver(() => this.#resize(place));
    this.#resizing.observe(place);
  }

  detach(): void {
    this.#detach.abort();
    this.#resizing.disconnect();
    this.#orbit.dispose();
    this.renderer.dispose();
    this.renderer.domElement.remove();
    this.#labels.domElement.remove();
  }

  /** Nothing is dragged and the room isn't turned while it's hidden: the canvas has no size then to reckon with. */
  setShown(shown: boolean): void {
    this.#orbit.enabled = shown;
    if (!shown) {
      this.#drag = null;
    }
  }

  /** In a headset the frames come from there. */
  draw(): void {
    if (this.renderer.xr.isPresenting) {
      return;
    }
    this.renderer.render(this.#scene, this.#camera);
    this.#labels.render(this.#scene, this.#camera);
  }

  /** One frame in the headset. */
  drawFrame(): void {
    this.renderer.render(this.#scene, this.#camera);
  }

  showHand(side: Side, sample: VRPayload): void {
    const { body, ray, hit, lamp } = this.#hands[side]!;
    body.matrix.fromArray(sample.pose);
    body.matrixWorldNeedsUpdate = true;
    const target = new Vector3(...sample.hit);
    ray.geometry.setFromPoints([placeOf(sample.pose), target]);
    ray.geometry.computeBoundingSphere();
    hit.position.copy(target);
    lamp.color.set(sample.trigger !== 0 ? FOLLOWING : 0x18222d);
  }

  showObjects(objects: readonly ShownObject[]): void {
    const keys = new Set<string>();
    for (const object of objects) {
      const key = JSON.stringify([object.clip, object.name]);
      keys.add(key);
      const { model, box } = this.#objects.get(key) ?? this.#makeObject(key, object.name);
      model.matrix.fromArray(object.matrix);
      model.matrixWorldNeedsUpdate = true;
      box.material = object.following ? FOLLOWING_BOX : RESTING_BOX;
    }
    for (const [key, { model }] of this.#objects) {
      if (!keys.has(key)) {
        // The label's element goes with its own removal only.
        model.clear();
        model.removeFromParent();
        this.#objects.delete(key);
      }
    }
  }

  #makeHand(side: Side): HandModel {
    const color = HAND_COLORS[side]!;
    const shell = new MeshStandardMaterial({ color, roughness: 0.45 });
    const body = new Group();
    body.matrixAutoUpdate = false;
    const grip = new Mesh(new CapsuleGeometry(0.05, 0.22, 6, 16), shell);
    grip.rotation.x = Math.PI / 2;
    grip.position.z = 0.1;
    const ring = new Mesh(new TorusGeometry(0.12, 0.02, 10, 32), shell);
    ring.rotation.x = Math.PI / 2.6;
    ring.position.z = -0.09;
    const lamp = new MeshBasicMaterial({ color: 0x18222d });
    const trigger = new Mesh(new SphereGeometry(0.034, 16, 12), lamp);
    trigger.position.set(0, -0.05, -0.07);
    body.add(grip, ring, trigger, this.#handle({ side, part: "body" }), label(side === 0 ? "L" : "R", "space-hand"));

    const ray = new Line(new BufferGeometry(), new LineBasicMaterial({ color, transparent: true, opacity: 0.75 }));
    ray.frustumCulled = false;

    const hit = new Group();
    hit.add(
      new Mesh(new SphereGeometry(0.06, 20, 14), new MeshBasicMaterial({ color })),
      this.#handle({ side, part: "hit" }),
      label("", `space-hit space-hit-${side}`),
    );
    this.#scene.add(body, ray, hit);
    return { body, ray, hit, lamp };
  }

  /** Something invisible around what can be dragged, large enough for a finger. */
  #handle(handle: Handle): Mesh {
    const mesh = new Mesh(new SphereGeometry(PICK_RADIUS, 8, 6), new MeshBasicMaterial({ visible: false }));
    mesh.userData = handle;
    this.#handles.push(mesh);
    return mesh;
  }

  #makeObject(key: string, name: string): { model: Group; box: Mesh } {
    const model = new Group();
    model.matrixAutoUpdate = false;
    const box = new Mesh(BOX);
    const text = label(name, "space-object");
    text.position.y = 0.26;
    model.add(box, new LineSegments(BOX_EDGES, EDGE), new LineSegments(AXES.geometry, AXES.material), text);
    this.#scene.add(model);
    const made = { model, box };
    this.#objects.set(key, made);
    return made;
  }

  #resize(place: HTMLElement): void {
    const { clientWidth: width, clientHeight: height } = place;
    if (width > 0 && height > 0 && !this.renderer.xr.isPresenting) {
      this.renderer.setSize(width, height);
      this.#labels.setSize(width, height);
      this.#camera.aspect = width / height;
      this.#camera.updateProjectionMatrix();
      this.draw();
    }
  }

  #aim(event: PointerEvent): void {
    const bounds = this.renderer.domElement.getBoundingClientRect();
    const x = ((event.clientX - bounds.left) / bounds.width) * 2 - 1;
    const y = 1 - ((event.clientY - bounds.top) / bounds.height) * 2;
    this.#raycaster.setFromCamera(new Vector2(x, y), this.#camera);
  }

  #pointerDown(event: PointerEvent): void {
    if (this.#drag !== null) {
      return;
    }
    this.#aim(event);
    const picked = this.#raycaster.intersectObjects(this.#handles, false)[0];
    if (picked === undefined) {
      return; // the room is turned
    }
    event.stopImmediatePropagation();
    const handle = picked.object.userData as Handle;
    const centre = picked.object.getWorldPosition(new Vector3());
    const plane = new Plane().setFromNormalAndCoplanarPoint(this.#camera.getWorldDirection(new Vector3()), centre);
    this.#drag = { handle, pointerId: event.pointerId, plane };
    this.renderer.domElement.setPointerCapture(event.pointerId);
  }

  #pointerMove(event: PointerEvent): void {
    if (this.#drag?.pointerId !== event.pointerId) {
      return;
    }
    this.#aim(event);
    const { handle, plane } = this.#drag;
    if (handle.part === "body") {
      // In the plane that faces the viewer: turning the room gives another plane.
      const place = this.#raycaster.ray.intersectPlane(plane, new Vector3());
      if (place !== null) {
        this.#listener.move(handle.side, place);
      }
    } else {
      const target = wallHit(this.#raycaster.ray);
      if (target !== null) {
        this.#listener.aim(handle.side, target);
      }
    }
  }

  #pointerUp(event: PointerEvent): void {
    if (this.#drag?.pointerId === event.pointerId) {
      this.#drag = null;
    }
  }
}

function label(text: string, className: string): CSS2DObject {
  const element = document.createElement("span");
  element.className = className;
  element.textContent = text;
  return new CSS2DObject(element);
}

/** The floor, the far wall and the edges of the room. */
function roomModel(): Object3D[] {
  const size = ROOM.getSize(new Vector3());
  const centre = ROOM.getCenter(new Vector3());
  const lines = new Color(0x26323f);
  const floor = new GridHelper(size.x, 12, 0x3a4a5c, lines);
  const wall = new GridHelper(size.x, 12, lines, new Color(0x18222d));
  wall.rotation.x = Math.PI / 2;
  wall.scale.z = size.y / size.x;
  wall.position.set(0, centre.y, ROOM.min.z);
  const edges = new LineSegments(
    new EdgesGeometry(new BoxGeometry(size.x, size.y, size.z)),
    new LineBasicMaterial({ color: 0x3a4a5c }),
  );
  edges.position.copy(centre);
  const origin = new Mesh(
    new RingGeometry(0.06, 0.08, 32).applyMatrix4(new Matrix4().makeRotationX(-Math.PI / 2)),
    new MeshBasicMaterial({ color: 0x7688a0 }),
  );
  return [floor, wall, edges, origin];
}
