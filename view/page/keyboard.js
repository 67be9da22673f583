// Keyboard shortcuts. Letters work everywhere except in fields; arrows, Tab and the space bar only on the picture.

import {save} from './files.js';
import {AROUND} from './geometry.js';

const ARROWS = {ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, -1], ArrowDown: [0, 1]};
const PAN = 60, ZOOM = 1.25;

function isField(target) {
  return target.matches('input:not([type=range]), textarea, select');
}

export function attachKeyboard(app, stage, canvas, act) {
  function zoom(factor) {
    stage.zoomTo(stage.zoom * factor);
    app.viewChanged();
  }

  // Moves from corner to corner, and after the last one to the rest of the page.
  function tab(event) {
    const at = app.hot.length === 1 ? AROUND.indexOf(app.hot[0]) : event.shiftKey ? 4 : -1;
    const next = at + (event.shiftKey ? -1 : 1);
    if (next >= 0 && next < 4) {
      app.choose([AROUND[next]]);
      event.preventDefault();
    }
  }

  function arrow(event) {
    const [x, y] = ARROWS[event.key];
    if (event.altKey) {
      stage.panBy(-x * PAN, -y * PAN);
      app.viewChanged();
    } else {
      const step = event.shiftKey ? 10 : event.ctrlKey || event.metaKey ? 0.1 : 1;
      app.nudge(x * step, y * step);
    }
    event.preventDefault();
  }

  const plain = {
    '+': () => zoom(ZOOM), '=': () => zoom(ZOOM), '-': () => zoom(1 / ZOOM), '0': act.fit, '9': act.oneToOne,
    'o': act.overlay, 'd': act.difference, '[': () => act.opacity(app.opacity - 0.05),
    ']': () => act.opacity(app.opacity + 0.05), 'p': act.place, 'n': act.snap, 'r': () => app.reset(), '?': act.help,
    '1': () => app.choose([0]), '2': () => app.choose([1]), '3': () => app.choose([2]), '4': () => app.choose([3]),
    '5': () => app.choose([0, 1, 2, 3]), ',': () => act.step(-1), '.': () => act.step(1),
    'PageUp': () => act.key(-1), 'PageDown': () => act.key(1), 'Delete': () => app.deleteKey(),
    'Escape': () => app.endPlacing(),
  };

  document.addEventListener('keydown', event => {
    const control = event.ctrlKey || event.metaKey;
    if (isField(event.target) || document.querySelector('dialog[open]')) {
      return;
    }
    const on_picture = event.target === canvas || event.target === document.body;
    if (on_picture && event.key in ARROWS) {
      arrow(event);
    } else if (event.target === canvas && event.key === 'Tab') {
      tab(event);
    } else if (on_picture && event.key === ' ') {
      act.play();
      event.preventDefault();
    } else if (control && event.key.toLowerCase() === 'z') {
      event.shiftKey ? app.redo() : app.undo();
      event.preventDefault();
    } else if (control && event.key === 'y') {
      app.redo();
      event.preventDefault();
    } else if (control && event.key === 's') {
      save(app);
      event.preventDefault();
    } else if (!control && !event.altKey && event.key in plain) {
      plain[event.key]();
      event.preventDefault();
    }
  });

  document.addEventListener('copy', event => {
    if (!isField(event.target) && String(getSelection()) === '') {
      event.clipboardData.setData('text/plain', app.text());
      event.preventDefault();
      app.say('Corners copied');
    }
  });
  document.addEventListener('paste', event => {
    if (!isField(event.target)) {
      app.paste(event.clipboardData.getData('text/plain'));
      event.preventDefault();
    }
  });
}
