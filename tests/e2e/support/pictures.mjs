// Pictures for previews.
import { crc32, deflateSync } from 'node:zlib';

function chunk(type, data) {
  const body = Buffer.concat([Buffer.from(type, 'latin1'), data]);
  const frame = Buffer.alloc(8);
  frame.writeUInt32BE(data.length, 0);
  frame.writeUInt32BE(crc32(body), 4);
  return Buffer.concat([frame.subarray(0, 4), body, frame.subarray(4)]);
}

/** A PNG (ISO/IEC 15948) of that many pixels, stored without compression: 3 bytes for each of them. */
export function png(width, height) {
  const header = Buffer.alloc(13);
  header.writeUInt32BE(width, 0);
  header.writeUInt32BE(height, 4);
  header.set([8, 2, 0, 0, 0], 8); // eight bits of red, green and blue, not interlaced
  const lines = Buffer.alloc(height * (1 + 3 * width));
  for (let y = 0; y < height; y++) {
    for (let x = 0; x < width; x++) {
      const at = y * (1 + 3 * width) + 1 + 3 * x;
      lines.set([40 + (160 * y) / height, 90 + (120 * x) / width, 200], at);
    }
  }
  return Buffer.concat([
    Buffer.from('\x89PNG\r\n\x1a\n', 'latin1'),
    chunk('IHDR', header),
    chunk('IDAT', deflateSync(lines, { level: 0 })),
    chunk('IEND', Buffer.alloc(0)),
  ]);
}
