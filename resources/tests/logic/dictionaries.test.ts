import { describe, expect, it } from 'vitest';
import { en as firstEn } from '../../src/language/en/index.ts';
import { laterEn } from '../../src/language/en/later.ts';
import { es as firstEs } from '../../src/language/es/index.ts';
import { laterEs } from '../../src/language/es/later.ts';

const en = { ...firstEn, ...laterEn };
const es = { ...firstEs, ...laterEs };

function entries(value: unknown, path: string[] = []): [path: string, value: unknown][] {
  if (typeof value !== 'object' || value === null) return [[path.join('.'), value]];
  return Object.entries(value).flatMap(([key, inner]) => entries(inner, [...path, key]));
}

/** Words that are the same in both languages. */
const shared = [
  'overview.places.safari', 'overview.places.icloud', 'overview.places.mail',
  'settings.general', 'apps.storeElsewhere', 'system.thermalStates.nominal',
  'system.looks.minutes.name', 'system.looks.hour.name',
];

describe('dictionaries', () => {
  it('hold no empty text', () => {
    for (const [path, value] of [...entries(en), ...entries(es)]) {
      if (typeof value === 'string') expect(value.trim(), path).not.toBe('');
    }
  });

  it('are translated: no text is left in the other language', () => {
    const english = new Map(entries(en));
    const untranslated = entries(es)
      .filter(([path, value]) => typeof value === 'string' && english.get(path) === value && !shared.includes(path))
      .map(([path]) => path);
    expect(untranslated).toEqual([]);
  });

  it('agree on counts', () => {
    expect(en.lists.selected(1)).toBe('1 selected');
    expect(es.lists.selected(1)).toBe('1 seleccionado');
    expect(es.lists.selected(3)).toBe('3 seleccionados');
    expect(es.lists.copiesOf(1_000_000, 1_000_000)).toBe('1.000.000 de copias');
    expect(en.settings.days(1)).toBe('1 day');
    expect(es.settings.days(30)).toBe('30 días');
  });
});
