// One event: its form, and what can be done to it. "new" is one that is not there yet.

import * as api from '../api.js';
import * as deeds from '../deeds.js';
import {button, h, replace} from '../dom.js';
import {draftOf, newDraft} from '../draft.js';
import {house} from '../house.js';
import {t} from '../locale.js';
import {failed, notice} from '../notices.js';
import {sentence} from '../sentence.js';
import {deedsOf, duplicateAndOpen} from '../sheet.js';
import {EventForm} from './eventform.js';
import {askLeave, eventHead, sendOverOthers, tellOfClash} from './eventhead.js';

export function newEvent(root, {params}) {
  let dirty = false;
  const onSave = async (event) => {
    const added = await api.post('/events', event);
    dirty = false;
    house.events.set(added.id, added);
    notice(t('form.added', added), {undo: () => takeBack(added.id)});
    location.hash = `#/events/${added.id}`;
  };
  const form = new EventForm(newDraft(house.wallNow(), params), {
    saveLabel: t('form.add'),
    onChange: () => (dirty = true),
    onSave,
    onTrouble: failed,
  });
  root.append(h('h1', {tabindex: '-1'}, t('new')), form.element);
  form.focus();
  return {
    title: t('new'),
    on: {},
    end: () => form.end(),
    dirty: () => dirty,
    leaves: () => !dirty || askLeave(),
    focused: true,
  };
}

async function takeBack(id) {
  await api.remove(`/events/${id}`);
  if (location.hash.startsWith(`#/events/${id}`)) location.hash = '#/events';
}

export function event(root, {id}) {
  const page = new EventPage(id);
  root.append(page.head.element, page.bar, page.body);
  page.drawBar();
  page.read();
  return {
    title: house.eventName(id) ?? t('event.gone'),
    on: {
      events: (detail) => page.changed(detail),
      project: () => page.head.draw(),
      today: () => page.head.draw(),
      replaced: () => page.read({kept: true}),
    },
    end: () => page.form?.end(),
    dirty: () => page.dirty,
    leaves: () => !page.dirty || askLeave(),
  };
}

class EventPage {
  bar = h('div', {class: 'row deeds'});
  body = h('div');
  form = null;
  /** Something is typed that is not saved. */
  dirty = false;
  #id;
  #tag = null;
  #saving = false;

  constructor(id) {
    this.#id = id;
    this.head = eventHead(id, 'when');
  }

  drawBar() {
    const shown = house.events.get(this.#id);
    if (!shown) return replace(this.bar);
    const deed = (label, drawing, work, kind) =>
      button(label, work, {drawing, kind, 'data-key': `deed-${drawing}-${label}`});
    replace(
      this.bar,
      deedsOf(shown).map(([label, drawing, work]) => deed(label, drawing, work)),
      deed(t('press'), 'done', () => deeds.press(shown)),
      deed(t('duplicate'), 'plus', () => duplicateAndOpen(shown)),
      deed(t('delete'), 'remove', () => this.#remove(shown), 'danger'),
    );
  }

  async #remove(shown) {
    if (!(await deeds.remove(shown))) return;
    this.dirty = false;
    location.hash = '#/events';
  }

  /** Shows it as it is now. `kept`: but for what was typed meanwhile, and for what is shown already. */
  async read({kept = false} = {}) {
    try {
      const {value, tag} = await api.getVersioned(`/events/${this.#id}`);
      if (kept && tag === this.#tag) return;
      if (kept && this.dirty) return tellOfClash(this.body, () => this.read());
      this.#tag = tag;
      this.#draw(value);
    } catch (error) {
      if (error.status !== 404) return failed(error);
      const back = h('a', {class: 'button', href: '#/events'}, t('nav.events'));
      replace(this.body, h('p', null, t('event.goneText')), back);
    }
  }

  #draw(value) {
    this.dirty = false;
    this.form?.end();
    if (value.odd) return replace(this.body, oddNote(value));
    this.form = new EventForm(draftOf(value), {
      id: this.#id,
      saveLabel: t('save'),
      onChange: () => (this.dirty = true),
      onSave: (wanted) => this.#save(wanted, value),
      onTrouble: failed,
    });
    replace(this.body, value.programming?.actions === 0 && this.#idleNote(), this.form.element);
  }

  #idleNote() {
    const href = `#/events/${this.#id}/programming`;
    const link = h('a', {href}, t('event.sayWhat'));
    return h('p', {class: 'card hint'}, t('event.idle'), ' ', link);
  }

  async #save(wanted, before) {
    this.#saving = true;
    this.dirty = false;
    let saved = false;
    try {
      const path = `/events/${this.#id}`;
      const response = await sendOverOthers(this.#tag, (match) =>
        api.send('PUT', path, {body: wanted, match}),
      );
      saved = response !== null;
      if (saved) await this.#saved(response, before);
    } finally {
      if (!saved) this.dirty = true;
      this.#saving = false;
    }
  }

  async #saved(response, before) {
    this.#tag = response.headers.get('ETag');
    const event = await response.json();
    // Whoever typed on meanwhile keeps that.
    if (!this.dirty) this.#draw(event);
    const {description, start, time, repeat} = before;
    const body = {description, start, time: deeds.timeToSend(time), repeat};
    const undo = async () => {
      await api.put(`/events/${this.#id}`, body);
      await this.read();
    };
    notice(t('form.saved', event), {undo});
  }

  /** Somebody, perhaps this page, has changed something about events. */
  changed(detail) {
    this.head.draw();
    this.drawBar();
    if (this.#saving || detail?.id !== this.#id) return;
    if (!['modified', 'added', 'deleted'].includes(detail.change)) return;
    this.read({kept: true});
  }
}

const oddNote = (value) =>
  h('div', {class: 'card'}, h('p', null, sentence(value)), h('p', null, t('event.odd')));
