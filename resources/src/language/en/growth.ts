import { formats } from '../formats.ts';
import { fileSize } from '../measures.ts';

const { date, moment } = formats.en;
const size = (bytes: number) => fileSize(Math.abs(bytes), formats.en);
const day = new Intl.DateTimeFormat('en-US', { month: 'long', day: 'numeric' });
const time = new Intl.DateTimeFormat('en-US', { hour: 'numeric', minute: '2-digit' });

/** What has grown since an earlier analysis. */
export const growth = {
  /** Goes on in a sentence; both in seconds since 1970. */
  since: (stamp: number, now: number) => {
    const [then, today] = [new Date(stamp * 1000), new Date(now * 1000)];
    if (then.toDateString() === today.toDateString()) return `Since ${time.format(then)} today`;
    return `Since ${then.getFullYear() === today.getFullYear() ? day.format(then) : date(stamp)}`;
  },
  more: (since: string, bytes: number) => `${since}, ${size(bytes)} more`,
  less: (since: string, bytes: number) => `${since}, ${size(bytes)} less`,
  same: (since: string) => `${since}, about as much as before`,
  nothing: (since: string) => `${since}, nothing large has changed.`,
  whole: (beginning: string, parts: string) => (parts ? `${beginning}: ${parts}.` : `${beginning}.`),
  in: (bytes: number, place: string) => `${size(bytes)} in ${place}`,
  moreIn: (bytes: number, place: string) => `${size(bytes)} more in ${place}`,
  lessIn: (bytes: number, place: string) => `${size(bytes)} less in ${place}`,
  across: 'various places of the home folder',
  panel: 'What has changed',
  compareWith: 'Compare with',
  choices: { last: 'The analysis before', week: 'A week earlier', month: 'A month earlier' },
  moment: (stamp: number) => moment(stamp),
  compared: (since: number, until: number) => `From the analysis of ${moment(since)} to that of ${moment(until)}.`,
  asking: 'Comparing…',
  kinds: { grown: 'Grown', new: 'New', shrunk: 'Shrunk', gone: 'Gone' },
  renamed: 'Renamed or moved',
  from: 'before:',
  home: 'Home folder, in various places',
  change: (bytes: number) => `${bytes > 0 ? '+' : '\u2212'}${size(bytes)}`,
  size: (bytes: number) => size(bytes),
  none: 'No folder has changed by 10 MB or more.',
  note: 'Each folder tells only what the folders inside it do not. A folder counts as new or gone when it held less than 1 MB on the other day. Left out: changes under 10 MB, and what one of the two analyses did not measure.',
  forget: 'Forget…',
  forgetTitle: 'Forget the earlier analyses?',
  forgetText: 'Velto has kept how large your folders were at earlier analyses. Without it there is nothing to compare with until the next two analyses. No file of yours is touched.',
  forgetConfirm: 'Forget',
};
