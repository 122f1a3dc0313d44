// The digest of a file, and of a program what its run depends on: what it was linked from and does not hold may change.
import { createHash } from 'node:crypto';
import { closeSync, fstatSync, openSync, readSync } from 'node:fs';

const piece = Buffer.allocUnsafe(1 << 20);

/** All of it from there on; throws where the file ends before. */
function read(file, from, length) {
  const bytes = Buffer.alloc(length);
  if (readSync(file, bytes, 0, length, from) !== length) throw new Error('the file ends too early');
  return bytes;
}

function addRange(hash, file, from, length) {
  for (let at = from, end = from + length; at < end; ) {
    const count = readSync(file, piece, 0, Math.min(piece.length, end - at), at);
    if (count === 0) throw new Error('the file ends too early');
    hash.update(piece.subarray(0, count));
    at += count;
  }
}

/** What only debuggers and collectors of crashes read: lines of sources, and a number made of the whole file. */
const isApart = (name) => name.startsWith('.debug_') || name === '.note.gnu.build-id';

const elf64LittleEndian = Buffer.from([0x7f, 0x45, 0x4c, 0x46, 2, 1]);
const withoutBytes = 8; // SHT_NOBITS

/** A program of ELF without those sections, wherever in the file the others lie (elf(5)); false where it is none. */
function addProgram(hash, file, size) {
  if (size < 64) return false;
  const header = read(file, 0, 64);
  if (!header.subarray(0, elf64LittleEndian.length).equals(elf64LittleEndian)) return false;
  const number = (bytes, at) => Number(bytes.readBigUInt64LE(at));
  const [entrySize, count, namesIndex] = [0x3a, 0x3c, 0x3e].map((at) => header.readUInt16LE(at));
  if (entrySize !== 64 || namesIndex >= count) return false;
  const table = read(file, number(header, 0x28), entrySize * count);
  const sections = Array.from({ length: count }, (_, index) => {
    const entry = table.subarray(index * entrySize, (index + 1) * entrySize);
    return {
      nameAt: entry.readUInt32LE(0), type: entry.readUInt32LE(4), flags: number(entry, 8), address: number(entry, 16),
      offset: number(entry, 24), size: number(entry, 32),
    };
  });
  const names = read(file, sections[namesIndex].offset, sections[namesIndex].size);
  hash.update(header.subarray(0, 0x28)).update(header.subarray(0x30, 0x3a));
  addRange(hash, file, number(header, 0x20), header.readUInt16LE(0x36) * header.readUInt16LE(0x38));
  for (const { nameAt, type, flags, address, offset, size: length } of sections) {
    const name = names.toString('latin1', nameAt, names.indexOf(0, nameAt));
    if (isApart(name) || name === '.shstrtab') continue;
    hash.update(JSON.stringify([name, type, flags, address, length]));
    if (type !== withoutBytes) addRange(hash, file, offset, length);
  }
  return true;
}

/** As hexadecimal digits. Throws where the file cannot be read. */
export function digestOfFile(path) {
  const file = openSync(path, 'r');
  try {
    const { size } = fstatSync(file);
    try {
      const hash = createHash('sha256');
      if (addProgram(hash, file, size)) return hash.digest('hex');
    } catch {
      // It only begins as a program.
    }
    const hash = createHash('sha256');
    addRange(hash, file, 0, size);
    return hash.digest('hex');
  } finally {
    closeSync(file);
  }
}
