// Corners over time: keys, and acts that can be undone. Tracks are never changed; every act makes a new one.

import {flat, fromFlat, point} from './geometry.js';

export class Track {
  // `keys`: [{frame, corners}], ascending. Without keys the corners are `usual` throughout.
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
    const share = (frame - before.frame) / (after.frame - before.frame);
    return before.corners.map((p, c) => point(p.x + share * (after.corners[c].x - p.x),
                                              p.y + share * (after.corners[c].y - p.y)));
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
