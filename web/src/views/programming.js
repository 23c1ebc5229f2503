// What an event does when it fires: its actions, each with a condition, tried out here.

import * as api from '../api.js';
import {addDays} from '../dates.js';
import {button, choice, field, freshId, h, icon, iconButton, replace} from '../dom.js';
import {house} from '../house.js';
import {hasText, t} from '../locale.js';
import {confirmed, failed, notice} from '../notices.js';
import {conditionBuilder} from './condition.js';
import {askLeave, eventHead} from './event.js';

const TYPES = ['hook', 'command', 'variable'];
const FRESH = {
  hook: () => ({method: 'POST', url: 'http://', headers: {}, body: '', timeout: 10, retries: 3}),
  command: () => ({argv: [''], timeout: 60}),
  variable: () => ({device: 1, variable: 1, value: ''}),
};
const freshAction = () => ({on: 'event', delay: 0, hook: FRESH.hook()});
const typeOf = (action) => TYPES.find((type) => action[type]);

export function programming(root, {id}) {
  const head = eventHead(id, 'programming');
  const body = h('form', {class: 'programming', novalidate: true, onsubmit: (submit) => {
    submit.preventDefault();
    save().catch(failed);
  }});
  root.append(head.element, body);
  let value = null;
  let tag = null;
  let dirty = false;
  let keys = new WeakMap();
  let saving = false;
  const touched = () => { dirty = true; };

  async function read() {
    try {
      const answer = await api.getVersioned(`/events/${id}/programming`);
      ({value, tag} = answer);
      dirty = false;
      draw();
    } catch (error) {
      if (error.status === 404) replace(body, h('p', null, t('event.goneText')));
      else failed(error);
    }
  }

  function draw() {
    replace(body,
      h('section', {class: 'card', 'aria-label': t('prog.when')}, whenFields()),
      h('h2', null, t('prog.actions')),
      value.actions.length === 0 && h('p', {class: 'empty'}, t('prog.none')),
      h('ol', {class: 'actions'}, value.actions.map((action, index) => card(action, index))),
      h('div', {class: 'row'}, button(t('prog.add'), () => {
        value.actions.push(freshAction());
        touched();
        draw();
        body.querySelector('.actions > li:last-child select')?.focus();
      }, {drawing: 'plus', 'data-key': 'add'})),
      h('footer', null, h('p', {class: 'error', hidden: true}), h('button', {class: 'primary', 'data-key': 'save'}, t('save'))));
  }

  function whenFields() {
    const check = (name, label) => h('label', {class: 'radio'}, h('input', {type: 'checkbox', checked: value[name], 'data-key': name,
      onchange: (event) => { value[name] = event.target.checked; touched(); }}), ' ', label);
    const {policy, minutes} = value.catch_up;
    return [
      check('enabled', t('prog.enabled')), check('skip_next', t('prog.skipNext')),
      field(t('prog.pausedUntil'), h('input', {type: 'date', value: value.paused_until ?? '', min: addDays(house.date(), 1),
        'data-key': 'paused', onchange: (event) => { value.paused_until = event.target.value || null; touched(); }}), t('prog.pausedHint')),
      h('div', {class: 'line'}, t('prog.catchUp'), choice(['ignore', 'within', 'always'].map((one) => [one, t(`prog.catchUp.${one}`)]), policy, (one) => {
        value.catch_up = one === 'within' ? {policy: one, minutes: 10} : {policy: one};
        touched();
        draw();
      }, {'aria-label': t('prog.catchUpLabel'), 'data-key': 'catch-up'}),
      policy === 'within' && [h('input', {type: 'number', class: 'number', min: 1, max: 10080, value: minutes, 'aria-label': t('prog.catchUpMinutes'),
        'data-key': 'catch-up-minutes', 'data-pointer': '/catch_up/minutes',
        oninput: (event) => { value.catch_up.minutes = Number(event.target.value); touched(); }}), t('form.minutes')]),
    ];
  }

  function card(action, index) {
    if (!keys.has(action)) keys.set(action, freshId('action'));
    const key = keys.get(action);
    const type = typeOf(action);
    const pointer = `/actions/${index}`;
    const swap = (by) => {
      const [taken] = value.actions.splice(index, 1);
      value.actions.splice(index + by, 0, taken);
      touched();
      draw();
    };
    const outcome = h('div', {class: 'outcome', role: 'status'});
    return h('li', {class: 'card', 'data-pointer': pointer},
      h('div', {class: 'line'},
        choice(['event', 'push', 'click'].map((one) => [one, t(`prog.on.${one}`)]), action.on ?? 'event', (on) => { action.on = on; touched(); },
          {'aria-label': t('prog.onLabel'), 'data-key': `${key}-on`}),
        t('prog.after'), h('input', {type: 'number', class: 'number', min: 0, max: 86400, value: action.delay ?? 0, 'aria-label': t('prog.delayLabel'),
          'data-pointer': `${pointer}/delay`, oninput: (event) => { action.delay = Number(event.target.value); touched(); }}), t('prog.seconds'),
        h('span', {class: 'end'},
          index > 0 && iconButton(t('prog.up'), 'up', () => swap(-1), {'data-key': `${key}-up`}),
          index < value.actions.length - 1 && iconButton(t('prog.down'), 'down', () => swap(1), {'data-key': `${key}-down`}),
          iconButton(t('prog.remove'), 'remove', () => removeAction(index), {'data-key': `${key}-remove`}))),
      h('div', {class: 'line top'}, t('prog.if'), conditionBuilder(action.if ?? null, (condition) => {
        if (condition) action.if = condition;
        else delete action.if;
        touched();
      })),
      h('div', {class: 'line'}, t('prog.do'), choice(TYPES.map((one) => [one, t(`prog.type.${one}`)]), type, (one) => {
        delete action[type];
        action[one] = FRESH[one]();
        touched();
        draw();
      }, {'aria-label': t('prog.typeLabel'), 'data-key': `${key}-type`})),
      {hook: hookFields, command: commandFields, variable: variableFields}[type](action[type], `${pointer}/${type}`, touched),
      h('p', {class: 'error', hidden: true}),
      h('div', {class: 'row'}, button(t('prog.test'), (event) => tryOut(action, outcome, event.currentTarget), {drawing: 'run', 'data-key': `${key}-test`})),
      outcome);
  }

  function removeAction(index) {
    const [taken] = value.actions.splice(index, 1);
    touched();
    draw();
    notice(t('prog.removed'), {undo: async () => {
      value.actions.splice(index, 0, taken);
      draw();
    }});
  }

  async function tryOut(action, place, control) {
    control.disabled = true;
    replace(place, h('p', {class: 'muted'}, t('prog.testing')));
    try {
      drawOutcome(place, await api.post('/actions/test', {action: sendable(action), event: id}));
    } catch (error) {
      const details = error.errors?.map(({pointer, detail}) => `${pointer.replace(/^\/action/, '')} ${detail}`) ?? [];
      replace(place, h('p', {class: 'error'}, details.length ? details.join('; ') : error.message));
    } finally {
      control.disabled = false;
    }
  }

  function showErrors(errors) {
    for (const note of body.querySelectorAll('.error')) note.hidden = true;
    for (const control of body.querySelectorAll('[aria-invalid]')) control.removeAttribute('aria-invalid');
    for (const {pointer, detail} of errors) {
      const control = body.querySelector(`input[data-pointer="${CSS.escape(pointer)}"], textarea[data-pointer="${CSS.escape(pointer)}"]`);
      const place = body.querySelector(`li[data-pointer="${pointer.split('/').slice(0, 3).join('/')}"]`) ?? body.querySelector('footer');
      const note = place.querySelector(':scope > .error');
      note.textContent = note.hidden ? detail : `${note.textContent}; ${detail}`;
      if (!control) note.textContent = `${pointer} ${note.textContent}`;
      note.hidden = false;
      note.id ||= freshId('error');
      control?.setAttribute('aria-invalid', 'true');
      control?.setAttribute('aria-describedby', note.id);
    }
    body.querySelector('[aria-invalid=true]')?.focus();
  }

  async function save() {
    showErrors([]);
    saving = true;
    try {
      const wanted = {...value, actions: value.actions.map(sendable)};
      dirty = false;
      const response = await put(wanted);
      dirty ||= !response;
      if (!response) return;
      notice(t('prog.saved'));
      tag = response.headers.get('ETag');
      const saved = await response.json();
      // Whoever typed on meanwhile keeps that.
      if (dirty) return;
      value = saved;
      draw();
    } catch (error) {
      dirty = true;
      if (!error.errors?.length) throw error;
      showErrors(error.errors);
    } finally {
      saving = false;
    }
  }

  async function put(wanted) {
    const path = `/events/${id}/programming`;
    try {
      return await api.send('PUT', path, {body: wanted, match: tag});
    } catch (error) {
      if (error.status !== 412) throw error;
      if (!await confirmed(t('clash.title'), t('clash.text'), t('clash.mine'))) return null;
      return api.send('PUT', path, {body: wanted});
    }
  }

  read();
  return {
    title: t('nav.programming'),
    on: {
      events: (detail) => {
        head.draw();
        if (detail?.id !== id || detail?.change !== 'programming' || saving) return;
        if (!dirty) return read();
        if (!body.querySelector('.clash')) {
          body.prepend(h('div', {class: 'card hint clash', role: 'status'}, h('p', null, t('clash.seen')), button(t('clash.theirs'), read, {kind: 'small'})));
        }
      },
      project: head.draw,
    },
    dirty: () => dirty, leaves: () => !dirty || askLeave(),
  };
}

