import { describe, expect, it } from 'vitest';
import { requests } from '../../src/state/requests.svelte.ts';
import { trashItem } from '../support/cleaning.ts';

const item = trashItem('op', 'a', 1, 1);
const other = trashItem('op', 'b', 1, 1);

describe('which request a toast answers', () => {
  it('is told by its title, in both languages, and by the order where titles are the same', async () => {
    const removal = requests.ask('remove', ['/a']);
    const deletion = requests.ask('purge', [item.id]);
    expect(requests.answer('Excluido del análisis')).toBeNull();
    expect([...requests.busy]).toEqual(['/a', item.id]);
    expect(requests.answer('No se pudo eliminar')).toEqual({ kind: 'remove', outcome: 'failed' });
    expect(requests.answer('Eliminado')).toEqual({ kind: 'purge', outcome: 'done' });
    expect(await removal).toBe('failed');
    expect(await deletion).toBe('done');
    expect(requests.answer('Eliminado')).toBeNull();
  });

  it('English titles tell a removal from a deletion whatever comes first', () => {
    void requests.ask('remove', ['/a']);
    void requests.ask('purge', [item.id]);
    expect(requests.answer("Couldn't delete")).toEqual({ kind: 'purge', outcome: 'failed' });
    expect(requests.answer('Removed')).toEqual({ kind: 'remove', outcome: 'done' });
    void requests.ask('empty', []);
    expect(requests.answer("Couldn't empty Trash")).toEqual({ kind: 'empty', outcome: 'failed' });
    expect(requests.busy.size).toBe(0);
  });
});

describe('how far an emptying is', () => {
  it('is known while one is asked for, and forgotten with it', () => {
    requests.emptyingIs(1, 9);
    expect(requests.emptied).toBeNull();
    void requests.ask('empty', []);
    requests.emptyingIs(1, 1);
    expect(requests.emptied).toBeNull();
    requests.emptyingIs(2, 9);
    expect(requests.emptied).toEqual({ done: 2, of: 9 });
    requests.answer('No se pudo vaciar');
    expect(requests.emptied).toBeNull();
  });
});

describe('putting back', () => {
  it('is done when the trash no longer holds any of it, not before', async () => {
    const back = requests.ask('restore', [item.id]);
    requests.trashHolds([item, other]);
    expect(requests.busy.has(item.id)).toBe(true);
    requests.trashHolds([other]);
    expect(await back).toBe('done');
  });

  it('fails with its toast', async () => {
    const back = requests.ask('undo', [item.id, other.id]);
    requests.trashHolds([other]);
    expect(requests.answer("Couldn't undo")).toEqual({ kind: 'undo', outcome: 'failed' });
    expect(await back).toBe('failed');
  });

  it('an undo that took back something else leaves nothing waiting', async () => {
    const back = requests.ask('undo', [item.id]);
    requests.trashHolds([item]);
    expect(await back).toBe('unclear');
    expect(requests.busy.size).toBe(0);
  });
});
