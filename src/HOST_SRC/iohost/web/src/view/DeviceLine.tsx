import { patienceText, stateText } from "../network.ts";
import type { DeviceState } from "../protocol.ts";

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
          · {device.last_problem}
        </span>
      )}
    </p>
  );
}
