/** Places that are never removed from here; the program refuses a whole request that names one. */
const markers = [
  'Photos Library',
  '.photoslibrary',
  'MobileSync',
  'Mail',
  'Library/Messages',
  'CallHistory',
  'Library/Mail',
];

export function isProtectedPath(path: string): boolean {
  return markers.some((marker) => path.includes(marker));
}
