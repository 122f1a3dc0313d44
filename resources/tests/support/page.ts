/** Opens the built page from `file:` with a stub of the program on the other side. */
import { join } from 'node:path';
import { fileURLToPath, pathToFileURL } from 'node:url';
import { chromium, type Browser, type BrowserContextOptions, type Page } from 'playwright-core';
import type { DiskState, EventName } from '../../src/protocol/protocol.ts';

export interface Intent {
  type: string;
  payload?: unknown;
}

export interface Setting {
  /** What the program saved earlier; it is in the page before its scripts run. */
  saved?: DiskState;
  stamp?: number;
  platform?: 'macos' | 'linux';
  /** Another folder with a built page. */
  folder?: string;
  /** Runs in the page before its own scripts. */
  before?: () => void;
  /** Null opens the page as a plain browser would, without a program. */
  program?: null;
  storage?: Record<string, string>;
  context?: BrowserContextOptions;
}

export interface OpenPage {
  page: Page;
  /** Everything the page has sent so far. */
  intents(): Promise<Intent[]>;
  /** The intents sent while the action ran. */
  during(action: () => Promise<unknown>): Promise<Intent[]>;
  /** Calls one of the page's callbacks as the program does. */
  tell(event: EventName, ...values: unknown[]): Promise<void>;
  /** Shows a view as the program's menu does. */
  go(view: string): Promise<void>;
  /** Errors, refused resources and policy violations; a good page has none. */
  complaints: string[];
  close(): Promise<void>;
}

export function builtPage(): string {
  return fileURLToPath(new URL('../../dist', import.meta.url));
}

/** Starts the browser's headless shell: the whole browser spends as long again on its own windows. */
export async function launch(): Promise<Browser> {
  return chromium.launch({
    executablePath: '/usr/bin/chromium-headless-shell',
    args: [
      '--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run',
      '--disable-background-networking', '--disable-component-update', '--disable-sync',
    ],
  });
}

/** What was told or pressed before is painted now: a frame to lay it out and one that has been shown. */
export const painted = (page: Page): Promise<void> =>
  page.evaluate(() => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(() => done()))));

/** Runs in the page before its own scripts: the channel, the saved state and the platform. */
function prepare({ saved, stamp, platform, hosted, storage }: {
  saved: unknown;
  stamp: number;
  platform: string;
  hosted: boolean;
  storage: Record<string, string>;
}): void {
  const page = window as unknown as Record<string, unknown>;
  const intents: unknown[] = [];
  const complaints: string[] = [];
  page.__intents = intents;
  // Counts frames since the page's content was put in place: after two it has been painted.
  let frame = 0;
  let shownAt: number | null = null;
  const count = () => {
    frame += 1;
    requestAnimationFrame(count);
  };
  requestAnimationFrame(count);
  new MutationObserver(() => {
    if (document.querySelector('.figure')) shownAt ??= frame;
  }).observe(document, { childList: true, subtree: true });
  page.__complaints = complaints;
  document.addEventListener('securitypolicyviolation', (event) => {
    complaints.push(`policy: ${event.violatedDirective} ${event.blockedURI}`);
  });
  for (const [key, value] of Object.entries(storage)) localStorage.setItem(key, value);
  // The root element is not there yet when this runs.
  new MutationObserver((_, observer) => {
    if (!document.documentElement) return;
    document.documentElement.dataset.platform = platform;
    observer.disconnect();
  }).observe(document, { childList: true });
  /** Every removal asks what can be moved: all of it, but for what a test has put into `__stays`. */
  const answerCheck = ({ type, payload }: Intent): boolean => {
    if (type !== 'checkSelection') return false;
    const { paths, request } = payload as { paths: string[]; request: number };
    const stays = (page.__stays ?? {}) as Record<string, { reason: string; detail: string }>;
    const told = {
      request,
      movable: paths.filter((path) => !stays[path]),
      stays: paths.flatMap((path) => (stays[path] ? [{ path, ...stays[path] }] : [])),
    };
    queueMicrotask(() => (page.velto as Record<string, (value: unknown) => void>).onSelection!(told));
    return true;
  };
  /** What sharing would bring: nothing, but for the groups that a test has put into `__sharable`. */
  const answerSharing = ({ type, payload }: Intent): boolean => {
    if (type !== 'foretellSharing') return false;
    const { request, groups } = payload as { request: number; groups: { id: string }[] };
    const known = (page.__sharable ?? {}) as Record<string, unknown>;
    const told = { request, groups: Object.fromEntries(groups.flatMap(({ id }) => (known[id] ? [[id, known[id]]] : []))) };
    page.__foretold = payload;
    queueMicrotask(() => (page.velto as Record<string, (value: unknown) => void>).onSharable!(told));
    return true;
  };
  if (!hosted) return;
  page.webkit = {
    messageHandlers: {
      velto: {
        postMessage: (message: unknown) => {
          if (answerCheck(message as Intent) || answerSharing(message as Intent)) return;
          const framesShown = shownAt === null ? -1 : frame - shownAt;
          intents.push({ ...(structuredClone(message) as object), framesShown });
        },
      },
    },
  };
  if (saved) {
    const velto: Record<string, unknown> = { _state: saved, _stamp: stamp };
    velto.setState = (state: unknown, time: unknown) => {
      velto._state = state;
      if (time) velto._stamp = time;
    };
    page.velto = velto;
  }
}

