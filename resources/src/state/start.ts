/** Connects the page to the program and reports when the first real state has been painted. */
import { tick } from 'svelte';
import { connect, release, send } from '../protocol/connection.ts';
import type { DiskState } from '../protocol/protocol.ts';
import { laterViews } from '../views/laterViews.svelte.ts';
import { navigation, publishGo } from './navigation.svelte.ts';
import { session, type ScanPhase } from './session.svelte.ts';
import { theme } from './theme.svelte.ts';

export function start(): void {
  theme.start();
  publishGo();
  const saved = connect({
    setState: (state, stamp) => showState(state, stamp),
    onScanStarted: () => {
      session.scanPhase = 'running';
      session.scanStage = 'counting';
      session.scanFiles = 0;
      session.scanGb = 0;
      session.scanStartedAt = Date.now();
    },
    onScanProgress: (files, gb) => {
      session.scanFiles = files;
      session.scanGb = gb;
    },
    onAnalysisPhase: (phase, files, gb) => {
      session.scanStage = phase;
      session.scanFiles = files;
      session.scanGb = gb;
    },
    onScanFinished: () => {
      endScan('idle');
      session.analyses += 1;
    },
    onAnalysisStopped: () => endScan('stopped'),
    onScanFailed: () => endScan(session.scanPhase === 'stopped' ? 'stopped' : 'failed'),
    onPermissions: ({ fda }) => (session.access = fda ? 'granted' : 'missing'),
  });
  if (saved) showState(saved.state, saved.stamp);
  else void laterViews.load();
}

/** Whoever has the focus on the button that stops it, which goes with it, is taken to the head of the view. */
function endScan(phase: ScanPhase): void {
  const holdsFocus = document.activeElement?.closest('[data-scan]');
  session.scanPhase = phase;
  if (holdsFocus) navigation.arrive(navigation.view);
}

let reported = false;

function isShown(state: DiskState): boolean {
  return session.disk !== null && JSON.stringify(session.disk) === JSON.stringify(state);
}

function showState(state: DiskState, stamp: number | undefined): void {
  // The program pushes at every load what the page has from the start already: nothing to render.
  if (!isShown(state)) session.receiveDisk(state);
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
      session.painted = true;
      release();
      void laterViews.load();
    }),
  );
}
