/** Reads the arguments of the events that the second script listens for; see `Readers`. */
import * as aboutGuards from './aboutGuards.ts';
import * as appGuards from './appGuards.ts';
import * as cleaningGuards from './cleaningGuards.ts';
import type { LaterReaders } from './connection.ts';
import * as folderGuards from './folderGuards.ts';
import * as growthGuards from './growthGuards.ts';
import { furtherCleanables } from './furtherGuards.ts';
import * as guards from './guards.ts';
import * as measurementGuards from './measurementGuards.ts';
import { filePreview } from './previewGuards.ts';
import * as sharingGuards from './sharingGuards.ts';
import { systemActivity, systemDetails, systemSample } from './systemGuards.ts';

export const laterReaders: LaterReaders = {
  toast: ([title, detail]) => [guards.text(title), guards.text(detail)],
  onAbout: ([value]) => {
    const about = aboutGuards.about(value);
    return about && [about];
  },
  onAppUses: ([value]) => {
    const uses = aboutGuards.appUses(value);
    return uses && [uses];
  },
  onHome: ([path]) => [guards.text(path)],
  onHomeFolders: ([value]) => {
    const folders = folderGuards.homeFolders(value);
    return folders && [folders];
  },
  onCloudDrive: ([isThere]) => [isThere === true],
  onCloudMove: ([value]) => {
    const move = cleaningGuards.cloudMove(value);
    return move && [move];
  },
  onExactSizes: ([sizes]) => [measurementGuards.exactSizes(sizes)],
  onLinkedCopies: ([groups]) => [measurementGuards.linkedCopies(groups)],
  onCopyDates: ([dates]) => [measurementGuards.bytesByKey(dates) ?? new Map()],
  onSharable: ([value]) => {
    const told = sharingGuards.sharable(value);
    return told && [told];
  },
  onSharing: ([value]) => {
    const progress = sharingGuards.sharingProgress(value);
    return progress && [progress];
  },
  onShared: ([value]) => {
    const end = sharingGuards.sharingEnd(value);
    return end && [end];
  },
  onPreview: ([value]) => {
    const preview = filePreview(value);
    return preview && [preview];
  },
  onMeasurement: ([value]) => {
    const measurement = measurementGuards.measurement(value);
    return measurement && [measurement];
  },
  onExclusions: ([paths]) => [[...new Set(guards.texts(paths))]],
  onCleanableAges: ([ages]) => [cleaningGuards.cleanableAges(ages)],
  onExcluded: ([path]) => [guards.text(path)],
  onCleanableFacts: ([facts]) => [cleaningGuards.cleanableFacts(facts)],
  onCleanables: ([candidates]) => [cleaningGuards.cleanables(candidates)],
  onFurtherCleanables: ([value]) => {
    const further = furtherCleanables(value);
    return further && [further];
  },
  onMaintenance: ([status]) => [cleaningGuards.maintenanceStatus(status)],
  onTrashState: ([items]) => [cleaningGuards.trashItems(items)],
  onTrashWaiting: ([items]) => [cleaningGuards.waitingItems(items)],
  onTrashEmptying: ([done, of]) => [guards.number(done), guards.number(of)],
  onTrashChanged: ([gb]) => [guards.number(gb)],
  onRefused: ([value]) => {
    const refusal = cleaningGuards.refusal(value);
    return refusal && [refusal];
  },
  onSelection: ([value]) => {
    const check = cleaningGuards.selectionCheck(value);
    return check && [check];
  },
  onPutBack: ([items]) => [cleaningGuards.putBack(items)],
  onRestoreBlocked: ([value]) => {
    const block = cleaningGuards.restoreBlock(value);
    return block && [block];
  },
  onFolder: ([value]) => {
    const contents = folderGuards.folderContents(value);
    return contents && [contents];
  },
  onFolderSearch: ([value]) => {
    const search = folderGuards.folderSearch(value);
    return search && [search];
  },
  onGrowth: ([value]) => {
    const growth = growthGuards.growth(value);
    return growth && [growth];
  },
  onFolderGrowth: ([value]) => {
    const growth = folderGuards.folderGrowth(value);
    return growth && [growth];
  },
  onApps: ([apps]) => [appGuards.installedApps(apps)],
  onAppSizes: ([sizes]) => [appGuards.appSizes(sizes)],
  onLeftoverLinks: ([application, links]) => [guards.text(application), appGuards.leftoverLinks(links)],
  onAppRemoval: ([application, removal]) => [guards.text(application), appGuards.appRemoval(removal)],
  onAppAnalysis: ([value]) => {
    const analysis = appGuards.appAnalysis(value);
    return analysis && [analysis];
  },
  onAppPackage: ([application, plan]) => [guards.text(application), appGuards.packagePlan(plan)],
  onPackageRemoval: ([application, end]) => [guards.text(application), appGuards.packageEnd(end)],
  onUnusedRuntimes: ([end]) => [appGuards.packageEnd(end)],
  onLeftBehind: ([items]) => [appGuards.leftBehind(items)],
  onUninstallProgress: ([word, percent, detail]) => {
    const stage = appGuards.uninstallStage(word);
    return stage && [stage, appGuards.percent(percent), guards.text(detail)];
  },
  onUninstallResult: ([value]) => {
    const result = appGuards.uninstallResult(value);
    return result && [result];
  },
  onQuitting: ([value]) => [guards.fieldsOf(value)?.running === 'uninstall' ? 'uninstall' : 'cleanup'],
  onSystemDetails: ([value]) => {
    const details = systemDetails(value);
    return details && [details];
  },
  onSystemActivity: ([value]) => {
    const activity = systemActivity(value);
    return activity && [activity];
  },
  onApplicationStopped: ([value]) => {
    const fields = guards.fieldsOf(value);
    return fields && [guards.number(fields.pid), fields.ended === true];
  },
  onSystem: ([value]) => {
    const sample = systemSample(value);
    return sample && [sample];
  },
};
