/**
 * What the first frame says, letter for letter as `Intl` says it (the tests compare them). The first
 * use of `Intl` takes the web view some 10 ms, which the program's start would wait for.
 */
import type { LanguageCode } from '../protocol/protocol.ts';

const marks: Record<LanguageCode, { decimal: string; group: string; groupedFrom: number }> = {
  en: { decimal: '.', group: ',', groupedFrom: 1_000 },
  es: { decimal: ',', group: '.', groupedFrom: 10_000 },
};

/** A whole number; null for one that is left to `Intl`. */
export function plainWhole(value: number, code: LanguageCode): string | null {
  if (!(value >= 0 && value < 1e9)) return null;
  const digits = String(Math.round(value));
  const { group, groupedFrom } = marks[code];
  if (Number(digits) < groupedFrom) return digits;
  return digits.replace(/(?=(?:\d{3})+$)(?!^)/g, group);
}

/** At most one fraction digit; null for what is left to `Intl`. */
export function plainAmount(value: number, code: LanguageCode): string | null {
  // Below, a number is written with an exponent.
  if (!(value === 0 || (value >= 1e-6 && value < 1e9))) return null;
  // Rounded as it is written, not as it is stored: 1.45 is 1.5.
  const tenths = Math.round(Number(`${value}e1`));
  const whole = plainWhole(Math.floor(tenths / 10), code);
  const fraction = tenths % 10;
  return fraction && whole ? `${whole}${marks[code].decimal}${fraction}` : whole;
}

const units = {
  minute: { en: ['minute', 'minutes'], es: ['minuto', 'minutos'] },
  hour: { en: ['hour', 'hours'], es: ['hora', 'horas'] },
  day: { en: ['day', 'days'], es: ['día', 'días'] },
} as const;

/** How long ago, in whole units below 1e9. */
export function plainAgo(count: number, unit: keyof typeof units, code: LanguageCode): string {
  const [one, other] = units[unit][code];
  const time = `${plainWhole(count, code)} ${count === 1 ? one : other}`;
  return code === 'es' ? `hace ${time}` : `${time} ago`;
}
