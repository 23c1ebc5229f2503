// Elements without markup in strings: whatever comes from elsewhere is text and stays text.

const SVG = 'http://www.w3.org/2000/svg';

function put(element, properties, children) {
  for (const [name, value] of Object.entries(properties ?? {})) {
    if (value === undefined || value === null || value === false) continue;
    if (name.startsWith('on')) element.addEventListener(name.slice(2), value);
    else if (name === 'style') Object.assign(element.style, value);
    else if (name === 'value' || name === 'checked' || name === 'selected') element[name] = value;
    else if (name === 'dataset') Object.assign(element.dataset, value);
    else element.setAttribute(name, value === true ? '' : value);
  }
  element.append(...children.flat(Infinity).filter((child) => child != null && child !== false));
  return element;
}

/** h('button', {type: 'button', onclick: f}, 'Save') */
export const h = (tag, properties, ...children) =>
  put(document.createElement(tag), properties, children);

export const s = (tag, properties, ...children) =>
  put(document.createElementNS(SVG, tag), properties, children);

let lastId = 0;
/** An id that the document has not yet. */
export const freshId = (stem) => `${stem}-${++lastId}`;

/** Puts `children` in the place of what `element` holds; the focus stays with the same `data-key`. */
export function replace(element, ...children) {
  const focused = element.contains(document.activeElement) ? document.activeElement : null;
  const key = focused?.closest('[data-key]')?.dataset.key;
  element.replaceChildren(
    ...children.flat(Infinity).filter((child) => child != null && child !== false),
  );
  if (key !== undefined) element.querySelector(`[data-key="${CSS.escape(key)}"]`)?.focus();
}

const PATHS = {
  today: 'M4 5h16v15H4zM4 9h16M8 3v4M16 3v4M9 14l2 2 4-4',
  calendar: 'M4 5h16v15H4zM4 9h16M8 3v4M16 3v4M9 9v11M15 9v11M4 14h16',
  events: 'M8 6h12M8 12h12M8 18h12M4 6h.01M4 12h.01M4 18h.01',
  sun: 'M12 8a4 4 0 1 0 0 8 4 4 0 0 0 0-8zM12 2v2M12 20v2M2 12h2M20 12h2M5 5l1.4 1.4M17.6 17.6L19 19M5 19l1.4-1.4M17.6 6.4L19 5',
  journal: 'M6 3h12v18H6zM9 8h6M9 12h6M9 16h3',
  project: 'M4 11l8-7 8 7v9h-5v-6h-6v6H4z',
  sunrise: 'M2 20h20M5.5 20a6.5 6.5 0 0 1 13 0M12 9.5V3M9 6l3-3 3 3',
  sunset: 'M2 20h20M5.5 20a6.5 6.5 0 0 1 13 0M12 3v6.5M9 6.5l3 3 3-3',
  clock: 'M12 3a9 9 0 1 0 0 18 9 9 0 0 0 0-18zM12 7v5l3 2',
  run: 'M8 5l11 7-11 7z',
  skip: 'M5 5l9 7-9 7zM18 5v14',
  pause: 'M8 5v14M16 5v14',
  resume: 'M19 12a7 7 0 1 1-2.5-5.4L19 9M19 4v5h-5',
  more: 'M5 12h.01M12 12h.01M19 12h.01',
  done: 'M5 13l4 4L19 7',
  fired: 'M5 13l4 4L19 7',
  held: 'M8 5v14M16 5v14',
  missed: 'M6 6l12 12M18 6L6 18',
  pending: 'M12 3a9 9 0 1 0 0 18 9 9 0 0 0 0-18z',
  warning: 'M12 4l9 16H3zM12 10v4M12 17h.01',
  shift: 'M4 12a8 8 0 0 1 14-5l2 2M20 4v5h-5M20 12a8 8 0 0 1-14 5l-2-2M4 20v-5h5',
  plus: 'M12 5v14M5 12h14',
  previous: 'M15 5l-7 7 7 7',
  next: 'M9 5l7 7-7 7',
  up: 'M5 15l7-7 7 7',
  down: 'M5 9l7 7 7-7',
  remove: 'M5 7h14M10 4h4M7 7l1 13h8l1-13',
  place: 'M12 21c-4-5-6-8-6-11a6 6 0 0 1 12 0c0 3-2 6-6 11zM12 8a2 2 0 1 0 0 4 2 2 0 0 0 0-4z',
};

/** A drawing beside a text that says the same. */
export const icon = (name) =>
  s(
    'svg',
    {class: `icon icon-${name}`, viewBox: '0 0 24 24', 'aria-hidden': 'true'},
    s('path', {d: PATHS[name]}),
  );

/** A button that does something on this page. */
export function button(label, onclick, {kind = '', drawing, ...rest} = {}) {
  return h(
    'button',
    {type: 'button', class: kind, onclick, ...rest},
    drawing && icon(drawing),
    h('span', null, label),
  );
}

/** A button that is its drawing; `label` is what it is called. */
export function iconButton(label, drawing, onclick, rest = {}) {
  return h(
    'button',
    {type: 'button', class: 'bare', onclick, 'aria-label': label, title: label, ...rest},
    icon(drawing),
  );
}

/** A select; `options` are [value, label]. */
export function choice(options, value, onchange, rest = {}) {
  const list = options.map(([key, label]) =>
    h('option', {value: key, selected: String(key) === String(value)}, label),
  );
  return h('select', {onchange: (event) => onchange?.(event.target.value), ...rest}, list);
}

/** A part of a page with a heading of its own. */
export const card = (title, ...content) =>
  h('section', {class: 'card'}, h('h2', null, title), content);

/** A labelled control on a line of its own; `hint` is read with it. */
export function field(label, control, hint) {
  control.id ||= freshId('field');
  const note = hint && h('small', {id: freshId('hint')}, hint);
  if (note) control.setAttribute('aria-describedby', note.id);
  return h('div', {class: 'field'}, h('label', {for: control.id}, label), control, note);
}
