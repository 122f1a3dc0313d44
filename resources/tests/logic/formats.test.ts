import { describe, expect, it } from 'vitest';
import { formats } from '../../src/language/formats.ts';

const { es, en } = formats;
const plain = (text: string | null) => text?.replaceAll('\u00a0', ' ').replaceAll('\u202f', ' ') ?? null;

describe('sizes', () => {
  it('have at most one fraction digit and the decimal mark of the language', () => {
    expect(plain(en.size(12.34))).toBe('12.3 GB');
    expect(plain(es.size(12.34))).toBe('12,3 GB');
    expect(plain(en.size(60))).toBe('60 GB');
  });

  it('are in the unit that people read', () => {
    expect(plain(en.size(0.009))).toBe('9 MB');
    expect(plain(en.size(0.0094))).toBe('9.4 MB');
    expect(plain(es.size(0.0094))).toBe('9,4 MB');
    expect(plain(en.size(0.0237))).toBe('24 MB');
    expect(plain(en.size(0.512))).toBe('512 MB');
    expect(plain(en.size(0.000_012_3))).toBe('12 KB');
    expect(plain(en.size(0.000_000_004))).toBe('1 KB');
    expect(plain(en.size(0))).toBe('0 GB');
  });

  it('cross from one unit to the next without reading a thousand', () => {
    expect(plain(en.size(0.000_999_4))).toBe('999 KB');
    expect(plain(en.size(0.000_999_6))).toBe('1 MB');
    expect(plain(en.size(0.009_949))).toBe('9.9 MB');
    expect(plain(en.size(0.009_96))).toBe('10 MB');
    expect(plain(en.size(0.999_4))).toBe('999 MB');
    expect(plain(en.size(0.999_6))).toBe('1 GB');
  });

  it('claim no more than the program has measured: whole tenths are rounded ones', () => {
    expect(plain(en.size(0.1))).toBe('0.1 GB');
    expect(plain(es.size(0.7))).toBe('0,7 GB');
    expect(plain(en.size([0.1, 0.2, 0.4].reduce((sum, gb) => sum + gb, 0)))).toBe('0.7 GB');
  });

  it('never call something that is there nothing', () => {
    expect(plain(en.recordedSize(0))).toBe('< 0.1 GB');
    expect(plain(es.recordedSize(0))).toBe('< 0,1 GB');
    expect(plain(en.recordedSize(0.02))).toBe('20 MB');
  });

  it('turn into terabytes before they would read as a thousand gigabytes', () => {
    expect(plain(en.size(999.94))).toBe('999.9 GB');
    expect(plain(en.size(999.96))).toBe('1 TB');
    expect(plain(es.size(1234))).toBe('1,2 TB');
  });

  it('tell small things apart where thousandths are known', () => {
    expect(plain(en.fineSize(0))).toBe('< 1 MB');
    expect(plain(en.fineSize(0.0004))).toBe('< 1 MB');
    expect(plain(en.fineSize(0.001))).toBe('1 MB');
    expect(plain(es.fineSize(0.84))).toBe('840 MB');
    expect(plain(en.fineSize(0.9994))).toBe('999 MB');
    expect(plain(en.fineSize(0.9996))).toBe('1 GB');
    expect(plain(es.fineSize(12.34))).toBe('12,3 GB');
  });

  it('keep number and unit on one line', () => {
    expect(en.size(5)).not.toContain(' ');
  });
});

describe('numbers', () => {
  it('group thousands by language, four digits not at all in Spanish', () => {
    expect(en.number(1912)).toBe('1,912');
    expect(es.number(1912)).toBe('1912');
    expect(es.number(48_211)).toBe('48.211');
  });
});

describe('plural forms', () => {
  const files = { one: '# archivo', many: '# de archivos', other: '# archivos' };

  it('Spanish has one, many and other', () => {
    expect(es.plural(1, files)).toBe('1 archivo');
    expect(es.plural(2, files)).toBe('2 archivos');
    expect(es.plural(0, files)).toBe('0 archivos');
    expect(es.plural(1_000_000, files)).toBe('1.000.000 de archivos');
  });

  it('a missing form falls back to other', () => {
    expect(es.plural(1_000_000, { one: '# copia', other: '# copias' })).toBe('1.000.000 copias');
    expect(en.plural(1, { one: '# file', other: '# files' })).toBe('1 file');
    expect(en.plural(1_000_000, { one: '# file', other: '# files' })).toBe('1,000,000 files');
  });
});

describe('how long ago something was used', () => {
  it.each([
    [0, 'today', 'hoy'],
    [1, 'yesterday', 'ayer'],
    [2, '2 days ago', 'hace 2 días'],
    [29, '29 days ago', 'hace 29 días'],
    [30, '1 month ago', 'hace 1 mes'],
    [45, '1 month ago', 'hace 1 mes'],
    [364, '12 months ago', 'hace 12 meses'],
    [365, '1 year ago', 'hace 1 año'],
    [800, '2 years ago', 'hace 2 años'],
  ])('%i days', (days, english, spanish) => {
    expect(en.age(days)).toBe(english);
    expect(es.age(days)).toBe(spanish);
  });

  it('a missing date is not two thousand years', () => {
    expect(en.age(739_000)).toBeNull();
    expect(en.age(1e300)).toBeNull();
    expect(en.age(40 * 365)).toBe('40 years ago');
  });
});

describe('when the analysis was made', () => {
  const now = 1_800_000_000;

  it.each([
    [59, null],
    [60, '1 minute ago'],
    [3599, '59 minutes ago'],
    [3600, '1 hour ago'],
    [86_399, '23 hours ago'],
    [86_400, '1 day ago'],
    [40 * 86_400, '40 days ago'],
  ])('%i seconds ago', (passed, expected) => {
    expect(en.since(now - passed, now)).toBe(expected);
  });

  it('a clock that was put back does not make a future analysis', () => {
    expect(en.since(now + 5000, now)).toBeNull();
  });
});

describe('durations', () => {
  it.each([
    [0, '0 sec', '0 s'],
    [59.9, '59 sec', '59 s'],
    [75, '1 min 15 sec', '1 min 15 s'],
    [3700, '1 hr 1 min', '1 h 1 min'],
  ])('%d seconds', (seconds, english, spanish) => {
    expect(plain(en.duration(seconds))).toBe(english);
    expect(plain(es.duration(seconds))).toBe(spanish);
  });
});
