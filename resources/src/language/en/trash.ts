import { formats } from '../formats.ts';

const { number, plural, size } = formats.en;

const items = { one: '# item', other: '# items' };

/** The names in quotes, how many more there are, and what holds for one or for several. */
function named(names: string[], more: number, one: string, several: string): string {
  const parts = names.map((name) => `“${name}”`);
  if (more > 0) parts.push(plural(more, { one: '# more', other: '# more' }));
  return `${listed.format(parts)} ${parts.length === 1 ? one : several}.`;
}

const listed = new Intl.ListFormat('en', { type: 'conjunction' });

export const trash = {
  label: 'Velto Trash, by cleanup',
  help: 'Arrow keys move, Enter puts an item or a whole cleanup back, Delete asks before it deletes an item or a whole cleanup for good, right arrow reaches the actions of a row.',
  holds: (count: number, gb: number) => `${plural(count, items)} · ${size(gb)}`,
  figureWords: 'held in Velto Trash',
  notFree: 'The items still take up that space. It comes back only when they are deleted for good.',
  freeThen: (free: number, then: number) => `Free now: ${size(free)}. After emptying: about ${size(then)}.`,
  kept: (days: string) => `Items are kept for ${days}; then automatic maintenance deletes them for good.`,
  keptLonger: (days: string) => `Items are kept for ${days}. Automatic maintenance is off, so they stay even longer, until you delete them.`,
  maintained: (held: string) => `Moved by maintenance: ${held}`,
  keptChange: 'Change',
  empty: 'Empty trash…',
  emptying: 'Emptying…',
  emptied: (done: number, of: number) => `Emptying: ${number(done)} of ${number(of)}…`,
  moved: (when: string) => `Moved ${when}`,
  movedUnknown: 'Moved, time unknown',
  justNow: 'just now',
  freeAgain: (gb: number) => `${size(gb)} free again.`,
  staysOn: 'No time limit',
  cachesLeft: (left: string) => `Caches: ${left}`,
  daysLeft: (days: number) => (days > 0 ? plural(days, { one: '# day left', other: '# days left' }) : 'Time is up'),
  keptUntil: (date: string) => `Kept until ${date}`,
  putBackAll: 'Put all back',
  putBackAllOf: (count: number, when: string) => `Put all back: ${plural(count, items)}, moved ${when}`,
  putBack: 'Put back',
  putBackNamed: (name: string) => `Put back: ${name}`,
  putBackElsewhere: 'Restore to another folder…',
  putBackElsewhereNamed: (name: string) => `Restore to another folder: ${name}…`,
  blocked: (path: string) => `Cannot go back: ${path} is a link now, or no folder any more.`,
  purgeNamed: (name: string) => `Delete ${name} for good…`,
  working: 'Working…',
  more: (count: number) => plural(count, { one: 'Show # more item', other: 'Show # more items' }),
  groupLabel: (moved: string, summary: string, left: string) => `${moved}: ${summary}, ${left}`,
  purgeTitle: (name: string) => `Delete “${name}” for good?`,
  purgeText: (gb: number) => (gb > 0 ? `This frees ${size(gb)}.` : 'It takes up next to no space.'),
  noWayBack: 'It cannot be put back afterwards.',
  purgeAll: 'Delete this cleanup for good…',
  purgeAllOf: (count: number, when: string) => `Delete this cleanup for good: ${plural(count, items)}, moved ${when}…`,
  purgeAllTitle: (count: number) => `Delete ${plural(count, items)} for good?`,
  noWayBackAll: 'Nothing of it can be put back afterwards.',
  purgeConfirm: 'Delete for good',
  emptyTitle: 'Empty Velto Trash?',
  emptyText: (count: number, gb: number) =>
    `${plural(count, { one: '# item is', other: '# items are' })} deleted for good. This frees ${size(gb)}.`,
  emptyConfirm: 'Empty Velto Trash',
  waitingForDisk: 'Waiting for a disk',
  waitingForDiskText: 'A move of these between two disks was cut off. Nothing of them is lost, and emptying the trash leaves them alone.',
  waits: {
    in: {
      absent: 'It comes from a disk that is not connected. Connect it, and the move is finished by itself.',
      refused: 'The folder that it comes from cannot be reached. Once it can, the move is finished by itself.',
      unsettled: 'The move could not be finished yet. It is tried again each time you come back to this window.',
    },
    out: {
      absent: 'It goes to a disk that is not connected. Connect it, and the move is finished by itself.',
      refused: 'The folder that it goes to cannot be reached. Once it can, the move is finished by itself.',
      unsettled: 'The move could not be finished yet. It is tried again each time you come back to this window.',
    },
  },
  giveUp: 'Stop waiting…',
  giveUpNamed: (name: string) => `Stop waiting: ${name}…`,
  giveUpTitle: (name: string) => `Stop waiting for the disk of “${name}”?`,
  giveUpWhole: 'It stays in Velto Trash, whole, and can be put back again.',
  giveUpPart: 'What there is of it here stays in Velto Trash with “(copia sin terminar)” in its name: without the disk nobody can tell whether it is whole.',
  giveUpIn: 'The original stays on its disk. Once that is connected again, you find it in its place.',
  giveUpOut: 'If it had already arrived on the other disk, it is there as well.',
  giveUpSafe: 'Nothing is deleted.',
  giveUpConfirm: 'Stop waiting',
  emptyStateTitle: 'Velto Trash is empty',
  emptyStateText: 'What you remove comes here first, and can be put back from here.',
  toCleanup: 'Go to Cleanup',
  waitingTitle: 'Reading Velto Trash…',
  lateTitle: 'The list has not arrived',
  lateText: 'What lies in Velto Trash is not affected. The list comes with the next change.',
  putBackDone: 'Put back',
  putBackOne: (name: string, folder: string) => `“${name}” is back in ${folder}.`,
  putBackOneAs: (name: string, now: string, folder: string) =>
    `Another “${name}” stands in ${folder}, so it is back there as “${now}”.`,
  putBackRenamed: (count: number, first: string) =>
    plural(count, {
      one: `One of them has another name now, “${first}”: something else stands in its place.`,
      other: `# of them have other names now, such as “${first}”: something else stands in their places.`,
    }),
  putBackMany: (count: number, gb: number) => `${plural(count, items)}, ${size(gb)}, are back in their folders.`,
  nothingToUndo: 'Nothing to undo',
  nothingToUndoText: 'Velto Trash is empty.',
  nothingMoved: 'Nothing was moved: everything is where it was.',
  nothingDeleted: 'Nothing was deleted: everything is where it was.',
  notPutBack: 'What is not back in its place stays in Velto Trash.',
  notDeleted: 'What was not deleted stays in Velto Trash.',
  refused: {
    link: (names: string[], more: number) => named(names, more, 'is a link, or lies behind one', 'are links, or lie behind one'),
    outside: (names: string[], more: number) => named(names, more, 'lies outside your home folder', 'lie outside your home folder'),
    protected: (names: string[], more: number) =>
      named(names, more, 'is protected: photos, mail and backups are not moved', 'are protected: photos, mail and backups are not moved'),
    gone: (names: string[], more: number) => named(names, more, 'is not there any more', 'are not there any more'),
    trash: (names: string[], more: number) => named(names, more, 'belongs to Velto Trash itself', 'belong to Velto Trash itself'),
  },
  staysWhy: {
    closed: (names: string[], more: number) =>
      named(names, more, 'stands in a folder that may not be changed', 'stand in folders that may not be changed'),
    readOnly: (names: string[], more: number) => named(names, more, 'is on a read-only disk', 'are on a read-only disk'),
    mounted: (names: string[], more: number) =>
      named(names, more, 'has another disk or folder mounted in it', 'have another disk or folder mounted in them'),
    other: (names: string[], more: number) => named(names, more, 'cannot be moved', 'cannot be moved'),
  },
  staysTitle: (count: number, all: number) =>
    count === all ? plural(all, { one: 'It cannot be moved', other: 'None of it can be moved' })
      : plural(count, { one: `# of ${all} items cannot be moved`, other: `# of ${all} items cannot be moved` }),
  staysText: 'Nothing has been moved yet.',
  staysMore: (count: number) => plural(count, { one: 'And # more.', other: 'And # more.' }),
  refusedUnnamed: {
    link: 'There is a link on the way.',
    outside: 'Its place lies outside your home folder.',
    protected: 'Its place is protected.',
    gone: 'It is not in Velto Trash any more.',
    trash: 'Its place belongs to Velto itself.',
  },
  moveRest: (count: number) => plural(count, { one: 'Move the other one', other: 'Move the other #' }),
};
