import { patienceText, stateText } from "../network.ts";
import type { DeviceState } from "../protocol.ts";
import { reasonText } from "../reasons.ts";

/** How a device is reached, and whether it is. */
export function DeviceLine({ device, told }: { device: DeviceState; told: number }) {
  return (
    <p class="hint">
      {device.parser}
      {device.address !== null && ` · ${device.address}`} · <span data-field="state">{stateText(device, told)}</span>
      {device.address !== null && ` · ${patienceText(device)}`}
      {device.last_problem !== null && device.state !== "connected" && (
        <span class="problem" data-field="problem">
          {" "}
          · {reasonText(device.last_problem)}
        </span>
      )}
    </p>
  );
}
