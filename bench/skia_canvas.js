// Fills a canvas with a conical gradient as often as each line of input, "SIDE TIMES", asks for,
// and answers when that has happened. Run by skia_canvas.cpp.
const { createCanvas } = require('@napi-rs/canvas');

const colors = ['#ff0000', '#ff9900', '#e6ff00', '#00cc1a', '#00e6e6', '#0033ff', '#8000ff',
  '#ff0099'];

function fill(context, side, times) {
  const gradient = context.createConicGradient(0, side / 2, side / 2);
  for (let i = 0; i <= 8; ++i) gradient.addColorStop(i / 8, colors[i % 8]);
  context.fillStyle = gradient;
  for (let i = 0; i < times; ++i) context.fillRect(0, 0, side, side);
  return context.getImageData(0, 0, 1, 1); // waits for the drawing
}

const contexts = new Map();
require('readline').createInterface({ input: process.stdin }).on('line', (line) => {
  const [side, times] = line.split(' ').map(Number);
  if (!contexts.has(side)) contexts.set(side, createCanvas(side, side).getContext('2d'));
  fill(contexts.get(side), side, times);
  process.stdout.write('done\n');
});
process.stdout.write('ready\n');
