import { readable } from './bytes.ts';

/** Letters count alike with and without marks and capitals: "informacion" finds "Información". */
export function folded(text: string): string {
  return readable(text).normalize('NFD').replace(/\p{Mn}/gu, '').toLowerCase();
}

/** Every word of the search has to be found, in any order. */
export function createSearch(search: string): (text: string) => boolean {
  const words = folded(search).split(/\s+/).filter(Boolean);
  return (text) => {
    if (!words.length) return true;
    const searched = folded(text);
    return words.every((word) => searched.includes(word));
  };
}
