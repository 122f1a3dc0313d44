// A private desktop for one program: an X display of its own and a D-Bus session of its own.
import { setTimeout as pause } from 'node:timers/promises';
import { run, startChild, stopChild } from './children.mjs';

/** Resolves to the first line that the child writes to its stream number `index`. */
function firstLine(child, index, what) {
  return new Promise((resolve, reject) => {
    let text = '';
    child.stdio[index].setEncoding('utf8').on('data', (part) => {
      text += part;
      if (text.includes('\n')) resolve(text.split('\n')[0].trim());
    });
    child.ended.then(({ error, status }) =>
      reject(new Error(`${what} did not start: ${error?.message ?? `status ${status}`}`)),
    );
  });
}

/**
 * The web engine puts its processes into a sandbox of namespaces, and ends the program when it may
 * not make any, as in most containers. Only there it is told to go without: the page is our own.
 */
async function sandboxVariables() {
  const { status } = await run('bwrap', [
    '--unshare-pid', '--unshare-uts', '--unshare-net', '--die-with-parent',
    '--ro-bind', '/', '/', '--dev', '/dev', '--proc', '/proc', 'true',
  ]).catch(() => ({ status: null }));
  return status === 0 ? {} : { WEBKIT_DISABLE_SANDBOX_THIS_IS_DANGEROUS: '1' };
}

/** A D-Bus session: its address, and how it ends. `env` is that of the services that it starts. */
export async function startBus({ env = process.env } = {}) {
  const bus = startChild(
    'dbus-daemon',
    ['--session', '--nofork', '--nopidfile', '--nosyslog', '--print-address=3'],
    { env, stdio: ['ignore', 'ignore', 'ignore', 'pipe'] },
  );
  const address = await firstLine(bus, 3, 'the D-Bus session (dbus-daemon)');
  return { address, stop: () => stopChild(bus) };
}

/** A virtual display that holds one window of exactly this size. */
export async function startDesktop({ width = 1180, height = 760 } = {}) {
  const sandbox = await sandboxVariables();
  const server = startChild(
    'Xvfb',
    ['-displayfd', '3', '-screen', '0', `${width}x${height}x24`, '-nolisten', 'tcp', '-noreset'],
    { stdio: ['ignore', 'ignore', 'ignore', 'pipe'] },
  );
  const number = await firstLine(server, 3, 'the virtual display (Xvfb)');
  let bus;
  try {
    bus = await startBus();
  } catch (error) {
    await stopChild(server);
    throw error;
  }
  const display = `:${number}`;
  const env = { ...process.env, DISPLAY: display };

  return {
    display,
    width,
    height,
    /** What a program must find in its environment to live on this desktop alone. */
    variables: {
      DISPLAY: display,
      DBUS_SESSION_BUS_ADDRESS: bus.address,
      GDK_BACKEND: 'x11',
      LIBGL_ALWAYS_SOFTWARE: '1',
      // No accessibility bus answers here; the toolkit would wait for one.
      GTK_A11Y: 'none',
      ...sandbox,
    },

    /** Writes the whole display to a PNG file. */
    async screenshot(file) {
      const { status, stderr } = await run('import', ['-window', 'root', file], { env });
      if (status !== 0) throw new Error(`no screenshot: ${stderr.trim()}`);
      return file;
    },

    /** A number that differs when any pixel of the display does, and how many colours it has. */
    async look() {
      const { status, stdout, stderr } = await run(
        'import',
        ['-window', 'root', '-format', '%# %k', 'info:-'],
        { env },
      );
      if (status !== 0) throw new Error(`the display cannot be read: ${stderr.trim()}`);
      const [signature, colours] = stdout.trim().split(' ');
      return { signature, colours: Number(colours) };
    },

    /** Looks again and again until `good(look, previous)` holds; fails after `limit` ms. */
    async lookUntil(good, limit = 30_000) {
      const end = Date.now() + limit;
      let previous = null;
      for (;;) {
        const now = await this.look();
        if (good(now, previous)) return now;
        if (Date.now() > end) {
          throw new Error(`the display never came to show it (colours: ${now.colours})`);
        }
        previous = now;
        await pause(50); // what is looked at needs the processor more
      }
    },

    /** Waits until something is painted and two looks in a row are equal. */
    steady(limit = 30_000) {
      return this.lookUntil(
        (now, previous) => now.colours > 16 && now.signature === previous?.signature,
        limit,
      );
    },

    /** Runs xdotool with these arguments. */
    async input(...args) {
      const { status, stderr } = await run('xdotool', args.map(String), { env });
      if (status !== 0) throw new Error(`xdotool ${args.join(' ')}: ${stderr.trim()}`);
    },

    async click(x, y) {
      await this.input('mousemove', x, y, 'click', 1);
    },

    /** Turns the wheel down by so many notches where the pointer is then. */
    async scrollDown(x, y, notches) {
      await this.input('mousemove', x, y, 'click', '--repeat', notches, 5);
    },

    /** Answers the dialog of this title, which asks for a folder, by typing the folder's path. */
    async chooseFolder(title, folder) {
      // No window manager gives the keyboard to a window that opens.
      const pattern = `^${title}$`;
      await this.input('search', '--sync', '--onlyvisible', '--name', pattern, 'windowfocus', '--sync');
      await this.input('key', 'ctrl+l');
      await this.input('type', '--delay', '20', folder);
      await this.input('key', 'Return');
    },

    async stop() {
      await bus.stop();
      await stopChild(server);
    },
  };
}
