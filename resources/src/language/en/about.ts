import { formats } from '../formats.ts';

const { plural } = formats.en;

export const about = {
  title: 'About Velto',
  version: 'Version',
  /** A copy of the license stands at the head of the notices. */
  license: (name: string) => `Free software under the ${name} license.`,
  guideLabel: 'The guide',
  guideHelp: 'What each view shows, how maintenance works, and how to get things back. It also opens with F1.',
  openGuide: 'Open the guide',
  noticesLabel: 'License notices',
  noticesHelp: 'Whose work is inside Velto, and under which terms.',
  openNotices: 'Show the notices',
  places: 'Where Velto keeps what',
  placesHelp: 'Only on this machine. Removing the application leaves these places; resetting Velto removes all but the settings.',
  placeNames: {
    data: 'Data: analyses, history, exclusions',
    trash: 'What waits in Velto Trash',
    settings: 'Settings',
    schedule: 'Schedule of the maintenance',
  },
  notThere: 'Not there at the moment.',
  reveal: 'Show',
  revealNamed: (what: string) => `Show in the file viewer: ${what}`,
  copy: 'Copy',
  copyNamed: (what: string) => `Copy the location: ${what}`,
  waiting: 'Asking the program…',
  contents: 'Contents',
  toStart: 'Back to the contents',
  reading: 'Opening…',
  notRead: 'This text could not be opened. It is part of the installation; installing Velto again brings it back.',
  privacy: 'Privacy',
  usesLabel: 'Remember when applications were used',
  usesHelp: 'While Velto runs it notes the last use of each application, which the list of applications shows. It stays on this machine.',
  usesNow: (count: number) => (count > 0 ? `Noted now: ${plural(count, { one: '# application', other: '# applications' })}.` : 'Nothing is noted now.'),
  usesOff: 'Nothing is noted. The list of applications estimates the last use from their files.',
  forgetTitle: 'Stop remembering, and forget?',
  forgetText: (count: number) =>
    `What was noted about ${plural(count, { one: '# application', other: '# applications' })} is deleted and cannot be brought back. The applications themselves are not touched.`,
  forget: 'Stop and delete',
};
