/** Reads the samples of the machine. A source that is missing stays missing: nothing is made up. */
import { icon, percent } from './appGuards.ts';
import { fieldsOf, list, number, size, text } from './guards.ts';
import { batteryStates, heatedParts, pressures, thermalStates, unseenParts } from './records.ts';
import type { GroupActivity, GroupMember, NamedGroup, ProcessGroup, SystemActivity, SystemDetails, SystemSample } from './records.ts';

type Fields = Record<string, unknown>;

function isNumber(value: unknown): value is number {
  return typeof value === 'number' && Number.isFinite(value);
}

/** A share that is no number makes the whole source unreadable. */
function cpu(fields: Fields): SystemSample['cpu'] {
  if (!isNumber(fields.pct)) return undefined;
  return { pct: percent(fields.pct), cores: size(fields.cores), load: size(fields.load) };
}

function mem(fields: Fields): SystemSample['mem'] {
  if (!isNumber(fields.pct) || size(fields.total) === 0) return undefined;
  return {
    total: size(fields.total), used: size(fields.used), pct: percent(fields.pct),
    app: size(fields.app), wired: size(fields.wired), compressed: size(fields.compressed), cached: size(fields.cached),
    pressure: pressures.find((known) => known === fields.pressure) ?? 'normal',
    swapUsed: size(fields.swapUsed), swapTotal: size(fields.swapTotal),
  };
}

function disk(fields: Fields): SystemSample['disk'] {
  if (size(fields.total) === 0) return undefined;
  return { total: size(fields.total), free: size(fields.free), pct: percent(fields.pct) };
}

function thermal(fields: Fields): SystemSample['thermal'] {
  return { state: thermalStates.find((known) => known === fields.state) ?? 'unknown', lowPower: fields.lowPower === true };
}

function battery(fields: Fields): SystemSample['battery'] {
  const state = batteryStates.find((known) => known === fields.state);
  return {
    avail: fields.avail === true,
    ...(isNumber(fields.pct) && { pct: percent(fields.pct) }),
    ...(state && { state }),
    ...(size(fields.minutes) > 0 && { minutes: size(fields.minutes) }),
    ...(isNumber(fields.cycles) && { cycles: size(fields.cycles) }),
  };
}

function net(fields: Fields): SystemSample['net'] {
  if (fields.avail !== true) return undefined;
  return { avail: true, iface: text(fields.iface), down: size(fields.down), up: size(fields.up) };
}

function process(fields: Fields): ProcessGroup | null {
  if (!text(fields.name)) return null;
  return {
    name: text(fields.name), pid: Math.trunc(number(fields.pid)), kind: fields.kind === 'app' ? 'app' : 'other',
    procs: Math.max(1, Math.trunc(number(fields.procs))), cpu: size(fields.cpu), mem: size(fields.mem), icon: icon(fields.icon),
  };
}

function traffic(fields: Fields): Pick<GroupActivity, 'read' | 'written'> {
  const isKnown = isNumber(fields.read) && isNumber(fields.written);
  return isKnown ? { read: size(fields.read), written: size(fields.written) } : {};
}

function groupActivity(fields: Fields): GroupActivity | null {
  if (!isNumber(fields.pid)) return null;
  return { pid: Math.trunc(fields.pid), ...traffic(fields), canQuit: fields.canQuit === true };
}

function member(fields: Fields): GroupMember | null {
  if (!isNumber(fields.pid)) return null;
  return { pid: Math.trunc(fields.pid), name: text(fields.name), cpu: size(fields.cpu), mem: size(fields.mem), ...traffic(fields) };
}

function namedGroup(fields: Fields): NamedGroup | null {
  const group = process(fields);
  if (!group) return null;
  const { icon: picture, ...rest } = group;
  return {
    ...rest, ...traffic(fields), canQuit: fields.canQuit === true,
    ...('icon' in fields && { icon: picture }),
    members: list(fields.members, member),
  };
}

export function systemDetails(value: unknown): SystemDetails | null {
  const fields = fieldsOf(value);
  if (!fields) return null;
  const told = Array.isArray(fields.unseen) ? fields.unseen : [];
  return { groups: list(fields.groups, namedGroup), unseen: unseenParts.filter((part) => told.includes(part)) };
}

/** No part of a computer that runs is colder or hotter. */
const coldest = 1;
const hottest = 150;

function temperature(fields: Fields): SystemActivity['temperature'] {
  const { celsius } = fields;
  if (!isNumber(celsius) || celsius < coldest || celsius > hottest) return undefined;
  return { celsius, part: heatedParts.find((known) => known === fields.part) ?? 'machine' };
}

export function systemActivity(value: unknown): SystemActivity | null {
  const fields = fieldsOf(value);
  if (!fields) return null;
  const disk = fieldsOf(fields.disk);
  const heat = fieldsOf(fields.temperature);
  const degrees = heat && temperature(heat);
  const gpu = fieldsOf(fields.gpu);
  return {
    ...(disk && isNumber(disk.read) && isNumber(disk.written) && {
      disk: { read: size(disk.read), written: size(disk.written) },
    }),
    ...(degrees && { temperature: degrees }),
    ...(gpu && isNumber(gpu.pct) && { gpu: { pct: percent(gpu.pct) } }),
    procs: list(fields.procs, groupActivity),
  };
}

export function systemSample(value: unknown): SystemSample | null {
  const fields = fieldsOf(value);
  if (!fields) return null;
  const read = <Part>(part: unknown, reader: (fields: Fields) => Part | undefined): Part | undefined => {
    const inner = fieldsOf(part);
    return inner ? reader(inner) : undefined;
  };
  return {
    cpu: read(fields.cpu, cpu), mem: read(fields.mem, mem), disk: read(fields.disk, disk),
    thermal: read(fields.thermal, thermal), battery: read(fields.battery, battery), net: read(fields.net, net),
    ...(Array.isArray(fields.procs) && { procs: list(fields.procs, process) }),
  };
}
