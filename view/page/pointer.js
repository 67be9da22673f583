// Mouse, pen and fingers on the picture.

import {moved} from './geometry.js';

const CLICK = 4;  // CSS pixels that the pointer may move during a click
const FINE = 0.1;
const WHEEL = 0.0015;

export function attachPointer(app, stage, canvas) {
  const pointers = new Map();
  let drag = null;

  const placeOf = event => {
    const box = canvas.getBoundingClientRect();
    return {x: event.clientX - box.left, y: event.clientY - box.top};
  };

  function beginDrag(event, place) {
    const pans = event.button === 1 || (event.button === 0 && event.ctrlKey);
    const hit = pans ? null : stage.hit(place, app.corners);
    drag = {place, start: place, hit, exact: app.corners, total: {x: 0, y: 0}, began: false};
    if (hit) {
      app.hot = hit.corners;
      app.loupe = hit.corners.length === 1 ? hit.corners[0] : null;
      app.loadLoupe();
      app.changed();
    }
  }

  function moveDrag(event, place) {
    const dx = place.x - drag.place.x, dy = place.y - drag.place.y;
    drag.place = place;
    drag.began ||= Math.hypot(place.x - drag.start.x, place.y - drag.start.y) > (app.placing ? CLICK : 0);
    if (!drag.began) {
      return;
    }
    if (!drag.hit) {
      stage.panBy(dx, dy);
      app.viewChanged();
      return;
    }
    const pace = (event.altKey ? FINE : 1) / stage.zoom;
    drag.total.x += dx * pace;
    drag.total.y += dy * pace;
    let {x, y} = drag.total;
    if (event.shiftKey) {
      [x, y] = Math.abs(x) >= Math.abs(y) ? [x, 0] : [0, y];
    }
    app.drag(drag.exact.map((p, c) => drag.hit.corners.includes(c) ? moved(p, x, y) : p), event.timeStamp);
  }

  function endDrag(event) {
    const ended = drag;
    drag = null;
    if (app.placing && !ended.began && event.type === 'pointerup' && event.button === 0) {
      app.place(stage.toPicture(ended.place));
    } else if (ended.hit && ended.began) {
      app.placing = null;
      app.drop(!event.altKey);
    }
  }

  // Two fingers zoom and pan.
  function pinch(event, place) {
    const others = [...pointers].filter(([id]) => id !== event.pointerId);
    const before = pointers.get(event.pointerId);
    const other = others[0][1];
    const middle = (a, b) => ({x: (a.x + b.x) / 2, y: (a.y + b.y) / 2});
    const apart = (a, b) => Math.max(1, Math.hypot(a.x - b.x, a.y - b.y));
    const [from, to] = [middle(before, other), middle(place, other)];
    stage.panBy(to.x - from.x, to.y - from.y);
    stage.zoomTo(stage.zoom * apart(place, other) / apart(before, other), to);
    app.viewChanged();
  }

  canvas.addEventListener('pointerdown', event => {
    canvas.focus();
    canvas.setPointerCapture(event.pointerId);
    const place = placeOf(event);
    pointers.set(event.pointerId, place);
    if (pointers.size === 1) {
      beginDrag(event, place);
    } else if (drag) {
      app.moving = null;
      drag = null;
      app.changed();
    }
    event.preventDefault();
  });

  canvas.addEventListener('pointermove', event => {
    const place = placeOf(event);
    if (pointers.size > 1 && pointers.has(event.pointerId)) {
      pinch(event, place);
    } else if (drag) {
      moveDrag(event, place);
    } else {
      canvas.style.cursor = app.placing ? 'crosshair' : stage.hit(place, app.corners) ? 'move' : 'default';
    }
    if (pointers.has(event.pointerId)) {
      pointers.set(event.pointerId, place);
    }
  });

  for (const type of ['pointerup', 'pointercancel']) {
    canvas.addEventListener(type, event => {
      pointers.delete(event.pointerId);
      if (drag && pointers.size === 0) {
        endDrag(event);
      }
    });
  }

  canvas.addEventListener('wheel', event => {
    event.preventDefault();
    stage.zoomTo(stage.zoom * Math.exp(-event.deltaY * (event.deltaMode ? 30 : 1) * WHEEL), placeOf(event));
    app.viewChanged();
  }, {passive: false});
}
