import { chooseLanguage, language, LANGUAGES, t } from "../i18n.ts";

export function LanguageSwitch() {
  return (
    <div class="segments" role="group" aria-label={t("Language")}>
      {LANGUAGES.map((one) => (
        <button
          type="button"
          key={one.language}
          lang={one.language}
          aria-pressed={language.value === one.language}
          onClick={() => chooseLanguage(one.language)}
        >
          {one.name}
        </button>
      ))}
    </div>
  );
}