/** Without what is empty and would be refused or says nothing. */
function sendable(action) {
  const copy = structuredClone(action);
  if (copy.hook && copy.hook.body === '') delete copy.hook.body;
  return copy;
}

function hookFields(hook, pointer, touched) {
  const set = (name, convert = String) => (event) => { hook[name] = convert(event.target.value); touched(); };
  const headers = Object.entries(hook.headers ?? {}).map(([name, text]) => `${name}: ${text}`).join('\n');
  return h('div', {class: 'fields'},
    h('div', {class: 'line'},
      choice(['GET', 'POST', 'PUT', 'PATCH', 'DELETE'].map((one) => [one, one]), hook.method ?? 'POST', (one) => { hook.method = one; touched(); }, {'aria-label': t('prog.method')}),
      h('input', {class: 'wide', type: 'url', value: hook.url, 'aria-label': t('prog.url'), 'data-pointer': `${pointer}/url`, spellcheck: 'false', oninput: set('url')})),
    field(t('prog.body'), h('textarea', {rows: 3, value: hook.body ?? '', spellcheck: 'false', 'data-pointer': `${pointer}/body`, oninput: set('body')}), t('prog.placeholders')),
    h('details', null, h('summary', null, t('prog.more')),
      field(t('prog.headers'), h('textarea', {rows: 2, value: headers, spellcheck: 'false', 'data-pointer': `${pointer}/headers`, oninput: (event) => {
        hook.headers = readHeaders(event.target.value);
        touched();
      }}), t('prog.headersHint')),
      h('div', {class: 'line'}, t('prog.timeout'), h('input', {type: 'number', class: 'number', min: 1, max: 300, value: hook.timeout ?? 10,
        'aria-label': t('prog.timeoutLabel'), 'data-pointer': `${pointer}/timeout`, oninput: set('timeout', Number)}), t('prog.seconds'),
      t('prog.retries'), h('input', {type: 'number', class: 'number', min: 0, max: 10, value: hook.retries ?? 3,
        'aria-label': t('prog.retriesLabel'), 'data-pointer': `${pointer}/retries`, oninput: set('retries', Number)}))));
}

