// The picture: zoom, pan and drawing.

import {AROUND, SHORT, distance, distanceToSegment, isInside, shapeFault} from './geometry.js';

const HANDLE = 5, HIT = 12, EDGE_HIT = 8;  // CSS pixels
const UNSMOOTHED = 2;                      // device pixels per pixel from which pixels are shown as squares
const MAX_ZOOM = 64, LOUPE = 8;
const LINE = '#ffffff', SHADOW = 'rgba(0,0,0,.85)', HOT = '#ffc44d', FAULT = '#ff6a5a';

// The difference is taken pixel by pixel, before scaling.
function differenceOf(result) {
  if (!result.difference) {
    result.difference = document.createElement('canvas');
    [result.difference.width, result.difference.height] = [result.canvas.width, result.canvas.height];
    const ctx = result.difference.getContext('2d');
    ctx.drawImage(result.reference, 0, 0);
    ctx.globalCompositeOperation = 'difference';
    ctx.drawImage(result.canvas, 0, 0);
  }
  return result.difference;
}

export class Stage {
  constructor(canvas, loupe, size) {
    this.canvas = canvas;
    this.loupe = loupe;
    [this.width, this.height] = size;
    this.zoom = 1;  // CSS pixels per pixel of the output
    this.pan = {x: 0, y: 0};
    this.fitted = true;
    this.base = this.detail = this.result = this.near = null;
  }

  get ratio() {
    return window.devicePixelRatio || 1;
  }

  resize() {
    const box = this.canvas.getBoundingClientRect();
    this.canvas.width = Math.max(1, Math.round(box.width * this.ratio));
    this.canvas.height = Math.max(1, Math.round(box.height * this.ratio));
    if (this.fitted) {
      this.fit();
    }
  }

  get box() {
    return {width: this.canvas.width / this.ratio, height: this.canvas.height / this.ratio};
  }

  fit() {
    const margin = 0.94;
    const {width, height} = this.box;
    this.zoom = Math.max(1e-3, margin * Math.min(width / this.width, height / this.height));
    this.pan = {x: (this.width - width / this.zoom) / 2, y: (this.height - height / this.zoom) / 2};
    this.fitted = true;
  }

  // Zooms about a point on screen, which stays in place.
  zoomTo(zoom, place = {x: this.box.width / 2, y: this.box.height / 2}) {
    const under = this.toPicture(place);
    this.zoom = Math.min(MAX_ZOOM, Math.max(0.02, zoom));
    this.pan = {x: under.x - place.x / this.zoom, y: under.y - place.y / this.zoom};
    this.fitted = false;
  }

  panBy(dx, dy) {
    this.pan = {x: this.pan.x - dx / this.zoom, y: this.pan.y - dy / this.zoom};
    this.fitted = false;
  }

  toPicture(place) {
    return {x: place.x / this.zoom + this.pan.x, y: place.y / this.zoom + this.pan.y};
  }
  toScreen(p) {
    return {x: (p.x - this.pan.x) * this.zoom, y: (p.y - this.pan.y) * this.zoom};
  }

  // The visible part of the output, and how many of its pixels make one on screen.
  visible(round) {
    const {width, height} = this.box;
    const end = this.toPicture({x: width, y: height});
    const n = Math.min(64, Math.max(1, round(1 / (this.zoom * this.ratio))));
    const clamped = (value, most) => Math.min(most, Math.max(0, value));
    const region = [clamped(Math.floor(this.pan.x), this.width - 1), clamped(Math.floor(this.pan.y), this.height - 1),
                    clamped(Math.ceil(end.x), this.width), clamped(Math.ceil(end.y), this.height)];
    region[2] = Math.max(region[2], region[0] + 1);
    region[3] = Math.max(region[3], region[1] + 1);
    return {region, n};
  }

  get whole() {
    const n = Math.max(1, Math.floor(Math.max(this.width / this.box.width, this.height / this.box.height) / this.ratio));
    return {region: [0, 0, this.width, this.height], n};
  }

  // What a drag from a point on screen would move: {corners: [...]}, or null. The nearest handle wins.
  hit(place, corners) {
    const on_screen = corners.map(p => this.toScreen(p));
    const nearest = on_screen.map((p, c) => [distance(p, place), c]).sort((a, b) => a[0] - b[0])[0];
    if (nearest[0] <= HIT) {
      return {corners: [nearest[1]]};
    }
    let edge = null, least = EDGE_HIT;
    for (let i = 0; i < 4; ++i) {
      const pair = [AROUND[i], AROUND[(i + 1) % 4]];
      const away = distanceToSegment(place, on_screen[pair[0]], on_screen[pair[1]]);
      if (away < least) {
        [edge, least] = [pair, away];
      }
    }
    if (edge) {
      return {corners: edge};
    }
    return isInside(place, on_screen) ? {corners: [0, 1, 2, 3]} : null;
  }

