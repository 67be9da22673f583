// The fields and buttons beside the picture.

import {command, reload, render, save} from './files.js';
import {NAMES, point, printed, shapeFault} from './geometry.js';

const element = id => document.getElementById(id);

// "12.5" or "12.5%" as pixels, or NaN.
function parsed(text, extent, in_percent) {
  const percent = text.trim().endsWith('%');
  const digits = text.trim().replace(/%$/, '');
  const value = digits === '' ? NaN : Number(digits);
  return percent || in_percent ? value * extent / 100 : value;
}

function addFields(app) {
  const box = element('corner-fields');
  const [width, height] = app.info.layerSize;
  const in_percent = () => element('units').value === 'percent';
  const fields = NAMES.flatMap((name, c) => {
    const choose = document.createElement('button');
    choose.textContent = name;
    choose.addEventListener('click', () => app.choose([c]));
    box.append(choose);
    return ['x', 'y'].map(axis => {
      const field = document.createElement('input');
      field.id = `corner-${c}-${axis}`;
      field.inputMode = 'decimal';
      field.autocomplete = 'off';
      field.setAttribute('aria-label', `${name} ${axis}`);
      const extent = axis === 'x' ? width : height;
      // A field that is being edited is left alone.
      field.addEventListener('input', () => { field.dataset.typing = 'yes'; });
      field.addEventListener('blur', () => delete field.dataset.typing);
      field.addEventListener('change', () => {
        delete field.dataset.typing;
        const value = parsed(field.value, extent, in_percent());
        if (Number.isNaN(value) || Math.abs(value) >= 32768) {
          app.say(`${name} ${axis}: '${field.value}' is not a position; give pixels or percent`, true);
          app.changed();
          return;
        }
        const corners = app.corners.map((p, i) => i === c ? point(axis === 'x' ? value : p.x, axis === 'y' ? value : p.y) : p);
        app.hot = [c];
        app.setCorners(corners, app.describe([c]));
        app.changed();
      });
      box.append(field);
      return {field, choose, c, axis, extent};
    });
  });
  return () => {
    for (const {field, choose, c, axis, extent} of fields) {
      if (!field.dataset.typing) {
        const value = app.corners[c][axis];
        field.value = in_percent() ? printed(100 * value / extent) + '%' : printed(value);
      }
      choose.setAttribute('aria-current', app.hot.includes(c));
    }
  };
}

function hintOf(app) {
  if (app.placing) {
    return app.placing.length ? `${4 - app.placing.length} more` : 'Click the four corners, in any order, or drag the outline';
  }
  return '';
}

function attachRendering(app) {
  const [bar, note, cancel] = ['render-progress', 'render-note', 'render-cancel'].map(element);
  const starts = ['render-frame', 'render-range'].map(element);
  const can = app.info.output !== null;
  starts[0].addEventListener('click', () => render(app, {frame: app.frame}));
  starts[1].addEventListener('click', () => render(app, {}));
  starts[1].hidden = app.info.frames === null;
  cancel.addEventListener('click', () => fetch('api/cancel', {method: 'POST', body: '{}'}));
  note.textContent = can ? `to ${app.info.output}` : 'Start with -o OUT to render from here.';
  starts.forEach(button => { button.disabled = !can; });
  app.addEventListener('rendering', ({detail}) => {
    const running = detail.state === 'running';
    bar.hidden = cancel.hidden = !running;
    bar.max = detail.total;
    bar.value = detail.done;
    note.textContent = running ? `${detail.done} of ${detail.total}` : detail.message;
    starts.forEach(button => { button.disabled = running; });
  });
}

// Updates the command line once the corners have stopped moving.
function attachCommand(app) {
  const field = element('command');
  const update = async () => {
    try {
      field.value = await command(app);
    } catch (error) {
      app.say(error.message, true);
    }
  };
  let waiting;
  app.addEventListener('changed', () => {
    clearTimeout(waiting);
    waiting = setTimeout(update, 300);
  });
  element('command-copy').addEventListener('click', async () => {
    await update();
    copyText(app, field.value, 'Command copied');
  });
}

async function copyText(app, text, said) {
  try {
    await navigator.clipboard.writeText(text);
    app.say(said);
  } catch {
    app.say('The browser does not let a button copy; press Ctrl+C instead', true);
  }
}

export function attachPanel(app, act) {
  const showFields = addFields(app);
  attachRendering(app);
  attachCommand(app);
  const clicks = {
    'undo': () => app.undo(), 'redo': () => app.redo(), 'reset': () => app.reset(), 'save': () => save(app),
    'place': act.place, 'snap': act.snap, 'overlay': act.overlay, 'difference': act.difference,
    'zoom-fit': act.fit, 'zoom-one': act.oneToOne, 'zoom-in': () => act.zoom(1.25), 'zoom-out': () => act.zoom(0.8),
    'help-open': act.help, 'copy': () => copyText(app, app.text(), 'Corners copied'),
    'paste': async () => {
      try {
        app.paste(await navigator.clipboard.readText());
      } catch {
        app.say('The browser does not let a button paste; press Ctrl+V instead', true);
      }
    },
  };
  for (const [id, handler] of Object.entries(clicks)) {
    element(id).addEventListener('click', handler);
  }
  element('conflict-reload').addEventListener('click', () => reload(app));
  element('conflict-save').addEventListener('click', () => save(app, true));
  app.addEventListener('conflict', ({detail}) => {
    element('conflict-text').textContent = `${detail}.`;
    element('conflict').showModal();
  });
  element('opacity').addEventListener('input', event => act.opacity(event.target.value / 100));
  element('units').addEventListener('change', showFields);
  element('save').disabled = Boolean(app.info.cannotSave);
  element('save-note').textContent = app.info.cannotSave ?? `to ${app.info.corners}`;
  const {layer, plate} = app.info;
  element('names').textContent = plate ? `${layer} over ${plate}` : layer;

  const press = (id, on) => element(id).setAttribute('aria-pressed', on);
  app.addEventListener('changed', () => {
    showFields();
    press('place', app.placing !== null);
    press('snap', app.snapping);
    press('overlay', app.overlay);
    press('difference', app.difference);
    element('opacity').value = Math.round(100 * app.opacity);
    element('undo').disabled = app.history.past.length === 0;
    element('redo').disabled = app.history.future.length === 0;
    element('hint').textContent = hintOf(app);
    const fault = shapeFault(app.corners);
    if (element('shape').textContent !== fault) {
      element('shape').textContent = fault;
    }
    document.title = `${app.unsaved ? '• ' : ''}Vantorel`;
  });
  app.addEventListener('said', ({detail}) => {
    element('status').textContent = detail.text;
    element('status').classList.toggle('fault', detail.is_fault);
  });
}
