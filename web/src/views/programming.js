// What an event does when it fires: whether it acts at all, and its actions.

import * as api from '../api.js';
import {addDays} from '../dates.js';
import {button, choice, field, freshId, h, replace} from '../dom.js';
import {house} from '../house.js';
import {t} from '../locale.js';
import {failed, notice} from '../notices.js';
import {actionCard} from './actioncard.js';
import {fresh, sendable} from './actionfields.js';
import {askLeave, eventHead, sendOverOthers, tellOfClash} from './eventhead.js';

export function programming(root, {id}) {
  const page = new ProgrammingPage(id);
  root.append(page.head.element, page.body);
  page.read();
  return {
    title: t('nav.programming'),
    on: {
      events: (detail) => page.changed(detail),
      project: () => page.head.draw(),
      today: () => page.head.draw(),
      replaced: () => page.read({kept: true}),
    },
    dirty: () => page.dirty,
    leaves: () => !page.dirty || askLeave(),
  };
}

class ProgrammingPage {
  /** Something is typed that is not saved. */
  dirty = false;
  #id;
  #path;
  #value = null;
  #tag = null;
  #saving = false;
  /** What each action is known by, wherever it is moved. */
  #keys = new WeakMap();

  constructor(id) {
    this.#id = id;
    this.#path = `/events/${id}/programming`;
    this.head = eventHead(id, 'programming');
    const onsubmit = (submit) => {
      submit.preventDefault();
      this.#save().catch(failed);
    };
    this.body = h('form', {class: 'programming', novalidate: true, onsubmit});
  }

  /** Shows it as it is now. `kept`: but for what was typed meanwhile, and for what is shown already. */
  async read({kept = false} = {}) {
    try {
      const {value, tag} = await api.getVersioned(this.#path);
      if (kept && tag === this.#tag) return;
      if (kept && this.dirty) return tellOfClash(this.body, () => this.read());
      this.#take(value, tag);
    } catch (error) {
      if (error.status === 404) replace(this.body, h('p', null, t('event.goneText')));
      else failed(error);
    }
  }

  #take(value, tag) {
    this.#value = value;
    this.#tag = tag;
    this.dirty = false;
    this.#draw();
  }

  #touched() {
    this.dirty = true;
  }

  #draw() {
    const {actions} = this.#value;
    replace(
      this.body,
      h('section', {'class': 'card', 'aria-label': t('prog.when')}, this.#whether()),
      h('h2', null, t('prog.actions')),
      actions.length === 0 && h('p', {class: 'empty'}, t('prog.none')),
      h(
        'ol',
        {class: 'actions'},
        actions.map((action, index) => this.#card(action, index)),
      ),
      h(
        'div',
        {class: 'row'},
        button(t('prog.add'), () => this.#add(), {'drawing': 'plus', 'data-key': 'add'}),
      ),
      h(
        'footer',
        null,
        h('p', {class: 'error', hidden: true}),
        h('button', {'class': 'primary', 'data-key': 'save'}, t('save')),
      ),
    );
  }

  #whether() {
    const value = this.#value;
    const set = (name, wanted) => {
      value[name] = wanted;
      this.#touched();
    };
    const check = (name, label) => {
      const onchange = (event) => set(name, event.target.checked);
      const box = h('input', {type: 'checkbox', checked: value[name], 'data-key': name, onchange});
      return h('label', {class: 'radio'}, box, ' ', label);
    };
    const until = h('input', {
      'type': 'date',
      'value': value.paused_until ?? '',
      'min': addDays(house.date(), 1),
      'data-key': 'paused',
      'onchange': () => set('paused_until', until.value || null),
    });
    return [
      check('enabled', t('prog.enabled')),
      check('skip_next', t('prog.skipNext')),
      field(t('prog.pausedUntil'), until, t('prog.pausedHint')),
      h('div', {class: 'line'}, this.#catchUp()),
    ];
  }

  #catchUp() {
    const value = this.#value;
    const options = ['ignore', 'within', 'always'].map((one) => [one, t(`prog.catchUp.${one}`)]);
    const choose = (policy) => {
      value.catch_up = policy === 'within' ? {policy, minutes: 10} : {policy};
      this.#touched();
      this.#draw();
    };
    const {policy, minutes} = value.catch_up;
    const rest = {'aria-label': t('prog.catchUpLabel'), 'data-key': 'catch-up'};
    const first = [t('prog.catchUp'), choice(options, policy, choose, rest)];
    if (policy !== 'within') return first;
    const control = h('input', {
      'type': 'number',
      'class': 'number',
      'min': 1,
      'max': 10080,
      'value': minutes,
      'aria-label': t('prog.catchUpMinutes'),
      'data-key': 'catch-up-minutes',
      'data-pointer': '/catch_up/minutes',
      'oninput': () => {
        value.catch_up.minutes = Number(control.value);
        this.#touched();
      },
    });
    return [...first, control, t('form.minutes')];
  }

  #card(action, index) {
    if (!this.#keys.has(action)) this.#keys.set(action, freshId('action'));
    return actionCard(action, {
      index,
      count: this.#value.actions.length,
      key: this.#keys.get(action),
      event: this.#id,
      touched: () => this.#touched(),
      redraw: () => this.#draw(),
      move: (by) => this.#move(index, by),
      remove: () => this.#remove(index),
    });
  }

  #add() {
    this.#value.actions.push({on: 'event', delay: 0, hook: fresh('hook')});
    this.#touched();
    this.#draw();
    this.body.querySelector('.actions > li:last-child select')?.focus();
  }

