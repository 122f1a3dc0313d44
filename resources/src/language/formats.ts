/**
 * Numbers, sizes, dates and plural forms in one language, through `Intl` but for what the first frame
 * says: see `plain.ts`.
 */
import type { LanguageCode } from '../protocol/protocol.ts';
import { plainAgo, plainAmount, plainWhole } from './plain.ts';

const locales: Record<LanguageCode, string> = { es: 'es-ES', en: 'en-US' };

/** English has one and other; Spanish also has many (whole millions). */
export interface PluralForms {
  one: string;
  many?: string;
  other: string;
}

/** A last use further back than this (in days) is a missing date, not a date. */
export const oldestKnownUse = 50 * 365;

const nonBreakingSpace = '\u00a0';

/** Making one takes about a millisecond, and a page shows few of them: each is made when first used. */
function once<Made>(make: () => Made): () => Made {
  let made: Made | undefined;
  return () => (made ??= make());
}

/** Of a number of gigabytes; sums of such numbers miss by a little. */
function isWholeTenth(gb: number): boolean {
  return Math.abs(gb * 10 - Math.round(gb * 10)) < 1e-7 && gb > 0.05;
}

export function createFormats(code: LanguageCode) {
  const locale = locales[code];
  const wholeFormat = once(() => new Intl.NumberFormat(locale, { maximumFractionDigits: 0 }));
  const amountFormat = once(() => new Intl.NumberFormat(locale, { maximumFractionDigits: 1 }));
  const share = once(() => new Intl.NumberFormat(locale, { style: 'percent', maximumFractionDigits: 0 }));
  const rules = once(() => new Intl.PluralRules(locale));
  const relative = once(() => new Intl.RelativeTimeFormat(locale, { numeric: 'always' }));
  const nearby = once(() => new Intl.RelativeTimeFormat(locale, { numeric: 'auto' }));
  const moment = once(() => new Intl.DateTimeFormat(locale, { dateStyle: 'long', timeStyle: 'short' }));
  const month = once(() => new Intl.DateTimeFormat(locale, { month: 'long', year: 'numeric' }));
  const monthShort = once(() => new Intl.DateTimeFormat(locale, { month: 'short' }));
  const dayAndTime = once(
    () => new Intl.DateTimeFormat(locale, { day: 'numeric', month: 'short', hour: 'numeric', minute: '2-digit' }),
  );
  const date = once(() => new Intl.DateTimeFormat(locale, { dateStyle: 'long' }));
  const enumeration = once(() => new Intl.ListFormat(locale, { type: 'conjunction' }));
  const collator = once(() => new Intl.Collator(locale, { numeric: true, sensitivity: 'base' }));
  const unit = (name: string) =>
    once(() => new Intl.NumberFormat(locale, { style: 'unit', unit: name, unitDisplay: 'short' }));
  const seconds = unit('second');
  const minutes = unit('minute');
  const hours = unit('hour');

  const number = (value: number) => plainWhole(value, code) ?? wholeFormat().format(value);
  const amount = (value: number) => plainAmount(value, code) ?? amountFormat().format(value);

  const pastTexts = new Map<string, string>();

  /** Lists say the same few ages again and again, and `Intl` takes its time for each. */
  function past(count: number, unit: 'day' | 'month' | 'year'): string {
    const key = unit + count;
    const text = pastTexts.get(key) ?? relative().format(-count, unit);
    pastTexts.set(key, text);
    return text;
  }

  function withUnit(value: string, name: string): string {
    return value + nonBreakingSpace + name;
  }

  /**
   * A size given in decimal gigabytes, in the unit that people read. Whole tenths are what the program
   * has rounded, and stay in gigabytes: 0.1 does not mean 100 MB.
   */
  function size(gb: number): string {
    if (gb <= 0) return withUnit('0', 'GB');
    if (gb >= 999.95) return withUnit(amount(gb / 1000), 'TB');
    if (gb >= 0.9995 || isWholeTenth(gb)) return withUnit(amount(gb), 'GB');
    const megabytes = gb * 1000;
    if (megabytes >= 9.95) return withUnit(number(megabytes), 'MB');
    if (megabytes >= 0.9995) return withUnit(amount(megabytes), 'MB');
    return withUnit(number(Math.max(1, megabytes * 1000)), 'KB');
  }

  return {
    number,
    /** With at most one fraction digit, where the unit stands elsewhere. */
    amount,
    share: (value: number) => share().format(value),
    list: (entries: string[]) => enumeration().format(entries),
    moment: (stamp: number) => moment().format(stamp * 1000),
    month: (stamp: number) => month().format(stamp * 1000),
    monthShort: (stamp: number) => monthShort().format(stamp * 1000),
    dayAndTime: (stamp: number) => dayAndTime().format(stamp * 1000),
    date: (stamp: number) => date().format(stamp * 1000),
    compare: (left: string, right: string) => collator().compare(left, right),

    size,

    /** A size of a record that may have been rounded to nothing. */
    recordedSize: (gb: number): string =>
      gb > 0 ? size(gb) : withUnit('<' + nonBreakingSpace + amount(0.1), 'GB'),

    /** The same where thousandths are known, as they are of applications: what is small in megabytes. */
    fineSize(gb: number): string {
      if (gb >= 0.9995) return size(gb);
      if (gb < 0.0005) return withUnit('<' + nonBreakingSpace + number(1), 'MB');
      return withUnit(number(gb * 1000), 'MB');
    },

    /** "#" in the chosen form stands for the count. */
    plural(count: number, forms: PluralForms): string {
      const form = Number.isInteger(count) && count < 1e6 && count >= 0
        ? (count === 1 ? 'one' : 'other') // so it is in both languages
        : (rules().select(count) as keyof PluralForms);
      return (forms[form] ?? forms.other).replace('#', number(count));
    },

    /** How long ago, for whole days since the last use; null when no date is known. */
    age(days: number): string | null {
      if (days > oldestKnownUse) return null;
      if (days < 2) return nearby().format(-Math.trunc(days), 'day');
      if (days < 30) return past(Math.trunc(days), 'day');
      if (days < 365) return past(Math.trunc(days / 30), 'month');
      return past(Math.trunc(days / 365), 'year');
    },

    /** How long ago, for a time in seconds since 1970; null when it was within this minute. */
    since(stamp: number, now: number): string | null {
      const passed = Math.max(0, now - stamp);
      if (passed < 60) return null;
      if (passed < 3600) return plainAgo(Math.trunc(passed / 60), 'minute', code);
      if (passed < 86400) return plainAgo(Math.trunc(passed / 3600), 'hour', code);
      return plainAgo(Math.trunc(passed / 86400), 'day', code);
    },

    duration(totalSeconds: number): string {
      const total = Math.max(0, Math.trunc(totalSeconds));
      if (total < 60) return seconds().format(total);
      if (total < 3600) return `${minutes().format(Math.trunc(total / 60))} ${seconds().format(total % 60)}`;
      return `${hours().format(Math.trunc(total / 3600))} ${minutes().format(Math.trunc((total % 3600) / 60))}`;
    },
  };
}

export type Formats = ReturnType<typeof createFormats>;

export const formats: Record<LanguageCode, Formats> = { es: createFormats('es'), en: createFormats('en') };
