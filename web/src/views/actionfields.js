// What an action does, in fields: a web request, a command, or a variable that is set. Each writes into
// the action as one types and says so by `touched`.

import {choice, field, h} from '../dom.js';
import {t} from '../locale.js';

export const TYPES = ['hook', 'command', 'variable'];
const METHODS = ['GET', 'POST', 'PUT', 'PATCH', 'DELETE'];

export const typeOf = (action) => TYPES.find((type) => action[type]);

/** One of a type, as it begins. */
export function fresh(type) {
  switch (type) {
    case 'hook':
      return {method: 'POST', url: 'http://', headers: {}, body: '', timeout: 10, retries: 3};
    case 'command':
      return {argv: [''], timeout: 60};
    default:
      return {device: 1, variable: 1, value: ''};
  }
}

/** Without what is empty and would be refused or says nothing. */
export function sendable(action) {
  const copy = structuredClone(action);
  if (copy.hook?.body === '') delete copy.hook.body;
  return copy;
}

/** The fields of `action`, whose place in the programming is `pointer`. */
export function actionFields(action, pointer, touched) {
  const type = typeOf(action);
  const draw = {hook: hookFields, command: commandFields, variable: variableFields}[type];
  const make = (name, rest) =>
    input(action[type], name, `${pointer}/${type}/${name}`, touched, rest);
  return draw(action[type], make, touched);
}

/** An input for object[name], or a text area where `rest` has rows. */
function input(object, name, pointer, touched, {fallback = '', read, write, ...rest}) {
  const number = rest.type === 'number';
  const value = write ? write(object[name]) : (object[name] ?? fallback);
  const control = h(rest.rows ? 'textarea' : 'input', {
    value,
    'spellcheck': 'false',
    'data-pointer': pointer,
    'class': number ? 'number' : null,
    'oninput': () => {
      const typed = number ? Number(control.value) : control.value;
      object[name] = read ? read(typed) : typed;
      touched();
    },
    ...rest,
  });
  return control;
}

const line = (...children) => h('div', {class: 'line'}, children);

function hookFields(hook, make, touched) {
  const options = METHODS.map((method) => [method, method]);
  const choose = (method) => {
    hook.method = method;
    touched();
  };
  const method = choice(options, hook.method ?? 'POST', choose, {'aria-label': t('prog.method')});
  const url = make('url', {'type': 'url', 'class': 'wide', 'aria-label': t('prog.url')});
  const headers = make('headers', {rows: 2, read: readHeaders, write: writeHeaders});
  return h(
    'div',
    {class: 'fields'},
    line(method, url),
    field(t('prog.body'), make('body', {rows: 3}), t('prog.placeholders')),
    h(
      'details',
      null,
      h('summary', null, t('prog.more')),
      field(t('prog.headers'), headers, t('prog.headersHint')),
      line(timeLimit(make, 300, 10), retries(make)),
    ),
  );
}

function timeLimit(make, max, fallback) {
  const label = t('prog.timeoutLabel');
  const seconds = make('timeout', {type: 'number', min: 1, max, fallback, 'aria-label': label});
  return [t('prog.timeout'), seconds, t('prog.seconds')];
}

function retries(make) {
  const label = t('prog.retriesLabel');
  const rest = {'type': 'number', 'min': 0, 'max': 10, 'fallback': 3, 'aria-label': label};
  return [t('prog.retries'), make('retries', rest)];
}

const writeHeaders = (headers) =>
  Object.entries(headers ?? {})
    .map(([name, text]) => `${name}: ${text}`)
    .join('\n');

function readHeaders(text) {
  const lines = text.split('\n').filter((one) => one.trim());
  return Object.fromEntries(
    lines.map((one) => {
      const colon = one.indexOf(':');
      const name = colon < 0 ? one : one.slice(0, colon);
      return [name.trim(), colon < 0 ? '' : one.slice(colon + 1).trim()];
    }),
  );
}

function commandFields(command, make) {
  const rest = {rows: 3, read: readArguments, write: (argv) => argv.join('\n')};
  return h(
    'div',
    {class: 'fields'},
    field(t('prog.argv'), make('argv', rest), t('prog.argvHint')),
    line(timeLimit(make, 3600, 60)),
  );
}

/** One a line; an empty one counts, but for what follows the last line's end. */
function readArguments(text) {
  return text.split('\n').filter((one, index, all) => one || index < all.length - 1);
}

function variableFields(variable, make) {
  const number = (name) =>
    make(name, {'type': 'number', 'min': 0, 'aria-label': t(`prog.${name}`)});
  const value = make('value', {'aria-label': t('prog.value')});
  return line(
    [t('prog.variable'), number('variable'), t('prog.device'), number('device')],
    [t('prog.value'), value],
  );
}
