import { useRef } from "preact/hooks";
import "./answers.css";
import { useFocusOn } from "./useFocusOn.ts";

interface AnswersProps {
  yes: string;
  onYes(): void;
  no: string;
  onNo(): void;
}

/** The two answers to a question before something is taken away. The focus is on the one that takes nothing. */
export function Answers({ yes, onYes, no, onNo }: AnswersProps) {
  const both = useRef<HTMLDivElement>(null);
  const harmless = useRef<HTMLButtonElement>(null);
  useFocusOn(harmless, both);
  return (
    <div class="answers" ref={both}>
      <button type="button" onClick={onYes}>
        {yes}
      </button>
      <button type="button" ref={harmless} onClick={onNo}>
        {no}
      </button>
    </div>
  );
}
