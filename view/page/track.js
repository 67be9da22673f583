// Corners over time: keys, and actions that can be undone. Tracks are immutable; every action creates a new one.

import {flat, fromFlat, point} from './geometry.js';

const PATH_STEPS = 12;  // between two keys

const secant = (a, b) => (b.value - a.value) / (b.time - a.time);

// The slope at the middle one of three knots: the weighted harmonic mean of the slopes on either side, 0 if their signs
// differ.
function slope(a, b, c) {
  const [left, right] = [secant(a, b), secant(b, c)];
  if (!(left * right > 0)) {
    return 0;
  }
  const left_weight = 2 * (c.time - b.time) + (b.time - a.time);
  const right_weight = (c.time - b.time) + 2 * (b.time - a.time);
  return (left_weight + right_weight) / (left_weight / left + right_weight / right);
}

export class Track {
  // `keys`: [{frame, corners}], ascending. Without keys the corners are `usual` on every frame.
  constructor(keys, interpolation, usual) {
    this.keys = keys;
    this.interpolation = interpolation;
    this.usual = usual;
  }

  static fromMessage(message, usual) {
    const keys = message ? message.keys.map(numbers => ({frame: numbers[0], corners: fromFlat(numbers.slice(1))})) : [];
    return new Track(keys, message ? message.interpolation : 'linear', usual);
  }

  toMessage(frame) {
    const keys = this.keys.length ? this.keys : [{frame, corners: this.usual}];
    return {interpolation: this.interpolation, keys: keys.map(key => [key.frame, ...flat(key.corners)])};
  }

  at(frame) {
    const {keys} = this;
    if (keys.length === 0) {
      return this.usual;
    }
    const next = keys.findIndex(key => key.frame > frame);
    if (next === 0 || next < 0) {
      return keys[next === 0 ? 0 : keys.length - 1].corners;
    }
    const [before, after] = [keys[next - 1], keys[next]];
    if (before.frame === frame || this.interpolation === 'hold') {
      return before.corners;
    }
    if (this.interpolation === 'smooth') {
      return before.corners.map((_, c) => {
        const [x, y] = ['x', 'y'].map(axis => this.#smoothly(next, c, axis, frame));
        return point(x, y);
      });
    }
    const share = (frame - before.frame) / (after.frame - before.frame);
    return before.corners.map((p, c) => point(p.x + share * (after.corners[c].x - p.x),
                                              p.y + share * (after.corners[c].y - p.y)));
  }

  // Between key `next` and the one before it: the monotone cubic, with the renderer's slopes.
  #smoothly(next, corner, axis, frame) {
    const knot = i => this.keys[i] && {time: this.keys[i].frame, value: this.keys[i].corners[corner][axis]};
    const [before, begin, end, after] = [next - 2, next - 1, next, next + 1].map(knot);
    const chord = secant(begin, end);
    const first = before ? slope(before, begin, end) : chord;
    const last = after ? slope(begin, end, after) : chord;
    const length = end.time - begin.time;
    const t = (frame - begin.time) / length;
    const curve = length * t * (1 - t) * ((first - chord) * (1 - t) - (last - chord) * t);
    return begin.value + (end.value - begin.value) * t + curve;
  }

  // The path of a corner from the first to the last key.
  path(corner) {
    const frames = this.keys.flatMap(({frame}, i) => {
      const steps = this.interpolation === 'smooth' && i + 1 < this.keys.length ? PATH_STEPS : 1;
      return Array.from({length: steps}, (_, s) => frame + s * ((this.keys[i + 1]?.frame ?? frame) - frame) / steps);
    });
    return frames.map(frame => this.at(frame)[corner]);
  }

  withInterpolation(interpolation) {
    return new Track(this.keys, interpolation, this.usual);
  }

  hasKey(frame) {
    return this.keys.some(key => key.frame === frame);
  }

  withKey(frame, corners) {
    const keys = this.keys.filter(key => key.frame !== frame);
    keys.push({frame, corners});
    keys.sort((a, b) => a.frame - b.frame);
    return new Track(keys, this.interpolation, this.usual);
  }

  withoutKey(frame) {
    return new Track(this.keys.filter(key => key.frame !== frame), this.interpolation, this.usual);
  }

  // The nearest key before or after, or undefined.
  keyBefore(frame) {
    return this.keys.filter(key => key.frame < frame).at(-1)?.frame;
  }
  keyAfter(frame) {
    return this.keys.find(key => key.frame > frame)?.frame;
  }
}

export class History {
  constructor(track) {
    this.past = [];
    this.present = track;
    this.future = [];
  }

  push(track) {
    this.past.push(this.present);
    this.present = track;
    this.future = [];
  }

  undo() {
    return this.#step(this.past, this.future);
  }
  redo() {
    return this.#step(this.future, this.past);
  }

  #step(from, to) {
    if (from.length === 0) {
      return false;
    }
    to.push(this.present);
    this.present = from.pop();
    return true;
  }
}
