import { useEffect, useState } from "preact/hooks";

const PHONE = matchMedia("(max-width: 640px)");

/** Whether the window is as narrow as a phone. */
export function usePhone(): boolean {
  const [isPhone, setPhone] = useState(PHONE.matches);
  useEffect(() => {
    const follow = () => setPhone(PHONE.matches);
    PHONE.addEventListener("change", follow);
    return () => PHONE.removeEventListener("change", follow);
  }, []);
  return isPhone;
}
