import { describe, expect, it } from 'vitest';
import { growth as en } from '../../src/language/en/growth.ts';
import { growth as es } from '../../src/language/es/growth.ts';
import { formats } from '../../src/language/formats.ts';
import { growth as read } from '../../src/protocol/growthGuards.ts';
import type { Growth } from '../../src/protocol/protocol.ts';
import { growthSentence } from '../../src/views/explorar/growth/sentence.ts';

const at = (text: string) => new Date(text).getTime() / 1000;
const now = at('2026-04-20T18:00:00');
const home = '/Users/ana';
const nothing: Growth = {
  asked: 'last', since: at('2026-03-12T09:30:00'), until: at('2026-04-20T09:00:00'), available: [1], home, bytes: 0,
  grown: [], shrunk: [], renamed: [],
};

function sentences(changes: Partial<Growth>): (string | null)[] {
  return ([['en', en], ['es', es]] as const).map(([code, words]) =>
    growthSentence({ ...nothing, ...changes }, words, formats[code].list, now)?.replaceAll('\u00a0', ' ') ?? null,
  );
}
const grown = (place: string, bytes: number) => ({ path: `${home}/${place}`, bytes, kind: 'grown' as const });
const shrunk = (place: string, bytes: number) => ({ path: `${home}/${place}`, bytes: -bytes, kind: 'shrunk' as const });

describe('the line about growth', () => {
  it('says how much more there is, and where', () => {
    expect(sentences({ bytes: 18.3e9, grown: [grown('Movies/Lanzarote', 14.1e9), grown('Library/Caches', 3e9)] })).toEqual([
      'Since March 12, 18.3 GB more: 14.1 GB in Movies/Lanzarote and 3 GB in Library/Caches.',
      'Desde el 12 de marzo, 18,3 GB más: 14,1 GB en Movies/Lanzarote y 3 GB en Library/Caches.',
    ]);
  });

  it('says how much less there is, and what went the other way', () => {
    expect(sentences({ bytes: -5e9, grown: [grown('Music', 2e9)], shrunk: [shrunk('Downloads', 7e9)] })).toEqual([
      'Since March 12, 5 GB less: 7 GB in Downloads and 2 GB more in Music.',
      'Desde el 12 de marzo, 5 GB menos: 7 GB en Downloads y 2 GB más en Music.',
    ]);
  });

  it('is quiet when nothing has changed, or as much each way', () => {
    expect(sentences({ bytes: 2e6 })).toEqual([
      'Since March 12, nothing large has changed.', 'Desde el 12 de marzo no ha cambiado nada grande.',
    ]);
    expect(sentences({ bytes: 0, grown: [grown('Movies', 3e9)], shrunk: [shrunk('Music', 3e9)] })).toEqual([
      'Since March 12, about as much as before: 3 GB more in Movies and 3 GB less in Music.',
      'Desde el 12 de marzo, más o menos lo mismo que antes: 3 GB más en Movies y 3 GB menos en Music.',
    ]);
    expect(sentences({ bytes: 25e6 })).toEqual(['Since March 12, 25 MB more.', 'Desde el 12 de marzo, 25 MB más.']);
  });

  it('says nothing when there is nothing to compare with', () => {
    expect(sentences({ available: [], bytes: 5e9 })).toEqual([null, null]);
    expect(sentences({ since: 0, bytes: 5e9 })).toEqual([null, null]);
  });

  it('names the moment that it really was', () => {
    expect(sentences({ since: at('2026-04-20T01:15:00') })[1]).toBe('Desde la 1:15 de hoy no ha cambiado nada grande.');
    expect(sentences({ since: at('2026-04-20T10:15:00') }).map((text) => text?.replace('\u202f', ' '))).toEqual([
      'Since 10:15 AM today, nothing large has changed.', 'Desde las 10:15 de hoy no ha cambiado nada grande.',
    ]);
    expect(sentences({ since: at('2025-12-03T10:15:00') })).toEqual([
      'Since December 3, 2025, nothing large has changed.', 'Desde el 3 de diciembre de 2025 no ha cambiado nada grande.',
    ]);
  });

  it('keeps to the two that matter most and to places that fit a line', () => {
    const long = `Documents/${'x'.repeat(80)}/end`;
    const [text] = sentences({
      bytes: 20e9,
      grown: [grown(long, 9e9), { path: home, bytes: 8e9, kind: 'grown' }, grown('a', 7e9), grown('b', 6e9), grown('c\u202ed', 1e8)],
    });
    expect(text).toMatch(/^Since March 12, 20 GB more: 9 GB in Documents\/x+…x+\/end and 8 GB in various places of the home folder\.$/);
    expect(text!.length).toBeLessThan(160);
    expect(sentences({ bytes: 9e9, grown: [grown('c\u202ed', 9e9)] })[0]).toContain('c⟨U+202E⟩d');
  });
});

describe('what is told about growth', () => {
  it('is read with every wrong part left out', () => {
    expect(read(null)).toBeNull();
    expect(read({})).toEqual({
      asked: 'last', since: 0, until: 0, available: [], home: '', bytes: 0, grown: [], shrunk: [], renamed: [],
    });
    expect(
      read({
        asked: 'week', since: 5, until: 9, available: [5, 5, 'x', -1], home, bytes: -3,
        grown: [grown('a', 5), grown('a', 6), shrunk('b', 5), { path: 'relative', bytes: 1, kind: 'new' }, { path: '/x', bytes: 0, kind: 'new' }, 7],
        shrunk: [shrunk('c', 5), { path: '/d', bytes: -1, kind: 'lost' }],
        renamed: [{ from: '/a', to: '/b', bytes: 5 }, { from: '/a', bytes: 5 }],
      }),
    ).toEqual({
      asked: 'week', since: 5, until: 9, available: [5], home, bytes: -3,
      grown: [grown('a', 5)], shrunk: [shrunk('c', 5)], renamed: [{ from: '/a', to: '/b', bytes: 5 }],
    });
  });
});
