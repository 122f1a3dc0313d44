// A screen reader's view of the page, over an accessibility bus of the test's own.
import { startBus } from '../../../tools/desktop/desktop.mjs';
import { startChild, stopChild } from '../../../tools/desktop/children.mjs';
import { atEnd, temporaryFolder } from './home.mjs';

const reader = process.env.SCREEN_READER ?? 'build/release/tests/screen_reader';

/** Numbers of the AT-SPI protocol. */
const roles = {
  0: 'invalid', 2: 'alert', 7: 'check box', 11: 'combo box', 16: 'dialog', 20: 'filler', 27: 'image', 29: 'label',
  31: 'list', 32: 'list item', 33: 'menu', 35: 'menu item', 39: 'panel', 42: 'progress bar', 43: 'button',
  44: 'radio button', 47: 'row header', 49: 'scroll pane', 50: 'separator', 51: 'slider', 52: 'spin button', 54: 'status bar',
  55: 'table', 56: 'table cell', 57: 'column header', 58: 'row header', 61: 'text', 62: 'toggle button', 63: 'tool bar',
  64: 'tool tip', 65: 'tree', 66: 'tree table', 67: 'unknown', 73: 'paragraph', 79: 'entry', 83: 'heading', 85: 'section',
  87: 'form', 88: 'link', 90: 'table row', 91: 'tree item', 95: 'document web', 98: 'list box', 99: 'grouping',
  101: 'notification', 103: 'level bar', 110: 'landmark', 116: 'static',
};
const states = {
  1: 'active', 4: 'checked', 5: 'collapsed', 9: 'expandable', 10: 'expanded', 11: 'focusable', 12: 'focused', 16: 'modal',
  20: 'pressed', 22: 'selectable', 23: 'selected', 24: 'sensitive', 25: 'showing', 30: 'visible', 41: 'checkable',
};

const readable = (object) => ({
  ...object,
  role: roles[object.role] ?? `role ${object.role}`,
  states: (object.states ?? []).map((bit) => states[bit] ?? bit),
  attributes: object.attributes ?? {},
  interfaces: object.interfaces ?? [],
  children: object.children.map(readable),
});

/** The object and all below it. */
export const every = (object) => [object, ...object.children.flatMap(every)];

/** The session bus on which an accessibility bus answers; `variables` are for programs that live there. */
export async function accessibleSession(t, home) {
  // The accessibility bus puts its socket into the session's folder.
  const bus = await startBus({ env: { ...process.env, HOME: home.path, XDG_RUNTIME_DIR: home.runtime } });
  atEnd(t, () => bus.stop());
  return { DBUS_SESSION_BUS_ADDRESS: bus.address, GTK_A11Y: undefined };
}

/** Starts listening. */
export async function screenReader(t, variables) {
  const child = startChild(reader, [], { env: { ...process.env, ...variables }, stdio: ['pipe', 'pipe', 'inherit'] });
  atEnd(t, () => stopChild(child));
  const heard = [];
  const waiting = new Set();
  let rest = '';
  child.stdout.setEncoding('utf8').on('data', (part) => {
    const lines = (rest + part).split('\n');
    rest = lines.pop();
    heard.push(...lines.map((line) => JSON.parse(line)));
    waiting.forEach((look) => look());
  });
  /** Resolves to the first thing heard, from number `from` on, that `good` holds for. */
  const hears = (what, good, { from = 0, limit = 30_000 } = {}) => new Promise((resolve, reject) => {
    const end = (settle, value) => {
      clearTimeout(timer);
      waiting.delete(look);
      settle(value);
    };
    const look = () => {
      const found = heard.slice(from).find(good);
      if (found !== undefined) end(resolve, found);
    };
    const why = (reason) => new Error(`${reason} before ${what}; heard: ${JSON.stringify(heard.slice(-20), (key, value) => (key === 'tree' ? '…' : value))}`);
    const timer = setTimeout(() => end(reject, why(`${limit / 1000} s passed`)), limit);
    child.ended.then(({ status }) => end(reject, why(`the reader ended (${status})`)));
    waiting.add(look);
    look();
  });
  const ask = async (question, key) => {
    const from = heard.length;
    child.stdin.write(`${question}\n`);
    return (await hears(`an answer to "${question}"`, (line) => key in line, { from }))[key];
  };
  const first = await hears('the bus', (line) => line.ready || line.failed).catch((error) => ({ failed: error.message }));
  return {
    failed: first.failed,
    heard,
    hears,
    /** The objects of the page, or null when there is no page. */
    async tree(path = '') {
      const answer = await ask(`tree ${path}`.trim(), 'tree');
      return answer && readable(answer);
    },
    press: (object) => ask(`press ${object.path}`, 'pressed'),
  };
}
