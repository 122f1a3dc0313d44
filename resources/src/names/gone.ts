/** Whether a path is one of those that have gone, or lies below one. */
export function hasGoneWith(path: string, gone: ReadonlySet<string>): boolean {
  for (let at = path; at; at = at.slice(0, at.lastIndexOf('/'))) {
    if (gone.has(at)) return true;
    if (!at.includes('/')) break;
  }
  return false;
}
