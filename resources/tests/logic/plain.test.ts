import { describe, expect, it } from 'vitest';
import { plainAgo, plainAmount, plainWhole } from '../../src/language/plain.ts';

const locales = { en: 'en-US', es: 'es-ES' } as const;
const codes = ['en', 'es'] as const;

describe.each(codes)('without Intl, in %s, it reads as with it:', (code) => {
  it('whole numbers', () => {
    const format = new Intl.NumberFormat(locales[code], { maximumFractionDigits: 0 });
    const values = [0, 0.4, 0.5, 1, 1.5, 2.5, 9.99, 999.5, 1000, 1234, 9999, 9999.5, 10_000, 48_211, 123_456, 1e6, 1_234_567, 999_999_999];
    for (const value of values) expect(plainWhole(value, code)).toBe(format.format(value));
  });

  it('amounts with one decimal, at every thousandth', () => {
    const format = new Intl.NumberFormat(locales[code], { maximumFractionDigits: 1 });
    for (let thousandths = 0; thousandths <= 1_000_000; thousandths += thousandths < 20_000 ? 1 : 7) {
      const value = thousandths / 1000;
      const said = plainAmount(value, code);
      if (said !== format.format(value)) expect([value, said]).toEqual([value, format.format(value)]);
    }
    for (const value of [994.7, 1234.56, 9999.96, 12_345.05]) expect(plainAmount(value, code)).toBe(format.format(value));
  });

  it('times that have passed', () => {
    const format = new Intl.RelativeTimeFormat(locales[code], { numeric: 'always' });
    for (const [unit, last] of [['minute', 59], ['hour', 23], ['day', 12_345]] as const) {
      for (let count = 1; count <= last; count += 1) expect(plainAgo(count, unit, code)).toBe(format.format(-count, unit));
    }
  });
});

it.each([Number.NaN, -1, Infinity, 1e12])('%s is left to Intl', (value) => {
  expect(plainWhole(value, 'en')).toBe(null);
  expect(plainAmount(value, 'en')).toBe(null);
});

it('an amount that is written with an exponent is left to Intl', () => {
  expect(plainAmount(1e-7, 'en')).toBe(null);
});
