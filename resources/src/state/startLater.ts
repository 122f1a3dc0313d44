/** Connects what the second script brings. */
import { laterEn } from '../language/en/later.ts';
import { laterEs } from '../language/es/later.ts';
import { language } from '../language/language.svelte.ts';
import { listenLater, type LaterListeners } from '../protocol/connection.ts';
import { laterReaders } from '../protocol/laterReaders.ts';
import type { TrashItem } from '../protocol/protocol.ts';
import { about } from './about.svelte.ts';
import { cleanables } from './cleanables.svelte.ts';
import { cloud } from './cloud.svelte.ts';
import { folders } from './folders.svelte.ts';
import { further } from './further.svelte.ts';
import { growth } from './growth.svelte.ts';
import { installedApps } from './installedApps.svelte.ts';
import { leftBehind } from './leftBehind.svelte.ts';
import { leftovers } from './leftovers.svelte.ts';
import { packages, runtimes } from './packages.svelte.ts';
import { machine } from './machine.svelte.ts';
import { quitting } from './quitting.svelte.ts';
import { holdRefusal } from './refusals.ts';
import { holdExclusion, showAnswer } from './removal.ts';
import { requests } from './requests.svelte.ts';
import { selectionChecks } from './selectionChecks.svelte.ts';
import { session } from './session.svelte.ts';
import { preview } from './preview.svelte.ts';
import { sharing } from './sharing.svelte.ts';
import { tellOutcome } from './uninstallOutcome.ts';
import { uninstalling } from './uninstalling.svelte.ts';
import { explorer } from '../views/explorar/state.svelte.ts';

export function startLater(): void {
  language.complete({ en: laterEn, es: laterEs });
  listenLater(
    {
      toast: (title, detail) => {
        uninstalling.takeRefusal(title);
        if (!leftovers.takeFailure(title, detail)) showAnswer(title, detail);
      },
      onCloudDrive: (isThere) => (cloud.isThere = isThere),
      onCloudMove: (result) => cloud.receive(result),
      onAbout: (told) => (about.program = told),
      onAppUses: (uses) => (about.uses = uses),
      onHome: (path) => (session.home = path),
      onHomeFolders: (told) => (session.homeFolders = told),
      onExactSizes: (sizes) => (session.sizes = { ...session.sizes, ...sizes }),
      onLinkedCopies: (groups) => (session.linked = groups),
      onCopyDates: (dates) => (session.copyDates = dates),
      onSharable: (told) => sharing.receive(told),
      onSharing: (progress) => sharing.receiveProgress(progress),
      onShared: (end) => sharing.finish(end),
      onPreview: (told) => preview.receive(told),
      onMeasurement: (measurement) => (session.measurement = measurement),
      onExclusions: (paths) => (session.exclusions = paths),
      onCleanableAges: (ages) => cleanables.receiveAges(ages),
      onExcluded: (path) => holdExclusion(path),
      onCleanableFacts: (facts) => cleanables.receiveFacts(facts),
      onCleanables: (candidates) => cleanables.receive(candidates),
      onFurtherCleanables: (found) => further.receive(found),
      onMaintenance: (status) => session.receiveMaintenance(status),
      onTrashState: (items) => showTrash(items),
      onTrashWaiting: (items) => (session.waiting = items),
      onTrashEmptying: (done, of) => requests.emptyingIs(done, of),
      onTrashChanged: (gb) => (session.toldTrashGb = gb),
      onRefused: (refusal) => holdRefusal(refusal),
      onSelection: (check) => selectionChecks.receive(check),
      onPutBack: (items) => (session.renamed = new Map([...session.renamed, ...items.map(({ id, path }) => [id, path] as const)])),
      onRestoreBlocked: ({ id, path }) => (session.blocked = new Map(session.blocked).set(id, path)),
      onFolder: (contents) => folders.receive(contents),
      onFolderSearch: (found) => folders.receiveSearch(found),
      onGrowth: (told) => growth.receive(told),
      onFolderGrowth: (growth) => folders.receiveGrowth(growth),
      onApps: (apps) => installedApps.receive(apps),
      onAppSizes: (sizes) => installedApps.receiveSizes(sizes),
      onLeftoverLinks: (application, links) => leftovers.receiveLinks(application, links),
      onAppPackage: (application, plan) => packages.receivePlan(application, plan),
      onPackageRemoval: (application, end) => packages.receiveEnd(application, end),
      onUnusedRuntimes: (end) => runtimes.receiveEnd(end),
      onAppRemoval: (application, removal) => leftovers.receiveRemoval(application, removal),
      onAppAnalysis: (analysis) => leftovers.receive(analysis),
      onLeftBehind: (items) => leftBehind.receive(items),
      onUninstallProgress: (stage, percent, item) => uninstalling.progress(stage, percent, item ?? ''),
      onUninstallResult: (result) => tellOutcome(uninstalling.finish(result)),
      onSystemActivity: (activity) => machine.receiveActivity(activity),
      onSystemDetails: (details) => machine.receiveDetails(details),
      onApplicationStopped: (pid, ended) => quitting.receive(pid, ended),
      onSystem: (sample) => machine.receive(sample),
      onQuitting: (running) => (session.quitting = running),
    } satisfies LaterListeners,
    laterReaders,
  );
  growth.start();
  explorer.start();
}

function showTrash(items: TrashItem[]): void {
  session.listed = items;
  const ids = new Set(items.map(({ id }) => id));
  session.blocked = new Map([...session.blocked].filter(([id]) => ids.has(id)));
  requests.trashHolds(items);
}
