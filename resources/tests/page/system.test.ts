import type { Browser } from 'playwright-core';
import { afterAll, beforeAll, describe, expect, it } from 'vitest';
import { someTrash } from '../support/cleaning.ts';
import { launch, type OpenPage } from '../support/page.ts';
import { fullState } from '../support/states.ts';
import { bareSample, firstSample, hostileSample, someActivity, someDetails, someSample } from '../support/system.ts';
import { onPage, plain } from '../support/systemPage.ts';

let browser: Browser;

beforeAll(async () => {
  browser = await launch();
});
afterAll(() => browser.close());

const on = { type: 'systemWatch', payload: { on: true } };
const off = { type: 'systemWatch', payload: { on: false } };

const withPage = (test: (opened: OpenPage) => Promise<void>) => onPage(browser, test);
const card = ({ page }: OpenPage, name: string) => page.getByRole('region', { name, exact: true });
const textOf = async (opened: OpenPage, name: string) => plain(await card(opened, name).textContent());

describe('live samples', () => {
  it('are asked for when the view is shown, and stopped when it is left or paused', async () => {
    await withPage(async (opened) => {
      expect(await opened.during(() => opened.go('sistema'))).toEqual([on]);
      await opened.tell('onSystem', someSample());
      const pause = () => opened.page.getByRole('button', { name: /Pause|Continue/ }).click();
      expect(await opened.during(pause)).toEqual([off]);
      await opened.tell('onSystem', someSample({ cpu: { pct: 99, cores: 8, load: 9 } }));
      expect(await textOf(opened, 'Processor')).toContain('23%');
      expect(await opened.during(() => opened.go('inicio'))).toEqual([]);
      expect(await opened.during(() => opened.go('sistema'))).toEqual([]);
      expect(await opened.during(pause)).toEqual([on]);
      expect(await opened.during(() => opened.go('inicio'))).toEqual([off]);
    });
  });

  it('that were paused can be continued, however long ago the view was left', async () => {
    await withPage(async (opened) => {
      await opened.page.clock.install();
      await opened.go('sistema');
      await opened.tell('onSystem', someSample());
      await opened.page.getByRole('button', { name: 'Pause' }).click();
      await opened.go('inicio');
      await opened.page.clock.runFor(60_000);
      await opened.go('sistema');
      expect(await textOf(opened, 'Processor')).toContain('23%');
      expect(await opened.during(() => opened.page.getByRole('button', { name: 'Continue' }).click())).toEqual([on]);
    });
  });

  it('that nobody asked for change nothing', async () => {
    await withPage(async (opened) => {
      await opened.tell('onSystem', someSample());
      await opened.go('sistema');
      expect(await opened.page.getByRole('heading', { name: 'Asking the system' }).isVisible()).toBe(true);
    });
  });

  it('stop while the page cannot be seen', async () => {
    await withPage(async (opened) => {
      await opened.go('sistema');
      const see = (state: string) =>
        opened.page.evaluate((value) => {
          Object.defineProperty(document, 'visibilityState', { value, configurable: true });
          document.dispatchEvent(new Event('visibilitychange'));
        }, state);
      expect(await opened.during(() => see('hidden'))).toEqual([off]);
      expect(await opened.during(() => see('visible'))).toEqual([on]);
    });
  });

  it('are not left running for a page that goes', async () => {
    await withPage(async (opened) => {
      await opened.go('sistema');
      const go = () => opened.page.evaluate(() => window.dispatchEvent(new PageTransitionEvent('pagehide')));
      expect(await opened.during(go)).toEqual([off]);
    });
  });

  it('that stop coming are said to, calmly', async () => {
    await withPage(async (opened) => {
      await opened.page.clock.install();
      await opened.go('sistema');
      await opened.page.clock.runFor(8000);
      expect(await opened.page.getByRole('heading', { name: 'No figures have come' }).isVisible()).toBe(true);
      await opened.tell('onSystem', someSample());
      expect(await opened.page.getByText('Live, every two seconds').isVisible()).toBe(true);
      await opened.page.clock.runFor(8000);
      expect(await opened.page.getByText('No new figures').isVisible()).toBe(true);
    });
  });
});