  #move(index, by) {
    const {actions} = this.#value;
    const [taken] = actions.splice(index, 1);
    actions.splice(index + by, 0, taken);
    this.#touched();
    this.#draw();
  }

  #remove(index) {
    const {actions} = this.#value;
    const [taken] = actions.splice(index, 1);
    this.#touched();
    this.#draw();
    const undo = async () => {
      actions.splice(index, 0, taken);
      this.#draw();
    };
    notice(t('prog.removed'), {undo});
  }

  async #save() {
    this.#showErrors([]);
    this.#saving = true;
    this.dirty = false;
    let saved = false;
    try {
      const body = {...this.#value, actions: this.#value.actions.map(sendable)};
      const response = await sendOverOthers(this.#tag, (match) =>
        api.send('PUT', this.#path, {body, match}),
      );
      saved = response !== null;
      if (saved) await this.#saved(response);
    } catch (error) {
      if (!error.errors?.length) throw error;
      this.#showErrors(error.errors);
    } finally {
      if (!saved) this.dirty = true;
      this.#saving = false;
    }
  }

  async #saved(response) {
    notice(t('prog.saved'));
    const tag = response.headers.get('ETag');
    const value = await response.json();
    // Whoever typed on meanwhile keeps that.
    if (this.dirty) this.#tag = tag;
    else this.#take(value, tag);
  }

  /** Each at its action, and at its field where it has one. */
  #showErrors(errors) {
    for (const note of this.body.querySelectorAll('.error')) note.hidden = true;
    for (const control of this.body.querySelectorAll('[aria-invalid]')) {
      control.removeAttribute('aria-invalid');
    }
    for (const error of errors) this.#showError(error);
    this.body.querySelector('[aria-invalid=true]')?.focus();
  }

  #showError({pointer, detail}) {
    const at = (name, place) => `${name}[data-pointer="${CSS.escape(place)}"]`;
    const action = pointer.split('/').slice(0, 3).join('/');
    const card = this.body.querySelector(at('li', action)) ?? this.body.querySelector('footer');
    const control = this.body.querySelector(`${at('input', pointer)}, ${at('textarea', pointer)}`);
    const note = card.querySelector(':scope > .error');
    const name = control?.ariaLabel ?? control?.labels?.[0]?.textContent ?? pointer;
    const text = `${name}: ${detail}`;
    note.textContent = note.hidden ? text : `${note.textContent}; ${text}`;
    note.hidden = false;
    note.id ||= freshId('error');
    control?.setAttribute('aria-invalid', 'true');
    control?.setAttribute('aria-describedby', note.id);
  }

  /** Somebody, perhaps this page, has changed something about events. */
  changed(detail) {
    this.head.draw();
    if (this.#saving || detail?.id !== this.#id || detail.change !== 'programming') return;
    this.read({kept: true});
  }
}
