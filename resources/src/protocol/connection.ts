/** The only place that touches `window.velto` and the script message handler. */
import * as guards from './guards.ts';
import type { DiskState, EventName, Events, IntentName, Intents, Listeners } from './protocol.ts';

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
export type Readers = { [Name in EventName]?: (values: unknown[]) => Events[Name] | null };

const readers: Readers = {
  setState: ([state, stamp]) => {
    const read = guards.diskState(state);
    return read && [read, readStamp(stamp)];
  },
  onScanProgress: ([files, gb]) => [guards.number(files), guards.number(gb)],
  onAnalysisPhase: ([value]) => {
    const fields = guards.fieldsOf(value);
    return fields && [fields.phase === 'comparing' ? 'comparing' : 'counting', guards.number(fields.files), guards.number(fields.gb)];
  },
  onPermissions: ([value]) => [guards.permissions(value)],
};

/** Events that only the second script listens for; they wait for it. */
const laterEvents = [
  'toast', 'onExclusions', 'onExcluded', 'onCleanableAges', 'onCleanableFacts', 'onCleanables', 'onFurtherCleanables', 'onMaintenance', 'onTrashState',
  'onTrashChanged', 'onTrashEmptying', 'onTrashWaiting', 'onRefused', 'onSelection', 'onPutBack', 'onRestoreBlocked', 'onFolder', 'onFolderSearch',
  'onFolderGrowth', 'onGrowth', 'onHome', 'onHomeFolders', 'onCloudDrive', 'onCloudMove', 'onExactSizes', 'onLinkedCopies', 'onMeasurement',
  'onCopyDates', 'onSharable', 'onSharing', 'onShared', 'onPreview',
  'onApps', 'onAppSizes', 'onLeftoverLinks', 'onAppRemoval', 'onAppAnalysis', 'onLeftBehind',
  'onAppPackage', 'onPackageRemoval', 'onUnusedRuntimes', 'onUninstallProgress', 'onUninstallResult',
  'onAbout', 'onAppUses', 'onSystemActivity', 'onSystemDetails', 'onSystem', 'onApplicationStopped', 'onQuitting',
] as const satisfies readonly EventName[];

type LaterEvent = (typeof laterEvents)[number];
/** What the second script has to bring. */
export type LaterListeners = Required<Pick<Listeners, LaterEvent>>;
export type LaterReaders = Required<Pick<Readers, LaterEvent>>;

/** A stamp of 0 is no stamp: the program has none to give when nothing was analysed yet. */
function readStamp(value: unknown): number | undefined {
  const stamp = guards.number(value);
  return stamp > 0 ? stamp : undefined;
}

export interface SavedAnalysis {
  state: DiskState;
  stamp: number | undefined;
}

let listeners: Listeners = {};

/** What the program has told and nobody could hear yet, in its order. */
let held: { name: EventName; values: unknown[] }[] = [];
/** The saved analysis is being painted, and comes first. */
let isPainting = false;

/**
 * Installs the page's callbacks and answers what the program put in the page before it started. If
 * that is a state, events wait until `release`: painting it comes first.
 */
export function connect(firstListeners: Omit<Listeners, LaterEvent>): SavedAnalysis | null {
  const velto: Bootstrap = (host.velto ??= {});
  listeners = { ...firstListeners };
  held = [];
  for (const name of [...(Object.keys(firstListeners) as EventName[]), ...laterEvents]) {
    velto[name] = (...values: unknown[]) => {
      if (name === 'setState') keepLatest(velto, values);
      if (isPainting || !listeners[name]) held.push({ name, values });
      else receive(name, values);
    };
  }
  const state = guards.diskState(velto._state);
  isPainting = state !== null;
  return state && { state, stamp: readStamp(velto._stamp) };
}

/** Hears the events of the second script too, those included that came before it. */
export function listenLater(laterListeners: Listeners, laterReaders: Readers): void {
  Object.assign(listeners, laterListeners);
  Object.assign(readers, laterReaders);
  deliverHeld();
}

/** The saved analysis is painted: hands over what was held back. */
export function release(): void {
  isPainting = false;
  deliverHeld();
}

function deliverHeld(): void {
  if (isPainting) return;
  const events = held;
  held = events.filter(({ name }) => !listeners[name]);
  for (const { name, values } of events) if (listeners[name]) receive(name, values);
}

function keepLatest(velto: Bootstrap, [state, stamp]: unknown[]): void {
  velto._state = state;
  if (stamp) velto._stamp = stamp;
}

/** A listener that throws is reported to the console and never reaches the program's script. */
function receive(name: EventName, values: unknown[]): void {
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
