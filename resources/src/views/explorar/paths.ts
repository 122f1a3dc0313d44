/** Paths of folders, put together and taken apart. */

export function pathBelow(folder: string, name: string): string {
  return folder === '/' ? `/${name}` : `${folder}/${name}`;
}

/** The folder above; null for the topmost one. */
export function folderAbove(path: string): string | null {
  if (path === '/' || path === '') return null;
  const slash = path.lastIndexOf('/');
  return slash <= 0 ? '/' : path.slice(0, slash);
}
