// The real program under observation: its log as a list of lines that can be waited for.
import { startChild, stopChild } from './children.mjs';

/** The variables of a program that lives in a home, with nothing of the caller's folders. */
export const homeVariables = (home, runtime = home) => ({
  HOME: home,
  XDG_RUNTIME_DIR: runtime,
  XDG_CONFIG_HOME: undefined,
  XDG_DATA_HOME: undefined,
  XDG_CACHE_HOME: undefined,
  XDG_STATE_HOME: undefined,
});

/**
 * Starts `program`. `variables` are set on top of the caller's environment; an undefined value
 * removes the variable.
 */
export function startProgram(program, args = [], variables = {}) {
  const env = { ...process.env };
  for (const [name, value] of Object.entries(variables)) {
    if (value === undefined) delete env[name];
    else env[name] = value;
  }
  const child = startChild(program, args, { env, stdio: ['ignore', 'ignore', 'pipe'] });
  const lines = [];
  const waiting = new Set();
  const wake = () => waiting.forEach((look) => look());
  let ended = null;

  let rest = '';
  child.stderr.setEncoding('utf8').on('data', (text) => {
    const parts = (rest + text).split('\n');
    rest = parts.pop();
    lines.push(...parts);
    wake();
  });
  child.stderr.on('close', () => {
    if (rest) lines.push(rest);
    rest = '';
    wake();
  });
  child.ended.then((end) => {
    ended = end;
    wake();
  });

  const matches = (line, what) => (what instanceof RegExp ? what.test(line) : line.includes(what));

  return {
    lines,
    child,

    /** How many lines of the log hold `what`, a text or a pattern. */
    count: (what) => lines.filter((line) => matches(line, what)).length,

    /**
     * Resolves to the first line, from line number `from` on, that holds one of `whats`. Fails
     * when the program ends first or after `limit` ms, with the end of the log in the message.
     */
    waitFor(whats, { from = 0, limit = 60_000 } = {}) {
      const wanted = [whats].flat();
      return new Promise((resolve, reject) => {
        const finish = (settle, value) => {
          clearTimeout(timer);
          waiting.delete(look);
          settle(value);
        };
        const why = (reason) =>
          new Error(`${reason} before "${wanted.join('" or "')}"; log:\n${lines.slice(-15).join('\n')}`);
        const look = () => {
          const found = lines.slice(from).find((line) => wanted.some((what) => matches(line, what)));
          if (found !== undefined) finish(resolve, found);
          else if (ended && child.stderr.closed) {
            const how = ended.error?.message ?? ended.signal ?? `status ${ended.status}`;
            finish(reject, why(`the program ended (${how})`));
          }
        };
        const timer = setTimeout(() => finish(reject, why(`${limit / 1000} s passed`)), limit);
        waiting.add(look);
        look();
      });
    },

    /** Resolves to {status, signal} when the program has ended by itself. */
    async ended(limit = 60_000) {
      let timer;
      const late = new Promise((_, reject) => {
        timer = setTimeout(
          () => reject(new Error(`still running after ${limit / 1000} s; log:\n${lines.join('\n')}`)),
          limit,
        );
      });
      try {
        return await Promise.race([child.ended, late]);
      } finally {
        clearTimeout(timer);
      }
    },

    /** Ends the program. */
    stop: () => stopChild(child),
  };
}
