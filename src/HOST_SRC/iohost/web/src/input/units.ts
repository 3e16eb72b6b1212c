/** The surface's content box on the screen, in CSS pixels. */
export interface SurfaceBox {
  left: number;
  top: number;
  width: number;
  height: number;
}

/** A place on the surface in both of its coordinate systems. */
export interface SurfacePoint {
  /** Pixels, origin top left, y down. */
  x: number;
  y: number;
  /** Relative units: the surface is 1000 high; origin bottom left, y up. */
  rx: number;
  ry: number;
}

export const RELATIVE_HEIGHT = 1000;

export function toSurface(clientX: number, clientY: number, box: SurfaceBox): SurfacePoint {
  const x = clientX - box.left;
  const y = clientY - box.top;
  const scale = box.height > 0 ? RELATIVE_HEIGHT / box.height : 0;
  return { x: Math.floor(x), y: Math.floor(y), rx: x * scale, ry: (box.height - y) * scale };
}
