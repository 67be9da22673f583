// Plays the frames as fast as their drafts arrive, but no faster than the frame rate.

import {flat} from './geometry.js';
import {picture} from './net.js';

// The frame's pictures; null if they cannot be loaded.
async function load(app, frame) {
  try {
    const corners = flat(app.moving ?? app.track.at(frame));
    const [base, result] = await Promise.all([
      app.info.plateMoves ? picture('backdrop', {frame, ...app.stage.whole}) : null,
      picture('draft', {frame, corners, ...app.stage.visible(Math.round)}),
    ]);
    return {frame, base, result};
  } catch (error) {
    app.say(error.message, true);
    return null;
  }
}

// Starts playback, or stops it if running. The next frame is loaded while one is shown.
export async function play(app) {
  app.playing = !app.playing;
  app.changed();
  if (!app.playing) {
    return;
  }
  const run = app.run = {};  // another run may begin before this one has ended
  const [first, last, step] = app.frames;
  const after = frame => frame + step > last ? first : frame + step;
  let shown = app.frame;
  let next = load(app, after(shown));
  while (app.playing && app.run === run) {
    const [loaded] = await Promise.all([next, new Promise(done => setTimeout(done, 1000 / app.info.fps))]);
    if (!app.playing || app.run !== run) {
      break;
    }
    if (!loaded) {
      app.playing = false;
      break;
    }
    if (app.frame === shown) {
      app.showFrame(loaded);
    }
    shown = app.frame;  // or the frame that the user has gone to meanwhile
    next = load(app, after(shown));
  }
  if (app.run === run) {
    app.goTo(app.frame);
  }
}