/** Messages, questions and keys come with the second script. */
export async function isWhole(page: Page): Promise<void> {
  await page.locator('p[role="status"]').waitFor({ state: 'attached' });
}

export async function open(browser: Browser, setting: Setting = {}): Promise<OpenPage> {
  const context = await browser.newContext({ viewport: { width: 1180, height: 760 }, locale: 'en-US', ...setting.context });
  const page = await context.newPage();
  const complaints: string[] = [];
  page.on('pageerror', (error) => complaints.push(`error: ${error.message}`));
  page.on('console', (message) => {
    if (message.type() === 'error' || message.type() === 'warning') complaints.push(`console: ${message.text()}`);
  });
  page.on('request', (request) => {
    if (!request.url().startsWith('file:') && !request.url().startsWith('data:')) complaints.push(`request: ${request.url()}`);
  });
  await page.addInitScript(prepare, {
    saved: setting.saved,
    stamp: setting.stamp ?? Date.now() / 1000 - 3 * 3600,
    platform: setting.platform ?? 'macos',
    hosted: setting.program !== null,
    storage: setting.storage ?? {},
  });
  if (setting.before) await page.addInitScript(setting.before);
  await page.goto(pathToFileURL(join(setting.folder ?? builtPage(), 'index.html')).href);

  const intents = async (): Promise<Intent[]> => {
    const sent = await page.evaluate(() => (window as unknown as { __intents: (Intent & { framesShown: number })[] }).__intents);
    return sent.map(({ framesShown: _framesShown, ...intent }) => intent);
  };

  // Until then the page holds back what it is told.
  if (setting.saved && setting.program !== null) {
    await page.waitForFunction(() =>
      (window as unknown as { __intents: Intent[] }).__intents.some(({ type }) => type === 'webReady'),
    );
  }

  if (!setting.folder) await isWhole(page);

  return {
    page,
    complaints,
    intents,
    async during(action) {
      const before = (await intents()).length;
      await action();
      return (await intents()).slice(before);
    },
    async go(view) {
      await page.evaluate((name) => (window as unknown as { go(name: string): void }).go(name), view);
      await page.locator('.opening').waitFor({ state: 'detached' });
    },
    async tell(event, ...values) {
      await page.evaluate(
        ([name, given]) => {
          const velto = (window as unknown as { velto?: Record<string, (...values: unknown[]) => void> }).velto;
          velto?.[name as string]?.(...(given as unknown[]));
        },
        [event, values] as const,
      );
    },
    async close() {
      const violations = await page.evaluate(() => (window as unknown as { __complaints: string[] }).__complaints);
      complaints.push(...violations);
      await context.close();
    },
  };
}

