// The form of an event, which reads like a sentence: "every 2 weeks on Mon and Fri, 30 minutes before
// sunset, give or take 10 minutes". What comes of it is shown while one types.

import * as api from '../api.js';
import {WEEKDAYS, wall, yearOf} from '../dates.js';
import {choice, freshId, h, icon, replace} from '../dom.js';
import {read, startDay} from '../draft.js';
import {house} from '../house.js';
import {dateText, dayAndMonth, hasText, monthName, shortDate, t, timeText, weekdayName, weekOrder} from '../locale.js';
import {sentence} from '../sentence.js';

const WAIT_MS = 200;
/** Where an error of the API is shown, where that is not under its own name. */
const PLACES = {'/time/minutes': '/time/at', '/time': '/time/at', '/repeat/nth/week': '/repeat/nth',
  '/repeat/nth/weekday': '/repeat/nth', '/repeat/unit': '/repeat/every', '/repeat': '/repeat/every'};

/**
 * `draft` is changed as one types. `id` is the event that it would replace, `onSave(event)` sends it
 * and may throw an ApiError, whose errors go to their fields.
 */
export function eventForm(draft, {id, onSave, onChange, saveLabel}) {
  const spots = new Map();
  const preview = h('section', {class: 'card preview', 'aria-label': t('form.preview')});
  const words = h('div', {class: 'sentence'});
  const save = h('button', {class: 'primary', 'data-key': 'save'}, saveLabel);
  // Whether the name was written, so that one that is missing is worth a word.
  let named = Boolean(id);

  /** A control bound to draft[name]; errors under `pointer` stand below the sentence, named by it. */
  const bind = (control, name, pointer, label) => {
    control.setAttribute('aria-label', label);
    control.dataset.key = name;
    if (pointer) spotOf(pointer).controls.push(control);
    control.addEventListener('input', () => {
      named ||= name === 'description';
      draft[name] = control.value;
      changed();
    });
    return control;
  };
  const spotOf = (pointer) => {
    if (!spots.has(pointer)) {
      spots.set(pointer, {controls: [], note: h('p', {class: 'error', id: freshId('error'), hidden: true})});
    }
    return spots.get(pointer);
  };
  const note = (pointer) => spotOf(pointer).note;

  const text = (name, pointer, label, rest = {}) =>
    bind(h('input', {value: draft[name], autocomplete: 'off', ...rest}), name, pointer, label);
  const count = (name, pointer, label, max) =>
    text(name, pointer, label, {type: 'number', class: 'number', min: 0, max, inputmode: 'numeric'});
  const day = (name, pointer, label) =>
    text(name, pointer, label, {type: 'date', min: '1970-01-02', max: '9999-12-31'});
  /** A select that changes which other words there are. */
  const pick = (name, options, label, pointer) => {
    const control = choice(options, draft[name], (value) => {
      draft[name] = value === 'true' ? true : value === 'false' ? false : value;
      drawWords();
      changed();
    }, {'aria-label': label, 'data-key': name});
    if (pointer) spotOf(pointer).controls.push(control);
    return control;
  };

  function drawWords() {
    for (const [pointer, spot] of spots) if (pointer !== '/description') spot.controls = [];
    replace(words,
      h('div', {class: 'line'}, repeatWords()), note('/repeat/every'),
      draft.repeats && draft.unit === 'week' && [weekdayWords(), note('/repeat/on')],
      draft.repeats && ['month', 'year'].includes(draft.unit) && [nthWords(), note('/repeat/nth')],
      h('div', {class: 'line'}, timeWords()), note('/time/at'),
      h('div', {class: 'line'}, t('form.spread'), count('spread', '/time/spread', t('form.spreadLabel'), 720),
        t('form.spreadMinutes')), note('/time/spread'),
      h('div', {class: 'line'}, draft.repeats ? t('form.from') : t('form.on'),
        day('start', '/start', draft.repeats ? t('form.startLabel') : t('form.dayLabel'))), note('/start'),
      draft.repeats && [h('div', {class: 'line'}, endWords()), note('/repeat/until')]);
  }

  function repeatWords() {
    const first = pick('repeats', [['false', t('form.once')], ['true', t('form.every')]], t('form.repeatsLabel'));
    if (!draft.repeats) return first;
    const units = ['day', 'week', 'month', 'year'];
    const label = (unit) => t(`unit.${unit}`, {n: Number(draft.every)});
    const unit = pick('unit', units.map((one) => [one, label(one)]), t('form.unitLabel'));
    const every = count('every', '/repeat/every', t('form.everyLabel'), 1000000);
    every.addEventListener('input', () => units.forEach((one, index) => { unit.options[index].label = label(one); }));
    return [first, every, unit];
  }

  function weekdayWords() {
    const boxes = weekOrder().map((index) => {
      const name = WEEKDAYS[index];
      const box = h('input', {type: 'checkbox', checked: draft.on.has(name), 'data-key': `on-${name}`, onchange: () => {
        if (box.checked) draft.on.add(name);
        else draft.on.delete(name);
        changed();
      }});
      spotOf('/repeat/on').controls.push(box);
      return h('label', {class: 'pill'}, box, h('span', {'aria-hidden': 'true'}, weekdayName(index, 'short')),
        h('span', {class: 'unseen'}, weekdayName(index)));
    });
    return h('fieldset', {class: 'line'}, h('legend', {class: 'unseen'}, t('form.daysLabel')), t('form.onDays'), boxes);
  }

  function nthWords() {
    const {start} = draft;
    const plain = draft.unit === 'month' ? t('form.onDayOfMonth', {day: startDay(draft)})
      : t('form.onDate', {date: start ? dayAndMonth(start) : ''});
    return h('div', {class: 'line'},
      pick('byWeekday', [['false', plain], ['true', t('form.onThe')]], t('form.whichDayLabel'), '/repeat/nth'),
      draft.byWeekday && [
        pick('nthWeek', [1, 2, 3, 4, 'last'].map((week) => [week, t(`nth.${week}`)]), t('form.nthLabel'), '/repeat/nth'),
        pick('nthDay', weekOrder().map((index) => [WEEKDAYS[index], weekdayName(index)]), t('form.weekdayLabel'), '/repeat/nth'),
        draft.unit === 'year' && start ? t('form.inMonth', {month: monthName(Number(start.slice(5, 7)))}) : null,
      ]);
  }

  const timeWords = () => {
    const base = pick('base', ['clock', 'sun', 'eve', 'morrow'].map((one) => [one, t(`form.base.${one}`)]), t('form.baseLabel'));
    if (draft.base === 'sun') {
      return [base, count('minutes', '/time/at', t('form.minutesLabel'), 1440), t('form.minutes'),
        pick('side', [['before', t('form.before')], ['after', t('form.after')]], t('form.sideLabel')),
        pick('sun', [['sunrise', t('say.sunrise')], ['sunset', t('say.sunset')]], t('form.sunLabel'))];
    }
    const time = text('at', '/time/at', t('form.timeLabel'), {size: 9, class: 'time', spellcheck: 'false'});
    return [base, time];
  };

  const endWords = () => [
    pick('ends', [['false', t('form.forever')], ['true', t('form.until')]], t('form.endsLabel'), '/repeat/until'),
    draft.ends && day('until', '/repeat/until', t('form.untilLabel')),
  ];

  /** Puts each error at its field; what has no field is answered. */
  function showErrors(errors) {
    const byPlace = new Map();
    const homeless = [];
    for (const {pointer, detail} of errors) {
      const place = spots.get(pointer)?.controls.length ? pointer : PLACES[pointer] ?? pointer;
      if (spots.get(place)?.controls.length) byPlace.set(place, detail);
      else homeless.push(`${pointer} ${detail}`);
    }
    for (const [place, {controls, note: line}] of spots) {
      const wrong = byPlace.has(place);
      line.hidden = !wrong;
      line.textContent = byPlace.get(place) ?? '';
      for (const control of controls) {
        if (wrong) {
          control.setAttribute('aria-invalid', 'true');
          control.setAttribute('aria-describedby', line.id);
        } else {
          control.removeAttribute('aria-invalid');
          control.removeAttribute('aria-describedby');
        }
      }
    }
    return homeless;
  }

  let timer = null;
  let asked = null;
  function changed() {
    onChange?.();
    clearTimeout(timer);
    timer = setTimeout(look, WAIT_MS);
  }

  async function look() {
    asked?.abort();
    asked = new AbortController();
    const {event, errors} = read(draft);
    // Without a name there is still something to see.
    const problems = errors.filter(({pointer}) => pointer !== '/description');
    const shown = named ? errors : problems;
    showErrors(shown);
    if (problems.length) return replace(preview, previewHead(), h('p', {class: 'muted'}, t('form.incomplete')));
    try {
      const body = {...event, description: event.description || t('form.unnamed'), ...(id ? {id} : {})};
      const answer = await api.post('/preview', body, {signal: asked.signal});
      drawPreview(answer);
    } catch (error) {
      if (error.name === 'AbortError') return;
      const homeless = showErrors([...shown, ...error.errors]);
      replace(preview, previewHead(), h('p', {class: 'error'},
        error.errors.length && !homeless.length ? t('form.incomplete') : [error.message, ...homeless].join('; ')));
    }
  }

  const previewHead = () => h('h2', null, t('form.preview'));

  function drawPreview({event, occurrences, warnings}) {
    const thisYear = yearOf(house.date());
    replace(preview, previewHead(),
      h('p', {class: 'lead', 'aria-live': 'polite'}, sentence(event, house.date())),
      warnings.length > 0 && h('ul', {class: 'warnings'}, warnings.map(({code, text: said}) =>
        h('li', null, icon('warning'), ' ', hasText(`warning.${code}`) ? t(`warning.${code}`) : said))),
      occurrences.length > 0
        ? h('ol', {class: 'occurrences'}, occurrences.map(({date, time}) => {
          const {day, minutes} = wall(time);
          const on = day ?? date;
          return h('li', null, h('span', null, shortDate(on), yearOf(on) !== thisYear ? ` ${yearOf(on)}` : ''),
            h('time', null, timeText(minutes)));
        }))
        : h('p', {class: 'muted'}, t('form.noOccurrences')));
  }

  async function submit(event) {
    event.preventDefault();
    named = true;
    clearTimeout(timer);
    const {event: wanted, errors} = read(draft);
    showErrors(errors);
    if (errors.length) return focusWrong();
    save.disabled = true;
    try {
      await onSave(wanted);
    } catch (error) {
      const atDescription = error.kind === 'conflict' && error.errors.length === 0
        ? [{pointer: '/description', detail: t('form.taken')}] : [];
      const homeless = showErrors([...error.errors, ...atDescription]);
      if (homeless.length || (!error.errors.length && !atDescription.length)) throw error;
      focusWrong();
    } finally {
      save.disabled = false;
    }
  }

  const focusWrong = () => element.querySelector('[aria-invalid=true]')?.focus();

  const name = text('description', '/description', t('form.name'), {class: 'name', maxlength: 200,
    placeholder: t('form.namePlaceholder')});
  const nameId = freshId('name');
  name.id = nameId;
  name.removeAttribute('aria-label');
  const nameSpot = spotOf('/description');
  drawWords();
  const element = h('form', {class: 'eventform', novalidate: true},
    h('div', {class: 'card'},
      h('label', {for: nameId}, t('form.name')), name, nameSpot.note,
      h('fieldset', {class: 'plain'}, h('legend', null, t('form.when')), words),
      h('footer', null, save)),
    preview);
  element.addEventListener('submit', (event) => submit(event).catch((error) =>
    element.dispatchEvent(new CustomEvent('failed', {detail: error}))));
  look();
  return {
    element,
    focus: () => name.focus(),
    end: () => {
      clearTimeout(timer);
      asked?.abort();
    },
  };
}
