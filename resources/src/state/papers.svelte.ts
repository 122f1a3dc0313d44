/** Texts of the program that are read only when somebody wants to see them: each is a script of its own. */
import type { LanguageCode } from '../protocol/protocol.ts';
import { addScript } from '../views/laterViews.svelte.ts';

/** As `build/guide.ts` makes it from docs/guide: our own text, and nothing of anybody else's. */
export interface Guide {
  sections: { id: string; title: string }[];
  html: string;
}

type Table = Record<string, unknown>;

async function paper<Record>(file: string): Promise<Record> {
  const name = `./${file}`;
  const found = () => (globalThis as { veltoScripts?: Table }).veltoScripts?.[name] as Record | undefined;
  if (!found()) await addScript(name);
  const read = found();
  if (!read) throw new Error(`${file} ended early`);
  return read;
}

export const readGuide = (language: LanguageCode): Promise<Guide> => paper<Guide>(`guide-${language}.js`);

export const readNotices = async (): Promise<string> => (await paper<{ text: string }>('notices.js')).text;
