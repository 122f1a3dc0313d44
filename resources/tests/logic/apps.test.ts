import { describe, expect, it } from 'vitest';
import { formats } from '../../src/language/formats.ts';
import { failureGroups, stillThere } from '../../src/views/apps/outcome.ts';
import { byName, daysSince, findApps, nextAppOrder, sortApps, type AppOrder } from '../../src/views/apps/ordering.ts';
import { planOf } from '../../src/views/apps/plan.ts';
import { isForAllUsers, preselectedOf, sectionsOf } from '../../src/views/apps/sections.ts';
import { analysisOf, app, leftover, someApps, someFailures, someLeftovers } from '../support/apps.ts';
import { home } from '../support/states.ts';

const { compare } = formats.es;

describe('the list of applications', () => {
  const names = (order: AppOrder, sizes: Record<string, number> = {}) =>
    sortApps(
      [app('b', { last: 5 }), app('á', { last: 0 }), app('C', { last: 9 })],
      order,
      compare,
      ({ name }) => sizes[name] ?? null,
    ).map(({ name }) => name);

  it('is in the order of the language, whatever the capitals and marks', () => {
    expect(names(byName)).toEqual(['á', 'b', 'C']);
    expect(names({ column: 'name', direction: 'descending' })).toEqual(['C', 'b', 'á']);
  });

  it('keeps what is unknown at the end, either way round', () => {
    expect(names({ column: 'lastUse', direction: 'ascending' })).toEqual(['b', 'C', 'á']);
    expect(names({ column: 'lastUse', direction: 'descending' })).toEqual(['C', 'b', 'á']);
    expect(names({ column: 'size', direction: 'descending' }, { b: 1, C: 7 })).toEqual(['C', 'b', 'á']);
    expect(names({ column: 'size', direction: 'ascending' }, { b: 1, C: 7 })).toEqual(['b', 'C', 'á']);
  });

  it('starts with the largest and with those unused for longest', () => {
    expect(nextAppOrder(byName, 'size')).toEqual({ column: 'size', direction: 'descending' });
    expect(nextAppOrder(byName, 'lastUse')).toEqual({ column: 'lastUse', direction: 'ascending' });
    expect(nextAppOrder(byName, 'name').direction).toBe('descending');
  });

  it('is searched by name, identifier and place, without marks', () => {
    const found = (search: string) => findApps(someApps(), search).map(({ path }) => path);
    expect(found('limite')).toHaveLength(2);
    expect(found('limite marina')).toEqual([`${home}/Applications/Límite.app`]);
    expect(found('org.example.terra')).toHaveLength(1);
    expect(found('nada de eso')).toEqual([]);
  });

  it('never says "today" of a use that nobody knows, nor of one in the future anything else', () => {
    expect(formats.en.age(daysSince(0, 1_800_000_000))).toBeNull();
    expect(daysSince(1_800_000_000, 1_700_000_000)).toBe(0);
    expect(daysSince(1_700_000_000, 1_700_000_000 + 3 * 86_400 + 5)).toBe(3);
  });
});

describe('what an application left behind', () => {
  const borealis = app('Borealis');
  const analysis = analysisOf(borealis, someLeftovers());
  const sections = sectionsOf(analysis);
  const sectionOf = (name: string) => sections.find((section) => section.name === name)!;

  it('takes nothing that is a link, or lies behind one, for certain', () => {
    const path = `${home}/Library/Caches/org.example.Borealis`;
    const links = new Map([borealis.path, path].map((at) => [at, { path: at, target: `${home}/Projects`, kept: true }]));
    const found = sectionsOf(analysis, links);
    const chosen = preselectedOf(found);
    expect(chosen.size).toBe(preselectedOf(sections).size - 2);
    expect(chosen.has(path) || chosen.has(borealis.path)).toBe(false);
    const linked = found.flatMap(({ name, items }) => items.filter(({ link }) => link).map(() => name));
    expect(linked).toEqual(['possible', 'possible']);
  });

  it('keeps the certain, the possible and the unreachable apart', () => {
    expect(sections.map(({ name, items }) => [name, items.length])).toEqual([['certain', 8], ['possible', 3], ['stays', 2]]);
    expect(sectionOf('certain').items.every(({ conf, admin }) => conf === 'certain' && !admin)).toBe(true);
    expect(sectionOf('stays').items.map(({ stays }) => stays)).toEqual(['admin', 'admin']);
  });

  it('says each kind once in a section, in the fixed order', () => {
    expect(sectionOf('certain').items.filter(({ leads }) => leads).map(({ cat }) => cat)).toEqual([
      'app', 'support', 'caches', 'prefs', 'state', 'web', 'agents',
    ]);
  });

  it('preselects everything certain and nothing else', () => {
    const chosen = preselectedOf(sections);
    expect(chosen.has(borealis.path)).toBe(true);
    expect([...chosen].sort()).toEqual(sectionOf('certain').items.map(({ path }) => path).sort());
  });

  it('never offers what the program refuses: protected places, and what goes with the application', () => {
    const items = [
      leftover('support', `${home}/Library/Mail/V10/Borealis`, 1),
      leftover('app', `${borealis.path}/Contents/Library/LoginItems/Helper.app`, 0.1, { nested: true }),
    ];
    const found = sectionsOf(analysisOf(borealis, items));
    expect(found.find(({ name }) => name === 'stays')!.items.map(({ stays }) => stays)).toEqual(['nested', 'protected']);
    expect([...preselectedOf(found)]).toEqual([borealis.path]);
  });

  describe('the plan', () => {
    const certain = preselectedOf(sections);

    it('counts what goes and what stays', () => {
      expect(planOf(analysis, sections, certain)).toMatchObject({
        closes: false, services: 1, count: 8, app: 'goes', left: 3, stays: 2,
      });
      expect(planOf({ ...analysis, running: true }, sections, certain).closes).toBe(true);
      expect(planOf({ ...analysis, running: true }, sections, new Set<string>()).closes).toBe(false);
    });

    it('says when the application itself is kept', () => {
      const chosen = new Set([...certain].filter((path) => path !== borealis.path));
      expect(planOf(analysis, sections, chosen)).toMatchObject({ app: 'kept', count: 7, left: 3 });
      expect(planOf(analysis, sections, new Set())).toMatchObject({ app: 'kept', count: 0, gb: 0, services: 0 });
    });

    it('does not promise the space of an application for all users', () => {
      const shared = analysisOf({ ...borealis, path: '/Applications/Borealis.app' }, someLeftovers());
      const its = sectionsOf(shared);
      const plan = planOf(shared, its, preselectedOf(its));
      expect(plan).toMatchObject({ app: 'out of reach', count: 7 });
      expect(plan.gb).toBeCloseTo(planOf(analysis, sections, certain).gb - 1.934);
      expect(isForAllUsers(`${home}/Applications/Borealis.app`)).toBe(false);
    });
  });
});

describe('what could not be removed', () => {
  it('stands by reason, what can be done something about first', () => {
    expect(failureGroups(someFailures).map(({ reason, failures }) => [reason, failures.length])).toEqual([
      ['admin', 2], ['busy', 1], ['gone', 1],
    ]);
    expect(failureGroups([])).toEqual([]);
  });

  it('does not count what was gone already', () => {
    expect(stillThere(someFailures)).toBe(3);
  });
});
