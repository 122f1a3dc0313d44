import { formats } from '../formats.ts';

const { plural, size, number } = formats.en;

/** Of what everything else is made, and what was not measured. */
export const measured = {
  made: 'What this is made of',
  parts: {
    measured: 'System data in your home',
    hidden: 'Hidden files, and the folders themselves',
    reserved: 'Reserved by the file system',
    outside: 'The rest of the disk',
  },
  why: {
    measured: 'Settings and data of programs, measured like the other categories.',
    hidden: 'Measured, but in none of the categories.',
    reserved: 'Free space kept for the administrator, so that the computer keeps working when the disk is full. Nothing lies in it.',
    outside: 'The system, programs for every user, other users, what lies in the trash, and whatever else of your home was not measured. Not looked at file by file.',
  },
  whyOnMac: {
    measured: 'Settings and data of applications, measured like the other categories.',
    hidden: 'Measured, but in none of the categories.',
    reserved: 'Free space that the system keeps for itself.',
    outside: 'macOS, applications for every user, other users, snapshots, what lies in the trash, and whatever else of your home was not measured. Not looked at file by file.',
  },
  strip: (gb: number) => `${size(gb)}, not measured file by file and not drawn to scale`,
  title: 'What was not measured',
  note: 'What these places take up on this disk counts as “The rest of the disk”.',
  withheld: (count: number) =>
    plural(count, {
      one: '# place stays unread without Full Disk Access',
      other: '# places stay unread without Full Disk Access',
    }),
  excluded: (count: number) =>
    plural(count, { one: '# place is excluded by you', other: '# places are excluded by you' }),
  excludedChange: 'Change',
  unreadable: (count: number) =>
    plural(count, {
      one: '# item could not be read',
      other: '# items could not be read',
    }),
  volume: (gb: number) => `another disk, with ${size(gb)} in use there`,
  volumeUnknown: 'another disk, or a folder on a network',
  compared: (left: number) =>
    `${plural(left, {
      one: '# file has not been compared yet',
      other: '# files have not been compared yet',
    })}, so there may be duplicates that are not listed.`,
  comparedAgain: 'Analyze again to be able to go on.',
  compareOn: 'Compare the rest',
  comparing: (left: number) =>
    left === 0 ? 'Comparing files…' : `Comparing files in the background, ${number(left)} to go. You can work on meanwhile.`,
  stopComparing: 'Stop',
};
