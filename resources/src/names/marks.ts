import { readable } from './bytes.ts';

/**
 * Control and direction marks in a file's name are shown, not obeyed: a name must not be able to
 * turn itself around or hide a part of itself.
 */
const marks =
  // C0 and C1 controls, soft hyphen, Arabic letter mark, zero-width space, LRM and RLM, line and
  // paragraph separators, embeddings and overrides, word joiner, isolates, byte order mark.
  /[\u0000-\u001f\u007f-\u009f\u00ad\u061c\u200b\u200e\u200f\u2028-\u202e\u2060\u2066-\u2069\ufeff]/gu;

export interface NamePart {
  text: string;
  /** True for a mark; its text is then the code point, such as "U+202E". */
  isMark: boolean;
}

function codePoint(mark: string): string {
  return 'U+' + mark.codePointAt(0)!.toString(16).toUpperCase().padStart(4, '0');
}

export function nameParts(name: string): NamePart[] {
  const parts: NamePart[] = [];
  let end = 0;
  for (const match of name.matchAll(marks)) {
    if (match.index > end) parts.push({ text: name.slice(end, match.index), isMark: false });
    parts.push({ text: codePoint(match[0]), isMark: true });
    end = match.index + match[0].length;
  }
  if (end < name.length) parts.push({ text: name.slice(end), isMark: false });
  return parts;
}

/** Hardly any name has one, and then it is one piece of text. */
export function hasMarks(name: string): boolean {
  return name.search(marks) >= 0;
}

/** The name as one plain string, for tooltips and labels. */
export function plainName(name: string): string {
  return readable(name).replace(marks, (mark) => `⟨${codePoint(mark)}⟩`);
}
