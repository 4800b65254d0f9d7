// A zip file of files that are small: they are stored as they are, with the time of 1980, so that the same files give the
// same bytes.

const encoder = new TextEncoder();
const DATE_1980 = 0x21;
const UTF8_NAMES = 0x800;

const crcTable = Uint32Array.from({ length: 256 }, (_, byte) => {
  let value = byte;
  for (let bit = 0; bit < 8; ++bit) value = value & 1 ? (value >>> 1) ^ 0xedb88320 : value >>> 1;
  return value;
});

function crc32(bytes) {
  let crc = 0xffffffff;
  for (const byte of bytes) crc = crcTable[(crc ^ byte) & 0xff] ^ (crc >>> 8);
  return ~crc >>> 0;
}

/** Numbers of 2 and 4 bytes: `fields([2, 20], [4, crc])`. */
function fields(...numbers) {
  return Uint8Array.from(numbers.flatMap(([size, value]) => Array.from({ length: size }, (_, i) => (value >>> (8 * i)) & 0xff)));
}

/**
 * @param {{path: string, content: Uint8Array}[]} files
 * @returns {Uint8Array}
 */
export function zip(files) {
  const parts = [];
  const directory = [];
  let offset = 0;
  const add = (...pieces) => {
    for (const piece of pieces) {
      parts.push(piece);
      offset += piece.length;
    }
  };
  for (const { path, content } of files) {
    const name = encoder.encode(path);
    const common = fields([2, 20], [2, UTF8_NAMES], [2, 0], [2, 0], [2, DATE_1980], [4, crc32(content)], [4, content.length],
      [4, content.length], [2, name.length], [2, 0]);
    directory.push(fields([4, 0x02014b50], [2, 20]), common, fields([2, 0], [2, 0], [2, 0], [4, 0], [4, offset]), name);
    add(fields([4, 0x04034b50]), common, name, content);
  }
  const begin = offset;
  add(...directory);
  add(fields([4, 0x06054b50], [2, 0], [2, 0], [2, files.length], [2, files.length], [4, offset - begin], [4, begin], [2, 0]));
  const all = new Uint8Array(offset);
  let at = 0;
  for (const part of parts) {
    all.set(part, at);
    at += part.length;
  }
  return all;
}
