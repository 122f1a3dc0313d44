/**
 * Long names are shortened in the middle, because the end of a path matters. The page shows the
 * head with an ellipsis when it does not fit, and the tail always.
 */
let segmenter: Intl.Segmenter | undefined;

/** What is seen as one character each. A segmenter is slow, and Latin letters with their marks need none. */
function characters(text: string): string[] {
  if (/^[\x20-\x7e]*$/.test(text)) return text.split('');
  if (/^[\x20-\x7e\xa0-\xac\xae-\u036f]*$/.test(text)) return text.match(/[^\u0300-\u036f]?[\u0300-\u036f]*/g)!.filter(Boolean);
  segmenter ??= new Intl.Segmenter(undefined, { granularity: 'grapheme' });
  return [...segmenter.segment(text)].map(({ segment }) => segment);
}

/** A head shorter than this is not worth an ellipsis, and narrower than the room kept for it. */
const shortestHead = 8;

export interface Halves {
  head: string;
  tail: string;
}

/** Text that runs the other way keeps its order only in one piece. */
export function isRightToLeft(text: string): boolean {
  return /[\u0590-\u08ff\ufb1d-\ufdff\ufe70-\ufefc]/.test(text);
}

/** Splits off about `tailLength` visible characters; short texts have no tail. */
export function splitForMiddle(text: string, tailLength: number): Halves {
  if (tailLength <= 0 || isRightToLeft(text)) return { head: text, tail: '' };
  if (text.length < tailLength + shortestHead) return { head: text, tail: '' };
  const shown = characters(text);
  if (shown.length < tailLength + shortestHead) return { head: text, tail: '' };
  return { head: shown.slice(0, -tailLength).join(''), tail: shown.slice(-tailLength).join('') };
}

/** The folder that holds the file, without a trailing slash; "/" for a file at the root. */
export function folderOf(path: string): string {
  const slash = path.lastIndexOf('/');
  return slash <= 0 ? '/' : path.slice(0, slash);
}

export function lastComponent(path: string): string {
  return path.slice(path.lastIndexOf('/') + 1);
}

/** For sentences, where no layout can shorten: at most `length` visible characters. */
export function shortInMiddle(text: string, length: number): string {
  const shown = characters(text);
  if (shown.length <= length) return text;
  const tail = Math.floor((length - 1) / 2);
  return `${shown.slice(0, length - 1 - tail).join('')}…${shown.slice(-tail).join('')}`;
}