describe('the figures', () => {
  it('are all there, each with its words', async () => {
    await withPage(async (opened) => {
      await opened.go('sistema');
      await opened.tell('onSystem', someSample());
      expect(await textOf(opened, 'Processor')).toContain('23% 8 cores · load 2.3');
      expect(await textOf(opened, 'Memory')).toContain('63% Pressure normal 10.9 GB of 17.2 GB in use');
      expect(await textOf(opened, 'Network')).toContain('Receiving 1.2 MB/s Sending 84 KB/s');
      expect(await textOf(opened, 'Disk')).toContain('69% 312.4 GB free of 994.7 GB');
      expect(await textOf(opened, 'Battery')).toContain('81% On battery · 5 hr 12 min left 77 charge cycles');
      expect(await textOf(opened, 'Temperature')).toContain('Normal');
      expect(plain(await card(opened, 'What the memory holds').getByRole('img').getAttribute('aria-label'))).toBe(
        'What the memory holds: Applications 5.9 GB, System 2.4 GB, Compressed 2.6 GB, Cached files 4.1 GB, and Free 2.2 GB.',
      );
    });
  });

  it('of the disk are one and the same wherever they are shown', async () => {
    await withPage(async (opened) => {
      const { page } = opened;
      const free = async (text: Promise<string | null>) => /([\d.]+ [GT]B) free/.exec(plain(await text))?.[1];
      await opened.tell('onTrashState', someTrash());
      await opened.go('sistema');
      const shownEverywhere = async () => {
        const seen = [await free(card(opened, 'Disk').textContent())];
        await opened.go('inicio');
        seen.push(await free(page.locator('section:has(.score)').first().textContent()));
        await opened.go('papelera');
        seen.push(/([\d.]+ [GT]B)/.exec(plain(await page.getByText('free now').textContent()))?.[1]);
        await opened.go('sistema');
        return seen;
      };
      await opened.tell('onSystem', someSample({ disk: { total: 994.7, free: 288.8, pct: 71 } }));
      expect(await shownEverywhere()).toEqual(['288.8 GB', '288.8 GB', '288.8 GB']);
      // What a state says again was not measured again.
      await opened.tell('setState', fullState({ history: [] }));
      expect(await shownEverywhere()).toEqual(['288.8 GB', '288.8 GB', '288.8 GB']);
      await opened.tell('setState', fullState({ free: 290.1 }));
      expect(await shownEverywhere()).toEqual(['290.1 GB', '290.1 GB', '290.1 GB']);
      await opened.tell('onSystem', someSample({ disk: { total: 994.7, free: 291.5, pct: 70.7 } }));
      expect(await shownEverywhere()).toEqual(['291.5 GB', '291.5 GB', '291.5 GB']);
    });
  });

  it('of the first sample wait for the second', async () => {
    await withPage(async (opened) => {
      await opened.go('sistema');
      await opened.tell('onSystem', firstSample());
      expect(await textOf(opened, 'Processor')).toContain('Measuring…');
      expect(await textOf(opened, 'Memory')).toContain('63%');
    });
  });

  it('of a machine without battery, with a temperature that nobody knows, are no alarm', async () => {
    await withPage(async (opened) => {
      await opened.go('sistema');
      await opened.tell('onSystem', bareSample());
      expect(await textOf(opened, 'Battery')).toContain('None The system reports no battery.');
      expect(await textOf(opened, 'Temperature')).toContain('Unknown This computer does not report it.');
      expect(await textOf(opened, 'Disk')).toContain('Not reported by this computer.');
      expect(await textOf(opened, 'Memory')).toContain('Pressure high');
      await opened.tell('onSystem', hostileSample());
      expect(await opened.page.title()).toBe('Velto');
    });
  });

  it('the curves are told in words, and drawn', async () => {
    await withPage(async (opened) => {
      await opened.go('sistema');
      await opened.page.clock.install();
      for (const pct of [10, 50, 30]) {
        await opened.tell('onSystem', someSample({ cpu: { pct, cores: 8, load: 1 } }));
        await opened.page.clock.runFor(2000);
      }
      const curve = card(opened, 'Processor').getByRole('img');
      expect(await curve.getAttribute('aria-label')).toBe('Processor over the last two minutes: 30% now, between 10% and 50%.');
      const drawn = await curve.locator('canvas').evaluate((canvas: HTMLCanvasElement) => {
        const { data } = canvas.getContext('2d')!.getImageData(0, 0, canvas.width, canvas.height);
        return data.filter((value, index) => index % 4 === 3 && value > 200).length;
      });
      expect(drawn).toBeGreaterThan(20);
    });
  });

  it('of the last hour are there, also of before another view was shown', async () => {
    await withPage(async (opened) => {
      await opened.page.clock.install();
      await opened.go('sistema');
      const tell = async (pct: number) => {
        await opened.tell('onSystem', someSample({ cpu: { pct, cores: 8, load: 1 } }));
        await opened.page.clock.runFor(10_000);
      };
      for (const pct of [10, 90]) await tell(pct);
      await opened.go('inicio');
      await opened.page.clock.runFor(600_000);
      await opened.go('sistema');
      await tell(30);
      const curve = card(opened, 'Processor').getByRole('img');
      expect(await curve.getAttribute('aria-label')).toBe('Processor over the last two minutes: 30% now, between 30% and 30%.');
      await opened.page.getByRole('radio', { name: '1 h' }).check();
      expect(await curve.getAttribute('aria-label')).toBe(
        'Processor over the last hour, in averages of ten seconds: 30% now, between 10% and 90%.',
      );
      expect(await curve.locator('.times').textContent()).toContain('1 h ago');
    });
  });

  it('the curve stays in its place when the scale changes', async () => {
    await withPage(async (opened) => {
      await opened.go('sistema');
      const box = () => card(opened, 'Network').locator('canvas').boundingBox();
      await opened.tell('onSystem', someSample());
      const before = await box();
      await opened.tell('onSystem', someSample({ net: { avail: true, iface: 'en0', down: 880_000_000, up: 0 } }));
      expect(plain(await card(opened, 'Network').locator('.scale').textContent())).toContain('1 GB/s');
      expect(await box()).toEqual(before);
    });
  });
});

