// Requests to the server, below the page's own address.

async function answer(path, options) {
  let response;
  try {
    response = await fetch(`api/${path}`, options);
  } catch {
    throw new Error('The view has ended. The corners are still here: copy them, and start it again.');
  }
  if (!response.ok) {
    throw new Error((await response.json()).error);
  }
  return response;
}

export const get = async path => (await answer(path)).json();

export const post = async (path, body) =>
  (await answer(path, {method: 'POST', body: JSON.stringify(body)})).json();

// A picture as a new canvas, or null if a later request has superseded it. `left` and `top` are in pixels of the
// output; each pixel of the canvas is n of those wide.
export async function picture(path, body) {
  const response = await answer(path, {method: 'POST', body: JSON.stringify(body)});
  if (response.status === 204) {
    return null;
  }
  const bytes = await response.arrayBuffer();
  const [left, top, width, height] = new Int32Array(bytes, 0, 4);
  const canvas = document.createElement('canvas');
  [canvas.width, canvas.height] = [width, height];
  if (width > 0 && height > 0) {
    const pixels = new ImageData(new Uint8ClampedArray(bytes, 16), width, height);
    canvas.getContext('2d').putImageData(pixels, 0, 0);
  }
  return {canvas, left, top, n: body.n, frame: body.frame};
}

// Runs one task at a time; of those requested meanwhile only the last one is run.
export class Latest {
  #running = false;
  #next = null;

  constructor(onError) {
    this.onError = onError;
  }

  get busy() {
    return this.#running;
  }

  drop() {
    this.#next = null;
  }

  async run(task) {
    this.#next = task;
    if (this.#running) {
      return;
    }
    this.#running = true;
    while (this.#next) {
      const now = this.#next;
      this.#next = null;
      try {
        await now();
      } catch (error) {
        this.onError(error);
      }
    }
    this.#running = false;
  }
}
