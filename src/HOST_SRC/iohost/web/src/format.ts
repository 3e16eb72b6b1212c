import { t } from "./i18n.ts";

/** The time of day with milliseconds, in the local zone. */
export function timeOfDay(milliseconds: number): string {
  const date = new Date(milliseconds);
  const two = (value: number) => String(value).padStart(2, "0");
  const fraction = String(date.getMilliseconds()).padStart(3, "0");
  return `${two(date.getHours())}:${two(date.getMinutes())}:${two(date.getSeconds())}.${fraction}`;
}

/** A float as it's read at a glance: three decimals at most, large and tiny ones with an exponent. */
export function floatText(value: number): string {
  const size = Math.abs(value);
  if (size !== 0 && (size >= 1e7 || size < 1e-3)) {
    return value.toExponential(3);
  }
  return String(Math.round(value * 1000) / 1000);
}

/** A 32-bit float in the fewest digits that still mean the same float: 0.1, not 0.10000000149. */
export function shortestFloat(value: number): string {
  for (let digits = 1; digits < 9; ++digits) {
    const shorter = Number(value.toPrecision(digits));
    if (Math.fround(shorter) === Math.fround(value)) {
      return String(shorter);
    }
  }
  return String(value);
}

/** How long ago something was, at a glance: now, 3 s ago, 5 min ago. */
export function agoText(milliseconds: number): string {
  const seconds = Math.floor(milliseconds / 1000);
  if (seconds < 1) {
    return t("now");
  }
  return seconds < 120 ? t("{seconds} s ago", { seconds }) : t("{minutes} min ago", { minutes: Math.floor(seconds / 60) });
}

/** How long something has lasted, at a glance: 0 s, 12 s, 3 min. */
export function ageText(milliseconds: number): string {
  const seconds = Math.max(0, milliseconds) / 1000;
  return seconds < 120
    ? t("{count} s", { count: Math.floor(seconds) })
    : t("{count} min", { count: Math.floor(seconds / 60) });
}

/** The place that a matrix puts things at: "x 0.00, y 1.50, z 0.00 m". */
export function placeText(matrix: readonly number[]): string {
  return `${["x", "y", "z"].map((axis, index) => `${axis} ${matrix[12 + index]!.toFixed(2)}`).join(", ")} m`;
}