describe('what is told beside a sample', () => {
  const show = async (opened: OpenPage, activity: unknown, sample: unknown = someSample()) => {
    await opened.tell('onSystemActivity', activity);
    await opened.tell('onSystem', sample);
  };

  it('is shown with it: disk traffic, degrees and graphics', async () => {
    await withPage(async (opened) => {
      await opened.go('sistema');
      await show(opened, someActivity());
      expect(await textOf(opened, 'Disk')).toContain('Reading 3.4 MB/s Writing 96 KB/s');
      expect(await textOf(opened, 'Temperature')).toContain('54 °C Normal Nothing is slowed down. Measured at the processor.');
      expect(await textOf(opened, 'Processor')).toContain('graphics 12%');
      const row = opened.page.locator('[data-key="app:Borealis"]');
      expect(plain(await row.locator('.disk').textContent())).toBe('1.2 MB/s');
      expect(plain(await opened.page.locator('[data-key="pid:310:servidor-de-sonido"] .disk').textContent())).toBe('–');
    });
  });

  it('goes again when nobody tells it any more, and nothing is made up', async () => {
    await withPage(async (opened) => {
      await opened.go('sistema');
      await show(opened, someActivity());
      await opened.tell('onSystem', someSample());
      expect(await textOf(opened, 'Disk')).not.toContain('Reading');
      expect(await textOf(opened, 'Temperature')).not.toContain('°C');
      expect(await textOf(opened, 'Processor')).not.toContain('graphics');
      await show(opened, {
        disk: { read: 'many' }, temperature: { celsius: 4000 }, gpu: [], procs: [{ pid: 'x', canQuit: true }, null],
      });
      expect(await textOf(opened, 'Disk')).not.toContain('Reading');
      expect(await textOf(opened, 'Temperature')).not.toContain('°C');
      expect(await opened.page.getByRole('button', { name: /^Quit/ }).count()).toBe(0);
    });
  });

  it('what the system keeps to itself is said in one line, and only then', async () => {
    await withPage(async (opened) => {
      await opened.go('sistema');
      await opened.tell('onSystemDetails', someDetails());
      await opened.tell('onSystem', someSample());
      expect(await opened.page.getByText('The system tells Velto nothing').count()).toBe(0);
      await opened.tell('onSystemDetails', someDetails({ unseen: ['processes', 'temperature'] }));
      await opened.tell('onSystem', someSample());
      expect(await opened.page.getByText('The system tells Velto nothing of processes that are not yours and the temperature in degrees.').isVisible()).toBe(true);
    });
  });

  it('a gap in the network is measured on, not missing', async () => {
    await withPage(async (opened) => {
      await opened.go('sistema');
      await opened.tell('onSystem', someSample());
      await opened.tell('onSystem', someSample({ net: undefined }));
      expect(await textOf(opened, 'Network')).toContain('Measuring…');
      expect(await textOf(opened, 'Network')).not.toContain('Not reported');
    });
  });
});
