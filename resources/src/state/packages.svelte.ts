/** How the application that is looked at goes, where the system has installed it. */
import { send } from '../protocol/connection.ts';
import type { PackageEnd, PackagePlan } from '../protocol/protocol.ts';
import { onMac } from './platform.ts';

export type PackagePhase = 'asked' | 'known' | 'removing' | 'gone';

class Packages {
  /** The application's path; null where there is nothing to tell. */
  path = $state<string | null>(null);
  plan = $state.raw<PackagePlan | null>(null);
  phase = $state<PackagePhase>('known');
  /** How the last attempt ended; null before there was one. */
  end = $state.raw<PackageEnd | null>(null);

  /** An entry of the menu that is not the user's own stands for a package. */
  look(path: string): void {
    if (this.phase === 'removing') return;
    runtimes.forget();
    const isEntry = !onMac() && path.endsWith('.desktop') && !path.includes('/.local/share/');
    this.end = null;
    this.plan = null;
    this.path = isEntry ? path : null;
    this.phase = isEntry ? 'asked' : 'known';
    if (isEntry) send('appPackage', { path });
  }

  receivePlan(path: string, plan: PackagePlan | null): void {
    if (path !== this.path || this.phase !== 'asked') return;
    this.phase = 'known';
    this.plan = plan;
  }

  remove(): void {
    if (!this.path || !this.plan || this.phase !== 'known') return;
    this.phase = 'removing';
    this.end = null;
    send('removePackage', { path: this.path, others: this.plan.others });
  }

  receiveEnd(path: string, end: PackageEnd): void {
    if (path !== this.path) return;
    this.end = end;
    this.phase = end.done ? 'gone' : 'known';
    // What would go is not what was shown any more.
    if (end.reason === 'changed') {
      this.phase = 'asked';
      send('appPackage', { path });
    }
  }

  /** Whether an application has gone since it was listed. */
  isGone(path: string | undefined): boolean {
    return this.phase === 'gone' && path !== undefined && path === this.path;
  }
}

export const packages = new Packages();

/** The runtimes that no Flatpak uses any more, once one has gone. */
class Runtimes {
  removing = $state(false);
  end = $state.raw<PackageEnd | null>(null);

  remove(ofAllUsers: boolean): void {
    if (this.removing) return;
    this.removing = true;
    this.end = null;
    send('removeUnusedRuntimes', { ofAllUsers });
  }

  receiveEnd(end: PackageEnd): void {
    this.removing = false;
    this.end = end;
  }

  /** Another application may leave others behind. */
  forget(): void {
    if (!this.removing) this.end = null;
  }
}

export const runtimes = new Runtimes();
