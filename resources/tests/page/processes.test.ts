import type { Browser } from 'playwright-core';
import { afterAll, beforeAll, describe, expect, it } from 'vitest';
import { launch, type OpenPage } from '../support/page.ts';
import { group, someActivity, someDetails, someGroups, someSample } from '../support/system.ts';
import { onPage, plain, rowNames } from '../support/systemPage.ts';

let browser: Browser;

beforeAll(async () => {
  browser = await launch();
});
afterAll(() => browser.close());

const withPage = (test: (opened: OpenPage) => Promise<void>) => onPage(browser, test);

describe('an application that is asked to quit', () => {
  const begin = async (opened: OpenPage) => {
    await opened.go('sistema');
    await opened.tell('onSystemActivity', someActivity());
    await opened.tell('onSystem', someSample());
  };
  const button = ({ page }: OpenPage, name: string | RegExp) => page.getByRole('button', { name, exact: true });

  it('is one of the user\'s own, and asked once', async () => {
    await withPage(async (opened) => {
      await begin(opened);
      expect(await opened.page.getByRole('grid').getByRole('button', { name: /^Quit / }).count()).toBe(2);
      expect(await opened.during(() => button(opened, 'Quit Borealis').click())).toEqual([
        { type: 'quitApplication', payload: { pid: 501 } },
      ]);
      expect(await opened.during(() => button(opened, 'Quitting…').dispatchEvent('click'))).toEqual([]);
      await opened.tell('onApplicationStopped', { pid: 501, ended: true });
      expect(await button(opened, /Quitting…|Quit Borealis/).count()).toBe(0);
    });
  });

  it('can be ended when it stays open, after a question', async () => {
    await withPage(async (opened) => {
      await begin(opened);
      await button(opened, 'Quit Borealis').click();
      await opened.tell('onApplicationStopped', { pid: 501, ended: false });
      expect(await opened.during(() => button(opened, 'End Borealis…').click())).toEqual([]);
      expect(await opened.page.getByRole('dialog').textContent()).toContain('End “Borealis”?');
      expect(await opened.during(() => button(opened, 'Cancel').click())).toEqual([]);
      await button(opened, 'End Borealis…').click();
      expect(await opened.during(() => button(opened, 'End').click())).toEqual([
        { type: 'endApplication', payload: { pid: 501 } },
      ]);
      await opened.tell('onApplicationStopped', { pid: 501, ended: false });
      expect(await button(opened, 'End Borealis…').count()).toBe(1);
    });
  });

  it('is asked by keyboard from its row', async () => {
    await withPage(async (opened) => {
      const { page } = opened;
      await begin(opened);
      await page.locator('[data-key]').first().focus();
      await page.keyboard.press('Tab');
      expect(await page.evaluate(() => document.activeElement?.getAttribute('aria-label'))).toBe('Quit Borealis');
      expect(await opened.during(() => page.keyboard.press('Enter'))).toEqual([
        { type: 'quitApplication', payload: { pid: 501 } },
      ]);
    });
  });

  it('has forgotten it when another one has its number', async () => {
    await withPage(async (opened) => {
      await begin(opened);
      await button(opened, 'Quit Borealis').click();
      await opened.tell('onApplicationStopped', { pid: 501, ended: true });
      await opened.tell('onSystem', someSample({ procs: someGroups().slice(1) }));
      await begin(opened);
      await opened.tell('onSystemActivity', someActivity());
      await opened.tell('onSystem', someSample());
      expect(await button(opened, 'Quit Borealis').count()).toBe(1);
    });
  });
});

