// A notification service on a bus of the test's own.
import { startBus } from '../../../tools/desktop/desktop.mjs';
import { startChild, stopChild } from '../../../tools/desktop/children.mjs';
import { atEnd } from './home.mjs';

const service = process.env.NOTIFICATION_SERVICE ?? 'build/release/tests/notification_service';

/**
 * Resolves when it answers: `variables` for a program that is to find it, `received`, what it was
 * asked so far, and `next()`, which waits for one more.
 */
export async function notificationsFor(test) {
  const bus = await startBus();
  atEnd(test, () => bus.stop());
  const variables = { DBUS_SESSION_BUS_ADDRESS: bus.address };
  const child = startChild(service, [], {
    env: { ...process.env, ...variables },
    stdio: ['pipe', 'pipe', 'inherit'],
  });
  atEnd(test, () => stopChild(child));
  const received = [];
  let wake = () => {};
  let text = '';
  child.stdout.setEncoding('utf8').on('data', (part) => {
    text += part;
    const lines = text.split('\n');
    text = lines.pop();
    for (const line of lines) received.push(JSON.parse(line));
    wake();
  });
  const more = async (count) => {
    while (received.length < count) {
      await new Promise((resolve, reject) => {
        wake = resolve;
        child.ended.then(() => reject(new Error('the notification service has ended')));
      });
    }
  };
  await more(1);
  received.shift(); // "ready"
  return { variables, received, next: () => more(received.length + 1) };
}
