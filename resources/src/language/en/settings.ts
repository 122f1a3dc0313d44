import type { MaintenanceStatus } from '../../protocol/protocol.ts';
import { formats } from '../formats.ts';

const { date, moment, plural, size } = formats.en;

export const settings = {
  general: 'General',
  language: 'Language',
  theme: 'Theme',
  themeHelp: 'Until you choose one, Velto follows the system.',
  trash: 'Velto Trash',
  retention: 'Keep removed items for',
  retentionHelp: 'What you remove can be taken back during this time. After it, automatic maintenance deletes it for good.',
  days: (count: number) => plural(count, { one: '# day', other: '# days' }),
  maintenance: 'Automatic maintenance',
  enabled: 'Run maintenance automatically',
  enabledHelp: 'Moves what can go to Velto Trash, and deletes for good what has been there longer than you keep it.',
  frequency: 'How often',
  frequencies: { daily: 'Every day', weekends: 'Every week', monthly: 'Every month' },
  nextRun: (stamp: number) => `The next run is due on ${date(stamp)}.`,
  lastRun: 'Last run',
  neverRun: 'Maintenance has not run yet.',
  lastOutcome: ({ ts, freed, moved, movedGB }: NonNullable<MaintenanceStatus['last']>) => {
    const outcome = [
      moved > 0 ? `moved ${plural(moved, { one: '# item', other: '# items' })} (${size(movedGB)}) to Velto Trash` : '',
      freed > 0 ? `deleted ${size(freed)} for good` : '',
    ].filter(Boolean);
    return `${moment(ts)}: ${outcome.join(', ') || 'there was nothing to do'}.`;
  },
  rules: 'What maintenance looks at',
  rulePlaces: 'Where',
  ruleNow: (count: number, gb: number) =>
    count > 0 ? `Now: ${plural(count, { one: '# item', other: '# items' })}, ${size(gb)}` : 'Now: nothing',
  measureLabel: 'How much would go now?',
  measureHelp: 'Measures every rule, also those that are off. Nothing is moved.',
  measure: 'Measure',
  measuring: 'Measuring…',
  ruleNames: {
    systemTrash: 'System trash',
    oldDownloads: 'Old downloads',
    caches: 'Application caches',
    duplicates: 'Duplicates',
  },
  ruleHelp: {
    systemTrash: 'What has been in the system’s trash for more than 30 days.',
    oldDownloads: 'Files in Downloads that have not been opened for a year.',
    caches: 'Working files that applications, Xcode among them, build again when they need them. What may hold more and what is in use stays.',
    duplicates: 'Extra copies in Downloads, Desktop and Documents, at most every 30 days. One copy always stays.',
  },
  exclusions: 'Excluded from the analysis',
  exclusionsHelp: 'These places are neither read nor counted. A change counts from the next analysis on.',
  exclusionsEmpty: 'Nothing is excluded.',
  exclusionsEmptyHelp: 'A file can be excluded from the list of large files.',
  exclusionsToFiles: 'Go to large files',
  exclusionsWaiting: 'Reading the list…',
  exclusionsFailed: 'The list could not be read. The exclusions themselves are not affected.',
  exclusionsCount: (count: number) => plural(count, { one: '# place', other: '# places' }),
  include: 'Include again',
  includeNamed: (path: string) => `Include ${path} again`,
  access: 'Access to the disk',
  accessGranted: 'Full Disk Access is granted',
  accessGrantedHelp: 'Velto can measure every folder of yours.',
  accessMissing: 'Full Disk Access is not granted',
  accessMissingHelp: 'Velto works without it; some folders stay unmeasured.',
  accessUnknown: 'Access has not been checked yet',
  accessUnknownHelp: 'The answer comes with the next analysis.',
  accessFree: 'No permission is needed on this system',
  accessFreeHelp: 'Velto reads what your own account can read.',
  openSettings: 'Open system settings',
  resetAccess: 'Reset access',
  resetAccessLabel: 'Granted, but not working?',
  resetAccessHelp: 'Resetting access and granting it again usually helps.',
  reset: 'Start over',
  resetLabel: 'Reset Velto',
  resetHelp: 'Removes the automatic maintenance, the saved analysis, the exclusions, the history and Velto Trash with everything in it.',
  resetButton: 'Reset Velto…',
  resetFirstTitle: 'Reset Velto?',
  resetFirstText: 'The saved analysis, the exclusions, the history and the automatic maintenance are removed. Your settings stay.',
  resetTrash: (gb: number) =>
    gb > 0
      ? `Velto Trash holds ${size(gb)}. It is deleted for good.`
      : 'Anything in Velto Trash is deleted for good.',
  resetContinue: 'Continue…',
  resetSecondTitle: 'This cannot be taken back',
  resetSecondText: 'Velto deletes its local data now. Files that are not in Velto Trash are not touched.',
  resetConfirm: 'Reset Velto',
};
