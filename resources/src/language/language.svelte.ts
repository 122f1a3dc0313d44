/** The language of the page: the program's setting, or the system's until a state has arrived. */
import type { LanguageCode } from '../protocol/protocol.ts';
import { session } from '../state/session.svelte.ts';
import { en } from './en/index.ts';
import type { laterEn } from './en/later.ts';
import { es } from './es/index.ts';
import { formats } from './formats.ts';

type FirstWords = typeof en;
export type LaterWords = typeof laterEn;
export type Dictionary = FirstWords & LaterWords;

const firstWords: Record<LanguageCode, FirstWords> = { en, es };

function systemLanguage(): LanguageCode {
  return globalThis.navigator?.language?.startsWith('es') ? 'es' : 'en';
}

class Language {
  private laterWords = $state.raw<Record<LanguageCode, LaterWords> | null>(null);

  readonly code: LanguageCode = $derived(session.disk?.settings.language ?? systemLanguage());
  /** Complete once the second script is there; what the first one holds uses only the first words. */
  readonly words: Dictionary = $derived({ ...firstWords[this.code], ...this.laterWords?.[this.code] } as Dictionary);
  readonly formats = $derived(formats[this.code]);

  complete(words: Record<LanguageCode, LaterWords>): void {
    this.laterWords = words;
  }

  change(code: LanguageCode): void {
    session.changeSettings({ language: code });
  }
}

export const language = new Language();
