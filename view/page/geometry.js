// Corners are lists of four points {x, y} in the order upper left, upper right, lower left, lower right; positions are
// pixels of the output, y downwards.

export const UL = 0, UR = 1, LL = 2, LR = 3;
export const NAMES = ['Upper left', 'Upper right', 'Lower left', 'Lower right'];
export const SHORT = ['UL', 'UR', 'LL', 'LR'];
// The corners in order round the outline.
export const AROUND = [UL, UR, LR, LL];

const LEAST = -32768, MOST = 32767.9999;
const DIGITS = 1e4;  // positions are rounded to 1/10000, which files can hold exactly
const NEARLY_STRAIGHT = 0.01;

export const rounded = value => Math.min(MOST, Math.max(LEAST, Math.round(value * DIGITS) / DIGITS));
export const point = (x, y) => ({x: rounded(x), y: rounded(y)});
export const moved = (p, dx, dy) => point(p.x + dx, p.y + dy);
export const distance = (a, b) => Math.hypot(a.x - b.x, a.y - b.y);
export const sameCorners = (a, b) => a.every((p, c) => p.x === b[c].x && p.y === b[c].y);

const turn = (a, b, c) => (b.x - a.x) * (c.y - b.y) - (b.y - a.y) * (c.x - b.x);
const around = (q, i) => q[AROUND[i % 4]];

// Sorts four points into corners: clockwise, starting so that the quadrilateral is as upright as possible.
export function sortedCorners(points) {
  const centre = {x: points.reduce((s, p) => s + p.x, 0) / 4, y: points.reduce((s, p) => s + p.y, 0) / 4};
  const angle = p => Math.atan2(p.y - centre.y, p.x - centre.x);
  const clockwise = [...points].sort((a, b) => angle(a) - angle(b));
  const xs = points.map(p => p.x), ys = points.map(p => p.y);
  const [left, right, top, bottom] = [Math.min(...xs), Math.max(...xs), Math.min(...ys), Math.max(...ys)];
  const frame = [{x: left, y: top}, {x: right, y: top}, {x: right, y: bottom}, {x: left, y: bottom}];
  let best = 0, least = Infinity;
  for (let start = 0; start < 4; ++start) {
    const away = frame.reduce((sum, corner, i) => sum + distance(corner, clockwise[(start + i) % 4]), 0);
    if (away < least) {
      [best, least] = [start, away];
    }
  }
  const at = i => clockwise[(best + i) % 4];
  return [at(0), at(1), at(3), at(2)];
}

function edgesCross(a, b, c, d) {
  return turn(a, b, c) * turn(a, b, d) < 0 && turn(c, d, a) * turn(c, d, b) < 0;
}

// A description of corners that do not form a proper convex quadrilateral, which are drawn bilinearly; empty for
// others.
export function shapeFault(q) {
  const turns = [0, 1, 2, 3].map(i => turn(around(q, i), around(q, i + 1), around(q, i + 2)));
  if (edgesCross(around(q, 0), around(q, 1), around(q, 2), around(q, 3)) ||
      edgesCross(around(q, 1), around(q, 2), around(q, 3), around(q, 0))) {
    return 'Crossed: two edges cross. Drawn bilinearly, not in perspective.';
  }
  if (turns.some(t => t > 0) && turns.some(t => t < 0)) {
    return 'Concave: a corner lies inside the others. Drawn bilinearly, not in perspective.';
  }
  const straight = [0, 1, 2, 3].some(i => {
    const [a, b, c] = [around(q, i), around(q, i + 1), around(q, i + 2)];
    const lengths = distance(a, b) * distance(b, c);
    const cosine = ((b.x - a.x) * (c.x - b.x) + (b.y - a.y) * (c.y - b.y)) / (lengths || 1);
    return Math.abs(cosine - 1) < NEARLY_STRAIGHT || lengths === 0;
  });
  if (straight || turns.some(t => t === 0)) {
    return 'A corner is nearly straight. Drawn bilinearly, not in perspective.';
  }
  return turns[0] < 0 ? 'Mirrored: the layer is seen from behind.' : '';
}

export function distanceToSegment(p, a, b) {
  const length2 = (b.x - a.x) ** 2 + (b.y - a.y) ** 2;
  const t = length2 === 0 ? 0 : ((p.x - a.x) * (b.x - a.x) + (p.y - a.y) * (b.y - a.y)) / length2;
  const s = Math.min(1, Math.max(0, t));
  return distance(p, {x: a.x + s * (b.x - a.x), y: a.y + s * (b.y - a.y)});
}

export function isInside(p, q) {
  let inside = false;
  for (let i = 0; i < 4; ++i) {
    const a = around(q, i), b = around(q, i + 1);
    if ((a.y > p.y) !== (b.y > p.y) && p.x < (b.x - a.x) * (p.y - a.y) / (b.y - a.y) + a.x) {
      inside = !inside;
    }
  }
  return inside;
}

// "12.5"
export const printed = value => String(Math.round(value * DIGITS) / DIGITS);

// The eight numbers of a message.
export const flat = corners => corners.flatMap(p => [p.x, p.y]);
export const fromFlat = numbers => [0, 2, 4, 6].map(i => point(numbers[i], numbers[i + 1]));
