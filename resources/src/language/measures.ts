/** Rates and amounts of memory, in decimal units like every other size. */
import type { Formats } from './formats.ts';

const nonBreakingSpace = '\u00a0';
const bytesPerMebibyte = 1_048_576;

function scaled(value: number, units: readonly string[], { amount, number }: Formats): string {
  let scale = 0;
  let rest = value;
  while (rest >= 999.5 && scale < units.length - 1) {
    rest /= 1000;
    scale += 1;
  }
  const figure = rest < 9.95 || scale > 1 ? amount(rest) : number(rest);
  return figure + nonBreakingSpace + units[scale]!;
}

/** Bytes a second; a trickle reads 0. */
export function rate(bytesPerSecond: number, formats: Formats): string {
  return scaled(Math.max(0, bytesPerSecond) / 1000, ['KB/s', 'MB/s', 'GB/s'], formats);
}

/** What a file or a folder takes, in whole bytes. */
export function fileSize(bytes: number, formats: Formats): string {
  if (bytes > 0 && bytes < 1000) return `<${nonBreakingSpace}${formats.number(1)}${nonBreakingSpace}KB`;
  return scaled(Math.max(0, bytes) / 1000, ['KB', 'MB', 'GB', 'TB'], formats);
}

/** By how much it has changed; the sign stands before the figure in either direction. */
export function sizeChange(bytes: number, formats: Formats): string {
  if (bytes === 0) return fileSize(0, formats);
  return (bytes > 0 ? '+' : '\u2212') + fileSize(Math.abs(bytes), formats);
}

/** Mebibytes, as the program counts what a process holds. */
export function memory(mebibytes: number, formats: Formats): string {
  const megabytes = (Math.max(0, mebibytes) * bytesPerMebibyte) / 1e6;
  if (megabytes < 999.5) return formats.number(megabytes) + nonBreakingSpace + 'MB';
  return formats.amount(megabytes / 1000) + nonBreakingSpace + 'GB';
}
