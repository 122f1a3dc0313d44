import { formats } from '../formats.ts';

const { plural, size } = formats.en;

const items = { one: '# item', other: '# items' };
const entries = { one: '# entry', other: '# entries' };

export const history = {
  label: 'History by month',
  help: 'Arrow keys move, Enter shows the items of an entry, right arrow reaches its actions.',
  total: (count: number, gb: number) => `${plural(count, entries)} · ${size(gb)} removed`,
  intro: 'What was removed and when. A cleanup that is undone leaves this list; items put back one by one stay in it.',
  monthTotal: (count: number, gb: number) => `${plural(count, entries)} · ${size(gb)}`,
  unknownMonth: 'Date unknown',
  unknownTime: 'Unknown',
  chartTitle: 'Removed by month',
  chartUnit: 'in GB',
  chartLabel: (months: string) => `Removed by month: ${months}.`,
  chartMonth: (month: string, gb: number) => `${month} ${size(gb)}`,
  chartNone: 'nothing in the last twelve months',
  kinds: { wind: 'Cleanup', uninstall: 'Uninstall', share: 'Space shared', other: 'Cleanup' },
  allStayed: 'Every file stayed',
  items: (count: number) => plural(count, items),
  noItems: 'No items',
  moreItems: (count: number) => plural(count, { one: 'and # more', other: 'and # more' }),
  show: (when: string) => `Show the items of ${when}`,
  hide: (when: string) => `Hide the items of ${when}`,
  inTrash: (count: number, all: number) => (count === all ? 'In Velto Trash' : `${count} of ${all} in Velto Trash`),
  notInTrash: 'No longer in Velto Trash',
  deleted: 'Deleted for good',
  openTrash: 'Show in Velto Trash',
  more: (count: number) => plural(count, { one: 'Show # earlier entry', other: 'Show # earlier entries' }),
  clear: 'Clear history…',
  clearTitle: 'Clear the history?',
  clearText: (count: number, gb: number) => `The list forgets ${plural(count, entries)}, ${size(gb)}. That cannot be taken back.`,
  clearKeeps: 'Only the list is emptied. Your files and Velto Trash stay as they are.',
  clearConfirm: 'Clear history',
  emptyTitle: 'No cleanup yet',
  emptyText: 'What you remove is noted here, with its size and date.',
  toCleanup: 'Go to Cleanup',
};
