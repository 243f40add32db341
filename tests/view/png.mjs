// Reads the pixels of a PNG of eight bits a colour, as Chromium writes them.
import {inflateSync} from 'node:zlib';

function paeth(left, above, corner) {
  const guess = left + above - corner;
  const [a, b, c] = [left, above, corner].map((value) => Math.abs(guess - value));
  return a <= b && a <= c ? left : b <= c ? above : corner;
}

export function pixelsOf(png) {
  const parts = [];
  for (let at = 8; at < png.length; at += png.readUInt32BE(at) + 12) {
    if (png.toString('latin1', at + 4, at + 8) === 'IDAT') parts.push(png.subarray(at + 8, at + 8 + png.readUInt32BE(at)));
  }
  const width = png.readUInt32BE(16), height = png.readUInt32BE(20), size = png[25] === 6 ? 4 : 3;
  const packed = inflateSync(Buffer.concat(parts)), row = width * size, pixels = Buffer.alloc(row * height);
  const was = (x, y) => (x < 0 || y < 0 ? 0 : pixels[y * row + x]);
  for (let y = 0; y < height; ++y) {
    const filter = packed[y * (row + 1)];
    for (let x = 0; x < row; ++x) {
      const left = x < size ? 0 : was(x - size, y), above = was(x, y - 1);
      const guess = [0, left, above, (left + above) >> 1, paeth(left, above, x < size ? 0 : was(x - size, y - 1))][filter];
      pixels[y * row + x] = packed[y * (row + 1) + 1 + x] + guess;
    }
  }
  const at = (x, y) => [...pixels.subarray(y * row + x * size, y * row + x * size + 3)];
  return {width, height, at};
}
