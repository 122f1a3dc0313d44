/** What has grown, in one line. */
import type { Dictionary } from '../../../language/language.svelte.ts';
import { fromHome } from '../../../names/home.ts';
import { plainName } from '../../../names/marks.ts';
import { shortInMiddle } from '../../../names/middle.ts';
import type { Growth, GrowthChange } from '../../../protocol/protocol.ts';

type Words = Dictionary['growth'];

/** Less than this is no change of the whole; the program tells no smaller one of a folder. */
const worthTelling = 10_000_000;
const longestPlace = 48;
const mostPlaces = 2;

/** A path below the home without it: "Movies/Lanzarote". */
export function placeName(path: string, home: string, words: Words): string {
  if (path === home) return words.across;
  return shortInMiddle(plainName(fromHome(path, home).replace(/^~\//, '')), longestPlace);
}

/** The largest changes; of the small ones only what is a tenth of the largest. */
function mostTelling({ grown, shrunk }: Growth): GrowthChange[] {
  const all = [...grown, ...shrunk].sort((left, right) => Math.abs(right.bytes) - Math.abs(left.bytes));
  const least = Math.abs(all[0]?.bytes ?? 0) / 10;
  return all.filter(({ bytes }) => Math.abs(bytes) >= least).slice(0, mostPlaces);
}

/** Null when there is nothing to compare with. `now` in seconds since 1970. */
export function growthSentence(
  growth: Growth,
  words: Words,
  list: (entries: string[]) => string,
  now: number,
): string | null {
  if (growth.available.length === 0 || growth.since <= 0) return null;
  const since = words.since(growth.since, now);
  const direction = Math.abs(growth.bytes) < worthTelling ? 0 : Math.sign(growth.bytes);
  const telling = mostTelling(growth);
  if (direction === 0 && telling.length === 0) return words.nothing(since);
  const parts = telling.map(({ path, bytes }) => {
    const place = placeName(path, growth.home, words);
    if (Math.sign(bytes) === direction) return words.in(bytes, place);
    return bytes > 0 ? words.moreIn(bytes, place) : words.lessIn(bytes, place);
  });
  const beginning =
    direction === 0 ? words.same(since) : direction > 0 ? words.more(since, growth.bytes) : words.less(since, growth.bytes);
  return words.whole(beginning, parts.length ? list(parts) : '');
}
