import { useEffect, useRef } from "preact/hooks";

interface AnswersProps {
  yes: string;
  onYes(): void;
  no: string;
  onNo(): void;
}

/** The two answers to a question before something is taken away. The focus is on the one that takes nothing. */
export function Answers({ yes, onYes, no, onNo }: AnswersProps) {
  const harmless = useRef<HTMLButtonElement>(null);
  useEffect(() => harmless.current!.focus(), []);
  return (
    <>
      <button type="button" onClick={onYes}>
        {yes}
      </button>
      <button type="button" ref={harmless} onClick={onNo}>
        {no}
      </button>
    </>
  );
}