function readHeaders(text) {
  const pairs = text.split('\n').filter((line) => line.trim()).map((line) => {
    const colon = line.indexOf(':');
    return colon < 0 ? [line.trim(), ''] : [line.slice(0, colon).trim(), line.slice(colon + 1).trim()];
  });
  return Object.fromEntries(pairs);
}

function commandFields(command, pointer, touched) {
  return h('div', {class: 'fields'},
    field(t('prog.argv'), h('textarea', {rows: 3, value: command.argv.join('\n'), spellcheck: 'false', 'data-pointer': `${pointer}/argv`, oninput: (event) => {
      command.argv = event.target.value.split('\n').filter((line, index, all) => line || index < all.length - 1);
      touched();
    }}), t('prog.argvHint')),
    h('div', {class: 'line'}, t('prog.timeout'), h('input', {type: 'number', class: 'number', min: 1, max: 3600, value: command.timeout ?? 60,
      'aria-label': t('prog.timeoutLabel'), 'data-pointer': `${pointer}/timeout`, oninput: (event) => { command.timeout = Number(event.target.value); touched(); }}), t('prog.seconds')));
}

function variableFields(variable, pointer, touched) {
  const number = (name) => h('input', {type: 'number', class: 'number', min: 0, value: variable[name], 'aria-label': t(`prog.${name}`),
    'data-pointer': `${pointer}/${name}`, oninput: (event) => { variable[name] = Number(event.target.value); touched(); }});
  return h('div', {class: 'line'}, t('prog.variable'), number('variable'), t('prog.device'), number('device'), t('prog.value'),
    h('input', {value: variable.value, 'aria-label': t('prog.value'), 'data-pointer': `${pointer}/value`, oninput: (event) => { variable.value = event.target.value; touched(); }}));
}

function drawOutcome(place, {outcome, detail, output, milliseconds}) {
  replace(place, h('p', {class: `state ${outcome === 'done' ? 'fired' : 'missed'}`}, icon(outcome === 'done' ? 'done' : 'missed'), ' ',
    hasText(`outcome.${outcome}`) ? t(`outcome.${outcome}`) : outcome, detail ? `: ${detail}` : '', milliseconds != null ? ` (${milliseconds} ms)` : ''),
  output && h('pre', {tabindex: '0'}, output));
}
