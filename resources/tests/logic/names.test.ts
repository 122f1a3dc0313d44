import { describe, expect, it } from 'vitest';
import { fileUrl, readable } from '../../src/names/bytes.ts';
import { createSearch } from '../../src/names/folded.ts';
import { nameParts, plainName } from '../../src/names/marks.ts';
import { folderOf, lastComponent, splitForMiddle } from '../../src/names/middle.ts';
import { isProtectedPath } from '../../src/names/protectedPaths.ts';

describe('marks in names', () => {
  it('an override cannot turn an extension round unseen', () => {
    expect(nameParts('factura\u202Efdp.exe')).toEqual([
      { text: 'factura', isMark: false },
      { text: 'U+202E', isMark: true },
      { text: 'fdp.exe', isMark: false },
    ]);
    expect(plainName('factura\u202Efdp.exe')).toBe('factura⟨U+202E⟩fdp.exe');
  });

  it('line breaks, tabs and bells are shown', () => {
    expect(plainName('a\nb\tc\u0007')).toBe('a⟨U+000A⟩b⟨U+0009⟩c⟨U+0007⟩');
  });

  it('ordinary names are left alone, letters of every script and joined emoji too', () => {
    for (const name of ['Informe – final (2).pdf', 'صور العائلة.mov', '👩‍👩‍👧‍👦.png', 'Año nuevo.key']) {
      expect(plainName(name)).toBe(name);
      expect(nameParts(name)).toEqual([{ text: name, isMark: false }]);
    }
    expect(nameParts('')).toEqual([]);
  });

  it('nothing of a name is lost', () => {
    const name = '\u200B\u2066x\u2069\uFEFFy';
    const back = nameParts(name)
      .map(({ text, isMark }) => (isMark ? String.fromCodePoint(Number.parseInt(text.slice(2), 16)) : text))
      .join('');
    expect(back).toBe(name);
  });
});

describe('shortening in the middle', () => {
  it('keeps the end', () => {
    expect(splitForMiddle('/Users/marina/Documents/Tesis/anexos.pdf', 10)).toEqual({
      head: '/Users/marina/Documents/Tesis/',
      tail: 'anexos.pdf',
    });
  });

  it('leaves short texts whole', () => {
    expect(splitForMiddle('anexos.pdf', 10)).toEqual({ head: 'anexos.pdf', tail: '' });
    expect(splitForMiddle('trabajo-anexos.pdf', 10)).toEqual({ head: 'trabajo-', tail: 'anexos.pdf' });
    expect(splitForMiddle('org-anexos.pdf', 10)).toEqual({ head: 'org-anexos.pdf', tail: '' });
    expect(splitForMiddle('', 10)).toEqual({ head: '', tail: '' });
    expect(splitForMiddle('a'.repeat(99), 0)).toEqual({ head: 'a'.repeat(99), tail: '' });
  });

  it('never cuts a character in two', () => {
    const family = '👩‍👩‍👧‍👦';
    expect(splitForMiddle(family.repeat(20), 3)).toEqual({ head: family.repeat(17), tail: family.repeat(3) });
  });

  it('does not tear text apart that runs from right to left', () => {
    const name = 'صور العائلة 2024 النهائية الطويلة جدا.mov';
    expect(splitForMiddle(name, 5)).toEqual({ head: name, tail: '' });
  });
});

describe('parts of a path', () => {
  it.each([
    ['/a/b/c.txt', '/a/b', 'c.txt'],
    ['/c.txt', '/', 'c.txt'],
    ['c.txt', '/', 'c.txt'],
  ])('%s', (path, folder, name) => {
    expect(folderOf(path)).toBe(folder);
    expect(lastComponent(path)).toBe(name);
  });
});

describe('protected places', () => {
  it.each([
    '/Users/a/Pictures/Photos Library.photoslibrary/x.mov',
    '/Users/a/Pictures/Otra.photoslibrary/x.mov',
    '/Users/a/Library/Application Support/MobileSync/Backup/x',
    '/Users/a/Library/Messages/chat.db',
    '/Users/a/Documents/MailMerge.docx',
    '/Users/a/Library/Application Support/CallHistoryDB/x',
  ])('%s', (path) => expect(isProtectedPath(path)).toBe(true));

  it.each(['/Users/a/Movies/x.mov', '/Users/a/Documents/mail.txt', '/Users/a/Messages/x'])('not %s', (path) =>
    expect(isProtectedPath(path)).toBe(false),
  );
});

describe('names that are no text', () => {
  const name = '/home/ana/caf\0e9 ñ\0ff.mov';

  it('show a replacement character for each byte, and are no marks', () => {
    expect(readable(name)).toBe('/home/ana/caf\ufffd ñ\ufffd.mov');
    expect(plainName(name)).toBe('/home/ana/caf\ufffd ñ\ufffd.mov');
    expect(readable('/a/b\\u0000ff')).toBe('/a/b\\u0000ff');
  });

  it('are found by what is seen of them', () => {
    expect(createSearch('caf ñ')(name)).toBe(true);
    expect(createSearch('e9')(name)).toBe(false);
  });

  it('have a file URL that says every byte', () => {
    expect(fileUrl(name)).toBe('file:///home/ana/caf%E9%20%C3%B1%FF.mov');
  });
});
