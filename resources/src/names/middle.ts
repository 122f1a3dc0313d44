/**
 * Long names are shortened in the middle, because the end of a path matters. The page shows the
 * head with an ellipsis when it does not fit, and the tail always.
 */
const segmenter = new Intl.Segmenter(undefined, { granularity: 'grapheme' });

/** A head shorter than this is not worth an ellipsis. */
const shortestHead = 4;

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
  const starts = [...segmenter.segment(text)].map((segment) => segment.index);
  if (starts.length < tailLength + shortestHead) return { head: text, tail: '' };
  const cut = starts[starts.length - tailLength]!;
  return { head: text.slice(0, cut), tail: text.slice(cut) };
}

/** The folder that holds the file, without a trailing slash; "/" for a file at the root. */
export function folderOf(path: string): string {
  const slash = path.lastIndexOf('/');
  return slash <= 0 ? '/' : path.slice(0, slash);
}

export function lastComponent(path: string): string {
  return path.slice(path.lastIndexOf('/') + 1);
}
