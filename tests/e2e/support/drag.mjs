// Real drags from another window onto the program's, made with the pointer.
import { setTimeout as pause } from 'node:timers/promises';
import { startChild, stopChild } from '../../../tools/desktop/children.mjs';
import { atEnd } from './home.mjs';

const source = process.env.DRAG_SOURCE ?? 'build/release/tests/drag_source';

/**
 * Shows a small window in the display's right corner that `what` can be dragged from (`kind`: "file",
 * "link" or "text"), drags it to `x`, `y` and lets it go. Resolves to "dropped", "refused", or "unanswered" when
 * the window that it was let go on says nothing for a while.
 */
export async function drag(t, desktop, kind, what, x, y) {
  const env = { ...process.env, ...desktop.variables };
  const child = startChild(source, [kind, what], { env, stdio: ['ignore', 'pipe', 'inherit'] });
  atEnd(t, () => stopChild(child));
  const said = [];
  const waiting = new Set();
  child.stdout.setEncoding('utf8').on('data', (text) => {
    said.push(...text.trim().split('\n'));
    waiting.forEach((look) => look());
  });
  const until = (words, limit = 30_000) => new Promise((resolve, reject) => {
    const timer = setTimeout(() => reject(new Error(`no "${words}" from the drag, only ${said}`)), limit);
    const look = () => {
      const found = words.find((word) => said.includes(word));
      if (!found) return;
      clearTimeout(timer);
      waiting.delete(look);
      resolve(found);
    };
    waiting.add(look);
    child.ended.then(({ error, status }) =>
      reject(new Error(`${source} ended: ${error?.message ?? `status ${status}`}`)));
    look();
  });

  await until(['ready']);
  const corner = desktop.width - 130;
  await desktop.input('search', '--sync', '--onlyvisible', '--name', 'Drag source', 'windowmove', corner, 0);
  const [fromX, fromY] = [corner + 60, 60];
  await desktop.input('mousemove', fromX, fromY, 'mousedown', 1);
  // The drag begins some points from where the button went down.
  for (let step = 1; !said.includes('dragging') && step <= 40; step++) {
    await desktop.input('mousemove', fromX - 2 * step, fromY + step);
    await pause(50);
  }
  await until(['dragging']);
  const steps = 12;
  for (let step = 1; step <= steps; step++) {
    const part = step / steps;
    await desktop.input('mousemove', Math.round(fromX + part * (x - fromX)), Math.round(fromY + part * (y - fromY)));
    await pause(50);
  }
  // The window that it is over has to say what it would do with it.
  for (let step = 0; step < 6; step++) {
    await desktop.input('mousemove', x + (step % 2), y);
    await pause(100);
  }
  await desktop.input('mouseup', 1);
  const end = await until(['dropped', 'refused'], 10_000).catch(() => 'unanswered');
  await stopChild(child);
  return end;
}
