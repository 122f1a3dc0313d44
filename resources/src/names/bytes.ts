/**
 * A name is whatever bytes the file system holds. One that is no text comes from the program with
 * each such byte as U+0000 and its two hexadecimal digits, and goes back in the same form; no name
 * holds a U+0000 of its own.
 */
const strayByte = /\u0000([89a-f][0-9a-f])/g;

/** True when only the program can write the name exactly. */
export function hasStrayBytes(name: string): boolean {
  return name.includes('\u0000');
}

/** The name as it is read: each byte that is no text is a replacement character. */
export function readable(name: string): string {
  return hasStrayBytes(name) ? name.replace(strayByte, '\ufffd') : name;
}

/** The path as a file URL, which says every byte, and which file managers take for a location. */
export function fileUrl(path: string): string {
  const text = (part: string) => part.split('/').map(encodeURIComponent).join('/');
  const parts = path.split(strayByte); // text and digits by turns
  return 'file://' + parts.map((part, index) => (index % 2 ? `%${part.toUpperCase()}` : text(part))).join('');
}
