/** The only place that touches `window.velto` and the script message handler. */
import * as appGuards from './appGuards.ts';
import * as guards from './guards.ts';
import type { DiskState, EventName, Events, IntentName, Intents, Listeners } from './protocol.ts';
import { systemSample } from './systemGuards.ts';

interface Channel {
  postMessage(message: { type: string; payload?: unknown }): void;
}

/** What the program may have left in the page before its scripts ran. */
interface Bootstrap {
  _state?: unknown;
  _stamp?: unknown;
  [callback: string]: unknown;
}

interface Host {
  velto?: Bootstrap;
  webkit?: { messageHandlers?: Record<string, Channel | undefined> };
}

const host = globalThis as unknown as Host;

export function isHosted(): boolean {
  return host.webkit?.messageHandlers?.velto !== undefined;
}

/** Sends one intent; in a plain browser there is nobody to hear it and nothing happens. */
export function send<Name extends IntentName>(
  type: Name,
  ...payload: Intents[Name] extends void ? [] : [Intents[Name]]
): void {
  const message = payload.length ? { type, payload: payload[0] } : { type };
  host.webkit?.messageHandlers?.velto?.postMessage(message);
}

/** Turns the raw arguments of an event into its typed ones; null drops the event. */
const readers: { [Name in EventName]?: (values: unknown[]) => Events[Name] | null } = {
  setState: ([state, stamp]) => {
    const read = guards.diskState(state);
    return read && [read, readStamp(stamp)];
  },
  onScanProgress: ([files, gb]) => [guards.number(files), guards.number(gb)],
  onPermissions: ([value]) => [guards.permissions(value)],
  toast: ([title, detail]) => [guards.text(title), guards.text(detail)],
  onExclusions: ([paths]) => [[...new Set(guards.texts(paths))]],
  onCleanables: ([candidates]) => [guards.cleanables(candidates)],
  onMaintenance: ([status]) => [guards.maintenanceStatus(status)],
  onTrashState: ([items]) => [guards.trashItems(items)],
  onTrashChanged: ([gb]) => [guards.number(gb)],
  onApps: ([apps]) => [appGuards.installedApps(apps)],
  onAppSizes: ([sizes]) => [appGuards.appSizes(sizes)],
  onAppAnalysis: ([value]) => {
    const analysis = appGuards.appAnalysis(value);
    return analysis && [analysis];
  },
  onUninstallProgress: ([word, percent, detail]) => {
    const stage = appGuards.uninstallStage(word);
    return stage && [stage, appGuards.percent(percent), guards.text(detail)];
  },
  onUninstallResult: ([value]) => {
    const result = appGuards.uninstallResult(value);
    return result && [result];
  },
  onSystem: ([value]) => {
    const sample = systemSample(value);
    return sample && [sample];
  },
};

/** A stamp of 0 is no stamp: the program has none to give when nothing was analysed yet. */
function readStamp(value: unknown): number | undefined {
  const stamp = guards.number(value);
  return stamp > 0 ? stamp : undefined;
}

export interface SavedAnalysis {
  state: DiskState;
  stamp: number | undefined;
}

/** What the program told while the saved analysis was being painted; null once that is done. */
let held: (() => void)[] | null = null;

/**
 * Installs the page's callbacks and answers what the program put in the page before it started. If
 * that is a state, events wait until `release`: painting it comes first.
 * A listener that throws is reported to the console and never reaches the program's script.
 */
export function connect(listeners: Listeners): SavedAnalysis | null {
  const velto: Bootstrap = (host.velto ??= {});
  for (const name of Object.keys(listeners) as EventName[]) {
    velto[name] = (...values: unknown[]) => {
      if (name === 'setState') keepLatest(velto, values);
      const deliver = () => receive(name, values, listeners);
      if (held) held.push(deliver);
      else deliver();
    };
  }
  const state = guards.diskState(velto._state);
  held = state ? [] : null;
  return state && { state, stamp: readStamp(velto._stamp) };
}

/** Hands over what was held back, in its order. */
export function release(): void {
  const events = held ?? [];
  held = null;
  for (const deliver of events) deliver();
}

function keepLatest(velto: Bootstrap, [state, stamp]: unknown[]): void {
  velto._state = state;
  if (stamp) velto._stamp = stamp;
}

function receive(name: EventName, values: unknown[], listeners: Listeners): void {
  try {
    const read = readers[name];
    const typed = read ? read(values) : values;
    const listener = listeners[name] as ((...typed: unknown[]) => void) | undefined;
    if (typed) listener?.(...typed);
  } catch (error) {
    console.error(`[velto] ${name}`, error);
  }
}

/** Makes a function callable by the program's own scripts and menu commands. */
export function publish(name: string, action: (argument: unknown) => void): void {
  (globalThis as unknown as Record<string, unknown>)[name] = action;
}
