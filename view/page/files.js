// Saving, and rendering to files.

import {get, post} from './net.js';
import {Track} from './track.js';

// If another program has changed the file, the page asks before anything is saved, unless `anyway`.
export async function save(app, anyway = false) {
  const {track} = app;
  if (app.info.cannotSave) {
    app.say(app.info.cannotSave, true);
    return;
  }
  try {
    const {changed, file, keys, note} = await post('save', {track: track.toMessage(app.keyFrame), anyway});
    if (changed) {
      app.say(changed, true);
      app.dispatchEvent(new CustomEvent('conflict', {detail: changed}));
      return;
    }
    app.saved = track;
    app.say(`Saved ${keys} ${keys === 1 ? 'key' : 'keys'} to ${file}${note ? `; ${note}` : ''}`);
    app.changed();
  } catch (error) {
    app.say(error.message, true);
  }
}

// Replaces the page's corners by those of the file; can be undone.
export async function reload(app) {
  try {
    const track = Track.fromMessage((await post('reload', {})).track, app.usual);
    app.saved = track;
    app.act(track, `Read from ${app.info.corners}`);
  } catch (error) {
    app.say(error.message, true);
  }
}

export async function command(app) {
  return (await post('command', {frame: app.frame, track: app.track.toMessage(app.keyFrame)})).command;
}

export async function render(app, body) {
  try {
    let state = await post('render', {...body, track: app.track.toMessage(app.keyFrame)});
    const show = () => app.dispatchEvent(new CustomEvent('rendering', {detail: state}));
    while (state.state === 'running') {
      show();
      await new Promise(done => setTimeout(done, 200));
      state = await get('render');
    }
    show();
    app.say(state.message, state.state === 'failed');
  } catch (error) {
    app.say(error.message, true);
  }
}
