/** Made-up applications and what they left behind, as the program would describe them. */
import type {
  AppAnalysis, InstalledApp, LeftoverGroupKey, LeftoverItem, UninstallResult,
} from '../../src/protocol/protocol.ts';
import { daysAgo } from './cleaning.ts';
import { picture } from './pictures.ts';
import { home, hostileNames } from './states.ts';

export function app(name: string, change: Partial<InstalledApp> = {}): InstalledApp {
  return {
    bid: `org.example.${name.replaceAll(' ', '')}`, name, version: '2.1', exec: name, path: `${home}/Applications/${name}.app`,
    gb: 0, last: daysAgo(3), running: false, apple: false, store: false, team: '', ...change,
  };
}

/** In the order of their names, as the program sends them. */
export function someApps(): InstalledApp[] {
  return [
    app('Acme Studio', { version: '14.2.1 (8832)', last: daysAgo(41), icon: picture(232, 122, 32) }),
    app('Borealis', { running: true, last: daysAgo(0), version: '131.0', icon: picture(38, 110, 214) }),
    app('Cadencia', { store: true, last: daysAgo(9), version: '3.0', icon: picture(186, 56, 122) }),
    app('Grabador de pantalla', { last: 0, version: '' }),
    app('Límite', { path: '/Applications/Límite.app', last: daysAgo(760), icon: picture(60, 150, 90) }),
    app('Límite', { last: daysAgo(15), version: '2.0', icon: picture(60, 150, 90) }),
    app('Notas rápidas', { store: true, running: true, last: daysAgo(0), version: '5.8.2', icon: picture(240, 190, 40) }),
    app('Terra', { version: '1.0.4', last: daysAgo(300), icon: picture(90, 90, 110) }),
    app('Calculadora', { apple: true, path: '/Applications/Calculadora.app', last: daysAgo(2), version: '11.0', icon: picture(120, 120, 126) }),
    app('Vista previa', { apple: true, path: '/System/Applications/Vista previa.app', last: daysAgo(1), version: '11.0' }),
  ];
}

export function sizesOf(apps: readonly InstalledApp[]): Record<string, number> {
  const sizes = [4.812, 1.934, 0.212, 0.046, 0.731, 0.698, 0.094, 11.37, 0.021, 0.013];
  return Object.fromEntries(apps.map(({ path }, index) => [path, sizes[index % sizes.length]!]));
}

let nextItem = 1;

export function leftover(cat: LeftoverGroupKey, path: string, gb: number, change: Partial<LeftoverItem> = {}): LeftoverItem {
  const name = path.slice(path.lastIndexOf('/') + 1);
  return { id: `un-${nextItem++}`, name, path, gb, conf: 'certain', admin: false, nested: false, cat, ...change };
}

export function analysisOf(installed: InstalledApp, items: readonly LeftoverItem[], gb = 1.934): AppAnalysis {
  const bundle = leftover('app', installed.path, gb, { id: 'un-app', name: installed.name });
  const all = [bundle, ...items];
  const keys = [...new Set(all.map(({ cat }) => cat))];
  const sum = (chosen: readonly LeftoverItem[]) => Math.round(chosen.reduce((total, item) => total + item.gb, 0) * 1000) / 1000;
  const own = all.filter(({ admin }) => !admin);
  return {
    bid: installed.bid, name: installed.name, path: installed.path, version: installed.version, icon: installed.icon ?? '',
    gb, running: installed.running, team: 'A1B2C3D4E5',
    groups: keys.map((key) => ({ key, items: all.filter(({ cat }) => cat === key) })),
    total: sum(all),
    certain: sum(own.filter(({ conf }) => conf === 'certain')),
    possible: sum(own.filter(({ conf }) => conf === 'possible')),
    adminCount: all.length - own.length,
    possibleCount: own.filter(({ conf }) => conf === 'possible').length,
    count: all.length,
  };
}

export function someLeftovers(bid = 'org.example.Borealis', name = 'Borealis'): LeftoverItem[] {
  const possible = { conf: 'possible' } as const;
  return [
    leftover('support', `${home}/Library/Application Support/${bid}`, 0.812),
    leftover('support', `${home}/Library/Application Scripts/${bid}`, 0),
    leftover('support', `${home}/Library/Application Support/${name}`, 0.344, possible),
    leftover('support', `/Library/Application Support/${bid}`, 0.002, { admin: true }),
    leftover('caches', `${home}/Library/Caches/${bid}`, 1.21),
    leftover('caches', `${home}/Library/Caches/Acme/${name}`, 0.051, possible),
    leftover('prefs', `${home}/Library/Preferences/${bid}.plist`, 0.001),
    leftover('state', `${home}/Library/Saved Application State/${bid}.savedState`, 0.003),
    leftover('web', `${home}/Library/HTTPStorages/${bid}`, 0.012),
    leftover('logs', `${home}/Library/Logs/DiagnosticReports/${name}_2026-05-01-101010_portatil-de-marina.ips`, 0.001, possible),
    leftover('agents', `${home}/Library/LaunchAgents/${bid}.plist`, 0.001),
    leftover('agents', `/Library/LaunchDaemons/${bid}.plist`, 0.001, { admin: true }),
  ];
}

export function someResult(change: Partial<UninstallResult> = {}): UninstallResult {
  return { name: 'Borealis', removed: 8, freed: 3.97, closed: 3, failures: [], ...change };
}

export const someFailures: UninstallResult['failures'] = [
  { name: 'org.example.Borealis.plist', path: '/Library/LaunchDaemons/org.example.Borealis.plist', reason: 'admin' },
  { name: 'org.example.Borealis', path: '/Library/Application Support/org.example.Borealis', reason: 'admin' },
  { name: 'org.example.Borealis', path: `${home}/Library/Caches/org.example.Borealis`, reason: 'busy' },
  { name: 'org.example.Borealis.savedState', path: `${home}/Library/Saved Application State/org.example.Borealis.savedState`, reason: 'gone' },
];

export function hostileApps(): InstalledApp[] {
  return hostileNames.map((name, index) =>
    app(name, {
      bid: `"${name}"`, version: index % 2 ? name : '1', store: index % 3 === 0, running: index % 4 === 0, apple: index > 7,
      last: daysAgo(index * 90), path: `${home}/Applications/${name}.app`, icon: 'https://example.org/pixel.png',
    }),
  );
}

export function hostileLeftovers(): LeftoverItem[] {
  const kinds: LeftoverGroupKey[] = ['support', 'caches', 'prefs', 'logs', 'agents'];
  return hostileNames.map((name, index) =>
    leftover(kinds[index % kinds.length]!, `${home}/Library/${name}`, index / 7, {
      conf: index % 2 ? 'possible' : 'certain', admin: index % 5 === 4,
    }),
  );
}

export function manyApps(count: number): InstalledApp[] {
  return Array.from({ length: count }, (_, index) =>
    app(`Aplicación ${String(index + 1).padStart(3, '0')}`, { last: daysAgo(index), running: index % 17 === 0, apple: index % 9 === 8 }),
  );
}
