// The timeline of frames and keys.

const element = id => document.getElementById(id);

function drawTicks(app, canvas) {
  const width = canvas.width = canvas.clientWidth * (window.devicePixelRatio || 1);
  const ctx = canvas.getContext('2d');
  const [first, last] = app.frames;
  const thumb = 8;  // the slider's range is inset by this much
  ctx.clearRect(0, 0, width, canvas.height);
  for (const {frame} of app.track.keys) {
    const share = last > first ? (frame - first) / (last - first) : 0;
    if (share >= 0 && share <= 1) {
      ctx.fillStyle = frame === app.frame ? '#ffffff' : '#ffc44d';
      ctx.fillRect(thumb + share * (width - 2 * thumb) - 1, 0, 3, canvas.height);
    }
  }
}

export function attachTimeline(app, act) {
  if (!app.frames) {
    return;
  }
  element('timeline').hidden = false;
  const [scrub, number, ticks] = ['scrub', 'frame-number', 'ticks'].map(element);
  [scrub.min, scrub.max, scrub.step] = app.frames;
  scrub.addEventListener('input', () => app.goTo(Number(scrub.value)));
  number.addEventListener('change', () => app.goTo(Number(number.value)));
  const interpolation = element('interpolation');
  interpolation.disabled = !app.info.interpolates;
  interpolation.title = app.info.interpolates ? '' : 'Only JSON files hold another one';
  interpolation.addEventListener('change', () => app.interpolate(interpolation.value));
  const clicks = {
    'key-previous': () => act.key(-1), 'key-next': () => act.key(1), 'frame-previous': () => act.step(-1),
    'frame-next': () => act.step(1), 'play': act.play, 'key-delete': () => app.deleteKey(),
  };
  for (const [id, handler] of Object.entries(clicks)) {
    element(id).addEventListener('click', handler);
  }
  app.addEventListener('changed', () => {
    scrub.value = app.frame;
    scrub.setAttribute('aria-valuetext', `Frame ${app.frame}${app.track.hasKey(app.frame) ? ', key' : ''}`);
    if (document.activeElement !== number) {
      number.value = app.frame;
    }
    element('play').textContent = app.playing ? 'Stop' : 'Play';
    element('key-delete').disabled = !app.track.hasKey(app.frame) || app.track.keys.length === 1;
    element('key-note').textContent =
        `${app.track.keys.length} ${app.track.keys.length === 1 ? 'key' : 'keys'}`;
    interpolation.value = app.track.interpolation;
    drawTicks(app, ticks);
  });
}
