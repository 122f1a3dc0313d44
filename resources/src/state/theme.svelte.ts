/**
 * Light or dark. Until the user picks one the page follows the system and the program is told
 * nothing; a choice is kept by the web view and told at every start, until it is taken back.
 */
import { send } from '../protocol/connection.ts';

export type ThemeName = 'light' | 'dark';

const key = 'velto.theme';

/** Storage can be refused by the web view; the choice then lasts as long as the window. */
function stored(): ThemeName | null {
  try {
    const value = localStorage.getItem(key);
    return value === 'light' || value === 'dark' ? value : null;
  } catch {
    return null;
  }
}

function store(theme: ThemeName | null): void {
  try {
    if (theme) localStorage.setItem(key, theme);
    else localStorage.removeItem(key);
  } catch {
    // The choice still applies to this window.
  }
}

class Theme {
  /** What the user has picked; null while the system decides. */
  chosen = $state.raw<ThemeName | null>(null);
  private system = $state<ThemeName>('light');

  readonly current: ThemeName = $derived(this.chosen ?? this.system);

  start(): void {
    const dark = matchMedia('(prefers-color-scheme: dark)');
    this.system = dark.matches ? 'dark' : 'light';
    dark.addEventListener('change', (event) => (this.system = event.matches ? 'dark' : 'light'));
    const kept = stored();
    if (kept) this.apply(kept);
  }

  choose(theme: ThemeName): void {
    store(theme);
    this.apply(theme);
  }

  followSystem(): void {
    store(null);
    this.chosen = null;
    delete document.documentElement.dataset.theme;
    send('followSystemTheme');
  }

  private apply(theme: ThemeName): void {
    this.chosen = theme;
    document.documentElement.dataset.theme = theme;
    send('setTheme', { theme });
  }
}

export const theme = new Theme();
