/** The language of the page: the program's setting, or the system's until a state has arrived. */
import type { LanguageCode } from '../protocol/protocol.ts';
import { session } from '../state/session.svelte.ts';
import { en } from './en/index.ts';
import { es } from './es/index.ts';
import { formats } from './formats.ts';

export type Dictionary = typeof en;

const dictionaries: Record<LanguageCode, Dictionary> = { en, es };

function systemLanguage(): LanguageCode {
  return globalThis.navigator?.language?.startsWith('es') ? 'es' : 'en';
}

class Language {
  readonly code: LanguageCode = $derived(session.disk?.settings.language ?? systemLanguage());
  readonly words: Dictionary = $derived(dictionaries[this.code]);
  readonly formats = $derived(formats[this.code]);

  change(code: LanguageCode): void {
    session.changeSettings({ language: code });
  }
}

export const language = new Language();
