import { formats } from '../formats.ts';

const { plural, size } = formats.en;

const items = { one: '# item', other: '# items' };

/** What the cleaning rules propose. */
export const cleanup = {
  label: 'What can go, by kind',
  help: 'Arrow keys move, Space selects an item or a whole kind, Shift extends, Escape clears the selection, Enter shows an item in its folder.',
  found: (count: number, gb: number) => `${plural(count, items)} · ${size(gb)}`,
  lookingAgain: 'Looking again…',
  intro: 'Selected for you: caches over a month old, which apps rebuild. The rest is your choice.',
  look: 'Look again',
  rules: {
    caches: {
      name: 'Application caches',
      why: 'Working files that applications keep so as not to make them twice.',
      after: 'Each application makes its own again when it needs them; its next start may take a little longer.',
    },
    xcode: {
      name: 'Xcode leftovers',
      why: 'Build results, and support for devices that has not changed for over a year.',
      after: 'Xcode builds or downloads them again when it needs them.',
    },
    oldDownloads: {
      name: 'Old downloads',
      why: 'Files in Downloads that have not been opened for over a year.',
      after: 'They are yours and nothing makes them again: have a look before you choose.',
    },
    installers: {
      name: 'Installers',
      why: 'Files in Downloads that applications are installed from.',
      after: 'What is installed stays. An installer can usually be downloaded again.',
    },
    other: {
      name: 'Other proposals',
      why: 'Found by Velto in another way.',
      after: 'Have a look before you choose.',
    },
  },
  certain: 'Certain: made again',
  possible: 'Possible: look first',
  mixed: 'Certain and possible: look at each',
  afterDoubt: 'What is certain is made again by its application when it needs it. Look at the others before you choose.',
  doubts: {
    unknown: 'Possible: nothing says that it is made again',
    keeps: 'Possible: may hold what nothing makes again',
    running: 'Possible: a program that uses it is running',
    unread: 'Possible: not all of it could be read',
  },
  linked: (gb: number) => `${size(gb)} of it stays: those files have another name elsewhere`,
  /** What the rule files say, and what of it other programs take away. */
  further: {
    where: 'Where:',
    how: 'How:',
    beside: (names: readonly string[], markers: readonly string[]) => `${names.join(', ')} beside ${markers.join(' or ')}`,
    idle: (days: number) => `in a project that nobody has touched for ${plural(days, { one: '# day', other: '# days' })}`,
    explainedTitle: 'What other programs take away',
    explainedText: 'Velto only measures and explains it. The commands are for a terminal: read what each takes away before you run it.',
    asking: 'Asking…',
    unknownSize: 'Size not known',
    copied: 'Command copied',
    copy: (command: string) => `Copy “${command}”`,
    parts: { Images: 'Images', Containers: 'Containers', 'Local Volumes': 'Volumes', 'Build Cache': 'Build cache' },
  },
  derivedData: 'Build results (DerivedData)',
  deviceSupport: (name: string) => `Device support ${name}`,
  changed: (age: string) => `Changed ${age}`,
  opened: (age: string) => `Opened ${age}`,
  groupSummary: (count: number, gb: number) => `${plural(count, items)} · ${size(gb)}`,
  groupLabel: (name: string, selected: number, count: number) => `${name}: ${selected} of ${plural(count, items)} selected`,
  remove: (count: number, gb: number) => `Move ${plural(count, items)}, ${size(gb)}, to Velto Trash`,
  nearlyFull: (free: number) =>
    `The disk is nearly full: ${size(free)} free. What goes to Velto Trash frees nothing until that is emptied. What is certain, you can also delete for good at once: select it yourself.`,
  deleteNow: 'Delete for good…',
  deleteTitle: (count: number) => plural(count, { one: 'Delete # item for good?', other: 'Delete # items for good?' }),
  deleteText: 'It does not stay in Velto Trash and cannot be put back. Its applications make it again when they need it.',
  deleteFrees: (gb: number) => `It frees ${size(gb)} now.`,
  deleteConfirm: 'Delete for good',
  selectedOf: (count: number, all: number) => `${count} of ${plural(all, items)} selected`,
  sizeOf: (gb: number, all: number) => `${size(gb)} of ${size(all)}`,
  lookingTitle: 'Looking for what can go',
  lookingText: 'Velto measures caches and goes through Downloads. Nothing is changed.',
  lookingLate: 'Large folders take a while to measure. Nothing is changed.',
  failedTitle: 'No answer has come',
  failedText: 'What can go could not be found out. Nothing was changed and nothing was lost.',
  failedAgain: 'Looking again has brought no answer. What you see is the last one.',
  emptyTitle: 'Nothing to clean up',
  emptyText: 'Velto found no cache, old download or installer large enough to matter.',
  doneTitle: 'All of it is in Velto Trash',
  doneText: 'The space comes back when the trash is emptied. Until then everything can be put back.',
  toTrash: 'Go to Velto Trash',
  withoutAccess: 'Downloads is left out: looking there needs Full Disk Access.',
  grant: 'Grant access…',
};
