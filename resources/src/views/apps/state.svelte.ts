/** What the list of applications and the choice of leftovers remember while another view is shown. */
import { language } from '../../language/language.svelte.ts';
import type { InstalledApp } from '../../protocol/protocol.ts';
import { extend, keepListed, nothing, selectAll, toggle, type Selection } from '../../selection/selection.ts';
import { installedApps } from '../../state/installedApps.svelte.ts';
import { leftovers } from '../../state/leftovers.svelte.ts';
import { packages } from '../../state/packages.svelte.ts';
import { totalGb } from '../../state/operations.ts';
import { byName, findApps, sortApps, type AppOrder } from './ordering.ts';
import { planOf, type Plan } from './plan.ts';
import { preselectedOf, sectionsOf, type Section, type SectionItem, type SectionName } from './sections.ts';

/** The row that folds the system's applications away; a path begins with a slash. */
export const systemKey = 'system';

class AppList {
  search = $state('');
  order = $state.raw<AppOrder>(byName);
  focused = $state<string | null>(null);
  /** Whether the applications of the system are unfolded. */
  systemOpen = $state(false);

  readonly all: InstalledApp[] = $derived(installedApps.list ?? []);
  private readonly found: InstalledApp[] = $derived(
    sortApps(findApps(this.all, this.search), this.order, language.formats.compare, (app) => installedApps.sizeOf(app)),
  );
  readonly own: InstalledApp[] = $derived(this.found.filter(({ apple }) => !apple));
  readonly system: InstalledApp[] = $derived(this.found.filter(({ apple }) => apple));
  readonly isSearching: boolean = $derived(this.search.trim() !== '');
  /** A search looks everywhere, folded or not. */
  readonly showsSystem: boolean = $derived(this.systemOpen || this.isSearching);
  /** The rows in the order shown. */
  readonly keys: string[] = $derived([
    ...this.own.map(({ path }) => path),
    ...(this.system.length ? [systemKey] : []),
    ...(this.showsSystem ? this.system.map(({ path }) => path) : []),
  ]);
  readonly ownGb: number = $derived(
    this.all.filter(({ apple }) => !apple).reduce((sum, app) => sum + (installedApps.sizeOf(app) ?? 0), 0),
  );
  readonly ownCount: number = $derived(this.all.filter(({ apple }) => !apple).length);
  readonly measuring: boolean = $derived(this.all.some((app) => installedApps.sizeOf(app) === null));
  readonly largest: number = $derived(Math.max(0.1, ...this.all.map((app) => installedApps.sizeOf(app) ?? 0)));

  appOf(key: string): InstalledApp | undefined {
    return this.all.find(({ path }) => path === key);
  }
}

export const appList = new AppList();

const sectionPrefix = 'section:';

export function sectionKey(name: SectionName): string {
  return sectionPrefix + name;
}

class LeftoverChoice {
  focused = $state<string | null>(null);
  /** Null until the user has chosen anything for the analysis at hand. */
  private chosen = $state.raw<{ path: string; selection: Selection } | null>(null);

  /** Nothing keeps what was left behind by an application that the system has just removed. */
  private readonly removal = $derived(packages.isGone(leftovers.app?.path) ? null : leftovers.removal);
  readonly sections: Section[] = $derived(leftovers.analysis ? sectionsOf(leftovers.analysis, leftovers.links, this.removal) : []);
  readonly items: SectionItem[] = $derived(this.sections.flatMap(({ items }) => items));
  readonly keys: string[] = $derived(
    this.sections.flatMap(({ name, items }) => [sectionKey(name), ...items.map(({ path }) => path)]),
  );
  private readonly selectablePaths: string[] = $derived(this.items.filter(({ stays }) => !stays).map(({ path }) => path));
  private readonly selectable = (path: string): boolean => this.selectablePaths.includes(path);
  readonly selection: Selection = $derived.by(() => {
    const chosen = this.chosen?.path === leftovers.analysis?.path ? this.chosen?.selection : null;
    return keepListed(chosen ?? { selected: preselectedOf(this.sections, this.removal), anchor: null }, this.selectablePaths);
  });
  readonly selected: SectionItem[] = $derived(this.items.filter(({ path }) => this.selection.selected.has(path)));
  readonly selectedGb: number = $derived(totalGb(this.selected));
  readonly plan: Plan | null = $derived(
    leftovers.analysis && planOf(leftovers.analysis, this.sections, this.selection.selected, this.removal),
  );

  private choose(selection: Selection): void {
    if (leftovers.analysis) this.chosen = { path: leftovers.analysis.path, selection };
  }

  selectedIn({ items }: Section): number {
    return items.filter(({ path }) => this.selection.selected.has(path)).length;
  }

  isOn(section: Section): boolean | 'some' {
    const count = this.selectedIn(section);
    if (count === 0) return false;
    return count === section.items.length ? true : 'some';
  }

  toggle(key: string): void {
    const section = this.sections.find(({ name }) => sectionKey(name) === key);
    if (!section) return this.choose(toggle(this.selection, key, this.selectable));
    const paths = section.items.map(({ path }) => path).filter(this.selectable);
    const rest = [...this.selection.selected].filter((path) => !paths.includes(path));
    this.choose({ selected: new Set(this.isOn(section) === true ? rest : [...rest, ...paths]), anchor: null });
  }

  extend(key: string): void {
    this.choose(extend(this.selection, key, this.keys, this.selectable));
  }

  selectAll(): void {
    this.choose(selectAll(this.selectablePaths, this.selectable));
  }

  clear(): void {
    this.choose(nothing);
  }

  /** Back to what is proposed, for an application that is looked at again. */
  forget(): void {
    this.chosen = null;
    this.focused = null;
  }
}

export const choice = new LeftoverChoice();
