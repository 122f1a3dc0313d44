import { readFileSync } from 'node:fs';
import { describe, expect, it } from 'vitest';
import { guideOf } from '../../build/guide.ts';
import { joinNotices } from '../../build/notices.ts';
import { about, appUses } from '../../src/protocol/aboutGuards.ts';
import { someAbout } from '../support/about.ts';

describe('licence notices', () => {
  const some = { name: 'some', version: '1.0.0', identifier: 'ISC', text: 'Copyright Somebody\n\nAll of it.\n' };

  it('hold every text whole, the program\'s own first', () => {
    const text = joinNotices('Own licence\n', ['Library (MIT)\n'], [some]);
    expect(text.startsWith('Velto\n\nOwn licence')).toBe(true);
    expect(text.indexOf('Library (MIT)')).toBeGreaterThan(0);
    expect(text).toContain('some 1.0.0 (ISC)\n\nCopyright Somebody\n\nAll of it.');
  });

  it('a package that does not say its terms cannot be passed on', () => {
    expect(() => joinNotices('', [], [some, { ...some, name: 'silent', text: ' ' }])).toThrow('no licence text for silent');
    expect(() => joinNotices('', [], [{ ...some, identifier: undefined }])).toThrow('no licence text for some');
  });
});

describe('the guide', () => {
  it('becomes what the page shows, and nothing in it becomes markup', () => {
    const { html, sections } = guideOf('# T\n\n## A & b\n\nText with `<code>` and **bold**, [link](#a--b).\nGoes on.\n\n- one\n- two');
    expect(sections).toEqual([{ id: 'a--b', title: 'A & b' }]);
    expect(html).toBe(
      '<h2 id="a--b" tabindex="-1">A &amp; b</h2>\n' +
      '<p>Text with <code>&lt;code&gt;</code> and <strong>bold</strong>, <a href="#a--b">link</a>. Goes on.</p>\n' +
      '<ul><li>one</li><li>two</li></ul>',
    );
  });

  it.each([
    ['a link that leads nowhere', '## A\n\n[x](#b)'],
    ['a link to the network', 'See [this](https://example.org).'],
    ['a quotation', '> words'],
    ['a heading with a paragraph stuck to it', '## A\nwords'],
    ['a fence that does not end', '```\na\n\nb\n```'],
  ])('%s is an error of the build', (_, source) => {
    expect(() => guideOf(source)).toThrow();
  });

  it('says the same in both languages: sections, pictures, commands and tables', () => {
    const read = (language: string) => readFileSync(new URL(`../../../docs/guide/${language}/guide.md`, import.meta.url), 'utf8');
    const shape = (language: string) => {
      const { html, pictures } = guideOf(read(language));
      return {
        blocks: [...html.matchAll(/^<(\w+)/gm)].map(([, tag]) => tag),
        commands: [...html.matchAll(/<pre>(.*?)<\/pre>/gs)].map(([, text]) => text),
        rows: html.match(/role="row"/g)?.length,
        pictures: pictures.map((name) => name.replace(`-${language}.png`, '')),
      };
    };
    expect(shape('es')).toEqual(shape('en'));
  });
});

describe('what the program says of itself', () => {
  it('is read whole, and what is malformed is left out', () => {
    expect(about(JSON.parse(JSON.stringify(someAbout())))).toEqual(someAbout());
    const places = [{ role: 'elsewhere', path: '/a' }, { role: 'data' }, null, { role: 'trash', path: '/t' }];
    expect(about({ version: 3, places })).toEqual({ version: '', license: '', places: [{ role: 'trash', path: '/t', there: false }] });
    expect(about('x')).toBeNull();
  });

  it('uses are recorded until somebody says otherwise', () => {
    expect(appUses({ recording: false, applications: -1 })).toEqual({ recording: false, applications: 0 });
    expect(appUses({})).toEqual({ recording: true, applications: 0 });
    expect(appUses(null)).toBeNull();
  });
});
