// Makes a home with believable content, for pictures and for looking at the page with one's own
// eyes: `node tools/sample_home.mjs FOLDER [SHARE]`, then `HOME=FOLDER build/release/velto`. It takes
// about 40 GB of disk, or that share of it (0.25 for a quarter), most of it reserved without being
// written.
import { execFileSync } from 'node:child_process';
import { mkdirSync, utimesSync, writeFileSync } from 'node:fs';
import { dirname, join } from 'node:path';

const [home, share = '1'] = process.argv.slice(2);
if (!home || !(Number(share) > 0)) {
  console.error('usage: node tools/sample_home.mjs FOLDER [SHARE]');
  process.exit(2);
}

const GB = 1e9;
const day = 86_400;
const now = Date.now() / 1000;

function place(path, days) {
  const full = join(home, path);
  utimesSync(full, now - days * day, now - days * day);
}

function make(path) {
  const full = join(home, path);
  mkdirSync(dirname(full), { recursive: true });
  return full;
}

/** Reserved, never written. No two are of one size: all are full of zeros, hence equal. */
let made = 0;
function large(path, gb, days) {
  const bytes = Math.round(gb * GB * Number(share)) + 100_000 * made++;
  execFileSync('fallocate', ['-l', String(bytes), make(path)]);
  place(path, days);
}

function small(path, bytes, days, seed = path) {
  writeFileSync(make(path), Buffer.alloc(bytes, `${seed}\n`));
  place(path, days);
}

for (const [path, gb, days] of [
  ['Movies/Lanzarote 2023/Drone over Timanfaya.mov', 4.3, 410],
  ['Movies/Lanzarote 2023/Papagayo beach.mov', 2.1, 410],
  ['Movies/Screen Recordings/Talk rehearsal, second take.mov', 1.7, 96],
  ['Movies/Screen Recordings/Talk rehearsal, first take.mov', 1.4, 97],
  ['Movies/Final Cut/Wedding of Inés and Pau.fcpbundle/Original Media/A001_C004.mov', 3.2, 230],
  ['Movies/Final Cut/Wedding of Inés and Pau.fcpbundle/Render Files/High Quality.mov', 2.4, 230],
  ['Pictures/Scans/Family album 1974-1989.tiff', 0.9, 720],
  ['Pictures/Lightroom/Lightroom Catalog Previews.tif', 1.3, 12],
  ['Downloads/debian-12.7.0-amd64-DVD-1.iso', 3.9, 260],
  ['Downloads/Xcode_15.4.xip', 3.1, 190],
  ['Downloads/course-materials.zip', 0.8, 45],
  ['Downloads/Installer for the scanner.dmg', 0.4, 900],
  ['Documents/Backups/laptop-2021.tar', 2.7, 800],
  ['Documents/Thesis/dataset.csv', 0.7, 61],
  ['Desktop/Presentation with all the videos.key', 0.6, 3],
  ['Music/Sessions/Live at the Clamores, 24 bit.wav', 1.1, 150],
  ['Music/Sessions/Rehearsal 2022-11.wav', 0.6, 340],
  ['Library/Caches/com.example.browser/Cache.db', 1.2, 0],
  ['Library/Application Support/Studio/Sounds/Orchestra.bank', 2.2, 20],
  ['Library/Containers/com.example.mail/Data/Library/index.sqlite', 0.5, 1],
  ['Library/Application Support/MobileSync/Backup/phone/Manifest.db', 1.9, 75],
]) {
  large(path, gb, days);
}

for (const [name, places, bytes] of [
  ['IMG_4410.dng', ['Pictures/2023', 'Pictures/2023/Best of', 'Desktop/To print'], 48e6],
  ['IMG_4411.dng', ['Pictures/2023', 'Pictures/2023/Best of'], 46e6],
  ['contract-signed.pdf', ['Documents', 'Downloads', 'Desktop'], 9e6],
  ['podcast-041.mp3', ['Music/Podcasts', 'Downloads'], 61e6],
  ['Slides of the workshop.key', ['Documents/Talks', 'Desktop/Old desktop'], 33e6],
]) {
  places.forEach((folder, index) => small(`${folder}/${name}`, bytes, 30 + 100 * index, name));
}

for (let index = 0; index < 400; index++) {
  small(`Pictures/${2016 + (index % 8)}/IMG_${1000 + index}.heic`, 200_000 + 977 * index, index * 5);
  small(`Documents/Letters/${2015 + (index % 9)}/letter ${index}.odt`, 20_000 + 31 * index, index * 6);
  small(`Library/Caches/com.example.app${index % 12}/blob${index}`, 90_000 + 513 * index, index % 40);
  if (index < 120) small(`Music/Albums/Album ${index % 10}/Track ${index}.m4a`, 800_000 + index, 200);
}

// The folder by which the program sees that it may read everything.
mkdirSync(join(home, 'Library/Application Support/com.apple.TCC'), { recursive: true });