describe('the heaviest applications', () => {
  it('no longer stand still once the view was left with the pointer on them', async () => {
    await withPage(async (opened) => {
      await opened.go('sistema');
      await opened.tell('onSystem', someSample());
      await opened.page.locator('[data-key]').nth(1).hover();
      const stillness = opened.page.getByText('The order stands still while you are in the list.');
      expect(await stillness.isVisible()).toBe(true);
      await opened.go('inicio');
      await opened.page.mouse.move(0, 0);
      await opened.go('sistema');
      await opened.tell('onSystem', someSample());
      expect(await stillness.isVisible()).toBe(false);
    });
  });

  const groups = (first: number, second: number) => [group('Alfa', first, 300), group('Beta', second, 200)];
  const tell = (opened: OpenPage, first: number, second: number) =>
    opened.tell('onSystem', someSample({ procs: groups(first, second) }));

  it('keep their places for a sample, change them with the next, and not while the pointer is there', async () => {
    await withPage(async (opened) => {
      await opened.go('sistema');
      await tell(opened, 90, 10);
      await tell(opened, 10, 90);
      expect(await rowNames(opened)).toEqual(['Alfa', 'Beta']);
      await tell(opened, 10, 90);
      expect(await rowNames(opened)).toEqual(['Beta', 'Alfa']);
      await opened.page.locator('[data-key]').first().hover();
      for (let sample = 0; sample < 4; sample += 1) await tell(opened, 95, 5);
      expect(await rowNames(opened)).toEqual(['Beta', 'Alfa']);
      expect(await opened.page.getByText('The order stands still').first().isVisible()).toBe(true);
      await opened.page.mouse.move(2, 2);
      for (let sample = 0; sample < 2; sample += 1) await tell(opened, 95, 5);
      expect(await rowNames(opened)).toEqual(['Alfa', 'Beta']);
    });
  });

  it('open to their single processes, with the pointer and with keys, and the rest makes up the sum', async () => {
    await withPage(async (opened) => {
      const { page } = opened;
      await opened.go('sistema');
      const tellAll = async () => {
        await opened.tell('onSystemDetails', someDetails());
        await opened.tell('onSystem', someSample());
      };
      await tellAll();
      const texts = async () => (await page.locator('[data-key^="app:Borealis>"] .mem').allTextContents()).map(plain);
      await page.getByRole('button', { name: 'Show the 31 processes of Borealis' }).click();
      expect(await texts()).toEqual(['1.2 GB', '839 MB', '1.3 GB']);
      expect(plain(await page.locator('[data-key="app:Borealis>rest"]').textContent())).toContain('29 more, lighter');
      await page.getByRole('button', { name: 'Hide the processes of Borealis' }).press('Enter');
      expect(await texts()).toEqual([]);
      await page.locator('[data-key="app:Borealis"]').focus();
      await page.keyboard.press('Enter');
      await tellAll();
      await page.keyboard.press('ArrowDown');
      expect(await page.evaluate(() => document.activeElement?.getAttribute('data-key'))).toContain('>pid:501:');
      await page.keyboard.press(' ');
      expect(await page.evaluate(() => document.activeElement?.getAttribute('data-key'))).toBe('app:Borealis');
      expect(await texts()).toEqual([]);
    });
  });

  it('go on changing places after a click on a column header', async () => {
    await withPage(async (opened) => {
      await opened.go('sistema');
      await tell(opened, 90, 10);
      await opened.page.getByRole('columnheader', { name: 'Processor' }).getByRole('button').click();
      expect(await rowNames(opened)).toEqual(['Beta', 'Alfa']);
      expect(await opened.page.getByText('The order stands still while you').isVisible()).toBe(false);
      for (let sample = 0; sample < 2; sample += 1) await tell(opened, 10, 90);
      expect(await rowNames(opened)).toEqual(['Alfa', 'Beta']);
    });
  });

  it('are sorted from the headers and moved through by keyboard', async () => {
    await withPage(async (opened) => {
      const { page } = opened;
      await opened.go('sistema');
      await opened.tell('onSystem', someSample());
      await page.locator('[data-key]').first().focus();
      await page.keyboard.press('ArrowDown');
      expect(await page.evaluate(() => document.activeElement?.getAttribute('data-key'))).toBe('app:Acme Studio');
      await page.getByRole('columnheader', { name: 'Memory' }).getByRole('button').click();
      const byMemory = someGroups().sort((left, right) => right.mem - left.mem).map(({ name }) => name);
      expect(await rowNames(opened)).toEqual(byMemory);
      expect(await page.getByRole('grid').getByRole('row').count()).toBe(byMemory.length + 1);
    });
  });

  it('a sample that changes nothing renders nothing', async () => {
    await withPage(async (opened) => {
      await opened.go('sistema');
      for (let sample = 0; sample < 3; sample += 1) await opened.tell('onSystem', someSample());
      const changes = await opened.page.evaluate(async (sample) => {
        let count = 0;
        const observer = new MutationObserver((records) => (count += records.length));
        observer.observe(document.querySelector('[role="grid"]')!, { subtree: true, childList: true, attributes: true, characterData: true });
        (window as unknown as { velto: { onSystem(value: unknown): void } }).velto.onSystem(sample);
        await new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done)));
        return count;
      }, someSample() as never);
      expect(changes).toBe(0);
    });
  });
});
