/** Made-up cleaning candidates, trash contents and histories, as the program would describe them. */
import { readFileSync } from 'node:fs';
import type { CacheReason, Cleanable, DiskState, FurtherItem, FurtherReason, HistoryEntry, TrashItem, WaitingItem } from '../../src/protocol/protocol.ts';
import type { OpenPage } from './page.ts';
import { home, hostileNames } from './states.ts';

const name = (path: string) => path.slice(path.lastIndexOf('/') + 1);

/** The Spanish line that travels with a candidate; the page has words of its own. */
function label(ruleID: string, path: string): string {
  return ruleID === 'caches' ? `Caché de ${name(path).replaceAll('.', ' ')}.` : `«${name(path)}», sin abrir más de un año.`;
}

export function cleanable(ruleID: string, path: string, gb: number, daysOld: number): Cleanable {
  return { ruleID, path: `${home}/${path}`, gb, daysOld, label: label(ruleID, path) };
}

/** Largest first, as the program sends them. */
export function someCleanables(): Cleanable[] {
  return [
    cleanable('oldDownloads', 'Downloads/macOS 27 beta installer.dmg', 14.3, 402),
    cleanable('xcode', 'Library/Developer/Xcode/DerivedData', 11.82, 45),
    cleanable('oldDownloads', 'Downloads/dataset-traffic-2024.tar.gz', 8.8, 388),
    cleanable('oldDownloads', 'Downloads/Curso de fotografía completo.zip', 4.9, 700),
    cleanable('xcode', 'Library/Developer/Xcode/iOS DeviceSupport/iPhone14,2 17.4 (21E219)', 4.61, 510),
    cleanable('caches', 'Library/Caches/org.example.Render', 3.37, 62),
    cleanable('caches', 'Library/Caches/com.example.Browser', 1.94, 3),
    cleanable('installers', 'Downloads/Example Office 16.88.pkg', 1.71, 21),
    cleanable('caches', 'Library/Caches/com.example.MailClient', 0.94, 200),
    cleanable('caches', 'Library/Caches/com.example.music-player.ShipIt', 0.72, 31),
    cleanable('installers', 'Downloads/Player-3.2.1-universal.dmg', 0.18, 90),
    cleanable('caches', 'Library/Caches/pip', 0.052, 30),
  ];
}

/** A rule's file as the program sends it. */
export function ruleFile(id: string): Record<string, unknown> {
  return JSON.parse(readFileSync(new URL(`../../../rules/${id}.json`, import.meta.url), 'utf8')) as Record<string, unknown>;
}

function furtherItem(path: string, gb: number, days: number, reason: FurtherReason, linked = 0): FurtherItem {
  return { path: `${home}/${path}`, bytes: gb * 1e9, linked: linked * 1e9, days, certain: reason === 'madeAgain', reason };
}

/** What rules of each group find, as the program sends it. */
export function someFurther(asking = false): Record<string, unknown> {
  return {
    asking,
    groups: [
      {
        rule: ruleFile('cargo'), bytes: null, parts: [],
        items: [furtherItem('.cargo/registry/src', 2.31, 45, 'madeAgain'), furtherItem('.cargo/registry/cache', 0.42, 45, 'madeAgain')],
      },
      { rule: ruleFile('npm'), bytes: null, parts: [], items: [furtherItem('.npm/_cacache', 1.84, 2, 'running')] },
      {
        rule: ruleFile('node-modules'), bytes: null, parts: [],
        items: [
          furtherItem('Proyectos/tienda/node_modules', 0.94, 210, 'unknown'),
          furtherItem('Proyectos/web de la asociación/node_modules', 0.61, 130, 'unknown', 0.48),
        ],
      },
      {
        rule: ruleFile('docker'), bytes: asking ? null : 49_290_834_600, items: [],
        parts: asking
          ? []
          : [
              { name: 'Images', bytes: 34_150_000_000, command: 'docker image prune --all' },
              { name: 'Local Volumes', bytes: 15_140_000_000, command: 'docker volume prune --all' },
              { name: 'Containers', bytes: 834_600, command: 'docker container prune' },
            ],
      },
      { rule: ruleFile('device-backups'), bytes: 22_400_000_000, parts: [], items: [] },
    ],
  };
}

/** What the program tells of caches, by the names below the folder of the caches. */
export function cleanableFacts(reasons: Record<string, CacheReason>): Record<string, unknown> {
  return Object.fromEntries(
    Object.entries(reasons).map(([name, reason]) => [
      `${home}/Library/Caches/${name}`, { certain: reason === 'madeAgain', reason },
    ]),
  );
}

export function hostileCleanables(): Cleanable[] {
  return hostileNames.map((hostile, index) => {
    const rule = ['caches', 'oldDownloads', 'installers', '<b>rule</b>'][index % 4]!;
    const candidate = cleanable(rule, `Downloads/${hostile}`, 10 - index, index * 50);
    return { ...candidate, label: '<img src=x onerror="document.title=3">' };
  });
}

