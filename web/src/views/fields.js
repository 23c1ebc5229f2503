// Where a form's errors stand: each under the place that the API names by a JSON pointer.

import {freshId, h} from '../dom.js';

export class Fields {
  #spots = new Map();
  #aliases;

  /** `aliases`: pointers whose errors belong to another place. */
  constructor(aliases = {}) {
    this.#aliases = aliases;
  }

  #spot(pointer) {
    if (!this.#spots.has(pointer)) {
      const note = h('p', {class: 'error', id: freshId('error'), hidden: true});
      this.#spots.set(pointer, {controls: [], note});
    }
    return this.#spots.get(pointer);
  }

  /** The line for the errors of a place. */
  note(pointer) {
    return this.#spot(pointer).note;
  }

  /** A control that the errors of a place are about. */
  claim(pointer, control) {
    this.#spot(pointer).controls.push(control);
    return control;
  }

  /** Forgets the controls of all places but `kept`: they are about to be made anew. */
  release(kept) {
    for (const [pointer, spot] of this.#spots) if (pointer !== kept) spot.controls = [];
  }

  #placeOf(pointer) {
    if (this.#spots.get(pointer)?.controls.length) return pointer;
    return this.#aliases[pointer] ?? pointer;
  }

  /** Puts each of [{pointer, detail}] at its place, and answers with those that have none. */
  show(errors) {
    const byPlace = new Map();
    const homeless = [];
    for (const {pointer, detail} of errors) {
      const place = this.#placeOf(pointer);
      if (this.#spots.get(place)?.controls.length) byPlace.set(place, detail);
      else homeless.push(`${pointer} ${detail}`);
    }
    for (const [place, spot] of this.#spots) mark(spot, byPlace.get(place));
    return homeless;
  }
}

function mark({controls, note}, detail) {
  note.hidden = detail === undefined;
  note.textContent = detail ?? '';
  for (const control of controls) {
    if (detail === undefined) {
      control.removeAttribute('aria-invalid');
      control.removeAttribute('aria-describedby');
    } else {
      control.setAttribute('aria-invalid', 'true');
      control.setAttribute('aria-describedby', note.id);
    }
  }
}
