// The page's state, the actions that change it, and the pictures that show it.

import {NAMES, flat, fromFlat, moved, point, printed, sameCorners, shapeFault, sortedCorners} from './geometry.js';
import {Latest, picture} from './net.js';
import {snapped} from './snap.js';
import {History, Track} from './track.js';

const SETTLE = 80;       // milliseconds without a change before the full-quality picture is requested
const KEPT_TIMES = 500;  // drawing times that are kept

export class App extends EventTarget {
  constructor(info, stage) {
    super();
    this.info = info;
    this.stage = stage;
    const [width, height] = info.size;
    // Without corners, start with a rectangle in the middle.
    this.usual = [[.25, .25], [.75, .25], [.25, .75], [.75, .75]].map(([x, y]) => point(x * width, y * height));
    this.start = Track.fromMessage(info.track, this.usual);
    this.history = new History(this.start);
    this.saved = this.start;
    this.frames = info.frames ?? this.#framesOfKeys();
    this.frame = this.frames ? this.frames[0] : this.start.keys[0]?.frame ?? 0;
    this.hot = [0];
    this.moving = null;  // the corners during a drag
    this.placing = info.track ? null : [];
    Object.assign(this, {overlay: true, difference: false, opacity: 1, snapping: true, playing: false, loupe: null});
    this.version = 0;
    const tell = error => this.say(error.message, true);
    [this.drafts, this.backdrops, this.details, this.loupes] = [0, 1, 2, 3].map(() => new Latest(tell));
  }

