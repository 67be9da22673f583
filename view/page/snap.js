// Finding a corner of the plate near a point, to a fraction of a pixel.

const WINDOW = 5;        // pixels on each side that are used for the fit
const ROUNDS = 20;
const SETTLED = 0.01;    // pixels
const LEAST_RATIO = 0.06; // of the smaller to the larger eigenvalue; below this it is an edge, not a corner
const LEAST_GRADIENT = 40;

// Luminance and gradients of a picture at full resolution.
function gradients(picture) {
  const {width, height} = picture.canvas;
  const {data} = picture.canvas.getContext('2d').getImageData(0, 0, width, height);
  const grey = new Float64Array(width * height);
  for (let i = 0; i < grey.length; ++i) {
    grey[i] = 0.299 * data[4 * i] + 0.587 * data[4 * i + 1] + 0.114 * data[4 * i + 2];
  }
  const at = (x, y) => grey[Math.min(height - 1, Math.max(0, y)) * width + Math.min(width - 1, Math.max(0, x))];
  const side = (x, y, dx, dy) => at(x + dx - dy, y + dy - dx) + 2 * at(x + dx, y + dy) + at(x + dx + dy, y + dy + dx);
  // The Sobel gradient, which is less sensitive to jagged edges, at the centre of pixel (x, y), at x + 0.5, y + 0.5.
  return (x, y) => [(side(x, y, 1, 0) - side(x, y, -1, 0)) / 8, (side(x, y, 0, 1) - side(x, y, 0, -1)) / 8];
}

// Near a corner every gradient is perpendicular to the line from the corner to its pixel. Finds the point for which
// this holds best, by weighted least squares around (x, y); null if there is no corner in the window.
function refined(gradient, x, y) {
  let [a, b, c, u, v] = [0, 0, 0, 0, 0];
  const [left, top] = [Math.floor(x), Math.floor(y)];
  for (let py = top - WINDOW; py <= top + WINDOW; ++py) {
    for (let px = left - WINDOW; px <= left + WINDOW; ++px) {
      const [gx, gy] = gradient(px, py);
      const [dx, dy] = [px + 0.5 - x, py + 0.5 - y];
      const weight = Math.exp(-(dx * dx + dy * dy) / (WINDOW * WINDOW));
      const [xx, xy, yy] = [weight * gx * gx, weight * gx * gy, weight * gy * gy];
      a += xx;
      b += xy;
      c += yy;
      u += xx * dx + xy * dy;
      v += xy * dx + yy * dy;
    }
  }
  const determinant = a * c - b * b;
  const half = (a + c) / 2;
  const root = Math.sqrt(Math.max(0, half * half - determinant));
  if (half + root < LEAST_GRADIENT || half - root < LEAST_RATIO * (half + root)) {
    return null;
  }
  return {x: x + (c * u - b * v) / determinant, y: y + (a * v - b * u) / determinant};
}

// The corner of the plate nearest to the point, at most `reach` pixels away, or null. `plate` is a picture of the
// surroundings at full resolution.
export function snapped(plate, p, reach) {
  const gradient = gradients(plate);
  let at = {x: p.x - plate.left, y: p.y - plate.top};
  const start = at;
  for (let round = 0; round < ROUNDS; ++round) {
    const next = refined(gradient, at.x, at.y);
    if (!next || Math.hypot(next.x - start.x, next.y - start.y) > reach) {
      return null;
    }
    const step = Math.hypot(next.x - at.x, next.y - at.y);
    at = next;
    if (step < SETTLED) {
      return {x: at.x + plate.left, y: at.y + plate.top};
    }
  }
  return null;
}