/** Names of every kind, in what the home holds and in what a tool answers. */
export function hostileFurther(): Record<string, unknown> {
  return {
    asking: false,
    groups: [
      {
        rule: ruleFile('node-modules'), bytes: null, parts: [],
        items: hostileNames.map((hostile, index) => furtherItem(`Proyectos/${hostile}/node_modules`, 3 - index / 10, 200, 'unknown')),
      },
      {
        rule: { ...ruleFile('docker'), id: '<b>docker</b>', name: { en: '<img src=x onerror="document.title=3">' } }, bytes: 5e9, items: [],
        parts: hostileNames.slice(0, 6).map((hostile) => ({ name: hostile, bytes: 1e9, command: `docker ${hostile}` })),
      },
    ],
  };
}

let nextItem = 1;

export function trashItem(opID: string, path: string, gb: number, taken: number): TrashItem {
  return { id: `it${String(nextItem++).padStart(8, '0')}`, opID, name: name(path), gb, taken, path: `${home}/${path}` };
}

/** Seconds since 1970, so many days before now. */
export function daysAgo(days: number, now = Date.now() / 1000): number {
  return now - days * 86_400;
}

/** In the order they arrived, as the program sends them. */
export function someTrash(now?: number): TrashItem[] {
  return [
    trashItem('opC', 'Downloads/Presentación junta.key', 1.1, daysAgo(29.2, now)),
    trashItem('opB', 'Movies/Boda Clara y Hugo.mp4', 12.6, daysAgo(6.2, now)),
    trashItem('opB', 'Documents/Copia antigua del portátil/Escritorio/Vídeos sin ordenar/2019/Verano/playa copia.mp4', 2.1, daysAgo(6.2, now)),
    ...Array.from({ length: 9 }, (_, index) =>
      trashItem('opA', `Library/Caches/com.example.App${index + 1}`, 0.4 + index / 10, daysAgo(0.1, now)),
    ),
  ];
}

export function someWaiting(): WaitingItem[] {
  return [
    {
      id: 'it0000000a', name: 'Boda de Clara.raw', gb: 12, path: `${home}/Disco de fotos/2024/Boda de Clara.raw`,
      folder: `${home}/Disco de fotos/2024`, way: 'in', reason: 'absent', whole: false,
    },
    {
      id: 'it0000000b', name: 'Acta.pdf', gb: 0.1, path: `${home}/Documents/Acta.pdf`,
      folder: `${home}/Copias`, way: 'out', reason: 'absent', whole: true,
    },
    {
      id: 'it0000000c', name: 'Presupuestos', gb: 0, path: `${home}/Oficina/Presupuestos`,
      folder: `${home}/Oficina`, way: 'in', reason: 'refused', whole: false,
    },
  ];
}

export function historyEntry(id: string, ts: number, kind: string, ...items: [name: string, gb: number][]): HistoryEntry {
  const gb = Math.round(items.reduce((sum, [, size]) => sum + size, 0) * 10) / 10;
  return { id, ts, gb, kind, items: items.map(([itemName, size]) => ({ name: itemName, gb: size })) };
}

/** Newest first; the first three are the operations of `someTrash`. */
export function someHistory(now?: number): HistoryEntry[] {
  return [
    historyEntry('opA', daysAgo(0.1, now), 'wind', ...Array.from({ length: 9 }, (_, index) => [`com.example.App${index + 1}`, 0.4 + index / 10] as [string, number])),
    historyEntry('opB', daysAgo(6.2, now), 'wind', ['Boda Clara y Hugo.mp4', 12.6], ['playa copia.mp4', 2.1], ['ya recuperado.mov', 3]),
    historyEntry('opC', daysAgo(29.2, now), 'wind', ['Presentación junta.key', 1.1]),
    historyEntry('un1', daysAgo(40, now), 'uninstall', ['Example Office', 2.4], ['com.example.Office', 0.3]),
    historyEntry('opD', daysAgo(95, now), 'wind', ['Copia de seguridad del portátil antiguo antes de venderlo.sparsebundle.zip', 31.4]),
    historyEntry('opE', daysAgo(160, now), 'wind', ['a.iso', 4.2], ['b.iso', 4.1]),
    historyEntry('opF', daysAgo(420, now), 'wind', ['viejo.dmg', 0.6]),
  ];
}

export function hostileTrash(): TrashItem[] {
  return hostileNames.map((hostile, index) => trashItem(`op"${index % 3}`, `Movies/${hostile}`, 5 - index / 4, daysAgo(index * 4)));
}

export function hostileHistory(): HistoryEntry[] {
  const items = hostileNames.map((hostile): [string, number] => [hostile, 1]);
  return [
    historyEntry('op"0', daysAgo(0), 'wind', ...items),
    historyEntry('<b>', daysAgo(50), '<i>uninstall</i>', ...items.slice(0, 1)),
    historyEntry('<b>', 0, 'wind'),
  ];
}

/** Tells the page what the views of the cleanup show. */
export async function tellCleaning({ tell }: OpenPage, hostile = false): Promise<void> {
  await tell('onCleanables', hostile ? hostileCleanables() : someCleanables());
  await tell('onFurtherCleanables', hostile ? hostileFurther() : someFurther());
  await tell('onTrashState', hostile ? hostileTrash() : someTrash());
}

export function withHistory(state: DiskState, hostile = false): DiskState {
  return { ...state, history: hostile ? hostileHistory() : someHistory() };
}