  // An animated track has a timeline even if no frame range was given.
  #framesOfKeys() {
    const {keys} = this.start;
    return keys.length > 1 ? [Math.floor(keys[0].frame), Math.ceil(keys.at(-1).frame), 1] : null;
  }

  get track() {
    return this.history.present;
  }
  get corners() {
    return this.moving ?? this.track.at(this.frame);
  }
  get keyFrame() {
    return this.frames ? this.frame : this.track.keys[0]?.frame ?? this.frame;
  }
  get unsaved() {
    return this.track !== this.saved && this.track.keys.length > 0;
  }

  // --- Status and drawing

  say(text, is_fault = false) {
    this.dispatchEvent(new CustomEvent('said', {detail: {text, is_fault}}));
  }

  changed() {
    this.dispatchEvent(new Event('changed'));
    this.schedule();
  }

  schedule() {
    this.scheduled ??= requestAnimationFrame(() => {
      this.scheduled = null;
      this.stage.draw(this.look());
      if (this.stage.base && this.stage.result && !this.has_begun) {
        this.has_begun = true;
        performance.mark('first picture');
      }
      for (const start of this.waiting?.splice(0) ?? []) {
        performance.measure('drag to drawn', {start, end: performance.now()});
      }
      if (performance.getEntriesByName('drag to drawn').length > KEPT_TIMES) {
        performance.clearMeasures('drag to drawn');
      }
    });
  }

  look() {
    const paths = this.track.keys.length > 1 ? [0, 1, 2, 3].map(c => this.track.path(c)) : [];
    return {corners: this.corners, hot: this.hot, overlay: this.overlay, opacity: this.opacity,
            difference: this.difference, paths, points: this.placing ?? [], loupe: this.loupe};
  }

  // --- Pictures

  async loadBackdrop() {
    const {frame} = this;
    await this.backdrops.run(async () => {
      this.stage.base = await picture('backdrop', {frame: this.frame, ...this.stage.whole});
      if (this.frame === frame) {
        this.schedule();
      }
    });
  }

  // The visible part of the plate, in more detail than the overview.
  loadDetail() {
    const seen = this.stage.visible(Math.floor);
    if (this.stage.base && seen.n >= this.stage.base.n) {
      this.stage.detail = null;
      return;
    }
    this.details.run(async () => {
      const detail = await picture('backdrop', {frame: this.frame, ...seen});
      this.stage.detail = detail.frame === this.frame ? detail : null;
      this.schedule();
    });
  }

  loadLoupe() {
    if (this.loupe === null) {
      return;
    }
    this.loupes.run(async () => {
      if (this.loupe !== null) {
        this.stage.near = await picture('backdrop', {frame: this.frame, ...this.stage.loupeRegion(this.corners[this.loupe])});
        this.schedule();
      }
    });
  }

  // Draws the layer at the current corners; `start` is the time of the user's action.
  draft(start) {
    ++this.version;
    return this.drafts.run(async () => {
      const version = this.version;
      const drawn = await picture('draft', {frame: this.frame, corners: flat(this.corners), ...this.stage.visible(Math.round)});
      if (drawn && !(this.stage.result?.full && this.stage.result.version >= version)) {
        this.stage.result = {...drawn, version};
        if (start !== undefined) {
          (this.waiting ??= []).push(start);
        }
        this.schedule();
      }
    });
  }

  // For the difference view: the plate with the same region and detail as the full-quality picture, so that pixels
  // match.
  async loadReference() {
    const {result} = this.stage;
    if (!this.difference || !result?.full || result.reference || result.canvas.width === 0) {
      return;
    }
    const {n, left, top, frame, canvas} = result;
    const region = [left, top, Math.min(this.stage.width, left + n * canvas.width),
                    Math.min(this.stage.height, top + n * canvas.height)];
    try {
      result.reference = (await picture('backdrop', {frame, n, region})).canvas;
      this.schedule();
    } catch (error) {
      this.say(error.message, true);
    }
  }

  // Requests the full-quality picture once nothing has changed for a moment.
  settle(delay = SETTLE) {
    clearTimeout(this.settling);
    this.settling = setTimeout(() => this.#loadFull(), delay);
  }

  async #loadFull() {
    if (this.moving || this.playing) {
      return;
    }
    if (!this.stage.result && this.drafts.busy) {
      this.settle();  // so as not to delay the first draft
      return;
    }
    this.drafts.drop();
    const {version} = this;
    const body = {frame: this.frame, track: this.track.toMessage(this.keyFrame), ...this.stage.visible(Math.floor)};
    try {
      const full = await picture('picture', body);
      if (this.version !== version) {
        return;
      }
      if (!full) {
        this.settle();  // a late draft has superseded it
        return;
      }
      this.stage.result = {...full, full: true, version};
      this.schedule();
      this.loadReference();
      if (this.let_go !== undefined) {
        performance.measure('let go to full quality', {start: this.let_go, end: performance.now()});
        this.let_go = undefined;
      }
      this.dispatchEvent(new Event('settled'));
    } catch (error) {
      this.say(error.message, true);
    }
  }

  // After zooming and panning.
  viewChanged() {
    ++this.version;
    this.schedule();
    clearTimeout(this.viewing);
    this.viewing = setTimeout(() => this.loadDetail(), SETTLE);
    this.settle(2 * SETTLE);
  }

  // --- Actions on corners

  // Applies a track as an action that can be undone.
  act(track, text) {
    this.history.push(track);
    this.#shown(text);
  }

  #shown(text) {
    this.changed();
    this.draft();
    this.settle();
    this.#told(text);
  }

  #told(text) {
    this.loadLoupe();
    this.say([text, shapeFault(this.corners)].filter(Boolean).join('. '));
  }

  setCorners(corners, text) {
    if (!sameCorners(corners, this.corners) || this.track.keys.length === 0) {
      this.act(this.track.withKey(this.keyFrame, corners), text);
    }
  }

  describe(which = this.hot) {
    return which.length > 2 ? 'All corners moved'
        : which.map(c => `${NAMES[c]} ${printed(this.corners[c].x)}, ${printed(this.corners[c].y)}`).join('; ');
  }

  nudge(dx, dy) {
    const corners = this.corners.map((p, c) => this.hot.includes(c) ? moved(p, dx, dy) : p);
    this.loupe = this.hot.length === 1 ? this.hot[0] : null;
    this.setCorners(corners, '');
    this.say([this.describe(), shapeFault(corners)].filter(Boolean).join('. '));
  }

  choose(hot) {
    this.hot = hot;
    this.loupe = hot.length === 1 ? hot[0] : null;
    this.say(hot.length > 2 ? 'All corners' : this.describe());
    this.loadLoupe();
    this.changed();
  }

  // During a drag: `exact` are the dragged corners before snapping.
  drag(exact, start) {
    this.moving = exact;
    this.changed();
    this.draft(start);
    this.loadLoupe();
  }

  async drop(snaps) {
    const [corners, {frame}] = [this.moving, this];
    this.let_go = performance.now();
    if (!corners) {
      return;
    }
    let found = corners;
    if (snaps && this.snapping && this.info.plate && this.hot.length === 1) {
      found = await this.#snappedAt(this.hot[0], corners);
    }
    if (this.frame !== frame) {
      found = corners;
    }
    this.moving = null;
    if (!sameCorners(found, this.corners) || this.track.keys.length === 0) {
      this.history.push(this.track.withKey(this.keyFrame, found));
    }
    // Another draft would look the same as the last one and only delay the full-quality picture.
    ++this.version;
    this.changed();
    this.#told(this.describe() + (found === corners ? '' : ', snapped'));
    this.settle(0);
  }

  async #snappedAt(corner, corners) {
    try {
      const plate = await picture('backdrop', {frame: this.frame, ...this.stage.loupeRegion(corners[corner])});
      const reach = Math.min(8, Math.max(3, 6 / this.stage.zoom));
      const found = snapped(plate, corners[corner], reach);
      return found ? corners.map((p, c) => c === corner ? point(found.x, found.y) : p) : corners;
    } catch (error) {
      this.say(error.message, true);
      return corners;
    }
  }

  beginPlacing() {
    this.placing = [];
    this.say('Click the four corners, in any order');
    this.changed();
  }
  endPlacing() {
    this.placing = null;
    this.changed();
  }

  place(p) {
    this.placing.push(point(p.x, p.y));
    if (this.placing.length < 4) {
      this.say(`${this.placing.length} of 4 corners`);
      this.changed();
      return;
    }
    const corners = sortedCorners(this.placing);
    this.placing = null;
    this.setCorners(corners, 'Four corners placed');
    this.changed();
  }

  undo() {
    this.#shown(this.history.undo() ? 'Undone' : 'Nothing to undo');
  }
  redo() {
    this.#shown(this.history.redo() ? 'Redone' : 'Nothing to redo');
  }
  reset() {
    this.act(this.start, 'As at the start');
  }

  // --- Corners as text, in the command's format

  text() {
    return ['ul', 'ur', 'll', 'lr'].map((name, c) => `--${name} ${printed(this.corners[c].x)},${printed(this.corners[c].y)}`).join(' ');
  }

  paste(text) {
    const numbers = (text.match(/[-+]?(\d+\.?\d*|\.\d+)(e[-+]?\d+)?/gi) ?? []).map(Number);
    if (numbers.length !== 8 || numbers.some(n => !Number.isFinite(n))) {
      this.say('The text does not hold eight numbers; give x and y of the upper left, upper right, lower left and ' +
               'lower right corner', true);
      return;
    }
    this.setCorners(fromFlat(numbers), 'Corners pasted');
  }

  // --- Time

  async goTo(frame) {
    if (!this.frames || !Number.isFinite(frame)) {
      return;
    }
    const [first, last, step] = this.frames;
    const whole = first + Math.round((frame - first) / step) * step;
    this.frame = Math.min(last - (last - first) % step, Math.max(first, whole));
    if (this.info.plateMoves) {
      this.stage.detail = this.stage.near = null;
    }
    this.changed();
    const plate = this.info.plateMoves ? this.loadBackdrop() : null;
    await Promise.all([plate, this.draft()]);
    if (!this.playing) {
      this.viewing = this.info.plateMoves ? this.loadDetail() : this.viewing;
      this.settle();
    }
  }

  // While playing: `base` and `result` are its pictures, or null.
  showFrame({frame, base, result}) {
    ++this.version;
    this.frame = frame;
    if (base) {
      this.stage.base = base;
      this.stage.detail = this.stage.near = null;
    }
    if (result && !this.moving) {
      this.stage.result = {...result, version: this.version};
    }
    this.changed();
  }

  interpolate(interpolation) {
    this.act(this.track.withInterpolation(interpolation), `Between keys: ${interpolation}`);
  }

  deleteKey() {
    if (!this.track.hasKey(this.frame) || this.track.keys.length === 1) {
      this.say(this.track.keys.length === 1 ? 'The only key stays' : 'There is no key on this frame');
      return;
    }
    this.act(this.track.withoutKey(this.frame), `Key on frame ${this.frame} deleted`);
  }
}
