// Pictures as files.
import { crc32, deflateSync } from 'node:zlib';

function chunk(type, data) {
  const body = Buffer.concat([Buffer.from(type, 'latin1'), data]);
  const frame = Buffer.alloc(8);
  frame.writeUInt32BE(data.length, 0);
  frame.writeUInt32BE(crc32(body), 4);
  return Buffer.concat([frame.subarray(0, 4), body, frame.subarray(4)]);
}

export const colours = { opaque: 2, withAlpha: 6 }; // and the bytes of a pixel: 3 and 4

/** A PNG (ISO/IEC 15948) of `lines`: for each a 0, which is no filter, and its pixels, a byte for each sample. */
export function pngOf(width, height, kind, lines, options) {
  const header = Buffer.alloc(13);
  header.writeUInt32BE(width, 0);
  header.writeUInt32BE(height, 4);
  header.set([8, kind], 8); // eight bits for each sample, not interlaced
  return Buffer.concat([
    Buffer.from('\x89PNG\r\n\x1a\n', 'latin1'),
    chunk('IHDR', header),
    chunk('IDAT', deflateSync(lines, options)),
    chunk('IEND', Buffer.alloc(0)),
  ]);
}

/** One of that many pixels, stored without compression: 3 bytes for each of them. */
export function png(width, height) {
  const lines = Buffer.alloc(height * (1 + 3 * width));
  for (let y = 0; y < height; y++) {
    for (let x = 0; x < width; x++) {
      const at = y * (1 + 3 * width) + 1 + 3 * x;
      lines.set([40 + (160 * y) / height, 90 + (120 * x) / width, 200], at);
    }
  }
  return pngOf(width, height, colours.opaque, lines, { level: 0 });
}
