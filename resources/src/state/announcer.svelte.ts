/** What a screen reader is told without the focus moving. */
class Announcer {
  message = $state('');

  say(message: string): void {
    this.message = message;
  }
}

export const announcer = new Announcer();
