import { describe, expect, it } from 'vitest';
import { elapsedSeconds, progressSentence } from '../../src/frame/progress.ts';
import { en } from '../../src/language/en/index.ts';
import { es } from '../../src/language/es/index.ts';
import { formats } from '../../src/language/formats.ts';
import { retentionChoices } from '../../src/views/ajustes/retention.ts';
import { categoryName, placeNames } from '../../src/views/inicio/categoryWords.ts';
import { likeness } from '../../src/views/inicio/likeness.ts';
import { scoreWord } from '../../src/views/inicio/score.ts';
import { categories } from '../support/states.ts';

describe('the retention choices', () => {
  it('are in order and hold what is set already', () => {
    expect(retentionChoices(30)).toEqual([7, 15, 30, 60, 90]);
    expect(retentionChoices(45)).toEqual([7, 15, 30, 45, 60, 90]);
  });
});

describe('the score in a word', () => {
  it.each([[99, 'roomy'], [71, 'roomy'], [64, 'comfortable'], [50, 'comfortable'], [49, 'tight'], [39, 'full'], [5, 'full']])(
    '%i',
    (score, word) => expect(scoreWord(score as number)).toBe(word),
  );
});

describe('progress', () => {
  const progress = { scanStage: 'counting' as const, scanFiles: 1, scanGb: 2.25, scanStartedAt: 10_000 };

  it('says files, size and time, and no percentage', () => {
    const sentence = progressSentence(en.frame, formats.en, progress, 85_000);
    expect(sentence.replaceAll('\u00a0', ' ')).toBe('Analysis running. Counting… 1 file counted, 2.3 GB, 1 min 15 sec so far.');
    expect(sentence).not.toContain('%');
    const comparing = progressSentence(en.frame, formats.en, { ...progress, scanStage: 'comparing' }, 85_000);
    expect(comparing.replaceAll('\u00a0', ' ')).toBe(
      'Analysis running. Comparing files of equal size… 1 file looked into, 2.3 GB read, 1 min 15 sec so far.',
    );
  });

  it('a clock that was put back counts from zero', () => {
    expect(elapsedSeconds(progress, 5_000)).toBe(0);
  });
});

describe('category words', () => {
  const [photos, , , , , system] = categories([10, 1, 0, 1, 1, 20], []);

  it('what a size is like follows from the size', () => {
    expect(likeness({ id: 'fotos', gb: 17.1 }, en.overview)).toBe('as much as 4,300 photos of 4 MB');
    expect(likeness({ id: 'fotos', gb: 17.1 }, es.overview)).toBe('como 4300 fotos de 4 MB');
    expect(likeness({ id: 'descargas', gb: 12 }, es.overview)).toBe('como 2 películas de 5 GB');
    expect(likeness({ id: 'musica', gb: 40.4 }, en.overview)).toBe('as much as 8,100 songs of 5 MB');
    expect(likeness({ id: 'fotos', gb: 4000 }, es.overview)).toBe('como 1.000.000 de fotos de 4 MB');
  });

  it('is left out where it would be silly', () => {
    expect(likeness({ id: 'descargas', gb: 0.4 }, en.overview)).toBe('');
    expect(likeness({ id: 'fotos', gb: 0 }, en.overview)).toBe('');
    expect(likeness({ id: 'docs', gb: 4000 }, en.overview)).toBe('');
    expect(likeness({ id: 'sistema', gb: 300 }, en.overview)).toBe('');
    expect(likeness({ id: 'constructor', gb: 300 }, en.overview)).toBe('');
  });

  it('names macOS only on a Mac', () => {
    expect(categoryName(system!, en.overview, true)).toBe('macOS and system data');
    expect(categoryName(system!, en.overview, false)).toBe('System and everything else');
  });

  it('an unknown category keeps the name it came with', () => {
    expect(categoryName({ ...photos!, id: 'juegos', name: 'Juegos' }, en.overview, true)).toBe('Juegos');
    expect(categoryName({ ...photos!, id: 'constructor', name: 'x' }, en.overview, true)).toBe('x');
  });

  it('an unknown place keeps its identifier', () => {
    expect(placeNames(['desktop', 'somewhere'], en.overview)).toEqual(['Desktop', 'somewhere']);
    expect(placeNames(['iphone'], es.overview)).toEqual(['las copias del iPhone']);
  });
});
