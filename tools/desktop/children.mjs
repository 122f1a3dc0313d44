// Child processes that never outlive the one that started them.
import { spawn } from 'node:child_process';
import { once } from 'node:events';

const living = new Set();
process.on('exit', () => living.forEach((child) => child.kill('SIGKILL')));
for (const signal of ['SIGINT', 'SIGTERM', 'SIGHUP']) {
  process.on(signal, () => process.exit(1));
}

/** Like `spawn`; a program that cannot be started rejects `ended` instead of throwing. */
export function startChild(file, args, options) {
  const child = spawn(file, args, options);
  living.add(child);
  child.ended = new Promise((resolve) => {
    child.once('exit', (status, signal) => {
      living.delete(child);
      resolve({ status, signal });
    });
    child.once('error', (error) => {
      living.delete(child);
      resolve({ status: null, signal: null, error });
    });
  });
  return child;
}

/** Asks the child to end, and ends it when it has not after five seconds. */
export async function stopChild(child) {
  if (!living.has(child)) return child.ended;
  child.kill('SIGTERM');
  const patience = setTimeout(() => child.kill('SIGKILL'), 5000);
  const end = await child.ended;
  clearTimeout(patience);
  return end;
}

/** Runs a program to its end; resolves to its status, signal and texts. */
export async function run(file, args, { env = process.env, limit = 60_000, cwd } = {}) {
  const child = startChild(file, args, { env, cwd, stdio: ['ignore', 'pipe', 'pipe'] });
  let stdout = '';
  let stderr = '';
  child.stdout.setEncoding('utf8').on('data', (text) => (stdout += text));
  child.stderr.setEncoding('utf8').on('data', (text) => (stderr += text));
  const closed = once(child, 'close').catch(() => {});
  const watch = setTimeout(() => child.kill('SIGKILL'), limit);
  const end = await child.ended;
  clearTimeout(watch);
  if (end.error) throw new Error(`${file} cannot be run: ${end.error.message}`);
  await closed;
  return { ...end, stdout, stderr };
}
