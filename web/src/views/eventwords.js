// The words of an event's form, some of which are controls: "every [2] [weeks] on [Mon] [Fri], [30]
// minutes [before] [sunset]". They write into a draft as one types.

import {FIRST_DAY, LAST_DAY, monthOf, WEEKDAYS} from '../dates.js';
import {choice, h, replace} from '../dom.js';
import {MOST, startDay} from '../draft.js';
import {dayAndMonth, monthName, t, weekdayName, weekOrder} from '../locale.js';

const UNITS = ['day', 'week', 'month', 'year'];

/** [value, text] of each value, whose texts stand under `stem`. */
const texts = (stem, values) => values.map((value) => [value, t(`${stem}${value}`)]);
const line = (...children) => h('div', {class: 'line'}, children);

export class EventWords {
  element = h('div', {class: 'sentence'});
  #draft;
  #fields;
  #changed;

  /** `changed(name)` is called whenever the draft has become another. */
  constructor(draft, fields, changed) {
    this.#draft = draft;
    this.#fields = fields;
    this.#changed = changed;
  }

  draw() {
    const {repeats, unit} = this.#draft;
    const note = (pointer) => this.#fields.note(pointer);
    this.#fields.release('/description');
    replace(
      this.element,
      line(this.#repeat()),
      note('/repeat/every'),
      repeats && unit === 'week' && [this.#weekdays(), note('/repeat/on')],
      repeats && (unit === 'month' || unit === 'year') && [line(this.#nth()), note('/repeat/nth')],
      line(this.#time()),
      note('/time/at'),
      line(this.#spread()),
      note('/time/spread'),
      line(this.#start()),
      note('/start'),
      repeats && [line(this.#end()), note('/repeat/until')],
    );
  }

  /** An input for draft[name]; the errors of `pointer` are about it. */
  input(name, pointer, label, rest = {}) {
    const control = h('input', {
      'value': this.#draft[name],
      'autocomplete': 'off',
      'data-key': name,
      'aria-label': label,
      'oninput': () => {
        this.#draft[name] = control.value;
        this.#changed(name);
      },
      ...rest,
    });
    return this.#fields.claim(pointer, control);
  }

  #count(name, pointer, label, max) {
    const number = {type: 'number', class: 'number', min: 0, max, inputmode: 'numeric'};
    return this.input(name, pointer, label, number);
  }

  #day(name, pointer, label) {
    return this.input(name, pointer, label, {type: 'date', min: FIRST_DAY, max: LAST_DAY});
  }

  /** A select for draft[name] on which it depends what other words there are. */
  #pick(name, options, label, pointer) {
    const change = (value) => {
      this.#draft[name] = value;
      this.draw();
      this.#changed(name);
    };
    const rest = {'aria-label': label, 'data-key': name};
    const control = choice(options, this.#draft[name], change, rest);
    return pointer ? this.#fields.claim(pointer, control) : control;
  }

  /** The same where the draft has true or false. */
  #pickWhether(name, no, yes, label, pointer) {
    const options = [
      ['', no],
      ['yes', yes],
    ];
    const change = (value) => {
      this.#draft[name] = value === 'yes';
      this.draw();
      this.#changed(name);
    };
    const rest = {'aria-label': label, 'data-key': name};
    const control = choice(options, this.#draft[name] ? 'yes' : '', change, rest);
    return pointer ? this.#fields.claim(pointer, control) : control;
  }

  #repeat() {
    const [once, every] = [t('form.once'), t('form.every')];
    const first = this.#pickWhether('repeats', once, every, t('form.repeatsLabel'));
    if (!this.#draft.repeats) return first;
    const label = (unit) => t(`unit.${unit}`, {n: Number(this.#draft.every)});
    const options = UNITS.map((unit) => [unit, label(unit)]);
    const unit = this.#pick('unit', options, t('form.unitLabel'));
    const count = this.#count('every', '/repeat/every', t('form.everyLabel'), MOST.every);
    count.addEventListener('input', () => {
      for (const option of unit.options) option.label = label(option.value);
    });
    return [first, count, unit];
  }

  #weekdays() {
    return h(
      'fieldset',
      {class: 'line'},
      h('legend', {class: 'unseen'}, t('form.daysLabel')),
      t('form.onDays'),
      weekOrder().map((index) => this.#weekday(index)),
    );
  }

  #weekday(index) {
    const {on} = this.#draft;
    const name = WEEKDAYS[index];
    const box = h('input', {
      'type': 'checkbox',
      'checked': on.has(name),
      'data-key': `on-${name}`,
      'onchange': () => {
        if (box.checked) on.add(name);
        else on.delete(name);
        this.#changed('on');
      },
    });
    this.#fields.claim('/repeat/on', box);
    const short = h('span', {'aria-hidden': 'true'}, weekdayName(index, 'short'));
    return h(
      'label',
      {class: 'pill'},
      box,
      short,
      h('span', {class: 'unseen'}, weekdayName(index)),
    );
  }

  #nth() {
    const {unit, start, byWeekday} = this.#draft;
    const place = '/repeat/nth';
    const plain =
      unit === 'month'
        ? t('form.onDayOfMonth', {day: startDay(this.#draft)})
        : t('form.onDate', {date: start ? dayAndMonth(start) : ''});
    const which = t('form.whichDayLabel');
    const first = this.#pickWhether('byWeekday', plain, t('form.onThe'), which, place);
    if (!byWeekday) return first;
    const days = weekOrder().map((index) => [WEEKDAYS[index], weekdayName(index)]);
    return [
      first,
      this.#pick('nthWeek', texts('nth.', [1, 2, 3, 4, 'last']), t('form.nthLabel'), place),
      this.#pick('nthDay', days, t('form.weekdayLabel'), place),
      unit === 'year' && start ? t('form.inMonth', {month: monthName(monthOf(start))}) : null,
    ];
  }

  #time() {
    const bases = texts('form.base.', ['clock', 'sun', 'eve', 'morrow']);
    const base = this.#pick('base', bases, t('form.baseLabel'));
    if (this.#draft.base !== 'sun') {
      const rest = {size: 9, class: 'time', spellcheck: 'false'};
      return [base, this.input('at', '/time/at', t('form.timeLabel'), rest)];
    }
    return [
      base,
      this.#count('minutes', '/time/at', t('form.minutesLabel'), MOST.minutes),
      t('form.minutes'),
      this.#pick('side', texts('form.', ['before', 'after']), t('form.sideLabel')),
      this.#pick('sun', texts('say.', ['sunrise', 'sunset']), t('form.sunLabel')),
    ];
  }

  #spread() {
    const minutes = this.#count('spread', '/time/spread', t('form.spreadLabel'), MOST.spread);
    return [t('form.spread'), minutes, t('form.spreadMinutes')];
  }

  #start() {
    const [word, label] = this.#draft.repeats
      ? [t('form.from'), t('form.startLabel')]
      : [t('form.on'), t('form.dayLabel')];
    return [word, this.#day('start', '/start', label)];
  }

  #end() {
    const place = '/repeat/until';
    const [never, until] = [t('form.forever'), t('form.until')];
    const first = this.#pickWhether('ends', never, until, t('form.endsLabel'), place);
    return [first, this.#draft.ends && this.#day('until', place, t('form.untilLabel'))];
  }
}
