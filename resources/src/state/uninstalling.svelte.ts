/** The one removal of an application that can be under way, and how the last one ended. */
import { send } from '../protocol/connection.ts';
import type { AppRemoval, UninstallResult, UninstallStage } from '../protocol/protocol.ts';
import { installedApps } from './installedApps.svelte.ts';

export interface Removal {
  /** Empty when the page was loaded while the removal ran: then only its progress is known. */
  path: string;
  name: string;
  paths: readonly string[];
  stage: UninstallStage;
  /** 0 to 100, as the program tells it. */
  percent: number;
  /** The item being deleted. */
  item: string;
  /** What was said beforehand of the application itself. */
  known: AppRemoval | null;
  /** The program has told of it: it was not refused. */
  confirmed: boolean;
}

export interface Outcome extends UninstallResult {
  path: string;
  /** The application itself was to be removed, and is gone. */
  appGone: boolean;
  /** What was said beforehand of the application itself. */
  known: AppRemoval | null;
}

const busyTitles = ['Ya hay una desinstalación en marcha', 'An uninstall is already running'];

class Uninstalling {
  run = $state.raw<Removal | null>(null);
  outcome = $state.raw<Outcome | null>(null);

  begin(path: string, name: string, items: readonly { path: string; gb: number }[], known: AppRemoval | null): void {
    if (this.run) return;
    const paths = items.map((item) => item.path);
    this.outcome = null;
    this.run = { path, name, paths, stage: 'stop', percent: 0, item: '', known, confirmed: false };
    send('uninstall', { path, paths, sizes: Object.fromEntries(items.map((item) => [item.path, item.gb])) });
  }

  progress(stage: UninstallStage, percent: number, item: string): void {
    const begun = this.run ?? { path: '', name: '', paths: [], known: null };
    this.run = { ...begun, stage, percent, item, confirmed: true };
  }

  finish(result: UninstallResult): Outcome {
    const { path = '', paths = [] as readonly string[], known = null } = this.run ?? {};
    const appGone = paths.includes(path) && !result.failures.some((failure) => failure.path === path && failure.reason !== 'gone');
    this.run = null;
    const outcome = { ...result, path, appGone, known };
    this.outcome = outcome;
    if (appGone) installedApps.forget(path);
    installedApps.look();
    return outcome;
  }

  /** The program runs another removal: what was asked for last has not begun. */
  takeRefusal(title: string): void {
    if (busyTitles.includes(title) && this.run && !this.run.confirmed) this.run = null;
  }

  forgetOutcome(): void {
    this.outcome = null;
  }
}

export const uninstalling = new Uninstalling();
