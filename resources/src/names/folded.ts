import { readable } from './bytes.ts';

/** Letters count alike with and without marks and capitals: "informacion" finds "Información". */
export function folded(text: string): string {
  return readable(text).normalize('NFD').replace(/\p{Mn}/gu, '').toLowerCase();
}

/** Every word of the search has to be found, in any order. A list that is searched again and again folds its texts itself. */
export function createSearch(search: string, fold: (text: string) => string = folded): (text: string) => boolean {
  const words = folded(search).split(/\s+/).filter(Boolean);
  return (text) => {
    if (!words.length) return true;
    const searched = fold(text);
    return words.every((word) => searched.includes(word));
  };
}

/** Folds each text once. */
export function foldedOnce(): (text: string) => string {
  const known = new Map<string, string>();
  return (text) => {
    const before = known.get(text);
    if (before !== undefined) return before;
    const now = folded(text);
    known.set(text, now);
    return now;
  };
}
