// One event: its form, and what can be done to it. "new" is one that is not there yet.

import * as api from '../api.js';
import * as deeds from '../deeds.js';
import {button, h, icon, replace} from '../dom.js';
import {draftOf, newDraft} from '../draft.js';
import {house} from '../house.js';
import {t} from '../locale.js';
import {confirmed, failed, notice} from '../notices.js';
import {sentence} from '../sentence.js';
import {deedsOf, duplicateAndOpen, holdsText, momentText} from '../sheet.js';
import {eventForm} from './eventform.js';

export function newEvent(root, {params}) {
  let dirty = false;
  const form = eventForm(newDraft(house.wallNow(), params), {
    saveLabel: t('form.add'),
    onChange: () => { dirty = true; },
    onSave: async (event) => {
      const added = await api.post('/events', event);
      dirty = false;
      house.events.set(added.id, added);
      notice(t('form.added', added), {undo: async () => {
        await api.remove(`/events/${added.id}`);
        if (location.hash.startsWith(`#/events/${added.id}`)) location.hash = '#/events';
      }});
      location.hash = `#/events/${added.id}`;
    },
  });
  form.element.addEventListener('failed', ({detail}) => failed(detail));
  root.append(h('h1', {tabindex: '-1'}, t('new')), form.element);
  form.focus();
  return {title: t('new'), on: {}, end: form.end, dirty: () => dirty, leaves: () => !dirty || askLeave(), focused: true};
}

export const askLeave = () => confirmed(t('leave.title'), t('leave.text'), t('leave.yes'));

/** The head that an event's pages have in common, with the way between them. */
export function eventHead(id, page) {
  const head = h('div', {class: 'eventhead'});
  const draw = () => {
    const event = house.events.get(id);
    if (!event) return replace(head, h('h1', {tabindex: '-1'}, t('event.gone')));
    const holds = holdsText(event);
    const tab = (name, path, label) => h('a', {href: `#/events/${id}${path}`, 'data-key': `tab-${name}`,
      'aria-current': page === name ? 'page' : null}, label);
    replace(head,
      h('h1', {tabindex: '-1'}, event.description),
      h('p', {class: 'muted'}, event.next ? t('sheet.next', {when: momentText(event.next)}) : t('sheet.never')),
      holds && h('p', {class: 'held'}, icon('held'), ' ', holds),
      h('nav', {class: 'segments', 'aria-label': t('event.pages')},
        tab('when', '', t('form.when')), tab('programming', '/programming', t('nav.programming')),
        h('a', {href: `#/journal?event=${id}`}, t('nav.journal'))));
  };
  draw();
  return {element: head, draw};
}

export function event(root, {id}) {
  const head = eventHead(id, 'when');
  const bar = h('div', {class: 'row deeds'});
  const body = h('div');
  root.append(head.element, bar, body);
  let form = null;
  let tag = null;
  let dirty = false;
  let saving = false;

  const drawBar = () => {
    const shown = house.events.get(id);
    if (!shown) return replace(bar);
    replace(bar,
      deedsOf(shown).map(([label, drawing, deed]) => button(label, deed, {drawing, 'data-key': `deed-${drawing}-${label}`})),
      button(t('press'), () => deeds.press(shown), {drawing: 'done', 'data-key': 'press'}),
      button(t('duplicate'), () => duplicateAndOpen(shown), {drawing: 'plus', 'data-key': 'duplicate'}),
      button(t('delete'), () => removeAndLeave(shown), {drawing: 'remove', kind: 'danger', 'data-key': 'delete'}));
  };

  async function removeAndLeave(shown) {
    if (!await deeds.remove(shown)) return;
    dirty = false;
    location.hash = '#/events';
  }

  function draw(value) {
    dirty = false;
    form?.end();
    if (value.odd) return replace(body, oddNote(value));
    form = eventForm(draftOf(value), {id, saveLabel: t('save'), onChange: () => { dirty = true; }, onSave: (wanted) => save(wanted, value)});
    form.element.addEventListener('failed', ({detail}) => failed(detail));
    replace(body, value.programming?.actions === 0 && idleNote(), form.element);
  }

  async function read() {
    try {
      const {value, tag: version} = await api.getVersioned(`/events/${id}`);
      tag = version;
      draw(value);
    } catch (error) {
      if (error.status !== 404) return failed(error);
      replace(body, h('p', null, t('event.goneText')), h('a', {class: 'button', href: '#/events'}, t('nav.events')));
    }
  }

  const idleNote = () => h('p', {class: 'card hint'}, t('event.idle'), ' ',
    h('a', {href: `#/events/${id}/programming`}, t('event.sayWhat')));

  const oddNote = (value) => h('div', {class: 'card'}, h('p', null, sentence(value)), h('p', null, t('event.odd')));

  async function save(wanted, before) {
    saving = true;
    dirty = false;
    try {
      const response = await put(wanted);
      if (!response) {
        dirty = true;
        return;
      }
      tag = response.headers.get('ETag');
      const saved = await response.json();
      // Whoever typed on meanwhile keeps that.
      if (!dirty) draw(saved);
      const {description, start, time, repeat} = before;
      notice(t('form.saved', wanted), {undo: async () => {
        await api.put(`/events/${id}`, {description, start, time: deeds.timeToSend(time), repeat});
        await read();
      }});
    } catch (error) {
      dirty = true;
      throw error;
    } finally {
      saving = false;
    }
  }

  async function put(wanted) {
    try {
      return await api.send('PUT', `/events/${id}`, {body: wanted, match: tag});
    } catch (error) {
      if (error.status !== 412) throw error;
      if (!await confirmed(t('clash.title'), t('clash.text'), t('clash.mine'))) return null;
      return api.send('PUT', `/events/${id}`, {body: wanted});
    }
  }

  function changed(detail) {
    head.draw();
    drawBar();
    if (saving || detail?.id !== id || !['modified', 'added', 'deleted'].includes(detail?.change)) return;
    if (!dirty) return read();
    if (!body.querySelector('.clash')) {
      body.prepend(h('div', {class: 'card hint clash', role: 'status'}, h('p', null, t('clash.seen')),
        button(t('clash.theirs'), read, {kind: 'small'})));
    }
  }

  drawBar();
  read();
  return {
    title: house.eventName(id) ?? t('event.gone'),
    on: {events: changed, project: head.draw, replaced: () => !dirty && read()},
    end: () => form?.end(),
    dirty: () => dirty, leaves: () => !dirty || askLeave(),
  };
}

