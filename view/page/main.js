// Sets up the page.

import {App} from './app.js';
import {attachKeyboard} from './keyboard.js';
import {get} from './net.js';
import {attachPanel} from './panel.js';
import {play} from './playback.js';
import {attachPointer} from './pointer.js';
import {Stage} from './stage.js';
import {attachTimeline} from './timeline.js';

// The actions that buttons and keys share.
function actsOf(app, stage) {
  const toggled = (name, what) => () => {
    app[name] = !app[name];
    app.say(`${what} ${app[name] ? 'on' : 'off'}`);
    app.changed();
  };
  const seen = change => () => {
    change();
    app.viewChanged();
  };
  return {
    overlay: toggled('overlay', 'Outline'),
    difference: () => {
      toggled('difference', 'Difference')();
      app.loadReference();
    },
    snap: toggled('snapping', 'Snapping'),
    place: () => app.placing ? app.endPlacing() : app.beginPlacing(),
    opacity: value => {
      app.opacity = Math.min(1, Math.max(0, Math.round(value * 20) / 20));
      app.say(`Opacity ${Math.round(100 * app.opacity)} percent`);
      app.changed();
    },
    fit: seen(() => stage.fit()),
    oneToOne: seen(() => stage.zoomTo(1 / stage.ratio)),
    zoom: factor => seen(() => stage.zoomTo(stage.zoom * factor))(),
    play: () => app.frames && play(app),
    step: by => app.frames && app.goTo(app.frame + by * app.frames[2]),
    key: by => {
      const frame = by < 0 ? app.track.keyBefore(app.frame) : app.track.keyAfter(app.frame);
      frame === undefined ? app.say(by < 0 ? 'No key before' : 'No key after') : app.goTo(frame);
    },
    help: () => document.getElementById('help').showModal(),
  };
}

async function start() {
  const canvas = document.getElementById('stage');
  const info = await get('shot');
  const stage = new Stage(canvas, document.getElementById('loupe'), info.size);
  const app = new App(info, stage);
  stage.resize();
  // Requested first, so that the server draws while the page is set up.
  const pictures = Promise.all([app.loadBackdrop(), app.draft()]);
  const act = actsOf(app, stage);
  attachPanel(app, act);
  attachTimeline(app, act);
  attachPointer(app, stage, canvas);
  attachKeyboard(app, stage, canvas, act);
  new ResizeObserver(() => {
    stage.resize();
    app.viewChanged();
  }).observe(canvas);
  window.addEventListener('beforeunload', event => {
    if (app.unsaved) {
      event.preventDefault();
    }
  });
  canvas.focus();
  app.changed();
  await pictures;
  app.settle(0);
  document.documentElement.dataset.ready = 'yes';
}

start().catch(error => {
  document.getElementById('status').textContent = error.message;
});
