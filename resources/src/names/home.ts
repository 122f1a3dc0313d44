/** "~" stands for the home, as people write it; null while the program has not said where that is. */
export function fromHome(path: string, home: string | null): string {
  if (!home || home === '/') return path;
  if (path === home) return '~';
  return path.startsWith(`${home}/`) ? `~${path.slice(home.length)}` : path;
}
