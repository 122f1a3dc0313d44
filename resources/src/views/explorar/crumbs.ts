/** The way from the home (or the root) to a folder. */

export interface Crumb {
  path: string;
  /** Null for the home, which has an icon and a name of its own. */
  name: string | null;
}

export function crumbsOf(path: string, home: string): Crumb[] {
  if (!path) return [];
  const isInHome = home !== '' && (path === home || path.startsWith(`${home}/`));
  const start: Crumb = isInHome ? { path: home, name: null } : { path: '/', name: '/' };
  const rest = isInHome ? path.slice(home.length) : path;
  const crumbs = [start];
  let above = isInHome ? home : '';
  for (const name of rest.split('/').filter(Boolean)) {
    above += `/${name}`;
    crumbs.push({ path: above, name });
  }
  return crumbs;
}

/** Each step wants some room for its name, in rem. */
const stepRoom = 5;

/** How many steps there is room for: the first and the last at least, and no more than anyone reads. */
export function stepsFor(room: number): number {
  return Math.min(6, Math.max(3, Math.trunc(room / stepRoom)));
}

/** Of a long way the beginning and the end are shown; what lies between is one step. */
export function shortWay(crumbs: readonly Crumb[], most: number): { shown: Crumb[]; hidden: Crumb[] } {
  if (crumbs.length <= most) return { shown: [...crumbs], hidden: [] };
  const kept = crumbs.slice(-(most - 2));
  return { shown: [crumbs[0]!, ...kept], hidden: crumbs.slice(1, crumbs.length - kept.length) };
}
