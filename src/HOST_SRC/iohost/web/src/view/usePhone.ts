import { useEffect, useState } from "preact/hooks";

const PHONE = matchMedia("(max-width: 640px), (pointer: coarse) and (max-height: 480px)");

/** Whether the window is as small as a phone's, upright or sideways. */
export function usePhone(): boolean {
  const [isPhone, setPhone] = useState(PHONE.matches);
  useEffect(() => {
    const follow = () => setPhone(PHONE.matches);
    PHONE.addEventListener("change", follow);
    return () => PHONE.removeEventListener("change", follow);
  }, []);
  return isPhone;
}