  #drawPicture(ctx, picture, zoom, pan, ratio) {
    if (!picture || picture.canvas.width === 0 || picture.canvas.height === 0) {
      return;
    }
    const scale = picture.n * zoom * ratio;
    ctx.imageSmoothingEnabled = scale < UNSMOOTHED;
    ctx.drawImage(picture.canvas, (picture.left - pan.x) * zoom * ratio, (picture.top - pan.y) * zoom * ratio,
                  picture.canvas.width * scale, picture.canvas.height * scale);
  }

  // `look`: {corners, hot, overlay, opacity, difference, paths, points}
  draw(look) {
    const ctx = this.canvas.getContext('2d', {alpha: false});
    const {ratio} = this;
    const put = picture => this.#drawPicture(ctx, picture, this.zoom, this.pan, ratio);
    ctx.setTransform(1, 0, 0, 1, 0, 0);
    ctx.globalAlpha = 1;
    ctx.globalCompositeOperation = 'source-over';
    ctx.fillStyle = '#262626';
    ctx.fillRect(0, 0, this.canvas.width, this.canvas.height);
    // Pictures are rounded up to whole proxy pixels; the excess is clipped.
    ctx.save();
    ctx.beginPath();
    const origin = this.toScreen({x: 0, y: 0});
    ctx.rect(origin.x * ratio, origin.y * ratio, this.width * this.zoom * ratio, this.height * this.zoom * ratio);
    ctx.clip();
    if (look.difference) {
      this.#drawDifference(ctx, put);
    } else {
      put(this.base);
      put(this.detail);
      ctx.globalAlpha = look.opacity;
      put(this.result);
    }
    ctx.restore();
    if (look.overlay) {
      this.#drawOverlay(ctx, look);
    }
    this.#drawLoupe(look);
  }

  #drawDifference(ctx, put) {
    ctx.fillStyle = '#000';
    ctx.fillRect(0, 0, this.canvas.width, this.canvas.height);
    const r = this.result;
    if (!r) {
      return;
    }
    const place = this.toScreen({x: r.left, y: r.top});
    const scale = r.n * this.zoom * this.ratio;
    ctx.beginPath();
    ctx.rect(place.x * this.ratio, place.y * this.ratio, r.canvas.width * scale, r.canvas.height * scale);
    ctx.clip();
    if (r.reference) {
      put({...r, canvas: differenceOf(r)});
      return;
    }
    put(this.base);
    put(this.detail);
    ctx.globalCompositeOperation = 'difference';
    put(r);
  }

  #drawOverlay(ctx, look) {
    ctx.setTransform(this.ratio, 0, 0, this.ratio, 0, 0);
    ctx.lineJoin = 'round';
    const stroke = (path, colour, width) => {
      for (const [style, extra] of [[SHADOW, 2.5], [colour, 0]]) {
        ctx.strokeStyle = style;
        ctx.lineWidth = width + extra;
        ctx.stroke(path);
      }
    };
    for (const points of look.paths) {
      const path = new Path2D();
      points.map(p => this.toScreen(p)).forEach((p, i) => i ? path.lineTo(p.x, p.y) : path.moveTo(p.x, p.y));
      stroke(path, '#8fd0ff', 1);
    }
    const fault = shapeFault(look.corners);
    const outline = new Path2D();
    AROUND.map(c => this.toScreen(look.corners[c])).forEach((p, i) => i ? outline.lineTo(p.x, p.y) : outline.moveTo(p.x, p.y));
    outline.closePath();
    ctx.setLineDash(fault ? [7, 5] : []);
    stroke(outline, fault ? FAULT : LINE, 1.25);
    ctx.setLineDash([]);
    ctx.font = '600 12px system-ui, sans-serif';
    look.corners.forEach((corner, c) => this.#drawHandle(ctx, stroke, corner, SHORT[c], look.hot.includes(c)));
    for (const p of look.points) {
      this.#drawHandle(ctx, stroke, p, '', true);
    }
  }

  #drawHandle(ctx, stroke, corner, name, is_hot) {
    const p = this.toScreen(corner);
    const ring = new Path2D();
    ring.arc(p.x, p.y, HANDLE, 0, 2 * Math.PI);
    stroke(ring, is_hot ? HOT : LINE, is_hot ? 2 : 1.5);
    ctx.lineWidth = 3;
    ctx.strokeStyle = SHADOW;
    ctx.strokeText(name, p.x + 9, p.y - 8);
    ctx.fillStyle = is_hot ? HOT : LINE;
    ctx.fillText(name, p.x + 9, p.y - 8);
  }

  // The plate around the hot corner, with the edges that meet there.
  #drawLoupe(look) {
    const shown = look.overlay && look.loupe !== null;
    this.loupe.hidden = !shown;
    if (!shown) {
      return;
    }
    const centre = look.corners[look.loupe];
    const ctx = this.loupe.getContext('2d', {alpha: false});
    const half = this.loupe.width / 2;
    const pan = {x: centre.x - half / LOUPE, y: centre.y - half / LOUPE};
    ctx.fillStyle = '#262626';
    ctx.fillRect(0, 0, 2 * half, 2 * half);
    for (const picture of [this.base, this.detail, this.near]) {
      this.#drawPicture(ctx, picture, LOUPE, pan, 1);
    }
    const at = p => [(p.x - pan.x) * LOUPE, (p.y - pan.y) * LOUPE];
    ctx.strokeStyle = 'rgba(255,255,255,.8)';
    ctx.beginPath();
    const place = AROUND.indexOf(look.loupe);
    for (const step of [1, 3]) {
      ctx.moveTo(...at(centre));
      ctx.lineTo(...at(look.corners[AROUND[(place + step) % 4]]));
    }
    ctx.stroke();
    ctx.strokeStyle = HOT;
    ctx.strokeRect(half - 4, half - 4, 8, 8);
    this.loupe.classList.toggle('left', this.toScreen(centre).x > this.box.width - 220);
  }

  // The part of the plate that the loupe shows, with a few more pixels for finding corners.
  loupeRegion(p) {
    const reach = 24;
    const clamped = (value, most) => Math.min(most, Math.max(0, Math.round(value)));
    return {region: [clamped(p.x - reach, this.width - 1), clamped(p.y - reach, this.height - 1),
                     clamped(p.x + reach, this.width) || 1, clamped(p.y + reach, this.height) || 1], n: 1};
  }
}
