/** Connects the page to the program and reports when the first real state has been painted. */
import { tick } from 'svelte';
import { connect, release, send } from '../protocol/connection.ts';
import type { DiskState, TrashItem } from '../protocol/protocol.ts';
import { laterViews } from '../views/laterViews.svelte.ts';
import { cleanables } from './cleanables.svelte.ts';
import { installedApps } from './installedApps.svelte.ts';
import { leftovers } from './leftovers.svelte.ts';
import { machine } from './machine.svelte.ts';
import { publishGo } from './navigation.svelte.ts';
import { showAnswer } from './removal.ts';
import { requests } from './requests.svelte.ts';
import { session } from './session.svelte.ts';
import { theme } from './theme.svelte.ts';
import { tellOutcome } from './uninstallOutcome.ts';
import { uninstalling } from './uninstalling.svelte.ts';

export function start(): void {
  theme.start();
  publishGo();
  const saved = connect({
    setState: (state, stamp) => showState(state, stamp),
    onScanStarted: () => {
      session.scanPhase = 'running';
      session.scanFiles = 0;
      session.scanGb = 0;
      session.scanStartedAt = Date.now();
    },
    onScanProgress: (files, gb) => {
      session.scanFiles = files;
      session.scanGb = gb;
    },
    onScanFinished: () => (session.scanPhase = 'idle'),
    onScanFailed: () => (session.scanPhase = 'failed'),
    onPermissions: ({ fda }) => (session.access = fda ? 'granted' : 'missing'),
    toast: (title, detail) => {
      uninstalling.takeRefusal(title);
      if (!leftovers.takeFailure(title, detail)) showAnswer(title, detail);
    },
    onExclusions: (paths) => (session.exclusions = paths),
    onCleanables: (candidates) => cleanables.receive(candidates),
    onMaintenance: (status) => session.receiveMaintenance(status),
    onTrashState: (items) => showTrash(items),
    onTrashChanged: (gb) => (session.trashGb = gb),
    onApps: (apps) => installedApps.receive(apps),
    onAppSizes: (sizes) => installedApps.receiveSizes(sizes),
    onAppAnalysis: (analysis) => leftovers.receive(analysis),
    onUninstallProgress: (stage, percent, item) => uninstalling.progress(stage, percent, item ?? ''),
    onUninstallResult: (result) => tellOutcome(uninstalling.finish(result)),
    onSystem: (sample) => machine.receive(sample),
  });
  if (saved) showState(saved.state, saved.stamp);
}

function showTrash(items: TrashItem[]): void {
  session.trash = items;
  session.trashGb = items.reduce((sum, item) => sum + item.gb, 0);
  requests.trashHolds(items);
}

let reported = false;

function isShown(state: DiskState): boolean {
  return session.disk !== null && JSON.stringify(session.disk) === JSON.stringify(state);
}

function showState(state: DiskState, stamp: number | undefined): void {
  // The program pushes at every load what the page has from the start already: nothing to render.
  if (!isShown(state)) session.disk = state;
  if (stamp !== undefined) session.stamp = stamp;
  if (!reported) {
    reported = true;
    void reportFirstPaint();
  }
}

/** The second frame begins after the first one has been painted; whatever can wait waits for it. */
async function reportFirstPaint(): Promise<void> {
  await tick();
  requestAnimationFrame(() =>
    requestAnimationFrame(() => {
      send('webReady');
      release();
      void laterViews.load();
    }),
  );
}
